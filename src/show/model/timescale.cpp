#include "show/model/timescale.h"

#include "show/base/numbers.h"

const float tickMs = 10.0F;
float msPerPixel = 10.0F;
const float wavePointsPerMs = 0.48F;

namespace glow {

int pixelOfTime(int ms)
{
    const float pixels = static_cast<float>(ms) / msPerPixel;
    return truncated(static_cast<double>(pixels) + 0.5);
}

int timeOfPixel(int x)
{
    const float ms = static_cast<float>(x) * msPerPixel;
    return truncated(static_cast<double>(ms));
}

int roundedTimeOfPixel(int x)
{
    const float ms = static_cast<float>(x) * msPerPixel;
    return truncated(static_cast<double>(ms) + 0.5);
}

int widthOfLength(int ms)
{
    const float pixels = static_cast<float>(ms) / msPerPixel;
    return truncated(static_cast<double>(pixels));
}

float msPerPixelOfSlider(int value)
{
    if (value == 0) {
        return msPerPixel;
    }
    const int tenths = 640000 / (value * value);
    return static_cast<float>(tenths) / 10.0F;
}

int minimumItemWidth()
{
    const float pixels = 2 * tickMs / msPerPixel;
    return truncated(static_cast<double>(pixels));
}

} // namespace glow
