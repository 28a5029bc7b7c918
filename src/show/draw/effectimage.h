// The generated patterns of the effect tab: one of fourteen effects, drawn from two colours, a width and a colour mode.
//
// The canvas is always 300 by 150 pixels, whatever the prop: its x axis is the pattern's time, its y axis runs along
// the strip. Preview and export scale it to the LED count.
#pragma once

#include "show/model/patternsettings.h"

#include <QImage>

namespace glow {

constexpr int effectCanvasWidth = 300;
constexpr int effectCanvasHeight = 150;

// The finished picture: drawn, mirrored horizontally, and then flipped as asked. The mirroring is part of every effect,
// so flipH gives back the coordinates in which the effect is drawn. Depends on nothing but the settings.
QImage effectImage(const EffectSettings &settings);

} // namespace glow
