// How long something that reports its progress will still take.
#pragma once

#include <QString>

#include <optional>

namespace glow {

// Whole seconds, rounded up, after elapsedMs in which share (0 to 1) of the work was done. Nothing as long as it cannot
// be told: in the first second, in the first hundredth of the work, at its end, for a share that is no number, or if it
// would be more than a day.
std::optional<int> secondsLeft(qint64 elapsedMs, double share);

// For people: "about 7 s left", "about 2:05 left".
QString timeLeftText(int seconds);

} // namespace glow
