// glowsmith-cli upload: a track to the prop, with a progress bar.
#include "cli.h"
#include "progressbar.h"

#include "show/image/imagefiles.h"
#include "show/wire/propmends.h"
#include "show/wire/upload.h"

#include <QFile>
#include <QFileInfo>
#include <QSerialPort>
#include <QTemporaryDir>

namespace cli {

namespace {

// One port alone is tried if it is the only one behind the pattern: a link with the number 0 in a folder of our own.
bool useOnly(const QString &port, const QTemporaryDir &folder)
{
    const QString path = port.contains(u'/') ? QFileInfo(port).absoluteFilePath() : QStringLiteral("/dev/") + port;
    if (!QFileInfo::exists(path)) {
        complain(QStringLiteral("%1: no such port").arg(path));
        return false;
    }
    QFile::link(path, folder.filePath(QStringLiteral("COM0")));
    qputenv("GLOWSMITH_PORT_PATTERN", QFile::encodeName(folder.filePath(QStringLiteral("COM%1"))));
    return true;
}

// Why there was no upload, and below it what mends that; empty if there was one. Blocks: the progress is drawn as it
// goes.
QString sendToProp(QFileDevice &header, QFileDevice &frameData)
{
    ProgressBar bar;
    glow::UploadHooks hooks;
    hooks.progress = [&bar](int percent) { bar.show(percent); };
    QSerialPort port;
    int number = 0;
    const glow::ScanResult found = glow::findProp(port, number, hooks);
    switch (found) {
    case glow::ScanResult::Found:
        break;
    case glow::ScanResult::NoneOpen:
        return QStringLiteral("No device detect!\n") + glow::mendOf(found);
    case glow::ScanResult::NoAnswer:
        return QStringLiteral("the prop did not finish\n") + glow::mendOf(found);
    }
    const glow::UploadEnd end = glow::sendImage(port, header, frameData, hooks);
    port.close();
    if (end == glow::UploadEnd::Sent) {
        hooks.progress(100);
        return {};
    }
    switch (end) {
    case glow::UploadEnd::FilesUnreadable:
        return QStringLiteral("export error!\n") + glow::mendOf(end);
    case glow::UploadEnd::NoReply:
        return QStringLiteral("the prop did not answer (ERROR01)\n") + glow::mendOf(end);
    case glow::UploadEnd::Refused:
        return QStringLiteral("the prop refused the show (ERROR02)\n") + glow::mendOf(end);
    default:
        return QStringLiteral("the prop did not finish\n") + glow::mendOf(end);
    }
}

// The parts of the image as files; false, after a complaint, if they could not be written whole.
bool writeParts(const glow::DeviceShow &show, QFile &frames, QFile &header)
{
    const bool opened = frames.open(QIODevice::WriteOnly) && header.open(QIODevice::WriteOnly);
    glow::ImageSummary summary;
    if (opened) {
        summary = glow::writeDeviceImage(show, frames, header);
    }
    const bool whole = opened && frames.flush() && header.flush() && frames.size() == summary.frameBytes &&
                       header.size() == glow::imageHeader(show, summary.entries).size();
    if (!whole) {
        const QString reason = frames.error() != QFileDevice::NoError ? frames.errorString() : header.errorString();
        complain(QStringLiteral("the show cannot be written to the temporary folder: %1").arg(reason));
    }
    frames.close();
    header.close();
    if (whole) {
        warnIfCut(summary);
    }
    return whole;
}

} // namespace

ExitCode upload(const Call &call, const glow::DeviceShow &show)
{
    const QTemporaryDir folder;
    if (!folder.isValid() || (call.isSet("port") && !useOnly(call.value("port"), folder))) {
        return Failed;
    }
    QFile frames(folder.filePath(glow::frameDataFile()));
    QFile header(folder.filePath(glow::headerFile()));
    if (!writeParts(show, frames, header)) {
        return Failed;
    }
    const QString failure = sendToProp(header, frames);
    if (!failure.isEmpty()) {
        complain(failure);
        return Failed;
    }
    print(QStringLiteral("sent %1 patterns").arg(show.patterns.size()));
    return Done;
}

} // namespace cli
