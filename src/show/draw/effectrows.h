// The fourteen effects as painters of the canvas, in drawing coordinates (before the mirroring).
#pragma once

class QPainter;

namespace glow {

struct EffectColours;

// Draws the effect of that row (EffectRow) over the back colour; a row that does not exist draws nothing.
void drawEffectRow(int row, QPainter &painter, const EffectColours &colours);

} // namespace glow
