// The picture of the whole desktop: the one place that knows how a platform gives it.
#pragma once

#include <QImage>
#include <QRect>

namespace glow {

// All screens together, in logical pixels.
QRect desktopGeometry();

// What the desktop shows now, in device pixels, with their ratio set; opaque. Its top left is that of
// desktopGeometry(). Where screens differ in density, the densest one counts and the others are enlarged without
// smoothing. A screen that the platform does not let us see, and what lies between screens, is black.
QImage grabDesktop();

// Waits until a window that has just been hidden is off the screen, faded out and what lay under it is drawn: none of
// that is ours to see, so it is a fixed time. Events other than the user's are handled meanwhile.
void letDesktopSettle();

// A rectangle of logical pixels in device pixels; a null one stays null.
QRect devicePixels(const QRect &logical, qreal ratio);

} // namespace glow
