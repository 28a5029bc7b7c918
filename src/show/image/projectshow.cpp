#include "show/image/projectshow.h"

#include "show/base/numbers.h"
#include "show/model/collision.h"
#include "show/model/projectfile.h"
#include "show/model/propvalues.h"

#include <algorithm>

namespace glow {

int shownLeds(const Project &project)
{
    return std::clamp(int(project.ledCount), 0, mostLeds);
}

int shownRate(const Project &project)
{
    return std::clamp(truncated(double(project.frameRate)), 0, highestRate);
}

QVector<PatternRecord> exportedPatterns(const Project &project, int track)
{
    QVector<PatternRecord> records;
    QVector<Span> spans;
    const QVector<QByteArray> blobs = project.tracks.value(track);
    for (const QByteArray &blob : blobs) {
        const PatternRecord record = readPattern(blob);
        spans.append(spanOf(record));
        records.append(record);
    }
    const SortedSpans sorted = sortSpans(spans);
    for (const SpanEdit &edit : sorted.edits) {
        if (edit.kind == SpanEdit::SetTimes) {
            applySpan(records[edit.index], edit.times, shownLeds(project), float(shownRate(project)));
        }
    }
    QVector<PatternRecord> ordered;
    for (const int index : sorted.order) {
        ordered.append(records.at(index));
    }
    return ordered;
}

DeviceShow showOfTrack(const Project &project, int track, const ShowOptions &options)
{
    DeviceShow show;
    show.ledCount = shownLeds(project);
    show.ledsShown = show.ledCount;
    show.rateShown = shownRate(project);
    show.frameRate = float(show.rateShown);
    show.slot = options.slot;
    show.loop = options.loop;
    show.startMarkMs = options.startMarkMs;
    const QVector<PatternRecord> records = exportedPatterns(project, track);
    for (const PatternRecord &record : records) {
        show.patterns.append(showPattern(record));
    }
    return show;
}

} // namespace glow
