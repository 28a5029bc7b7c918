#include "show/draw/rulerticks.h"

#include "show/model/timescale.h"

#include <algorithm>
#include <iterator>

namespace glow {

namespace {

constexpr int stride = 256;

// From here on the ruler counts as wide and shows fewer ticks.
constexpr float wideZoom = 23.0F;

bool divides(int divisor, int index)
{
    return index % divisor == 0;
}

} // namespace

TickLine lineOfTick(int index, float zoom)
{
    const bool wide = zoom > wideZoom;
    if (divides(wide ? 500 : 100, index)) {
        return TickLine::Long;
    }
    if (divides(wide ? 50 : 10, index)) {
        return TickLine::Middle;
    }
    return zoom <= 5.0F ? TickLine::Short : TickLine::None;
}

TickLabel labelOfTick(int index, float zoom)
{
    const int seconds = zoom > wideZoom ? 500 : zoom > 10.0F ? 200 : 100;
    if (divides(seconds, index)) {
        return TickLabel::Seconds;
    }
    return zoom <= 2.5F && divides(20, index) ? TickLabel::Fraction : TickLabel::None;
}

TickPositions::TickPositions(float zoom)
    : zoomFactor(zoom)
    , step(tickMs / zoom)
    , sums{0.0F}
{
}

QVector<Tick> TickPositions::between(float from, float end)
{
    QVector<Tick> ticks;
    // Far out a step can be too small to move a single-precision sum at all; no ticks stand there.
    while (sums.last() <= from) {
        float x = sums.last();
        for (int i = 0; i < stride; ++i) {
            x += step;
        }
        if (!(x > sums.last())) {
            return ticks;
        }
        sums.append(x);
    }
    const auto above = std::upper_bound(sums.constBegin(), sums.constEnd(), from);
    const int block = std::max(0, int(std::distance(sums.constBegin(), above)) - 1);
    int index = block * stride;
    // The accumulated sum is what places the ticks, its rounding included.
    float x = sums.at(block);
    while (x < end) {
        if (x >= from) {
            ticks.append({index, x});
        }
        const float next = x + step;
        if (!(next > x)) {
            break;
        }
        x = next;
        ++index;
    }
    return ticks;
}

} // namespace glow
