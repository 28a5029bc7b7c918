#include "show/wire/upload.h"

#include "show/image/format.h"
#include "show/wire/portnames.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QFileDevice>
#include <QSerialPort>
#include <QThread>

namespace glow {

namespace {

constexpr int chunkBytes = 2048;
constexpr unsigned long chunkPauseMs = 10;
constexpr int headerCut = 1 + wireCut; // the track byte, sent before, and what the wire leaves out
constexpr int longestWaitMs = 20;      // no wait is longer than this without a checkpoint

void waitUntilSent(QSerialPort &port, const UploadHooks &hooks)
{
    while (port.bytesToWrite() > 0) {
        hooks.checkpoint();
        port.clearError();
        if (!port.waitForBytesWritten(longestWaitMs) && port.error() != QSerialPort::TimeoutError) {
            break;
        }
    }
    hooks.checkpoint();
}

bool sendHeader(QSerialPort &port, QFileDevice &header, const UploadHooks &hooks)
{
    const int size = static_cast<int>(header.size());
    const QByteArray bytes = header.readAll().left(qMax(size - headerCut, 0));
    if (deviceText(port.readAll()).contains(QLatin1String("ERR"))) {
        return false;
    }
    port.write(bytes);
    waitUntilSent(port, hooks);
    qDebug() << "SIZE" << size << "BUFF" << bytes;
    header.close();
    return true;
}

void sendFrames(QSerialPort &port, QFileDevice &frameData, const UploadHooks &hooks)
{
    const qint64 size = qMax<qint64>(frameData.size(), 1);
    qint64 sent = 0;
    while (!frameData.atEnd()) {
        hooks.progress(static_cast<int>(sent / size));
        sent += Q_INT64_C(99) * chunkBytes; // a percentage once divided, 99 at most
        const QByteArray chunk = frameData.read(chunkBytes);
        if (chunk.isEmpty()) {
            break; // the file was replaced under our hands
        }
        port.write(chunk);
        waitUntilSent(port, hooks);
        QThread::msleep(chunkPauseMs);
        hooks.checkpoint();
    }
    qDebug() << "SEND END";
    frameData.close();
}

} // namespace

UploadEnd sendImage(QSerialPort &port, QFileDevice &header, QFileDevice &frameData, const UploadHooks &hooks)
{
    // A header without even its track byte is what a full disk leaves; it is no better than none.
    char track = 0;
    if (!header.open(QIODevice::ReadOnly) || !frameData.open(QIODevice::ReadOnly) || !header.getChar(&track)) {
        qDebug() << "Can't open file.";
        return UploadEnd::FilesUnreadable;
    }
    qDebug() << "tenpl" << static_cast<int>(track);
    hooks.checkpoint();
    port.write(&track, 1);
    port.flush();
    if (!waitForData(port, hooks.waitMs, hooks)) {
        qDebug() << "Device ERR1.";
        return UploadEnd::NoReply;
    }
    if (!sendHeader(port, header, hooks)) {
        qDebug() << "DeviceERR2";
        return UploadEnd::Refused;
    }
    sendFrames(port, frameData, hooks);
    if (!waitForData(port, -1, hooks)) {
        qDebug() << "TIME OUT";
        return UploadEnd::Broken;
    }
    qDebug() << "END" << deviceText(port.readAll());
    return UploadEnd::Sent;
}

bool waitForData(QSerialPort &port, int ms, const UploadHooks &hooks)
{
    QElapsedTimer clock;
    clock.start();
    while (true) {
        hooks.checkpoint();
        if (port.bytesAvailable() > 0) {
            return true;
        }
        const qint64 left = ms < 0 ? longestWaitMs : ms - clock.elapsed();
        if (left <= 0) {
            return false;
        }
        port.clearError();
        const bool ready = port.waitForReadyRead(static_cast<int>(qMin<qint64>(left, longestWaitMs)));
        if (!ready && port.error() != QSerialPort::TimeoutError) {
            hooks.checkpoint();
            return false; // the port is gone
        }
    }
}

ScanResult findProp(QSerialPort &port, int &number, const UploadHooks &hooks)
{
    setUpPort(port, uploadBaud);
    ScanRules rules;
    rules.accepts = [](const QString &) { return true; };
    rules.trying = [&hooks](int tried) {
        hooks.checkpoint();
        qDebug() << portLabel(tried);
    };
    rules.silent = [](int tried) { qDebug() << portLabel(tried) << "not working."; };
    rules.wait = [&hooks](QSerialPort &waiting, int ms) { return waitForData(waiting, ms, hooks); };
    rules.waitMs = hooks.waitMs;
    return scanPorts(port, number, rules);
}

} // namespace glow
