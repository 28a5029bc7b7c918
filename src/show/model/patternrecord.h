// A pattern as a value: the record that a timeline item shows, and its serialised form, the blob that projects, drags,
// the clipboard and the history carry.
#pragma once

#include "show/model/collision.h"
#include "show/model/patternsettings.h"
#include "show/model/showtime.h"

#include <QByteArray>
#include <QColor>
#include <QPixmap>
#include <QString>
#include <QTime>

class QDataStream;

namespace glow {

// The blob is a QDataStream dump with the stream's defaults, big-endian, no version set, fields in this order:
//
//   thumbnail     QPixmap   32-bit marker (1, or 0 for a null pixmap and nothing more), then a PNG file
//   startTime     QTime     unsigned 32-bit milliseconds since midnight, 0xFFFFFFFF when null
//   endTime       QTime     the same
//   solidColor    QColor    8-bit spec (0 invalid, 1 RGB), then 16-bit alpha, red, green, blue, pad
//   repeatCount   qint32
//   patternKind   qint32
//   speedValue    qint32
//   settingsText  QString   unsigned 32-bit byte length, then UTF-16 big-endian; 0xFFFFFFFF for a null string
//
// There is no magic, version or length: the blob is delimited by the QByteArray that carries it.
struct PatternRecord
{
    QPixmap thumbnail;      // 85 pixels high, width by the aspect ratio
    QTime startTime;        // on the track; a null time counts as 0 in all arithmetic
    QTime endTime;          // on the track
    QColor solidColor;      // only for a colour pattern, invalid in the other kinds
    qint32 repeatCount = 0; // how often the thumbnail is laid across the duration
    qint32 patternKind = 0; // PatternKind; unknown values are kept as they are
    qint32 speedValue = 0;  // 0: repeatCount is fixed; above 0: the speed slider's value that repeatCount follows
    QString settingsText;   // all that the editor needs to rebuild the pattern (see settingstext.h)
};

// End minus start, signed milliseconds; times that no clock has wrap.
int durationMs(const PatternRecord &record);

// The one rule by which a placed pattern changes its times: in speed mode its repeat count follows (see repeatrules.h).
void retime(PatternRecord &record, const QTime &start, const QTime &end, int leds, float rate);

// The place of a pattern on its track; a null time counts as 0.
Span spanOf(const PatternRecord &record);

// Gives a pattern the place that a collision rule found for it. A bound that stays where it is keeps its very value, so
// that a null time stays one. Any other is that of another pattern, times beyond a day included: nothing wraps.
void applySpan(PatternRecord &record, Span place, int leds, float rate);

// Reads the eight fields without any check: what a short or damaged blob does not hold comes out as nulls, zeros and
// empty strings. A thumbnail whose header claims a size beyond what any pattern has is not decoded and stays null, so
// untrusted bytes cannot ask for absurd memory.
PatternRecord readPattern(const QByteArray &blob);

// Writes the eight fields over the bytes of blob from the start and returns how many bytes the thumbnail takes. When
// the new encoding is shorter the old tail stays behind; every reader stops after settingsText. Encoding the thumbnail
// is what costs: a caller who knows that the blob begins with this very thumbnail gives its byte count as
// keptThumbnail, and only the rest is written.
int overwritePattern(QByteArray &blob, const PatternRecord &record, int keptThumbnail = 0);

// Have they the same bytes? Items, snapshots and copies share their blobs, so most comparisons end at the same address.
bool sameBlob(const QByteArray &a, const QByteArray &b);

// The eight fields as a fresh blob.
QByteArray writePattern(const PatternRecord &record);

} // namespace glow
