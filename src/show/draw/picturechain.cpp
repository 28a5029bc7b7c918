#include "show/draw/picturechain.h"

#include "show/base/scaling.h"
#include "show/draw/rasterops.h"

#include <QFileInfo>
#include <QImageReader>
#include <QString>

#include <algorithm>
#include <cstring>
#include <utility>

namespace glow {

namespace {

// Black, with the picture (Format_RGB32) at its left.
QImage onBlackGround(const QImage &picture, int width)
{
    QImage ground(width, picture.height(), QImage::Format_RGB32);
    if (ground.isNull()) {
        return ground;
    }
    ground.fill(Qt::black);
    const auto rowBytes = sizeof(QRgb) * static_cast<std::size_t>(std::min(width, picture.width()));
    for (int y = 0; y < picture.height(); ++y) {
        std::memcpy(ground.scanLine(y), picture.constScanLine(y), rowBytes);
    }
    return ground;
}

bool passesLimits(const QSize &picture, int leds)
{
    const double columns = exactWidthAtHeight(picture, leds) + 1.0;
    return columns * leds > static_cast<double>(mostLedPixels) ||
           columns * pictureRows > static_cast<double>(mostPictureColumns) * leds;
}

} // namespace

int columnsWithGap(int columns, int gap)
{
    return static_cast<int>(qint64(columns) * (gap + 100) / 100);
}

PictureResult loadPicture(const QString &path, const PictureOptions &options)
{
    // A pipe would be waited for, and a device has no end.
    if (!QFileInfo(path).isFile()) {
        return {};
    }
    QImageReader reader(path);
    const QSize size = reader.size();
    if (qint64(size.width()) * size.height() > mostFilePixels) {
        PictureResult refused;
        refused.tooBig = true;
        return refused;
    }
    return renderPicture(reader.read(), options);
}

PictureResult renderPicture(QImage picture, const PictureOptions &options)
{
    PictureResult result;
    if (picture.isNull() || options.leds <= 0) {
        return result;
    }
    if (passesLimits(picture.size(), options.leds)) {
        result.tooBig = true;
        return result;
    }
    if (options.flipH) {
        picture = std::move(picture).mirrored(true, false);
    }
    if (options.flipV) {
        picture = std::move(picture).mirrored(false, true);
    }
    picture = picture.scaledToHeight(options.leds, Qt::SmoothTransformation);
    result.columns = picture.width();
    const QSize shown(widthAtHeight(picture.size(), pictureRows), pictureRows);
    picture = shown.width() <= painterLimit ? picture.scaledToHeight(pictureRows, Qt::FastTransformation)
                                            : scaledNearest(picture, shown);
    picture = onBlack(picture);
    result.image = onBlackGround(picture, columnsWithGap(picture.width(), options.gap));
    return result;
}

QImage withGap(const QImage &result, int columns, int leds)
{
    if (result.isNull() || columns <= 0 || leds <= 0) {
        return {};
    }
    const double width = exactWidthAtHeight(QSize(columns, leds), pictureRows);
    if (width > 2.0 * mostPictureColumns) {
        return {};
    }
    return onBlackGround(onBlack(result), std::max(qRound(width), 1));
}

} // namespace glow
