// Operations on whole images that Qt's painter leaves undone beyond its 32767th pixel, or does at greater cost.
#pragma once

#include <QImage>

namespace glow {

// Qt's raster painter draws nothing beyond this coordinate, and QImage::scaled without smoothing goes through it.
constexpr int painterLimit = 32767;

// Which of two pixels is taken when a centre lies between them.
enum class Tie { Left, Right };

// The source pixel under the centre of pixel i when a row of `from` pixels is scaled to `to` pixels without smoothing.
// QImage::scaled does the same with ties to the left, in 16-bit fractions, which can lose one source pixel.
qint64 nearestPixel(qint64 i, qint64 from, qint64 to, Tie tie = Tie::Left);

// QImage::scaled without smoothing, right at every size. Null for a null image or an empty size.
QImage scaledNearest(const QImage &image, const QSize &size);

// The image as it looks on black: opaque, Format_RGB32.
QImage onBlack(QImage image);

} // namespace glow
