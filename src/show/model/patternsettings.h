// What the editor needs to make a pattern anew, as values: a type of its own for each kind of pattern. As the text that
// records and files hold: settingstext.h.
//
// A value that was read from an untrusted text can hold any number; whoever takes it bounds it, as the panel's fields
// do by themselves. A colour that the text does not name is invalid.
#pragma once

#include <QColor>
#include <QString>

#include <variant>

namespace glow {

// What a pattern is made of. The numbers are the tab indices of the editor and stand in files.
enum PatternKind { PicturePattern = 0, ColourPattern = 1, TextPattern = 2, EffectPattern = 3 };

struct PictureSettings
{
    QString path; // of the source picture
    int gap = 0;  // black behind the picture, 0 to 100 percent of its width
    bool flipH = false;
    bool flipV = false;
};

struct ColourSettings
{
    QColor colour;
};

struct TextSettings
{
    QColor fore;
    QColor back;
    QString text;
    int font = 0;      // row of the panel's list of fonts, which depends on the computer
    int sizeIndex = 0; // 0 to 9: how many lines high the box is, ten for 0 and one for 9
    int slide = 0;     // 1 to 20: the box's width, in fifths of the text's
    bool flipH = false;
    bool flipV = false;
};

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
    UnknownMode = -1, // what a text holds is no number; the panel's box stays as it is
    PlainMode = 0,    // as a colour
    HueMode = 1,      // as three hues, about 119 degrees apart when the channels are equal
    NegativeMode = 2  // as three hues behind a figure in the back colour, where the effect has such a form
};

// An effect is drawn from nothing else (see draw/effectimage.h).
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

// In the order of PatternKind: the index is the kind.
using PatternSettings = std::variant<PictureSettings, ColourSettings, TextSettings, EffectSettings>;

} // namespace glow
