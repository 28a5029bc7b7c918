// The real window on an empty show, with a mouse: what the tests of gestures and tracks build upon.
#pragma once

#include "mousedriver.h"
#include "support/windowtest.h"

class Indicator;
class QScrollBar;
class Timeline;
class TimelineHeaders;

class ShowTest : public WindowTest
{
    Q_OBJECT

protected slots:
    void init(); // returns when the track stands in its row

protected:
    Timeline *current() const { return window->currentTimeline; }

    // A track above the present ones' top row; returns when it stands in its row.
    Timeline *addTrack();

    // A colour pattern, placed as it is.
    static TimelineItem *add(Timeline *track, int startMs, int endMs, const QString &settings = "1?#ff0000");

    // Patterns at the given times, "0-1000 2000-3000", on the current track. Returns the first.
    TimelineItem *addAll(const QString &spans);

    // The items' times in list order, in the same form.
    static QString spans(const Timeline *track);

    // A point of the current track, or of another one, at the height of an item's middle: a step of a drag.
    MouseDriver::Step to(int x, const std::function<void()> &check = {}) const { return on(current(), x, check); }
    static MouseDriver::Step on(Timeline *track, int x, const std::function<void()> &check = {});

    // A gesture that begins at x of an item.
    bool drag(TimelineItem *item, int x, const QVector<MouseDriver::Step> &steps);

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier); // and release

    QScopedPointer<MouseDriver> mouse;
    TimelineHeaders *ruler = nullptr;
    Indicator *head = nullptr;
    QScrollBar *bar = nullptr; // the horizontal one of the timeline
};
