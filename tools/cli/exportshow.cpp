// glowsmith-cli export and show: a track as the prop's own format, and as the picture that comes of it.
#include "cli.h"

#include "show/image/binfile.h"
#include "show/image/devicedecode.h"
#include "show/image/showpicture.h"

#include <QBuffer>
#include <QByteArrayList>
#include <QFileInfo>
#include <QImage>
#include <QImageWriter>

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

// What the name's ending says of the picture's format, PNG for standard output; empty, after a complaint, if no such
// format can be written.
QByteArray formatOf(const QString &path)
{
    if (path == QLatin1String("-")) {
        return QByteArrayLiteral("png");
    }
    const QByteArray format = QFileInfo(path).suffix().toLower().toLatin1();
    const QList<QByteArray> known = QImageWriter::supportedImageFormats();
    if (known.contains(format)) {
        return format;
    }
    complain(QStringLiteral("%1: unknown picture format; the name may end in one of: %2")
                 .arg(path, QString::fromLatin1(QByteArrayList(known).join(", "))));
    return {};
}

// Draws what was read, and says what is wrong with it.
ExitCode draw(const Call &call, const glow::DecodedShow &show)
{
    const QString path = call.value("output");
    const QByteArray format = formatOf(path);
    if (format.isEmpty()) {
        return Failed;
    }
    for (const QString &problem : show.problems) {
        complain(QStringLiteral("%1: %2").arg(call.operand(), problem));
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, format);
    if (!writer.write(glow::drawShow(show))) {
        complain(QStringLiteral("%1: %2").arg(path, writer.errorString()));
        return Failed;
    }
    if (!writeFile(path, bytes)) {
        return Failed;
    }
    printWritten(path, QStringLiteral("%1 entries").arg(show.entries.size()));
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
    if (!writeFile(path, bin)) {
        return Failed;
    }
    printWritten(path, QStringLiteral("%1 patterns, %2 bytes").arg(show.patterns.size()).arg(bin.size()));
    return Done;
}

ExitCode drawPicture(const Call &call)
{
    if (!call.operand().endsWith(QStringLiteral(".bin"), Qt::CaseInsensitive)) {
        return withShow(call, drawImage);
    }
    const std::optional<QByteArray> bin = readFile(call.operand());
    return bin ? draw(call, glow::decodeBin(*bin)) : Failed;
}

} // namespace cli
