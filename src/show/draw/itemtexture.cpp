#include "show/draw/itemtexture.h"

#include "show/base/scaling.h"
#include "show/draw/rasterops.h"
#include "show/model/patternrecord.h"

#include <QImage>
#include <QVector>

#include <algorithm>

namespace glow {

namespace {

// The item's rectangle is drawn one pixel beyond it above and below.
constexpr int beyond = 2;

// A copy of at most this many columns is scaled as a whole.
constexpr int wholeWidth = 1024;

// Columns first to last of the endlessly repeated picture at the size of tile, nearest neighbour.
QPixmap columnsOf(const QPixmap &picture, QSize tile, int first, int last)
{
    QImage source = picture.toImage();
    if (source.depth() != 32) {
        source = source.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    }
    QImage part(last - first + 1, tile.height(), source.format());
    if (source.isNull() || part.isNull()) {
        return {};
    }
    QVector<int> from(part.width());
    for (int i = 0; i < from.size(); ++i) {
        from[i] = int(nearestPixel((first + i) % tile.width(), source.width(), tile.width(), Tie::Right));
    }
    for (int y = 0; y < part.height(); ++y) {
        const auto row = int(nearestPixel(y, source.height(), part.height(), Tie::Right));
        const auto *in = reinterpret_cast<const QRgb *>(source.constScanLine(row));
        auto *out = reinterpret_cast<QRgb *>(part.scanLine(y));
        for (int i = 0; i < from.size(); ++i) {
            out[i] = in[from.at(i)];
        }
    }
    return QPixmap::fromImage(part);
}

} // namespace

QSize tileSize(const PatternRecord &record, QSize item)
{
    const int height = item.height() + beyond;
    if (record.thumbnail.isNull() || height < 1) {
        return {};
    }
    if (record.speedValue != 0) {
        return {widthAtHeight(record.thumbnail.size(), height), height};
    }
    return {item.width() / std::max(1, record.repeatCount), height};
}

ItemTexture itemTexture(const PatternRecord &record, QSize item, int first, int last)
{
    const QSize tile = tileSize(record, item);
    if (tile.isEmpty()) {
        return {};
    }
    if (tile.width() > wholeWidth) {
        const int from = std::max(0, first);
        return {columnsOf(record.thumbnail, tile, from, std::max(from, last)), from};
    }
    if (record.speedValue != 0) {
        return {record.thumbnail.scaledToHeight(tile.height(), Qt::FastTransformation), 0};
    }
    return {record.thumbnail.scaled(tile, Qt::IgnoreAspectRatio, Qt::FastTransformation), 0};
}

} // namespace glow
