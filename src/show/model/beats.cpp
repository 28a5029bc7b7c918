#include "show/model/beats.h"

#include "show/model/showtime.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace glow {

namespace {

const QByteArray magic("GLOWSMITH-BEATS");

// Goes up with the form and with an analysis that hears better.
constexpr quint32 version = 1;

constexpr int streamVersion = QDataStream::Qt_5_12;

// A song of a day has fewer beats than this takes.
constexpr qint64 mostCacheBytes = 8 * 1024 * 1024;

constexpr qint64 pieceBytes = 64 * 1024;
constexpr qint64 pieces = 64;

using ShownBeats = QVector<ShownBeat>;

// A beat more in the middle between each two.
void splitBeats(ShownBeats &beats)
{
    ShownBeats split;
    for (int i = 0; i < beats.size(); ++i) {
        split << beats.at(i);
        if (i + 1 < beats.size()) {
            split << ShownBeat{beats.at(i).ms + (beats.at(i + 1).ms - beats.at(i).ms) / 2, ShownBeat::Beat};
        }
    }
    beats = split;
}

// Every second beat: those that leave more bars' first beats, or the first one of all if that decides nothing.
void thinBeats(ShownBeats &beats)
{
    int bars[2] = {0, 0};
    for (int i = 0; i < beats.size(); ++i) {
        bars[i % 2] += beats.at(i).kind == ShownBeat::Bar ? 1 : 0;
    }
    ShownBeats thinned;
    for (int i = bars[1] > bars[0] ? 1 : 0; i < beats.size(); i += 2) {
        thinned << beats.at(i);
    }
    beats = thinned;
}

// Half a beat later: each into the middle before the next, and the last by as much as the one before it.
void shiftBeats(ShownBeats &beats)
{
    int half = 0;
    for (int i = 0; i < beats.size(); ++i) {
        half = i + 1 < beats.size() ? (beats.at(i + 1).ms - beats.at(i).ms) / 2 : half;
        beats[i].ms = std::min(beats.at(i).ms + half, msPerDay);
    }
}

ShownBeats asHeard(const Beats &heard)
{
    ShownBeats beats;
    for (const int ms : heard.times) {
        beats << ShownBeat{ms, ShownBeat::Beat};
    }
    for (const int bar : heard.bars) {
        if (bar >= 0 && bar < beats.size()) {
            beats[bar].kind = ShownBeat::Bar;
        }
    }
    return beats;
}

// Lower goes first among equal times.
int rankOf(ShownBeat::Kind kind)
{
    return kind == ShownBeat::Bar ? 0 : kind == ShownBeat::Mark ? 1 : 2;
}

// Of times, which are ascending, the first one behind ms or at it.
ShownBeats::const_iterator notBefore(const ShownBeats &beats, int ms)
{
    return std::lower_bound(beats.cbegin(), beats.cend(), ms,
                            [](const ShownBeat &beat, int time) { return beat.ms < time; });
}

QByteArray digest(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

void writeNumbers(QDataStream &stream, const QVector<int> &numbers)
{
    stream << static_cast<quint32>(numbers.size());
    for (const int number : numbers) {
        stream << static_cast<qint32>(number);
    }
}

// The stream's status becomes ReadCorruptData for numbers that do not ascend or lie outside of 0 to most.
QVector<int> readNumbers(QDataStream &stream, int most)
{
    quint32 count = 0;
    stream >> count;
    QVector<int> numbers;
    qint64 last = -1;
    // No room is made for what a foreign count promises.
    for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        qint32 number = 0;
        stream >> number;
        if (number <= last || number > most) {
            stream.setStatus(QDataStream::ReadCorruptData);
        }
        numbers << number;
        last = number;
    }
    return numbers;
}

std::optional<SongBeats> readContent(const QByteArray &content, const QByteArray &key)
{
    QDataStream stream(content);
    stream.setVersion(streamVersion);
    SongBeats song;
    QByteArray ofSong;
    stream >> ofSong;
    if (ofSong != key) {
        return std::nullopt;
    }
    stream >> song.heard.tempo;
    song.heard.times = readNumbers(stream, msPerDay);
    song.heard.bars = readNumbers(stream, song.heard.times.size() - 1);
    song.marks = readNumbers(stream, msPerDay);
    qint32 doublings = 0;
    stream >> doublings >> song.shifted;
    song.doublings = doublings;
    const bool sound = stream.status() == QDataStream::Ok && stream.atEnd() && std::isfinite(song.heard.tempo) &&
                       song.heard.tempo >= 0 && doublings >= -mostDoublings && doublings <= mostDoublings;
    return sound ? std::make_optional(song) : std::nullopt;
}

QString cachePath(const QString &folder, const QByteArray &key)
{
    return QDir(folder).filePath(QString::fromLatin1(key.toHex()) + QStringLiteral(".beats"));
}

} // namespace

void doubleBeats(SongBeats &song)
{
    song.doublings = std::min(song.doublings + 1, mostDoublings);
}

void halveBeats(SongBeats &song)
{
    song.doublings = std::max(song.doublings - 1, -mostDoublings);
}

void addMark(SongBeats &song, int ms)
{
    const auto place = std::lower_bound(song.marks.begin(), song.marks.end(), ms);
    if (ms >= 0 && ms <= msPerDay && (place == song.marks.end() || *place != ms)) {
        song.marks.insert(place, ms);
    }
}

QVector<ShownBeat> shownBeats(const SongBeats &song)
{
    ShownBeats beats = asHeard(song.heard);
    for (int step = 0; step < std::min(song.doublings, mostDoublings); ++step) {
        splitBeats(beats);
    }
    for (int step = 0; step > std::max(song.doublings, -mostDoublings); --step) {
        thinBeats(beats);
    }
    if (song.shifted) {
        shiftBeats(beats);
    }
    for (const int ms : song.marks) {
        beats << ShownBeat{ms, ShownBeat::Mark};
    }
    std::sort(beats.begin(), beats.end(), [](const ShownBeat &a, const ShownBeat &b) {
        return a.ms != b.ms ? a.ms < b.ms : rankOf(a.kind) < rankOf(b.kind);
    });
    const auto sameTime = [](const ShownBeat &a, const ShownBeat &b) { return a.ms == b.ms; };
    beats.erase(std::unique(beats.begin(), beats.end(), sameTime), beats.end());
    return beats;
}

double shownTempo(const SongBeats &song)
{
    return std::ldexp(song.heard.tempo, qBound(-mostDoublings, song.doublings, mostDoublings));
}

std::optional<int> nearestBeat(const QVector<ShownBeat> &beats, int ms, int reachMs)
{
    const auto after = notBefore(beats, ms);
    std::optional<int> nearest;
    qint64 distance = reachMs;
    if (after != beats.cend() && qint64(after->ms) - ms <= distance) {
        nearest = after->ms;
        distance = qint64(after->ms) - ms;
    }
    if (after != beats.cbegin() && qint64(ms) - (after - 1)->ms <= distance) {
        nearest = (after - 1)->ms;
    }
    return nearest;
}

std::optional<int> nextBeat(const QVector<ShownBeat> &beats, int ms)
{
    const auto here = notBefore(beats, ms);
    const auto next = here != beats.cend() && here->ms == ms ? here + 1 : here;
    return next == beats.cend() ? std::nullopt : std::make_optional(next->ms);
}

std::optional<int> previousBeat(const QVector<ShownBeat> &beats, int ms)
{
    const auto here = notBefore(beats, ms);
    return here == beats.cbegin() ? std::nullopt : std::make_optional((here - 1)->ms);
}

QByteArray songKey(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const qint64 size = file.size();
    const bool whole = size <= pieces * pieceBytes;
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(QByteArray::number(size));
    for (qint64 piece = 0; piece < pieces; ++piece) {
        // The last piece ends with the file.
        const qint64 from = whole ? piece * pieceBytes : (size - pieceBytes) / (pieces - 1) * piece;
        const qint64 place = !whole && piece == pieces - 1 ? size - pieceBytes : from;
        const qint64 length = std::min(pieceBytes, size - place);
        if (length <= 0) {
            break;
        }
        const QByteArray bytes = file.seek(place) ? file.read(length) : QByteArray();
        if (bytes.size() != length) {
            return {};
        }
        hash.addData(bytes);
    }
    return hash.result();
}

QByteArray writeBeats(const SongBeats &song, const QByteArray &key)
{
    QByteArray content;
    QDataStream inner(&content, QIODevice::WriteOnly);
    inner.setVersion(streamVersion);
    inner << key << song.heard.tempo;
    writeNumbers(inner, song.heard.times);
    writeNumbers(inner, song.heard.bars);
    writeNumbers(inner, song.marks);
    inner << static_cast<qint32>(song.doublings) << song.shifted;

    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(streamVersion);
    stream << magic << version << content << digest(content);
    return bytes;
}

std::optional<SongBeats> readBeats(const QByteArray &bytes, const QByteArray &key)
{
    QDataStream stream(bytes);
    stream.setVersion(streamVersion);
    QByteArray mark;
    quint32 form = 0;
    stream >> mark >> form;
    if (mark != magic || form != version) {
        return std::nullopt;
    }
    QByteArray content;
    QByteArray sum;
    stream >> content >> sum;
    const bool whole = stream.status() == QDataStream::Ok && stream.atEnd() && sum == digest(content);
    return whole ? readContent(content, key) : std::nullopt;
}

WriteResult keepBeats(const QString &folder, const SongBeats &song, const QByteArray &key)
{
    QDir().mkpath(folder); // where that fails, writing says why
    return writeWholeFile(cachePath(folder, key), writeBeats(song, key));
}

std::optional<SongBeats> keptBeats(const QString &folder, const QByteArray &key)
{
    const QString path = cachePath(folder, key);
    const std::optional<QByteArray> bytes =
        QFileInfo(path).size() <= mostCacheBytes ? readWholeFile(path) : std::nullopt;
    return bytes && !key.isEmpty() ? readBeats(*bytes, key) : std::nullopt;
}

} // namespace glow
