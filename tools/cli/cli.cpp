// What the commands share: their prologue, their outputs, and the show that several of them work on.
#include "cli.h"

#include "show/image/projectshow.h"
#include "show/model/showtime.h"

#include <QFile>
#include <QJsonDocument>
#include <QTextStream>

#include <cstdio>

namespace cli {

namespace {

QString titleOf(const Command &command)
{
    return QStringLiteral("glowsmith-cli ") + QLatin1String(command.name);
}

ExitCode misused(const Command &command, const QString &how)
{
    complain(titleOf(command) + QStringLiteral(": ") + how);
    return WrongUse;
}

void describe(const Command &command, QCommandLineParser &parser)
{
    parser.setApplicationDescription(QStringLiteral("%1\n\nExample:\n  glowsmith-cli %2")
                                         .arg(QLatin1String(command.does), QLatin1String(command.example)));
    parser.addOption({{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Tells how the command is used.")});
    parser.addOptions(command.options);
    parser.addPositionalArgument(QLatin1String(command.operand), QLatin1String(command.operandHelp));
}

// The option that a command cannot do without as it stands on the command line, such as "-o SHOW.bin".
QString spellingOf(const QCommandLineOption &option)
{
    const QString name = option.names().first();
    return (name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name + u' ' + option.valueName();
}

std::optional<glow::ShowOptions> showOptions(const Call &call)
{
    const std::optional<int> slot = call.number("slot", 1, 8);
    const std::optional<int> startMark = slot ? call.number("start-mark", 0, glow::msPerDay) : std::nullopt;
    if (!startMark) {
        return std::nullopt;
    }
    glow::ShowOptions options;
    options.slot = *slot;
    options.loop = !call.isSet("once");
    options.startMarkMs = *startMark;
    return options;
}

} // namespace

void print(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

void printJson(const QJsonObject &facts)
{
    QFile out;
    out.open(stdout, QIODevice::WriteOnly);
    out.write(QJsonDocument(facts).toJson());
}

void complain(const QString &line)
{
    QTextStream(stderr) << line << Qt::endl;
}

void warnIfCut(const glow::ImageSummary &summary)
{
    if (summary.cut) {
        complain(QStringLiteral("warning: the show is longer than any prop holds, its last pictures are left out"));
    }
}

ExitCode run(const Command &command, const QStringList &arguments)
{
    QCommandLineParser parser;
    describe(command, parser);
    const bool understood = parser.parse(QStringList{titleOf(command)} + arguments);
    if (parser.isSet(QStringLiteral("help"))) {
        // The parser knows nothing of commands; its own first words are the path of the program.
        const QString text = parser.helpText();
        print(QStringLiteral("Usage: ") + titleOf(command) + text.mid(text.indexOf(QStringLiteral(" [options]"))));
        return Done;
    }
    if (!understood) {
        return misused(command, parser.errorText());
    }
    const int operands = parser.positionalArguments().size();
    if (operands != 1) {
        return misused(command, QStringLiteral("1 file expected, %1 given (see --help)").arg(operands));
    }
    for (const QCommandLineOption &option : command.options) {
        if (option.names().contains(QLatin1String(command.needed)) && parser.value(option).isEmpty()) {
            return misused(command, spellingOf(option) + QStringLiteral(" is needed"));
        }
    }
    return command.run(Call(command, parser));
}

Call::Call(const Command &command, const QCommandLineParser &parser)
    : command(command)
    , parser(parser)
{
}

QString Call::operand() const
{
    return parser.positionalArguments().first();
}

bool Call::isSet(const char *option) const
{
    return parser.isSet(QLatin1String(option));
}

QString Call::value(const char *option) const
{
    return parser.value(QLatin1String(option));
}

ExitCode Call::misuse(const QString &how) const
{
    return misused(command, how);
}

std::optional<int> Call::number(const char *option, int least, int most) const
{
    bool isNumber = false;
    const int number = value(option).toInt(&isNumber);
    if (isNumber && number >= least && number <= most) {
        return number;
    }
    misused(command,
            QStringLiteral("--%1 takes a number from %2 to %3").arg(QLatin1String(option)).arg(least).arg(most));
    return std::nullopt;
}

QList<QCommandLineOption> trackOptions()
{
    return {{QStringLiteral("track"),
             QStringLiteral("The track by the number of its label in the window, 1 for the lowest. Default: the one "
                            "that is current when the project is opened, which is the last."),
             QStringLiteral("N")},
            {QStringLiteral("slot"), QStringLiteral("The track slot on the prop, 1 to 8."), QStringLiteral("1-8"),
             QStringLiteral("1")},
            {QStringLiteral("once"), QStringLiteral("Play once instead of starting over at the end.")},
            {QStringLiteral("start-mark"), QStringLiteral("Where the show starts, in milliseconds."),
             QStringLiteral("MS"), QStringLiteral("0")}};
}

ExitCode withShow(const Call &call, ExitCode (*run)(const Call &call, const glow::DeviceShow &show))
{
    const std::optional<glow::ShowOptions> options = showOptions(call);
    if (!options) {
        return WrongUse;
    }
    const std::optional<glow::Project> project = openProject(call.operand());
    if (!project) {
        return Failed;
    }
    const int tracks = project->tracks.size();
    const std::optional<int> track = call.isSet("track") ? call.number("track", 1, tracks) : tracks;
    if (!track) {
        return WrongUse;
    }
    const glow::DeviceShow show = glow::showOfTrack(*project, *track - 1, *options);
    if (show.patterns.isEmpty()) {
        complain(QStringLiteral("%1: track %2 holds no pattern").arg(call.operand()).arg(*track));
        return Failed;
    }
    return run(call, show);
}

} // namespace cli
