#include "show/draw/effectcolours.h"

#include <QPainter>

namespace glow {

namespace {

constexpr int leastWidth = 1;
constexpr int mostWidth = 10;

// A channel value as a hue: formed in double precision, kept in single.
float hueOf(int channel, int offset)
{
    return static_cast<float>(1.4 * ((channel + offset) % 256));
}

QColor withAlpha(const QColor &colour, int alpha)
{
    return {colour.red(), colour.green(), colour.blue(), alpha};
}

} // namespace

EffectColours::EffectColours(const EffectSettings &settings)
    : mode(settings.mode == HueMode || settings.mode == NegativeMode ? settings.mode : PlainMode)
    , strips(2 * qBound(leastWidth, settings.width, mostWidth))
    , front(withAlpha(settings.front, 255))
    , back(settings.back)
    , hues{hueOf(front.red(), 0), hueOf(front.green(), 85), hueOf(front.blue(), 170)}
{
}

QColor EffectColours::hue(int index, int alpha) const
{
    return QColor::fromHsv(static_cast<int>(hues.at(static_cast<std::size_t>(index))), 255, 255, alpha);
}

QColor EffectColours::part(int index, int alpha) const
{
    return threeHues() ? hue(index, alpha) : withAlpha(front, alpha);
}

QColor EffectColours::backAt(int alpha) const
{
    return withAlpha(back, alpha);
}

void fillBands(QPainter &painter, const EffectColours &colours)
{
    for (int i = 0; i < 3; ++i) {
        painter.fillRect(0, 50 * i, 300, 50, colours.hue(i));
    }
}

void fillBars(QPainter &painter, const EffectColours &colours)
{
    for (int i = 0; i < 3; ++i) {
        painter.fillRect(100 * i, 0, 100, 150, colours.hue(i));
    }
}

} // namespace glow
