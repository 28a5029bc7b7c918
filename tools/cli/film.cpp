// glowsmith-cli film: a show as a film of the spinning prop.
#include "cli.h"

#include "show/film/filmencoder.h"
#include "show/film/makefilm.h"

#include <QFileInfo>

#include <csignal>

namespace cli {

namespace {

volatile std::sig_atomic_t interrupted = 0;

void interrupt(int /*signal*/)
{
    interrupted = 1;
}

struct FilmChoice
{
    QCommandLineOption out{{QStringLiteral("o"), QStringLiteral("output")},
                           QStringLiteral("The film to write: .mp4, .webm, .gif, or .png for one frame."),
                           QStringLiteral("FILM")};
    QCommandLineOption track{QStringLiteral("track"),
                             QStringLiteral("The track by the number of its label in the window, 1 for the lowest. "
                                            "Default: the one that is current when the project is opened, which is "
                                            "the last."),
                             QStringLiteral("N")};
    QCommandLineOption allTracks{QStringLiteral("all-tracks"),
                                 QStringLiteral("One prop for each track, with its number.")};
    QCommandLineOption from{QStringLiteral("from"),
                            QStringLiteral("Where the film begins, in milliseconds or as mm:ss.zzz."),
                            QStringLiteral("T"), QStringLiteral("0")};
    QCommandLineOption to{QStringLiteral("to"),
                          QStringLiteral("Where it ends. Default: the end of the last pattern or of the song."),
                          QStringLiteral("T")};
    QCommandLineOption size{QStringLiteral("size"), QStringLiteral("Width and height in pixels, both even."),
                            QStringLiteral("WxH"), QStringLiteral("1280x720")};
    QCommandLineOption rate{QStringLiteral("fps"), QStringLiteral("Frames a second."), QStringLiteral("N"),
                            QStringLiteral("30")};
    QCommandLineOption noSong{QStringLiteral("no-song"), QStringLiteral("A film without sound.")};
    QCommandLineOption timeCode{QStringLiteral("time-code"), QStringLiteral("Shows the time in a corner.")};

    void addTo(Command &command) const
    {
        command.parser.addOptions({out, track, allTracks, from, to, size, rate, noSong, timeCode});
    }
};

bool timeOption(const Command &command, const QCommandLineOption &option, int &ms)
{
    ms = glow::parseFilmTime(command.parser.value(option));
    if (ms < 0) {
        complain(QStringLiteral("glowsmith-cli film: --%1 takes milliseconds or mm:ss.zzz").arg(option.names().last()));
    }
    return ms >= 0;
}

// The choices of the command line; false after a complaint.
bool readChoice(const Command &command, const FilmChoice &choice, glow::FilmOptions &options)
{
    const QCommandLineParser &parser = command.parser;
    options.goal = parser.value(choice.out);
    if (options.goal.isEmpty()) {
        complain(QStringLiteral("glowsmith-cli film: -o FILM is needed"));
        return false;
    }
    if (parser.isSet(choice.track) && parser.isSet(choice.allTracks)) {
        complain(QStringLiteral("glowsmith-cli film: --track and --all-tracks exclude each other"));
        return false;
    }
    options.size = glow::parseFilmSize(parser.value(choice.size));
    options.song = !parser.isSet(choice.noSong);
    options.timeCode = parser.isSet(choice.timeCode);
    return timeOption(command, choice.from, options.fromMs) &&
           (!parser.isSet(choice.to) || timeOption(command, choice.to, options.toMs)) &&
           command.number(choice.rate, 1, glow::mostFilmRate, options.rate);
}

bool chooseTrack(const Command &command, const FilmChoice &choice, int tracks, int &track)
{
    track = command.parser.isSet(choice.allTracks) ? glow::allTracks : tracks;
    return !command.parser.isSet(choice.track) || command.number(choice.track, 1, tracks, track);
}

// The song's length; 0, after a warning, if the film has to do without it.
int songLength(const glow::FilmShow &show, const glow::FilmOptions &options)
{
    const glow::SongFacts song = options.song ? glow::askSong(show.songPath) : glow::SongFacts();
    if (song.state == glow::SongState::Lost) {
        complain(QStringLiteral("warning: %1 is gone, the film has no sound").arg(show.songPath));
    } else if (song.state == glow::SongState::Unreadable) {
        complain(QStringLiteral("warning: %1 cannot be read, the film has no sound").arg(show.songPath));
    }
    return song.ms;
}

bool isWrongUse(glow::FilmError error)
{
    switch (error) {
    case glow::FilmError::UnknownFormat:
    case glow::FilmError::BadSize:
    case glow::FilmError::BadGifRate:
    case glow::FilmError::FromBehindTo:
    case glow::FilmError::FromBehindEnd:
        return true;
    default:
        return false;
    }
}

int drawn = -1; // percent

bool drawFilmProgress(const glow::FilmProgress &progress)
{
    const int percent = int(qint64(progress.done) * 100 / progress.total);
    if (percent != drawn) {
        drawn = percent;
        drawProgress(percent, QStringLiteral("%1 s left ").arg(progress.leftMs / 1000));
    }
    return interrupted == 0;
}

int makeFilm(const glow::FilmPlan &plan)
{
    // The half film goes before the program does.
    std::signal(SIGINT, interrupt);
    std::signal(SIGTERM, interrupt);
    const glow::FilmResult result = glow::makeFilm(plan, drawFilmProgress);
    if (result.error != glow::FilmError::None) {
        const QString lineEnd = drawn >= 0 && drawn < 100 ? QStringLiteral("\n") : QString();
        complain(lineEnd + QStringLiteral("glowsmith-cli film: ") + glow::filmErrorText(result.error, result.detail));
        return Failed;
    }
    print(QStringLiteral("%1: %2 frames, %3 bytes").arg(plan.goal).arg(plan.frames()).arg(QFileInfo(plan.goal).size()));
    return Done;
}

} // namespace

int film(const QStringList &arguments)
{
    Command command(QStringLiteral("film"),
                    QStringLiteral("Makes a film of the spinning prop with the song under it. Needs ffmpeg, except for "
                                   "a .png."),
                    QStringLiteral("glowsmith-cli film show.gsw3 -o show.mp4 --all-tracks --from 1:30 --to 2:00"));
    const FilmChoice choice;
    choice.addTo(command);
    command.parser.addPositionalArgument(QStringLiteral("PROJECT"), QStringLiteral("A .gsw3 project."));
    int code = Done;
    glow::FilmOptions options;
    if (!command.parse(arguments, 1, code)) {
        return code;
    }
    if (!readChoice(command, choice, options)) {
        return WrongUse;
    }
    glow::Project project;
    if (!openProject(command.operand(0), project)) {
        return Failed;
    }
    if (!chooseTrack(command, choice, project.tracks.size(), options.track)) {
        return WrongUse;
    }
    const glow::FilmShow show = glow::filmShow(project);
    glow::FilmPlan plan;
    QString detail;
    const glow::FilmError error = glow::planFilm(show, options, songLength(show, options), plan, detail);
    if (error != glow::FilmError::None) {
        complain(QStringLiteral("glowsmith-cli film: ") + glow::filmErrorText(error, detail));
        return isWrongUse(error) ? WrongUse : Failed;
    }
    return makeFilm(plan);
}

} // namespace cli
