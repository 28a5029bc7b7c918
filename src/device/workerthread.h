// The upload: finds the prop and sends it the two files of the device image (extemp2.tmp, extemp.tmp in the working
// directory), all in blocking calls on this thread, which runs no event loop and reports by signals.
//
//   prop   a greeting, any text, once DTR is up           5 s, else the next port
//   host   the track byte
//   prop   a reply; text that contains ERR refuses        5 s
//   host   the header from offset 1, without its last two bytes (the cut is part of the protocol)
//   host   the frame data in pieces of 2048 bytes, 10 ms apart
//   prop   a closing reply, any bytes                     no limit
//
// There are no lengths, checksums or retries: the prop finds the end by the data's own markers.
#pragma once

#include <QMutex>
#include <QThread>
#include <QWaitCondition>

#include <atomic>
#include <memory>

class QFile;
class QSerialPort;

class WorkerThread : public QThread
{
    Q_OBJECT

public:
    explicit WorkerThread(QObject *parent = nullptr);
    ~WorkerThread() override;

    qint32 portIndex = 0;          // number of the port being tried; after a successful search the prop's
    QSerialPort *serial = nullptr; // made by findDevice on the worker thread
    quint8 uploadOk = 0;           // set only when the whole exchange has ended normally

    // True when serial is open on a port whose device has spoken.
    bool findDevice();

signals:
    void progress(int percent, int port);
    void expmess(QString str);
    void finish();
    void terminated();

public slots:
    void upload();

    // QThread::terminate, made safe at both ends: a thread that was just started is ended for certain, one that has
    // ended already is left alone. The thread ends within a few hundredths of a second, without a word and wherever it
    // stands in the exchange: port and files stay open.
    void kill();

protected:
    void run() override;

private:
    enum class Phase { NotBegun, Running, Ended };

    void exchange();
    void fail(const char *log, const QString &message);
    bool sendHeader();
    void sendFrames();
    bool waitForData(int ms);
    void waitUntilSent();
    void endHereIfKilled();
    [[noreturn]] void endHere();

    // Owned by the object and not by the stack, so that the end by kill() leaves them open.
    std::unique_ptr<QFile> header;
    std::unique_ptr<QFile> frameData;

    QMutex gate;
    QWaitCondition begun;
    Phase phase = Phase::NotBegun;
    std::atomic<bool> killed{false};
};
