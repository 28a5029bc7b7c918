#include "show/draw/rasterops.h"

#include <QVector>

#include <algorithm>

namespace glow {

qint64 nearestPixel(qint64 i, qint64 from, qint64 to, Tie tie)
{
    const qint64 centre = (2 * i + 1) * from; // in halves of a scaled pixel's share
    return (tie == Tie::Left ? centre - 1 : centre) / (2 * to);
}

QImage scaledNearest(const QImage &image, const QSize &size)
{
    if (image.isNull() || size.isEmpty()) {
        return {};
    }
    if (std::max({image.width(), image.height(), size.width(), size.height()}) <= painterLimit) {
        return image.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    }
    const QImage source = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QImage scaled(size, source.format());
    if (scaled.isNull()) {
        return scaled; // no memory
    }
    QVector<int> columns(size.width());
    for (int x = 0; x < size.width(); ++x) {
        columns[x] = static_cast<int>(nearestPixel(x, source.width(), size.width()));
    }
    for (int y = 0; y < size.height(); ++y) {
        const int row = static_cast<int>(nearestPixel(y, source.height(), size.height()));
        const auto *from = reinterpret_cast<const QRgb *>(source.constScanLine(row));
        std::transform(columns.cbegin(), columns.cend(), reinterpret_cast<QRgb *>(scaled.scanLine(y)),
                       [from](int x) { return from[x]; });
    }
    return scaled;
}

QImage onBlack(QImage image)
{
    if (image.isNull() || image.format() == QImage::Format_RGB32) {
        return image;
    }
    // A premultiplied colour is the colour that it shows on black.
    image = std::move(image).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y) {
        auto *pixel = reinterpret_cast<QRgb *>(image.scanLine(y));
        std::for_each(pixel, pixel + image.width(), [](QRgb &p) { p |= 0xff000000; });
    }
    image.reinterpretAsFormat(QImage::Format_RGB32);
    return image;
}

} // namespace glow
