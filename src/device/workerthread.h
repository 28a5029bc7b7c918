// The upload on a thread of its own: the protocol (show/wire/upload.h) with the two files of the device image
// (extemp2.tmp, extemp.tmp in the working directory). The thread runs no event loop and reports by signals.
#pragma once

#include "show/wire/portscan.h"

#include <QMutex>
#include <QThread>
#include <QWaitCondition>

#include <atomic>
#include <functional>
#include <memory>

class QFile;
class QSerialPort;

namespace glow {
struct UploadHooks;
}

class WorkerThread : public QThread
{
    Q_OBJECT

public:
    explicit WorkerThread(QObject *parent = nullptr);
    ~WorkerThread() override;

    qint32 portIndex = 0;          // number of the port being tried; after a successful search the prop's
    QSerialPort *serial = nullptr; // made by findDevice on the worker thread
    quint8 uploadOk = 0;           // set only when the whole exchange has ended normally

    QString mend;            // why the upload has not succeeded and what to do about it; see show/wire/propmends.h
    bool complained = false; // by expmess; both are to be read once the thread has reported its end

    int waitMs = glow::propWaitMs; // how long the prop may take to speak, milliseconds; to be set before start()

    // True when serial is open on a port whose device has spoken.
    bool findDevice();

    // What a thread reported before the kill may still be on its way, even its last words, if it ended just before.
    bool wasKilled() const { return killed; }

signals:
    // All are emitted on the worker thread, in this order: progress as often as there are pieces, then either a last
    // progress of 100 and finish, or at most one expmess and terminated.
    void progress(int percent, int port); // port: its number, see show/wire/portnames.h
    void expmess(QString str);            // why there is no upload, for the user
    void finish();
    void terminated();

public slots:
    void upload();

    // QThread::terminate, made safe at both ends: a thread that was just started is ended for certain, one that has
    // ended already is left alone. When this returns the thread stands still (unless the system has kept it in one call
    // for more than a second): no byte is sent and nothing emitted any more. Port and files stay open.
    void kill();

protected:
    void run() override;

private:
    enum class Phase { NotBegun, Running, Standing, Ended };

    glow::UploadHooks hooks();
    void fail(const QString &message);
    void report(const std::function<void()> &emission);
    void endHereIfKilled();
    [[noreturn]] void endHere();

    // Owned by the object and not by the stack, so that the end by kill() leaves them open.
    std::unique_ptr<QFile> header;
    std::unique_ptr<QFile> frameData;

    QMutex gate; // guards phase, and what is emitted against kill()
    QWaitCondition phaseChanged;
    Phase phase = Phase::NotBegun;
    std::atomic<bool> killed{false};
};
