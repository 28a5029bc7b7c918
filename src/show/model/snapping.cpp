#include "show/model/snapping.h"

#include "show/model/timescale.h"

#include <algorithm>

namespace glow {

namespace {

constexpr int reach = 5;

// The edge runs a little ahead of the mouse, so that the pointer stays inside the pattern.
constexpr int edgeLead = 2;

bool near(int x, int limit)
{
    return x >= limit - reach && x <= limit + reach;
}

} // namespace

int snappedBody(int left, int width, int leftLimit, int rightLimit)
{
    const float halfTick = tickMs / msPerPixel * 0.5F;
    const auto before = static_cast<float>(left - reach);
    const auto behind = static_cast<float>(left + reach);
    const auto atLeft = static_cast<float>(leftLimit);
    if (atLeft + halfTick >= before && behind >= atLeft - halfTick) {
        return leftLimit;
    }
    const auto atRight = static_cast<float>(rightLimit);
    const auto endBehind = static_cast<float>(left + width + reach);
    const auto endBefore = static_cast<float>(left + width - reach);
    if (endBehind >= atRight - halfTick && atRight + halfTick >= endBefore) {
        return std::max(0, rightLimit - width);
    }
    return std::max(0, left);
}

int snappedRightEdge(int mouseX, int rightLimit)
{
    const int x = mouseX + edgeLead;
    return near(x, rightLimit) ? rightLimit : x;
}

int snappedLeftEdge(int mouseX, int leftLimit)
{
    const int x = mouseX - edgeLead;
    return std::max(0, near(x, leftLimit) ? leftLimit : x);
}

} // namespace glow
