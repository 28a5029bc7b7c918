#include "show/base/timeleft.h"

#include "show/base/hint.h"

#include <QtGlobal>

#include <cmath>

namespace glow {

namespace {

// Before that the first steps would be taken for the pace of all.
constexpr qint64 leastMs = 1000;
constexpr double leastShare = 0.01;
constexpr double longestSeconds = 24.0 * 60 * 60;

} // namespace

std::optional<int> secondsLeft(qint64 elapsedMs, double share)
{
    if (elapsedMs < leastMs || !(share >= leastShare && share < 1)) {
        return std::nullopt;
    }
    const double seconds = std::ceil(double(elapsedMs) * (1 - share) / share / 1000);
    return seconds > longestSeconds ? std::nullopt : std::optional<int>(int(seconds));
}

QString timeLeftText(int seconds)
{
    constexpr int perMinute = 60;
    if (seconds < perMinute) {
        return hint(QT_TRANSLATE_NOOP("Hints", "約剩 %1 秒")).arg(seconds);
    }
    return hint(QT_TRANSLATE_NOOP("Hints", "約剩 %1:%2"))
        .arg(seconds / perMinute)
        .arg(seconds % perMinute, 2, 10, QLatin1Char('0'));
}

} // namespace glow
