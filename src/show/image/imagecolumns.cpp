#include "show/image/imagecolumns.h"

#include "show/draw/rasterops.h"

#include <numeric>

namespace glow {

namespace {

// A pixel's number must fit into its red, green and blue.
constexpr qint64 mostNumbered = 1 << 24;

bool hasPlainPixels(QImage::Format format)
{
    return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32 ||
           format == QImage::Format_ARGB32_Premultiplied;
}

// Beyond this enlargement Qt's scaling takes another road, on which the two directions may depend on each other.
constexpr int mostEnlarged = 512;

// A picture whose pixels are numbered line by line. Scaled, it tells where each pixel of the scaled picture comes from.
QImage numbered(const QSize &size, QImage::Format format)
{
    QImage numbers(size, format);
    uint number = 0;
    for (int y = 0; y < numbers.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(numbers.scanLine(y));
        for (int x = 0; x < numbers.width(); ++x) {
            line[x] = 0xFF000000U | number++;
        }
    }
    return numbers;
}

QImage fastScaled(const QImage &picture, const QSize &size)
{
    return picture.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
}

int numberAt(const QImage &numbers, int x, int y)
{
    return static_cast<int>(reinterpret_cast<const QRgb *>(numbers.constScanLine(y))[x] & 0xFFFFFFU);
}

} // namespace

ImageColumns::ImageColumns(const QImage &picture, int columns, int rows, const BrightnessTable &table)
    : columns(columns)
    , table(table)
    , bytes(3 * qMax(rows, 0), '\0')
{
    if (!picture.isNull() && rows > 0) {
        mapPixels(picture, columns <= painterLimit ? columns : picture.width(), rows);
    }
    unmultiply = source.format() == QImage::Format_ARGB32_Premultiplied;
}

void ImageColumns::mapPixels(const QImage &picture, int width, int rows)
{
    const QSize from = picture.size();
    const QSize to(width, rows);
    if (!hasPlainPixels(picture.format()) || static_cast<qint64>(from.width()) * from.height() > mostNumbered) {
        source = fastScaled(picture, to).convertToFormat(QImage::Format_ARGB32);
        sourceX.resize(source.width());
        std::iota(sourceX.begin(), sourceX.end(), 0);
        sourceY.resize(source.height());
        std::iota(sourceY.begin(), sourceY.end(), 0);
        return;
    }
    // One line and one column tell as much as the whole picture, at a small part of the cost.
    const bool apart = to.width() / from.width() < mostEnlarged && to.height() / from.height() < mostEnlarged;
    const QImage wide = fastScaled(numbered(QSize(from.width(), apart ? 1 : from.height()), picture.format()),
                                   QSize(to.width(), apart ? 1 : to.height()));
    const QImage high =
        apart ? fastScaled(numbered(QSize(1, from.height()), picture.format()), QSize(1, to.height())) : wide;
    if (wide.isNull() || high.isNull()) {
        return; // no memory for it
    }
    source = picture;
    sourceX.reserve(to.width());
    for (int x = 0; x < to.width(); ++x) {
        sourceX.append(numberAt(wide, x, 0) % from.width());
    }
    sourceY.reserve(to.height());
    for (int y = 0; y < to.height(); ++y) {
        sourceY.append(apart ? numberAt(high, 0, y) : numberAt(high, 0, y) / from.width());
    }
}

int ImageColumns::sourceOf(int x) const
{
    if (sourceX.size() == columns) {
        return sourceX.at(x);
    }
    return sourceX.at(static_cast<int>(nearestPixel(x, sourceX.size(), columns, Tie::Right)));
}

const QByteArray &ImageColumns::column(int x)
{
    const int from = source.isNull() ? -1 : sourceOf(x);
    if (from == current) {
        return bytes;
    }
    current = from;
    auto *out = reinterpret_cast<uchar *>(bytes.data());
    for (int row = sourceY.size() - 1; row >= 0; --row) {
        QRgb pixel = reinterpret_cast<const QRgb *>(source.constScanLine(sourceY.at(row)))[from];
        if (unmultiply) {
            pixel = qUnpremultiply(pixel); // what QImage::pixelColor gives
        }
        *out++ = table[static_cast<size_t>(qRed(pixel))];
        *out++ = table[static_cast<size_t>(qGreen(pixel))];
        *out++ = table[static_cast<size_t>(qBlue(pixel))];
    }
    return bytes;
}

} // namespace glow
