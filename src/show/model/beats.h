// A song's beats: what was heard, what the user makes of it, and the cache that keeps both. Times are milliseconds of
// the song, which are those of the show.
#pragma once

#include "show/base/wholefile.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

namespace glow {

// What an analysis heard.
struct Beats
{
    QVector<int> times; // ascending, each once, from 0 to msPerDay
    QVector<int> bars;  // the places in times at which a bar begins, ascending; empty where that cannot be told
    double tempo = 0.0; // beats a minute, 0 if there are none
};

// The beats of one song together with the user's part.
struct SongBeats
{
    Beats heard;
    int doublings = 0;    // -1 shows every second beat, 1 one more between each two; within mostDoublings
    bool shifted = false; // every shown beat half a beat later
    QVector<int> marks;   // tapped, as times are
};

constexpr int mostDoublings = 2;

struct ShownBeat
{
    enum Kind { Beat, Bar, Mark };
    int ms = 0;
    Kind kind = Beat;
};

// "double" and "half": one step up or down, or nothing at the limit.
void doubleBeats(SongBeats &song);
void halveBeats(SongBeats &song);

// Drops a mark; one that lies outside of a day or stands there already changes nothing.
void addMark(SongBeats &song, int ms);

// Beats and marks in one list, ascending, each time once; where two share a time the bar's beat counts before the mark
// and the mark before the beat.
QVector<ShownBeat> shownBeats(const SongBeats &song);

// Beats a minute as shown.
double shownTempo(const SongBeats &song);

// The time of the beat nearest to ms and at most reachMs away; the earlier of two that are as near.
std::optional<int> nearestBeat(const QVector<ShownBeat> &beats, int ms, int reachMs);

// The first beat behind ms, and the last before it.
std::optional<int> nextBeat(const QVector<ShownBeat> &beats, int ms);
std::optional<int> previousBeat(const QVector<ShownBeat> &beats, int ms);

// What names a song by its content, whatever its path: a SHA-256 over its size and its bytes, of a large file over
// pieces of it at even distances, its beginning and its end among them (4 MB in all). Empty if the file cannot be read
// or is none.
QByteArray songKey(const QString &path);

// The cache holds one file a song, a QDataStream (Qt 5.12, big-endian): the text "GLOWSMITH-BEATS" (byte array), the
// version (quint32), a byte array and its SHA-256. In the byte array stand the song's key (byte array), tempo (double),
// times, bars and marks (each a quint32 count and so many qint32), doublings (qint32) and shifted (bool).
QByteArray writeBeats(const SongBeats &song, const QByteArray &key);

// Nothing for anything but whole bytes of this version and this song that keep what the structures above promise.
std::optional<SongBeats> readBeats(const QByteArray &bytes, const QByteArray &key);

// The same in a folder, which is made when it is needed and is the caller's choice (the user's cache folder). What
// cannot be read or is damaged or foreign counts as not there.
WriteResult keepBeats(const QString &folder, const SongBeats &song, const QByteArray &key);
std::optional<SongBeats> keptBeats(const QString &folder, const QByteArray &key);

} // namespace glow
