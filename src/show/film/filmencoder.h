// ffmpeg as a child process that takes frames through a pipe and writes a film's file, and what it knows of songs.
#pragma once

#include "show/film/filmplan.h"

#include <QByteArray>
#include <QImage>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>

namespace glow {

// The program's path; empty if it is not installed.
QString findEncoder();

enum class SongState { NoSong, Lost, Unreadable, NoEncoder, Readable };

struct SongFacts
{
    SongState state = SongState::NoSong;
    int ms = 0; // length, for a readable song
};

// Asks ffmpeg about the song of a show, which blocks for about a tenth of a second. The path is foreign: it is taken
// for a file of this machine, whatever it looks like, and nothing that the file may name is fetched.
SongFacts askSong(const QString &path);

// What ffmpeg is told for a plan of .mp4, .webm or .gif. Frames come from input, or from the pipe if that is empty. A
// .gif takes paletteFrames frames first that are not shown: its colours are chosen from them.
QStringList encoderArguments(const FilmPlan &plan, const QString &file, int paletteFrames = 0,
                             const QString &input = QString());

// The picture's bytes as those arguments announce them.
void encoderFrame(FilmFormat format, const QImage &picture, QByteArray &bytes);

// Blocking, and bound to the thread that starts it. While it waits it asks now and then whether to go on; a no makes
// write and finish fail.
class FilmEncoder
{
public:
    explicit FilmEncoder(std::function<bool()> goesOn);
    ~FilmEncoder(); // kills an encoder that has not finished

    bool start(const QStringList &arguments);
    bool write(const QByteArray &frame);

    // Returns when the film is whole, or false.
    bool finish();

    // What ffmpeg said last; of use when something failed.
    QString lastWords() const;

private:
    void listen();

    std::function<bool()> goesOn;
    QProcess process;
    QByteArray words;
};

} // namespace glow
