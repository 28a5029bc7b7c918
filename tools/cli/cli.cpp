#include "cli.h"

#include "show/base/wholefile.h"

#include <QFile>
#include <QJsonDocument>
#include <QTextStream>

#include <cstdio>

namespace cli {

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

Command::Command(const QString &commandName, const QString &does, const QString &example)
    : name(commandName)
{
    parser.setApplicationDescription(does + QStringLiteral("\n\nExample:\n  ") + example);
    parser.addOption({{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Tells how the command is used.")});
}

bool Command::parse(const QStringList &arguments, int positionals, int &code)
{
    const bool understood = parser.parse(QStringList{QStringLiteral("glowsmith-cli ") + name} + arguments);
    if (parser.isSet(QStringLiteral("help"))) {
        // The parser knows nothing of commands.
        print(parser.helpText().replace(QStringLiteral("glowsmith-cli [options]"),
                                        QStringLiteral("glowsmith-cli %1 [options]").arg(name)));
        code = Done;
        return false;
    }
    code = WrongUse;
    if (!understood) {
        complain(QStringLiteral("glowsmith-cli %1: %2").arg(name, parser.errorText()));
        return false;
    }
    if (parser.positionalArguments().size() != positionals) {
        complain(QStringLiteral("glowsmith-cli %1: %2 file expected, %3 given (see --help)")
                     .arg(name)
                     .arg(positionals)
                     .arg(parser.positionalArguments().size()));
        return false;
    }
    return true;
}

bool Command::number(const QCommandLineOption &option, int least, int most, int &value) const
{
    bool isNumber = false;
    value = parser.value(option).toInt(&isNumber);
    if (isNumber && value >= least && value <= most) {
        return true;
    }
    complain(QStringLiteral("glowsmith-cli %1: --%2 takes a number from %3 to %4")
                 .arg(name, option.names().last())
                 .arg(least)
                 .arg(most));
    return false;
}

void TrackChoice::addTo(Command &command) const
{
    command.parser.addOptions({track, slot, once, startMark});
}

bool openProject(const QString &path, glow::Project &project)
{
    if (!glow::isProjectPath(path)) {
        complain(QStringLiteral("%1: not a .gsw3 project; old .gsw projects are opened in the window and saved anew")
                     .arg(path));
        return false;
    }
    const std::optional<QByteArray> bytes = glow::readWholeFile(path);
    if (!bytes.has_value()) {
        complain(QStringLiteral("%1: cannot be read").arg(path));
        return false;
    }
    // The shortest project: the two numbers and the text "null".
    constexpr int shortest = 22;
    if (bytes->size() < shortest) {
        complain(QStringLiteral("%1: too short for a project").arg(path));
        return false;
    }
    project = glow::readProject(*bytes);
    return true;
}

} // namespace cli
