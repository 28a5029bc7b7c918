// The fading afterglow of the spinning bar: a mask that turns with the bar and lets only the light behind it stand.
#pragma once

#include <QImage>
#include <QPointF>
#include <QVector>

#include <array>

namespace glow {

// Laying the mask over the disc is the same as filling the disc's rectangle with a conical gradient of black in the
// composition mode DestinationAtop: opacity 250 of 255 at the bar, falling to none over |speed| tenths of the circle.
// The painter's conical gradient needs an arc tangent for every pixel of every frame, several milliseconds in all; here
// the angles are computed once for a size and a frame takes two table look-ups a pixel.
class Afterglow
{
public:
    // Fades the picture, opaque and of Format_ARGB32_Premultiplied, around the centre (in pixels of the picture, pixel
    // centres at one half). Degrees count counter-clockwise from three o'clock; speed is -9 to 9 and not 0.
    void apply(QImage &picture, const QPointF &centre, qint64 degrees, int speed);

    // The same by rows: what apply would be told first, then pixels from (included) to to (not included) of row y, row
    // pointing to its pixel 0.
    void prepare(const QSize &size, const QPointF &centre, qint64 degrees, int speed);
    void fadeRow(int y, QRgb *row, int from, int to) const;

private:
    static constexpr int tableBits = 12;

    void buildAngles(const QSize &size, const QPointF &centre);
    void buildOpacities(int speed);

    std::array<quint32, 1 << tableBits> opacities{}; // along the circle, counted counter-clockwise from the bar
    int tableSpeed = 0;                              // that they belong to
    quint16 bar = 0;                                 // its angle, counter-clockwise
    QVector<quint16> angles;                         // of each pixel, clockwise, a full turn being 65536
    QSize anglesSize;
    QPointF anglesCentre;
};

} // namespace glow
