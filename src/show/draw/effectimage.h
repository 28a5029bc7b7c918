// The generated patterns of the effect tab: one of fourteen effects, drawn from two colours, a width and a colour mode.
//
// The canvas is always 300 by 150 pixels, whatever the prop: its x axis is the pattern's time, its y axis runs along
// the strip. Preview and export scale it to the LED count.
#pragma once

#include <QColor>
#include <QImage>

namespace glow {

constexpr int effectCanvasWidth = 300;
constexpr int effectCanvasHeight = 150;

// The effects in the order of the list, which is the number that settings texts store.
enum EffectRow {
    FlashEffect = 0,
    WindmillEffect,
    JumpEffect,
    FadeEffect,
    RainbowEffect,
    ArrowEffect,
    SawEffect,
    MeteorEffect,
    SlantedMeteorEffect,
    BoxEffect,
    TriangleEffect,
    LineEffect,
    WedgeEffect,
    CrossEffect,
    EffectRowCount
};

// How the three channels of the front colour are read. The numbers are the states of the tristate check box and stand
// in settings texts.
enum EffectMode {
    PlainMode = 0,   // as a colour
    HueMode = 1,     // as three hues, about 119 degrees apart when the channels are equal
    NegativeMode = 2 // as three hues behind a figure in the back colour, where the effect has such a form
};

struct EffectSettings
{
    int row = FlashEffect; // EffectRow; any other number leaves the plain back colour
    QColor front = Qt::white;
    QColor back = Qt::black;
    int width = 5;        // 1 to 10, bounded to that
    int mode = PlainMode; // EffectMode; any other number counts as PlainMode
    bool flipH = false;
    bool flipV = false;
};

// The finished picture: drawn, mirrored horizontally, and then flipped as asked. The mirroring is part of every effect,
// so flipH gives back the coordinates in which the effect is drawn. Depends on nothing but the settings.
QImage effectImage(const EffectSettings &settings);

} // namespace glow
