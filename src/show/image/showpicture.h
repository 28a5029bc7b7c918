// What the prop will show, as one picture: its columns over time from left to right, LEDs from the prop's bottom to its
// top, with the borders of the entries and a time axis.
#pragma once

#include <QImage>
#include <QRgb>

namespace glow {

struct DecodedShow;

// Stored components are squares divided by a brightness divisor; this is the way back to the 0 to 255 of the screen.
// The divisor follows from the LED count as in gammaDivisor.
QRgb screenColour(uchar red, uchar green, uchar blue, int divisor);

// The widest picture that drawShow makes; a longer show is drawn with several columns of the prop per pixel.
constexpr int widestShowPicture = 8000;

// Repeats are laid out in full. A show without a frame gives a picture that says so; null only without any memory for
// one.
QImage drawShow(const DecodedShow &show);

} // namespace glow
