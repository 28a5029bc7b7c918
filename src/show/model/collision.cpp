#include "show/model/collision.h"

#include <QMap>

namespace glow {

SortedSpans sortSpans(const QVector<Span> &spans)
{
    SortedSpans result;
    QVector<Span> present = spans;
    QMap<int, int> byStart; // start to position
    for (int i = 0; i < present.size(); ++i) {
        const Span it = present.at(i);
        const auto entry = byStart.constFind(it.start);
        if (entry == byStart.constEnd()) {
            byStart.insert(it.start, i);
            continue;
        }
        const int previous = entry.value();
        Span &behind = present[previous];
        if (behind.end > it.end) {
            behind.start = it.end;
            result.edits.append({SpanEdit::SetTimes, previous, behind, {}});
            byStart.insert(it.start, i);
            byStart.insert(it.end, previous);
        } else {
            result.edits.append({SpanEdit::Remove, previous, {}, {}});
            byStart.insert(it.start, i);
        }
    }
    for (const int position : qAsConst(byStart)) {
        result.order.append(position);
    }
    return result;
}

QVector<SpanEdit> settleSpans(const QVector<Span> &sorted, std::optional<int> moved, Span place)
{
    QVector<SpanEdit> edits;
    const int before = moved.value_or(0); // so many stand before it
    for (int i = moved ? before + 1 : 0; i < sorted.size(); ++i) {
        const Span other = sorted.at(i);
        if (other.end <= place.end) {
            edits.append({SpanEdit::Remove, i, {}, {}});
        } else if (other.start < place.end) {
            edits.append({SpanEdit::SetTimes, i, {place.end, other.end}, {}});
        }
    }
    for (int i = 0; i < before; ++i) {
        const Span other = sorted.at(i);
        if (other.end > place.end) {
            edits.append({SpanEdit::Split, i, {other.start, place.start}, {place.end, other.end}});
        } else if (other.end > place.start) {
            edits.append({SpanEdit::SetTimes, i, {other.start, place.start}, {}});
        }
    }
    return edits;
}

} // namespace glow
