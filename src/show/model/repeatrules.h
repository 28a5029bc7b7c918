// How many times a picture repeats in a pattern whose repeat count follows the speed slider. The two rules differ on
// purpose: the editor's suggestion multiplies by 1.5 at high column rates, a placed pattern doubles.
#pragma once

class QPixmap;

namespace glow {

// In all of this: speed is the slider's value, 2 to 18, higher is faster; rate and highRate are columns a second; width
// is in columns.

// Column rates strictly above this count as high.
constexpr float highRate = 1500.0F;

// The editor's suggestion for a pattern of so many seconds; width is that of the picture in columns. At least 1, also
// for a width of 0.
int suggestedRepeat(double seconds, int speed, int width, float rate);

// The count of a placed pattern whose times changed; width is that of one copy in columns. At least 1, also for a width
// of 0.
int placedRepeat(int durationMs, int speed, int width, float rate);

// Width in columns that a picture takes at the given LED count; 0 for a null picture, no LEDs, or a picture that is too
// large to be made at that count.
int columnsAtHeight(const QPixmap &picture, int leds);

} // namespace glow
