// glowsmith-cli export and show: a track as the prop's own format, and as the picture that comes of it.
#include "cli.h"

#include "show/base/wholefile.h"
#include "show/image/binfile.h"
#include "show/image/devicedecode.h"
#include "show/image/showpicture.h"

#include <QBuffer>
#include <QFile>
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

std::optional<glow::DecodedShow> readBin(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        complain(QStringLiteral("%1: %2").arg(path, file.errorString()));
        return std::nullopt;
    }
    return glow::decodeBin(file.readAll());
}

// Draws what was read, and says what is wrong with it.
ExitCode draw(const Call &call, const glow::DecodedShow &show)
{
    for (const QString &problem : show.problems) {
        complain(QStringLiteral("%1: %2").arg(call.operand(), problem));
    }
    const QString path = call.value("output");
    const QImage picture = glow::drawShow(show);
    if (picture.isNull() || !picture.save(path)) {
        complain(QStringLiteral("%1: cannot be written").arg(path));
        return Failed;
    }
    print(QStringLiteral("%1: %2 entries").arg(path).arg(show.entries.size()));
    return show.problems.isEmpty() ? Done : Failed;
}

ExitCode drawImage(const Call &call, const glow::DeviceShow &show)
{
    const std::optional<ImageParts> parts = imageOf(show);
    return parts ? draw(call, glow::decodeImage(parts->header, parts->frameData)) : Failed;
}

} // namespace

ExitCode exportBin(const Call &call, const glow::DeviceShow &show)
{
    std::optional<ImageParts> parts = imageOf(show);
    if (!parts) {
        return Failed;
    }
    const QString path = call.value("output");
    const QByteArray bin = binOf(*parts);
    const glow::WriteResult written = glow::writeWholeFile(path, bin);
    if (written.state != glow::WriteResult::Written) {
        complain(QStringLiteral("%1: %2").arg(path, written.error));
        return Failed;
    }
    print(QStringLiteral("%1: %2 patterns, %3 bytes").arg(path).arg(show.patterns.size()).arg(bin.size()));
    return Done;
}

ExitCode drawPicture(const Call &call)
{
    if (!call.operand().endsWith(QStringLiteral(".bin"), Qt::CaseInsensitive)) {
        return withShow(call, drawImage);
    }
    const std::optional<glow::DecodedShow> show = readBin(call.operand());
    return show ? draw(call, *show) : Failed;
}

} // namespace cli
