// A show as it lies in a file: the prop's two numbers, the song's path and every pattern of every track, as a value
// with a reader and a writer.
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

namespace glow {

// The file (".gsw3") is one QDataStream dump with the stream's defaults, big-endian, no version set, fields in this
// order:
//
//   ledCount    qint16       2 bytes
//   frameRate   float        8 bytes: travels as a 64-bit IEEE double
//   songPath    QString      unsigned 32-bit byte length, then UTF-16 big-endian; the four letters "null" for no song
//   items       QByteArray   each: unsigned 32-bit length, then that many bytes; repeated to the end of the file
//
// An item is either a pattern's blob (patternrecord.h), which belongs to the current track, or the four bytes "NEXT":
// what follows belongs to a new track. Tracks are separated, not terminated, so an empty track shows as two separators
// in a row, and an empty last one as a separator with nothing behind it. There is no magic, version, count or checksum.
struct Project
{
    qint16 ledCount = 0;
    float frameRate = 0; // columns per second
    QString songPath = QStringLiteral("null");
    QVector<QVector<QByteArray>> tracks; // blobs in list order, tracks in file order; at least one after reading

    // False for "null", and for the empty path that a file cut off before its song leaves.
    bool hasSong() const;
};

// The shortest blob that holds a pattern: one with a null picture and a null text.
constexpr int shortestPattern = 39;

// Reads without any check, as the stream itself would: what a short or damaged file does not hold comes out as zeros,
// nulls and empty blobs, and reading ends with the bytes. A length beyond the file's end takes what is left and yields
// an empty value. Whatever lengths the bytes claim, they cost no more memory than a few times their size and a few
// megabytes.
Project readProject(const QByteArray &bytes);

// Whether bytes begin as a project does: an LED count, a column rate and a song's path that make sense. Reading does
// not ask for it; it tells a project from a file of another kind.
bool looksLikeProject(const QByteArray &bytes);

QByteArray writeProject(const Project &project);

// Which of the two formats a file has is a matter of its name alone: ".gsw3" anywhere in the path, in small letters,
// means this one; anything else is the old text form (oldproject.h).
bool isProjectPath(const QString &path);

} // namespace glow
