// glowsmith-cli export and show: a track as the prop's own format, and as the picture that comes of it.
#include "cli.h"

#include "show/base/wholefile.h"
#include "show/image/binfile.h"
#include "show/image/devicedecode.h"
#include "show/image/projectshow.h"
#include "show/image/showpicture.h"
#include "show/model/showtime.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <optional>

namespace cli {

namespace {

// The two parts of a device image, in memory.
struct ImageParts
{
    QByteArray frameData;
    QByteArray header;
};

// Nothing, after a complaint, if the image is larger than an array of bytes can be.
std::optional<ImageParts> imageOf(const glow::DeviceShow &show)
{
    ImageParts parts;
    QBuffer frames(&parts.frameData);
    QBuffer header(&parts.header);
    frames.open(QIODevice::WriteOnly);
    header.open(QIODevice::WriteOnly);
    const glow::ImageSummary summary = glow::writeDeviceImage(show, frames, header);
    if (parts.frameData.size() != summary.frameBytes) {
        complain(QStringLiteral("the show takes %1 bytes and does not fit into memory").arg(summary.frameBytes));
        return std::nullopt;
    }
    warnIfCut(summary);
    return parts;
}

QByteArray binOf(ImageParts &parts)
{
    QByteArray bin;
    QBuffer header(&parts.header);
    QBuffer frames(&parts.frameData);
    QBuffer out(&bin);
    header.open(QIODevice::ReadOnly);
    frames.open(QIODevice::ReadOnly);
    out.open(QIODevice::WriteOnly);
    glow::writeBin(header, frames, out);
    return bin;
}

bool readBin(const QString &path, glow::DecodedShow &decoded)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        complain(QStringLiteral("%1: %2").arg(path, file.errorString()));
        return false;
    }
    decoded = glow::decodeBin(file.readAll());
    return true;
}

} // namespace

bool chosenShow(const Command &command, const TrackChoice &choice, glow::DeviceShow &show, int &code)
{
    glow::ShowOptions options;
    options.loop = !command.parser.isSet(choice.once);
    int track = 1;
    if (!command.number(choice.slot, 1, 8, options.slot) ||
        !command.number(choice.startMark, 0, glow::msPerDay, options.startMarkMs)) {
        code = WrongUse;
        return false;
    }
    glow::Project project;
    code = Failed;
    if (!openProject(command.operand(0), project)) {
        return false;
    }
    track = project.tracks.size();
    if (command.parser.isSet(choice.track) && !command.number(choice.track, 1, project.tracks.size(), track)) {
        code = WrongUse;
        return false;
    }
    show = glow::showOfTrack(project, track - 1, options);
    if (show.patterns.isEmpty()) {
        complain(QStringLiteral("%1: track %2 holds no pattern").arg(command.operand(0)).arg(track));
        return false;
    }
    return true;
}

int exportShow(const QStringList &arguments)
{
    Command command(QStringLiteral("export"),
                    QStringLiteral("Writes a track as a .bin file, byte for byte what the window exports."),
                    QStringLiteral("glowsmith-cli export show.gsw3 -o show.bin --slot 2 --once"));
    const TrackChoice choice;
    choice.addTo(command);
    const QCommandLineOption out({QStringLiteral("o"), QStringLiteral("output")}, QStringLiteral("The file to write."),
                                 QStringLiteral("SHOW.bin"));
    command.parser.addOption(out);
    command.parser.addPositionalArgument(QStringLiteral("PROJECT"), QStringLiteral("A .gsw3 project."));
    int code = Done;
    glow::DeviceShow show;
    if (!command.parse(arguments, 1, code)) {
        return code;
    }
    if (!command.parser.isSet(out)) {
        complain(QStringLiteral("glowsmith-cli export: -o SHOW.bin is needed"));
        return WrongUse;
    }
    if (!chosenShow(command, choice, show, code)) {
        return code;
    }
    std::optional<ImageParts> parts = imageOf(show);
    if (!parts) {
        return Failed;
    }
    const QString path = command.parser.value(out);
    const QByteArray bin = binOf(*parts);
    const glow::WriteResult written = glow::writeWholeFile(path, bin);
    if (written.state != glow::WriteResult::Written) {
        complain(QStringLiteral("%1: %2").arg(path, written.error));
        return Failed;
    }
    print(QStringLiteral("%1: %2 patterns, %3 bytes").arg(path).arg(show.patterns.size()).arg(bin.size()));
    return Done;
}

int show(const QStringList &arguments)
{
    Command command(
        QStringLiteral("show"),
        QStringLiteral(
            "Draws what the prop will show: its columns over time, with the borders of the entries and a time "
            "axis. Takes a project or a .bin file."),
        QStringLiteral("glowsmith-cli show show.bin -o show.png"));
    const TrackChoice choice;
    choice.addTo(command);
    const QCommandLineOption out({QStringLiteral("o"), QStringLiteral("output")},
                                 QStringLiteral("The picture to write."), QStringLiteral("PICTURE.png"));
    command.parser.addOption(out);
    command.parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("A .gsw3 project or a .bin file."));
    int code = Done;
    if (!command.parse(arguments, 1, code)) {
        return code;
    }
    if (!command.parser.isSet(out)) {
        complain(QStringLiteral("glowsmith-cli show: -o PICTURE.png is needed"));
        return WrongUse;
    }
    glow::DecodedShow decoded;
    if (command.operand(0).endsWith(QStringLiteral(".bin"), Qt::CaseInsensitive)) {
        if (!readBin(command.operand(0), decoded)) {
            return Failed;
        }
    } else {
        glow::DeviceShow chosen;
        if (!chosenShow(command, choice, chosen, code)) {
            return code;
        }
        const std::optional<ImageParts> parts = imageOf(chosen);
        if (!parts) {
            return Failed;
        }
        decoded = glow::decodeImage(parts->header, parts->frameData);
    }
    for (const QString &problem : qAsConst(decoded.problems)) {
        complain(QStringLiteral("%1: %2").arg(command.operand(0), problem));
    }
    const QImage picture = glow::drawShow(decoded);
    if (picture.isNull() || !picture.save(command.parser.value(out))) {
        complain(QStringLiteral("%1: cannot be written").arg(command.parser.value(out)));
        return Failed;
    }
    print(QStringLiteral("%1: %2 entries").arg(command.parser.value(out)).arg(decoded.entries.size()));
    return decoded.problems.isEmpty() ? Done : Failed;
}

} // namespace cli
