// The waveform as plain numbers: from decoded samples to points, from points to pixel columns, and the drawing of them.
//
// One decoded sample is one point: the decoder is asked for mono, signed 16-bit samples at wavePointRate() a second, so
// no further reduction is needed. A point's x is its number from the start of the song (wavePointsPerMs of them make a
// millisecond), its y runs from -1 to 1 on a root scale, so that quiet passages stand out.
#pragma once

#include <QColor>
#include <QList>
#include <QPointF>
#include <QSize>
#include <QVector>

class QPainter;
class QRect;

namespace glow {

// Samples per second to ask of the decoder: wavePointsPerMs * 1000 in single precision, truncated.
int wavePointRate();

// A time in point numbers: ms * wavePointsPerMs in single precision, truncated.
int wavePointsOfTime(qint64 ms);

// The other way round: the milliseconds that many points stand for, truncated.
qint64 timeOfWavePoints(int points);

// The height of a sample, -1 to 1 (a hair below -1 for the lowest sample).
double waveHeight(qint16 sample);

// Appends the points of count samples that end at position (milliseconds): the last of them stands one point before the
// position. The very first call puts a point at 0 before them. maximum becomes the largest absolute y of the samples
// seen so far.
void appendWavePoints(QVector<QPointF> &points, double &maximum, const qint16 *samples, int count, qint64 position);

// Largest y that the chart shows; what is louder is clipped. One fifth below the largest of the song on purpose.
double waveAxisLimit(double maximum);

// Width in pixels of a waveform of that many points at the present zoom, truncated.
int waveWidth(int pointCount);

// The line through the points, reduced to what each pixel column shows of it. The columns depend on the zoom alone, so
// a repaint takes time for the columns that it shows and not for the points of the song.
struct WaveColumns
{
    struct Span
    {
        float low;
        float high;
    };
    QVector<Span> spans; // lowest and highest y of the line within each column; low above high where there is no line

    // Reduces the points to width columns; x of a point times columnsPerPoint is its place in columns. Points beyond
    // either end are cut off, also such with an x that is not finite.
    void build(const QList<QPointF> &points, double columnsPerPoint, int width);
};

// Paints the columns that exposed covers, as a thin line of this colour with soft edges, into a view of this height
// whose y axis runs from -limit (bottom) to limit (top). What lies beyond is clipped at the edge; a limit of 0 or less
// gives a line in the middle. Coordinates are those of the view, in logical pixels; the columns are device pixels,
// scale of them to a logical one.
void drawWave(QPainter &painter, const QRect &exposed, const WaveColumns &columns, int height, double limit,
              const QColor &color, double scale = 1.0);

} // namespace glow
