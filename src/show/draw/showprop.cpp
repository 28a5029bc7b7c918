#include "show/draw/showprop.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace glow {

namespace {

// Wedges of a whole turn at the preview's fastest spin, and one over the seam: what was drawn before is covered.
constexpr int wholeTurn = 641;

} // namespace

ShowProp::ShowProp(QVector<PropPattern> allPatterns, int ledCount)
    : patterns(std::move(allPatterns))
    , leds(static_cast<qint16>(ledCount))
{
    std::map<int, QVector<int>> edges; // by time: the pattern numbers that begin (as they are) or end (as -1 - number)
    edges[0];
    for (int i = 0; i < patterns.size(); ++i) {
        if (patterns.at(i).startMs < patterns.at(i).endMs) {
            edges[patterns.at(i).startMs].append(i);
            edges[patterns.at(i).endMs].append(-1 - i);
        }
    }
    std::set<int> open;
    for (const auto &[ms, numbers] : edges) {
        for (const int number : numbers) {
            if (number >= 0) {
                open.insert(number);
            } else {
                open.erase(-1 - number);
            }
        }
        const int seen = open.empty() ? -1 : *open.rbegin();
        if (stretches.isEmpty() || stretches.last().pattern != seen) {
            stretches.append({ms, seen});
        }
    }
}

int ShowProp::stretchAt(int ms) const
{
    const auto next = std::upper_bound(stretches.cbegin(), stretches.cend(), ms,
                                       [](int time, const Stretch &stretch) { return time < stretch.startMs; });
    return std::max(0, static_cast<int>(next - stretches.cbegin()) - 1);
}

int ShowProp::patternAt(int ms) const
{
    return stretches.at(stretchAt(ms)).pattern;
}

// Shows the stretch's pattern as one that began when it did, whatever the present step.
void ShowProp::enter(int stretch)
{
    shownStretch = stretch;
    const PropPattern pattern = patterns.value(stretches.at(stretch).pattern);
    const int lengthMs = pattern.endMs - pattern.startMs;
    const int columns = previewColumns(lengthMs / 1000.0, pattern.repeats);
    if (columns == 0) {
        // Nothing there, or nothing that has a column.
        constexpr double leastSeconds = 0.002;
        prop.showPicture(QImage(), leds, leastSeconds, 1);
        return;
    }
    prop.showPicture(pattern.picture, leds, lengthMs / 1000.0, pattern.repeats);
    prop.stepOrigin = pattern.startMs;
    prop.setColumnPace(qint64(columns) * std::max(pattern.repeats, 1), lengthMs);
}

// Draws the steps up to, not including, that one.
void ShowProp::runTo(qint64 step)
{
    while (prop.stepCount < step) {
        const int stretch = stretchAt(static_cast<int>(prop.stepCount));
        if (stretch != shownStretch) {
            enter(stretch);
        }
        const bool isLast = stretch + 1 >= stretches.size();
        const qint64 until = isLast ? step : std::min<qint64>(step, stretches.at(stretch + 1).startMs);
        prop.advance(static_cast<int>(until - prop.stepCount));
    }
}

void ShowProp::showAt(int ms)
{
    const qint64 end = qint64(ms) + 1; // the step of the moment itself is the last
    if (prop.stepCount > end || prop.stepCount < end - wholeTurn) {
        prop.stepCount = std::max<qint64>(0, end - wholeTurn);
        if (prop.stepCount == 0) {
            prop.resetImages();
        }
        shownStretch = -1;
    }
    runTo(end);
}

} // namespace glow
