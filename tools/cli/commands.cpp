// What the command line can do: one row a command, in the order of the help.
#include "cli.h"

namespace cli {

namespace {

using Options = QList<QCommandLineOption>;

Options operator+(const Options &options, const QCommandLineOption &last)
{
    return Options(options) << last;
}

QCommandLineOption flag(const char *name, const char *help)
{
    return {QLatin1String(name), QLatin1String(help)};
}

QCommandLineOption valued(const char *name, const char *help, const char *value)
{
    return {QLatin1String(name), QLatin1String(help), QLatin1String(value)};
}

QCommandLineOption output(const char *help, const char *value)
{
    return {{QStringLiteral("o"), QStringLiteral("output")}, QLatin1String(help), QLatin1String(value)};
}

} // namespace

QVector<Command> commands()
{
    constexpr auto project = "PROJECT";
    constexpr auto aProject = "A .gsw3 project.";
    return {
        {"info", "what a project holds: prop, song, tracks, patterns, lost pictures", "Tells what a project holds.",
         "info show.gsw3 --json", project, aProject, Options() + flag("json", "Prints the facts as JSON."), "", info},
        {"check", "what the prop will not show as drawn",
         "Tells what the prop will not show as drawn, and how far each entry drifts from the show's time. "
         "Ends with 1 if something was found.",
         "check show.gsw3 --track 2", project, aProject,
         trackOptions() + flag("json", "Prints what was found as JSON."), "",
         [](const Call &call) { return withShow(call, check); }},
        {"export", "write a track as a .bin file, as the window does",
         "Writes a track as a .bin file, byte for byte what the window exports.",
         "export show.gsw3 -o show.bin --slot 2 --once", project, aProject,
         trackOptions() + output("The file to write, - for standard output.", "SHOW.bin"), "output",
         [](const Call &call) { return withShow(call, exportBin); }},
        {"show", "draw what the prop will show as a picture",
         "Draws what the prop will show: its columns over time, with the borders of the entries and a time axis. "
         "Takes a project or a .bin file.",
         "show show.bin -o show.png", "FILE", "A .gsw3 project or a .bin file.",
         trackOptions() +
             output("The picture to write, in the format that its name ends in; - for a PNG on standard output.",
                    "PICTURE.png"),
         "output", drawPicture},
        {"relink", "find lost pictures in a folder",
         "Finds the project's lost pictures in a folder and its subfolders and writes their new places into the "
         "project.",
         "relink show.gsw3 --pictures ~/Pictures", project, aProject,
         Options() + valued("pictures", "Where to look.", "DIR"), "pictures", relink},
        {"pictures", "gather the project's pictures in a folder",
         "Copies every picture that the project uses into one folder. Files that stand there already are left as they "
         "are.",
         "pictures show.gsw3 -o gathered", project, aProject, Options() + output("The folder; made if absent.", "DIR"),
         "output", gatherPictures},
        {"upload", "send a track to the prop",
         "Sends a track to the prop. Without --port every port is asked in turn until a prop answers.",
         "upload show.gsw3 --port /dev/ttyACM0", project, aProject,
         trackOptions() + valued("port", "The only port to try.", "NAME"), "",
         [](const Call &call) { return withShow(call, upload); }},
        {"film", "make a film of the spinning prop with the song under it",
         "Makes a film of the spinning prop with the song under it. Needs ffmpeg, except for a .png.",
         "film show.gsw3 -o show.mp4 --all-tracks --from 1:30 --to 2:00", project, aProject,
         filmOptions() + output("The film to write: .mp4, .webm, .gif, or .png for one frame.", "FILM"), "output",
         film},
        {"beats", "where a song's beats are", "Finds the beats of a song: tempo and times.", "beats song.mp3 --json",
         "SONG", "A song, such as an .mp3 or a .wav.", Options() + flag("json", "Prints tempo and times as JSON."), "",
         beats},
    };
}

} // namespace cli
