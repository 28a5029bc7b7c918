// Pictures as video encoders take them.
#pragma once

#include <QByteArray>
#include <QImage>

namespace glow {

// The picture as planar YUV with one colour for four pixels: all luma bytes, then the two colour planes of a quarter of
// that, rows from the top. BT.709, limited range (16 to 235). Format_RGB32 with even width and height; planes is made
// the right size, and a caller who keeps it saves the memory's making.
void toYuv420(const QImage &picture, QByteArray &planes);

} // namespace glow
