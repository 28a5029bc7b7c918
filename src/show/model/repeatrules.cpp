#include "show/model/repeatrules.h"

#include "show/base/numbers.h"
#include "show/base/scaling.h"

#include <QPixmap>

#include <algorithm>
#include <limits>

namespace glow {

namespace {

// The limits of a picture of 32 bits a pixel: so many bits in a line, so many bytes in all.
constexpr int widestPicture = (std::numeric_limits<int>::max() - 31) / 32;
constexpr int mostPixels = std::numeric_limits<int>::max() / 4;

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
    const qint64 width = widthAtHeight(picture.size(), leds);
    return width > 0 && width <= widestPicture && width * leds <= mostPixels ? static_cast<int>(width) : 0;
}

} // namespace glow
