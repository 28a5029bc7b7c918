// The ruler's ticks: where each stands at a zoom, and what is drawn there.
#pragma once

#include <QVector>

namespace glow {

enum class TickLine { None, Long, Middle, Short };
enum class TickLabel { None, Seconds, Fraction }; // "mm:ss", ".zzz"

// What tick number index, which stands for index * tickMs milliseconds, shows at a zoom in milliseconds per pixel.
TickLine lineOfTick(int index, float zoom);
TickLabel labelOfTick(int index, float zoom);

struct Tick
{
    int index = 0;
    float x = 0;
};

// Positions of the ticks at one zoom. A position is a sum of single-precision steps from 0 on, with the rounding errors
// that gathers; sums along the way are kept, so that a part of the ruler is found without starting from 0.
class TickPositions
{
public:
    explicit TickPositions(float zoom);

    float zoom() const { return zoomFactor; }

    // The ticks from x = from (inclusive) up to below the end, in order.
    QVector<Tick> between(float from, float end);

private:
    float zoomFactor;
    float step;
    QVector<float> sums; // x of every stride-th tick, as far as they were asked for
};

} // namespace glow
