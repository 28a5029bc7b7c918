// The props that the program knows.
#pragma once

#include <QString>
#include <QVector>

class QIODevice;

namespace glow {

struct Gadget
{
    int leds = 0; // LEDs on the strip
    int rate = 0; // columns per second
    QString name; // model name
};

// Text, one row a line, lines ended by CR LF or LF, three fields separated by ",": LED count, column rate, model name.
QVector<Gadget> readGadgets(QIODevice &text);

// The catalogue that is compiled in.
QVector<Gadget> builtInGadgets();

// Index of the first row with both numbers equal, or -1. The rates are compared as floats.
int findGadget(const QVector<Gadget> &rows, int leds, float rate);

} // namespace glow
