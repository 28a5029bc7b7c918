// A text as the picture of a pattern: a rich text widget that nobody sees paints itself into an image.
#pragma once

#include <QColor>
#include <QImage>
#include <QSize>
#include <QString>

namespace glow {

struct TextOptions
{
    QString text; // plain or what QTextEdit takes for rich text
    QString family;
    QColor fore;
    QColor back;
    int sizeIndex = 9; // 0 to 9: how many lines high the box is, ten for 0 and one for 9
    int slide = 5;     // 1 to 20: the box's width, in fifths of the text's
    bool flipH = false;
    bool flipV = false;
};

struct TextResult
{
    QImage image;
    bool tooLong = false; // the box cannot be shown; image is that of an empty text
};

// The box in pixels that a text is rendered into. The font never changes size, so a box higher than the line shows the
// text smaller. The width is a product of 32 bits that wraps; a box that comes out without width is empty.
QSize textBox(int lineHeight, int textWidth, int sizeIndex, int slide);

// The size at which a box is drawn: its own, or a smaller one of the same shape if it is wider than a painter's reach
// or has more than 16 million pixels. Empty for an empty box and for one that would be drawn less than 120 rows high
// (one line four times as long as a painter's reach, some 130000 pixels).
QSize textImageSize(const QSize &box);

// Renders the text at 300 points into its box.
TextResult renderText(const TextOptions &options);

} // namespace glow
