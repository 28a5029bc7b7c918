#include "device/workerthread.h"

#include "device/portnames.h"
#include "device/portscan.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QFile>
#include <QSerialPort>

namespace {

constexpr int chunkBytes = 2048;
constexpr unsigned long chunkPauseMs = 10;
constexpr int headerCut = 3;      // the track byte, sent before, and two bytes that the wire leaves out
constexpr int killLatencyMs = 20; // no wait is longer than this without a look at kill()

} // namespace

WorkerThread::WorkerThread(QObject *parent)
    : QThread(parent)
{
}

WorkerThread::~WorkerThread()
{
    // A port that is still open belongs to a thread that was killed in the middle of its work.
    if (serial != nullptr && !serial->isOpen()) {
        delete serial;
    }
}

void WorkerThread::run()
{
    // The thread can be ended in endHere only. Elsewhere it may hold a lock (memory, the debug stream, an event
    // queue) that the rest of the program would then wait for forever.
    setTerminationEnabled(false);
    {
        const QMutexLocker locker(&gate);
        phase = Phase::Running;
        begun.wakeAll();
    }
    uploadOk = 0;
    upload();
    if (uploadOk != 0) {
        emit finish();
    } else {
        emit terminated();
    }
    const QMutexLocker locker(&gate);
    phase = Phase::Ended;
}

void WorkerThread::kill()
{
    QMutexLocker locker(&gate);
    // QThread::terminate would have no effect on a thread that has been started but does not run yet.
    while (phase == Phase::NotBegun && isRunning()) {
        begun.wait(&gate, killLatencyMs);
    }
    // Ending a thread a second time can hit another one that took over its identity. It cannot end while the gate is
    // held.
    if (phase == Phase::Running) {
        killed = true;
        terminate();
    }
}

void WorkerThread::endHereIfKilled()
{
    if (killed && currentThread() == this) {
        endHere();
    }
}

void WorkerThread::endHere()
{
    setTerminationEnabled(true);
    while (true) {
        msleep(1); // terminate() is on its way
    }
}

bool WorkerThread::waitForData(int ms)
{
    QElapsedTimer clock;
    clock.start();
    while (true) {
        endHereIfKilled();
        if (serial->bytesAvailable() > 0) {
            return true;
        }
        const qint64 left = ms < 0 ? killLatencyMs : ms - clock.elapsed();
        if (left <= 0) {
            return false;
        }
        serial->clearError();
        if (serial->waitForReadyRead(static_cast<int>(qMin<qint64>(left, killLatencyMs)))) {
            return true;
        }
        if (serial->error() != QSerialPort::TimeoutError) {
            return false; // the port is gone
        }
    }
}

void WorkerThread::waitUntilSent()
{
    while (serial->bytesToWrite() > 0) {
        endHereIfKilled();
        serial->clearError();
        if (!serial->waitForBytesWritten(killLatencyMs) && serial->error() != QSerialPort::TimeoutError) {
            return;
        }
    }
}

bool WorkerThread::findDevice()
{
    delete serial;
    serial = new QSerialPort;
    glow::setUpPort(*serial, glow::uploadBaud);

    glow::ScanRules rules;
    rules.accepts = [](const QString &) { return true; };
    rules.trying = [this](int number) {
        endHereIfKilled();
        qDebug() << glow::portLabel(number);
    };
    rules.silent = [](int number) { qDebug() << glow::portLabel(number) << "not working."; };
    rules.wait = [this](QSerialPort &, int ms) { return waitForData(ms); };
    switch (glow::scanPorts(*serial, portIndex, rules)) {
    case glow::ScanResult::Found:
        return true;
    case glow::ScanResult::NoneOpen:
        qDebug() << "Can't find open device.";
        emit expmess(tr("偵測不到裝置！"));
        return false;
    case glow::ScanResult::NoAnswer:
        break;
    }
    return false;
}

void WorkerThread::upload()
{
    // The end by kill() skips what stands behind the exchange.
    frameData = std::make_unique<QFile>(QStringLiteral("extemp.tmp"));
    header = std::make_unique<QFile>(QStringLiteral("extemp2.tmp"));
    exchange();
    frameData.reset();
    header.reset();
}

void WorkerThread::exchange()
{
    if (!findDevice()) {
        return;
    }
    qDebug() << "port inited";
    // A header without even its track byte is what a full disk leaves; it is no better than none.
    char track = 0;
    if (!header->open(QIODevice::ReadOnly) || !frameData->open(QIODevice::ReadOnly) || !header->getChar(&track)) {
        fail("Can't open file.", tr("輸出錯誤！"));
        return;
    }
    qDebug() << "tenpl" << static_cast<int>(track);
    serial->write(&track, 1);
    serial->flush();
    if (!waitForData(glow::deviceWaitMs)) {
        fail("Device ERR1.", tr("ERROR01"));
        return;
    }
    if (!sendHeader()) {
        fail("DeviceERR2", tr("ERROR02"));
        return;
    }
    sendFrames();
    if (!waitForData(-1)) {
        qDebug() << "TIME OUT";
        serial->close();
        return;
    }
    qDebug() << "END" << glow::deviceText(serial->readAll());
    serial->close();
    emit progress(100, portIndex);
    uploadOk = 1;
}

void WorkerThread::fail(const char *log, const QString &message)
{
    qDebug() << log;
    emit expmess(message);
    serial->close();
}

bool WorkerThread::sendHeader()
{
    const int size = static_cast<int>(header->size());
    const QByteArray bytes = header->readAll().left(qMax(size - headerCut, 0));
    if (glow::deviceText(serial->readAll()).contains(QLatin1String("ERR"))) {
        return false;
    }
    serial->write(bytes);
    waitUntilSent();
    qDebug() << "SIZE" << size << "BUFF" << bytes;
    header->close();
    return true;
}

void WorkerThread::sendFrames()
{
    const qint64 size = qMax<qint64>(frameData->size(), 1);
    qint64 sent = 0;
    while (!frameData->atEnd()) {
        emit progress(static_cast<int>(sent / size), portIndex);
        sent += Q_INT64_C(99) * chunkBytes; // a percentage once divided, 99 at most
        const QByteArray chunk = frameData->read(chunkBytes);
        if (chunk.isEmpty()) {
            break; // the file was replaced under our hands
        }
        serial->write(chunk);
        waitUntilSent();
        msleep(chunkPauseMs);
    }
    qDebug() << "SEND END";
    frameData->close();
}
