#include "show/image/showcheck.h"

#include "show/image/deviceimage.h"

namespace glow {

namespace {

constexpr auto wholeBlockMs = static_cast<int>(blockMs);

// Times can lie farther apart than an int reaches.
qint64 between(int fromMs, int toMs)
{
    return static_cast<qint64>(toMs) - fromMs;
}

void checkLeadIn(const DeviceShow &show, QVector<Finding> &findings)
{
    const int start = show.patterns.first().startMs;
    const qint64 lead = between(show.startMarkMs, start);
    if (lead > 0 && lead <= wholeBlockMs) {
        findings.append({Finding::LeadIn, show.startMarkMs, start, lead, wholeBlockMs});
    } else if (lead < 0) {
        findings.append({Finding::BeforeStart, start, show.startMarkMs, -lead, 0});
    }
}

void checkLength(const ShowPattern &pattern, QVector<Finding> &findings)
{
    const qint64 length = between(pattern.startMs, pattern.endMs);
    if (pattern.isColour && length < wholeBlockMs) {
        findings.append({Finding::ShortColour, pattern.startMs, pattern.endMs, length, wholeBlockMs});
    }
}

void checkNeighbours(const ShowPattern &one, const ShowPattern &next, QVector<Finding> &findings)
{
    const qint64 gap = between(one.endMs, next.startMs);
    if (gap < 0) {
        findings.append({Finding::Overlap, next.startMs, one.endMs, -gap, 0});
    } else if (gap > 0 && gap <= wholeBlockMs) {
        findings.append({Finding::Gap, one.endMs, next.startMs, gap, wholeBlockMs});
    }
}

void checkColumns(const DeviceShow &show, const QVector<ImageEntry> &entries, QVector<Finding> &findings)
{
    for (const ImageEntry &entry : entries) {
        if (entry.kind == ImageEntry::Picture && entry.frames < 1) {
            const ShowPattern &pattern = show.patterns.at(entry.pattern);
            findings.append({Finding::NoColumns, pattern.startMs, pattern.endMs, 0, 0});
        }
    }
}

} // namespace

QVector<Finding> checkShow(const DeviceShow &show, const QVector<ImageEntry> &entries)
{
    QVector<Finding> findings;
    if (!show.patterns.isEmpty()) {
        checkLeadIn(show, findings);
    }
    for (int i = 0; i < show.patterns.size(); ++i) {
        checkLength(show.patterns.at(i), findings);
        if (i + 1 < show.patterns.size()) {
            checkNeighbours(show.patterns.at(i), show.patterns.at(i + 1), findings);
        }
    }
    checkColumns(show, entries, findings);
    if (entries.size() > mostEntries) {
        findings.append({Finding::Entries, 0, 0, entries.size(), mostEntries});
    }
    const int headerBytes = imageHeader(show, entries).size();
    if (headerBytes > mostHeaderBytes) {
        findings.append({Finding::Header, 0, 0, headerBytes, mostHeaderBytes});
    }
    return findings;
}

} // namespace glow
