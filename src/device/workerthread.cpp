#include "device/workerthread.h"

#include "show/image/imagefiles.h"
#include "show/wire/propmends.h"
#include "show/wire/upload.h"

#include <QDeadlineTimer>
#include <QDebug>
#include <QFile>
#include <QSerialPort>

namespace {

// A thread that is asked to end stands still within a few hundredths of a second, but for an open() that takes its
// time.
constexpr int standStillMs = 1000;

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
        phaseChanged.wakeAll();
    }
    uploadOk = 0;
    upload();
    report([this] {
        if (uploadOk != 0) {
            emit finish();
        } else {
            emit terminated();
        }
        phase = Phase::Ended;
    });
}

void WorkerThread::kill()
{
    const QMutexLocker locker(&gate);
    // QThread::terminate would have no effect on a thread that has been started but does not run yet.
    while (phase == Phase::NotBegun && isRunning()) {
        phaseChanged.wait(&gate, 20);
    }
    if (phase == Phase::NotBegun || killed) {
        return;
    }
    killed = true;
    // Ending a thread a second time can hit another one that took over its identity. It cannot end while the gate is
    // held.
    if (phase != Phase::Running) {
        return;
    }
    const QDeadlineTimer patience(standStillMs);
    while (phase != Phase::Standing && !patience.hasExpired()) {
        phaseChanged.wait(&gate, patience);
    }
    terminate();
}

// Nothing is emitted behind the kill: the two exclude each other.
void WorkerThread::report(const std::function<void()> &emission)
{
    endHereIfKilled();
    QMutexLocker locker(&gate);
    if (killed && currentThread() == this) {
        locker.unlock();
        endHere();
    }
    emission();
}

void WorkerThread::endHereIfKilled()
{
    if (killed && currentThread() == this) {
        endHere();
    }
}

void WorkerThread::endHere()
{
    {
        const QMutexLocker locker(&gate);
        phase = Phase::Standing;
        phaseChanged.wakeAll();
    }
    setTerminationEnabled(true);
    while (true) {
        msleep(1); // terminate() is on its way
    }
}

glow::UploadHooks WorkerThread::hooks()
{
    glow::UploadHooks hooks;
    hooks.checkpoint = [this] { endHereIfKilled(); };
    hooks.progress = [this](int percent) { report([this, percent] { emit progress(percent, portIndex); }); };
    hooks.waitMs = waitMs;
    return hooks;
}

bool WorkerThread::findDevice()
{
    delete serial;
    serial = new QSerialPort;
    const glow::ScanResult found = glow::findProp(*serial, portIndex, hooks());
    mend = glow::mendOf(found);
    switch (found) {
    case glow::ScanResult::Found:
        return true;
    case glow::ScanResult::NoneOpen:
        qDebug() << "Can't find open device.";
        fail(tr("偵測不到裝置！"));
        return false;
    case glow::ScanResult::NoAnswer:
        break;
    }
    return false;
}

void WorkerThread::upload()
{
    // The end by kill() skips what stands behind the exchange.
    frameData = std::make_unique<QFile>(glow::frameDataFile());
    header = std::make_unique<QFile>(glow::headerFile());
    if (findDevice()) {
        qDebug() << "port inited";
        const glow::UploadEnd end = glow::sendImage(*serial, *header, *frameData, hooks());
        mend = glow::mendOf(end);
        switch (end) {
        case glow::UploadEnd::Sent:
            serial->close();
            hooks().progress(100);
            uploadOk = 1;
            break;
        case glow::UploadEnd::FilesUnreadable:
            fail(tr("輸出錯誤！"));
            break;
        case glow::UploadEnd::NoReply:
            fail(tr("ERROR01"));
            break;
        case glow::UploadEnd::Refused:
            fail(tr("ERROR02"));
            break;
        case glow::UploadEnd::Broken:
            break;
        }
        serial->close();
    }
    frameData.reset();
    header.reset();
}

void WorkerThread::fail(const QString &message)
{
    complained = true;
    report([this, &message] { emit expmess(message); });
}
