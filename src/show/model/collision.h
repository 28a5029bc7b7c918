// What happens to patterns that collide on a track, as plain rules from spans of time to edits. Timeline applies the
// edits to its items.
#pragma once

#include <QVector>

#include <optional>

namespace glow {

// The place of a pattern on its track in milliseconds. Nothing keeps an end from lying before its start.
struct Span
{
    int start = 0;
    int end = 0;
};

// One thing to do to a pattern of the track. Patterns are named by their position in the list that was asked about.
struct SpanEdit
{
    enum Kind {
        SetTimes, // the pattern takes the times
        Remove,   // the pattern is covered and leaves the track
        Split     // a copy of the pattern goes to the end of the list with the times rest, the pattern takes the times
    };

    Kind kind = SetTimes;
    int index = 0;
    Span times;
    Span rest;
};

struct SortedSpans
{
    QVector<int> order;      // positions in the list that was asked about, ascending by start
    QVector<SpanEdit> edits; // SetTimes and Remove, to be done in this order
};

// Start-time order. Starts are unique afterwards: of two patterns with an equal start the later one in list order has
// priority, and the earlier one is cut to begin at its end, or removed if nothing is left of it. A piece cut this way
// that meets a third pattern at its new start displaces it: that one is in no order and no edit, so it falls out of the
// list though nothing is done to it.
SortedSpans sortSpans(const QVector<Span> &spans);

// The pass after a pattern was placed, on a list in start-time order: what the pattern touches is trimmed, removed or
// split in two. moved is its position, or nothing if sorting has removed the pattern itself; all others then count as
// standing behind it. place is where it stands.
QVector<SpanEdit> settleSpans(const QVector<Span> &sorted, std::optional<int> moved, Span place);

} // namespace glow
