// What a film of a show is to be: the choices as a value, and what comes of them for a certain show.
#pragma once

#include "show/draw/showprop.h"

#include <QCoreApplication>
#include <QSize>
#include <QString>
#include <QVector>

#include <optional>

namespace glow {

struct Project;

struct FilmTrack
{
    int number = 0; // of its label, 1 for the lowest
    QVector<PropPattern> patterns;

    int endMs() const; // of the last pattern, 0 without one
};

// What a film needs of a show. Holds no pixmap, so it may pass to another thread.
struct FilmShow
{
    int leds = 0;
    QVector<FilmTrack> tracks;
    QString songPath; // empty for none
};

// The tracks are numbered in the file's order; patterns stand as they would be exported.
FilmShow filmShow(const Project &project);

constexpr int allTracks = 0;
constexpr int untilTheEnd = -1;

// The bounds of the choices.
constexpr int leastFilmSide = 64; // pixels; both sides are even, as video wants them
constexpr int mostFilmSide = 4096;
constexpr int mostFilmRate = 120;             // frames a second
constexpr int mostGifRate = 50;               // what viewers play
constexpr int longestFilmMs = 60 * 60 * 1000; // a longer one is a slip of the hand
constexpr int longestGifMs = 60 * 1000;       // it would be huge
constexpr int leastCellSide = 32;             // pixels for one prop of several

struct FilmOptions
{
    QString goal;          // the film's file, whose suffix decides: .mp4, .webm, .gif, .png
    int track = allTracks; // or the number of one
    int fromMs = 0;
    int toMs = untilTheEnd; // the end of the last pattern or of the song, whichever is later; of no meaning for a .png
    QSize size{1280, 720};
    int rate = 30; // frames a second
    bool song = true;
    bool timeCode = false; // show time in a corner
};

enum class FilmFormat { Mp4, Webm, Gif, Png };

// The order is of no meaning.
enum class FilmError {
    None,
    UnknownFormat,
    BadSize,
    BadRate,
    BadGifRate,
    NoSuchTrack,
    EmptyTrack,
    EmptyShow,
    NoLeds,
    TooManyTracks,
    FromBehindTo,
    FromBehindEnd,
    TooLong,
    GifTooLong,
    NoEncoder,
    GoalNoFile,
    GoalReadOnly,
    GoalBusy,
    EncoderFailed,
    NotMoved,
    NotWritten,
    Cancelled
};

struct FilmPlan
{
    QString goal;
    FilmFormat format = FilmFormat::Mp4;
    int leds = 0;
    QVector<FilmTrack> tracks;
    QSize size;
    int rate = 30;
    int fromMs = 0;
    int toMs = 0;
    QString songPath; // empty for a film without sound
    bool timeCode = false;

    int frames() const;               // at least one
    int timeOfFrame(int frame) const; // show time in milliseconds
};

// The format that the name's suffix stands for.
std::optional<FilmFormat> filmFormat(const QString &goal);

struct PlannedFilm
{
    FilmError error = FilmError::None;
    QString detail; // of the error, what belongs into its sentence
    FilmPlan plan;
};

// Makes the plan, or tells what is wrong with the choices. songMs is the song's length and counts only if the song is
// part of the film; 0 for none or one that cannot be read, which gives a film without sound.
PlannedFilm planFilm(const FilmShow &show, const FilmOptions &options, int songMs);

// The end that toMs = untilTheEnd stands for.
int filmEndMs(const FilmShow &show, const FilmOptions &options, int songMs);

// A sentence for people, in the program's language.
QString filmErrorText(FilmError error, const QString &detail);

// "1280x720" or "1280 × 720"; an empty size for anything else.
QSize parseFilmSize(const QString &text);

// Milliseconds, "mm:ss", "mm:ss.zzz" or "h:mm:ss.zzz" with a fraction of one to three digits, below 24 hours.
std::optional<int> parseFilmTime(const QString &text);

// "mm:ss.zzz", with the hour in front if there is one.
QString filmTimeText(int ms);

} // namespace glow
