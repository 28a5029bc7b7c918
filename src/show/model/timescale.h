// The one factor on which everything horizontal rests: milliseconds per pixel, and the mapping between time and pixels.
#pragma once

// Length of one ruler tick in milliseconds; also the notify interval of the song player.
extern const float tickMs;

// The zoom: milliseconds of show time per pixel, 40 (widest) to 2.5 (closest). Written only by
// MainWindow::on_timeline_scaler_valueChanged.
extern float msPerPixel;

// Points of the waveform per millisecond of song.
extern const float wavePointsPerMs;

namespace glow {

// Where a time stands: ms / msPerPixel in single precision, plus one half in double, truncated.
int pixelOfTime(int ms);

// The time at a pixel: x * msPerPixel in single precision, truncated.
int timeOfPixel(int x);

// The same, rounded: used only where an item's times are taken back from its widget at the end of a drag. x can be a
// sum of position and width.
int roundedTimeOfPixel(int x);

// Width in pixels of a length that is cut and not rounded: ms / msPerPixel truncated (ruler, ready band).
int widthOfLength(int ms);

// The zoom that belongs to a value of the zoom slider (40 to 160); the division of 640000 is an integer one.
float msPerPixelOfSlider(int value);

// The smallest width of a pattern that was just placed: two ticks, truncated.
int minimumItemWidth();

} // namespace glow
