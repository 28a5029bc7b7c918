// The arithmetic of scaling a picture to a height without smoothing.
#pragma once

#include <QSize>

namespace glow {

// Width that a picture (neither side 0) takes at another height, not yet rounded.
double exactWidthAtHeight(const QSize &picture, int height);

// The same in whole pixels: the width that QImage::scaledToHeight with Qt::FastTransformation gives the picture. What
// is beyond an int is the most negative one.
int widthAtHeight(const QSize &picture, int height);

} // namespace glow
