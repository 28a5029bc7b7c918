#include "show/model/repeatrules.h"
#include "show/base/numbers.h"

#include <QImage>
#include <QPixmap>

#include <algorithm>

namespace glow {

namespace {

// Narrowed to single precision, raised to 1, truncated. A count beyond the range of int (a width of 0 makes it
// infinite) is no count that anybody meant: 1.
int wholeCount(double value)
{
    const float narrowed = static_cast<float>(value);
    const float atLeastOne = narrowed >= 1.0F ? narrowed : 1.0F;
    return std::max(1, truncated(static_cast<double>(atLeastOne)));
}

} // namespace

int suggestedRepeat(double seconds, int speed, int width, float rate)
{
    if (width <= 0) {
        return 1;
    }
    const double scale = rate > highRate ? 1500.0 : 1000.0;
    const double s = seconds * speed * scale / (width * 10);
    return wholeCount(s + 0.5);
}

int placedRepeat(int durationMs, int speed, int width, float rate)
{
    if (width <= 0) {
        return 1;
    }
    float x = static_cast<float>(durationMs) * static_cast<float>(speed);
    if (rate > highRate) {
        x *= 2;
    }
    const float r = x / static_cast<float>(width * 10);
    return wholeCount(static_cast<double>(r) + 0.5);
}

int columnsAtHeight(const QPixmap &picture, int leds)
{
    if (picture.isNull() || leds <= 0) {
        return 0;
    }
    return picture.scaledToHeight(leds, Qt::FastTransformation).width();
}

} // namespace glow
