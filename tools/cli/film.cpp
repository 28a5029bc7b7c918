// glowsmith-cli film: a show as a film of the spinning prop.
#include "cli.h"
#include "progressbar.h"

#include "show/film/filmencoder.h"
#include "show/film/makefilm.h"

#include <QFileInfo>

#include <csignal>
#include <optional>

namespace cli {

namespace {

volatile std::sig_atomic_t interrupted = 0;

void interrupt(int /*signal*/)
{
    interrupted = 1;
}

// Nothing, after a complaint, if the option holds no time.
std::optional<int> timeOption(const Call &call, const char *option)
{
    const std::optional<int> ms = glow::parseFilmTime(call.value(option));
    if (!ms) {
        call.misuse(QStringLiteral("--%1 takes milliseconds or mm:ss.zzz").arg(QLatin1String(option)));
    }
    return ms;
}

// The choices of the command line, but for the track; nothing after a complaint.
std::optional<glow::FilmOptions> choices(const Call &call)
{
    glow::FilmOptions options;
    options.goal = call.value("output");
    options.size = glow::parseFilmSize(call.value("size"));
    options.song = !call.isSet("no-song");
    options.timeCode = call.isSet("time-code");
    const std::optional<int> from = timeOption(call, "from");
    const std::optional<int> to =
        from && call.isSet("to") ? timeOption(call, "to") : std::optional<int>(glow::untilTheEnd);
    const std::optional<int> rate = from && to ? call.number("fps", 1, glow::mostFilmRate) : std::nullopt;
    if (!rate) {
        return std::nullopt;
    }
    options.fromMs = *from;
    options.toMs = *to;
    options.rate = *rate;
    return options;
}

std::optional<int> chosenTrack(const Call &call, int tracks)
{
    if (call.isSet("track") && call.isSet("all-tracks")) {
        call.misuse(QStringLiteral("--track and --all-tracks exclude each other"));
        return std::nullopt;
    }
    if (call.isSet("all-tracks")) {
        return glow::allTracks;
    }
    return call.isSet("track") ? call.number("track", 1, tracks) : tracks;
}

void warnOfSilence(const glow::SongFacts &song, const QString &path)
{
    if (song.state == glow::SongState::Lost) {
        complain(QStringLiteral("warning: %1 is gone, the film has no sound").arg(path));
    } else if (song.state == glow::SongState::Unreadable) {
        complain(QStringLiteral("warning: %1 cannot be read, the film has no sound").arg(path));
    }
}

// Of the arguments, not of the show.
bool isMisuse(glow::FilmError error)
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

ExitCode makeFilm(const glow::FilmPlan &plan)
{
    // The half film goes before the program does.
    std::signal(SIGINT, interrupt);
    std::signal(SIGTERM, interrupt);
    ProgressBar bar;
    const glow::FilmResult result = glow::makeFilm(plan, [&bar](const glow::FilmProgress &now) {
        // The time is as wide as the one before, which stands under it.
        bar.show(static_cast<int>(qint64(now.done) * 100 / now.total),
                 QStringLiteral(" %1 s left").arg((now.leftMs + 999) / 1000, 5));
        return interrupted == 0;
    });
    bar.end();
    if (result.error != glow::FilmError::None) {
        complain(QStringLiteral("glowsmith-cli film: ") + glow::filmErrorText(result.error, result.detail));
        return Failed;
    }
    print(QStringLiteral("%1: %2 frames, %3 bytes").arg(plan.goal).arg(plan.frames()).arg(QFileInfo(plan.goal).size()));
    return Done;
}

} // namespace

QList<QCommandLineOption> filmOptions()
{
    return {{QStringLiteral("track"),
             QStringLiteral("The track by the number of its label in the window, 1 for the lowest. Default: the one "
                            "that is current when the project is opened, which is the last."),
             QStringLiteral("N")},
            {QStringLiteral("all-tracks"), QStringLiteral("One prop for each track, with its number.")},
            {QStringLiteral("from"), QStringLiteral("Where the film begins, in milliseconds or as mm:ss.zzz."),
             QStringLiteral("T"), QStringLiteral("0")},
            {QStringLiteral("to"),
             QStringLiteral("Where it ends. Default: the end of the last pattern or of the song."),
             QStringLiteral("T")},
            {QStringLiteral("size"), QStringLiteral("Width and height in pixels, both even."), QStringLiteral("WxH"),
             QStringLiteral("1280x720")},
            {QStringLiteral("fps"), QStringLiteral("Frames a second."), QStringLiteral("N"), QStringLiteral("30")},
            {QStringLiteral("no-song"), QStringLiteral("A film without sound.")},
            {QStringLiteral("time-code"), QStringLiteral("Shows the time in a corner.")}};
}

ExitCode film(const Call &call)
{
    std::optional<glow::FilmOptions> options = choices(call);
    if (!options) {
        return WrongUse;
    }
    const std::optional<glow::Project> project = openProject(call.operand());
    if (!project) {
        return Failed;
    }
    const std::optional<int> track = chosenTrack(call, project->tracks.size());
    if (!track) {
        return WrongUse;
    }
    options->track = *track;
    const glow::FilmShow show = glow::filmShow(*project);
    const glow::SongFacts song = options->song ? glow::askSong(show.songPath) : glow::SongFacts();
    const glow::PlannedFilm planned = glow::planFilm(show, *options, song.ms);
    if (planned.error != glow::FilmError::None) {
        complain(QStringLiteral("glowsmith-cli film: ") + glow::filmErrorText(planned.error, planned.detail));
        return isMisuse(planned.error) ? WrongUse : Failed;
    }
    warnOfSilence(song, show.songPath);
    return makeFilm(planned.plan);
}

} // namespace cli
