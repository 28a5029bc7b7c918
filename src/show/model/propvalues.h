// The two program-wide values of the prop. They stand outside any object so that items, preview and window read the
// same numbers without knowing each other.
#pragma once

#include <QtGlobal>

// Number of LEDs on the prop's strip, and so the height in pixels of every rendered pattern. 0 until the first gadget
// is applied; written by MainWindow's construction and by on_Leds_valueChanged only.
extern qint16 ledCount;

// Columns that the prop shows per second. Always a whole number; a float only so that the repeat arithmetic runs in
// single precision. 0 until the first gadget is applied; written by gadgetchange and on_FPS_V_valueChanged only.
extern float frameRate;

namespace glow {

// What the window's fields for the two hold at most; their form, which cannot take the numbers from here, says the
// same.
constexpr int mostLeds = 999;
constexpr int highestRate = 9999;

} // namespace glow
