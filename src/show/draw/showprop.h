// The simulated prop driven by show time instead of a clock: what the preview would show of a track at a moment of the
// show, always the same for the same track.
//
// One step of the simulated prop stands for one millisecond. A pattern begins with its column 0 and has, at a share of
// its length, shown the same share of all its columns (one repetition's, previewColumns, times its repeats). That is
// where a seek takes the preview, and for all but very short repetitions one column a millisecond. Where there is no
// pattern the prop spins on in black.
#pragma once

#include "show/draw/propsimulator.h"

#include <QImage>
#include <QVector>

class QRect;

namespace glow {

// A pattern as the simulated prop needs it; safe to pass to another thread.
struct PropPattern
{
    int startMs = 0; // milliseconds of show time
    int endMs = 0;
    QImage picture;  // null counts as black
    int repeats = 1; // copies of the picture across the pattern; below 1 counts as 1
};

class ShowProp
{
public:
    // Of patterns that overlap the later one in the list is seen. Patterns without a length are never seen.
    ShowProp(QVector<PropPattern> patterns, int leds);

    // Brings the prop to a moment of the show, 0 or more. Forward by a little costs the steps in between; any other
    // move costs a turn of the bar, from which on the past can no longer be seen.
    void showAt(int ms);

    // Draws the views as the preview does, see PropSimulator::drawViews.
    void draw(QImage &picture, const QRect &cell) { prop.drawViews(picture, cell); }

    // Pattern seen at that time, -1 for none.
    int patternAt(int ms) const;

private:
    // A stretch of show time over which the same pattern is seen, up to the next one's start.
    struct Stretch
    {
        int startMs = 0;
        int pattern = -1;
    };

    int stretchAt(int ms) const;
    void enter(int stretch);
    void runTo(qint64 step);

    QVector<PropPattern> patterns;
    QVector<Stretch> stretches; // by time, the first from 0 on
    qint16 leds;
    PropSimulator prop;
    int shownStretch = -1;
};

} // namespace glow
