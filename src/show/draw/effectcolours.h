// The colours that an effect paints with, worked out once per picture, and the grounds of three stripes.
#pragma once

#include "show/draw/effectimage.h"

#include <QColor>

#include <array>

class QPainter;

namespace glow {

struct EffectColours
{
    explicit EffectColours(const EffectSettings &settings);

    int mode;                  // EffectMode
    int strips;                // twice the width, 2 to 20: length of a tail, size of a block, width of a pen
    QColor front;              // opaque
    QColor back;               // as it is in the settings
    std::array<float, 3> hues; // degrees, 0 to 357

    // True in both modes that read the front colour as three hues.
    bool threeHues() const { return mode != PlainMode; }

    QColor hue(int index, int alpha = 255) const;

    // What the index-th of three equal parts is painted with: the front colour or its hue.
    QColor part(int index, int alpha = 255) const;

    // The back colour's channels at another alpha.
    QColor backAt(int alpha) const;

    // Alpha of the index-th strip of a tail, from 255 towards 255 / strips.
    int fade(int index) const { return 255 - (index * 255) / strips; }
};

// Three stripes over the whole canvas in the three hues: bands along the time axis, bars across it.
void fillBands(QPainter &painter, const EffectColours &colours);
void fillBars(QPainter &painter, const EffectColours &colours);

} // namespace glow
