// glowsmith-cli: shows without a window.
#include "cli.h"

#include "show/base/languages.h"
#include "show/base/programversion.h"
#include "show/base/resources.h"

#include <QGuiApplication>
#include <QLoggingCategory>

namespace {

QString usage()
{
    QString text = QStringLiteral("Usage: glowsmith-cli COMMAND [ARGUMENTS]\n\nCommands:\n");
    for (const cli::Command &command : cli::commands()) {
        text += QStringLiteral("  %1 %2\n").arg(QLatin1String(command.name), -10).arg(QLatin1String(command.purpose));
    }
    text += QStringLiteral("  %1 %2\n").arg(QLatin1String("help"), -10).arg(QLatin1String("how a command is used"));
    text += QStringLiteral("\nglowsmith-cli help COMMAND tells more. \"-o -\" writes to standard output.\n\n"
                           "Examples:\n"
                           "  glowsmith-cli info show.gsw3\n"
                           "  glowsmith-cli check show.gsw3 --json\n"
                           "  glowsmith-cli export show.gsw3 -o show.bin\n\n"
                           "Exit codes: 0 done, 1 it could not be done (or check found something), 2 wrong use.");
    return text;
}

// Runs what the command line says.
cli::ExitCode runLine(QStringList arguments)
{
    QString name = arguments.isEmpty() ? QString() : arguments.takeFirst();
    if (name == QLatin1String("--version") || name == QLatin1String("-v")) {
        cli::print(QStringLiteral("glowsmith-cli %1").arg(glow::programVersion, 0, 'f', 3));
        return cli::Done;
    }
    const bool asksForHelp = name == QLatin1String("help");
    if (name == QLatin1String("--help") || name == QLatin1String("-h") || (asksForHelp && arguments.isEmpty())) {
        cli::print(usage());
        return cli::Done;
    }
    if (asksForHelp) {
        name = arguments.takeFirst();
        arguments = QStringList{QStringLiteral("--help")};
    }
    for (const cli::Command &command : cli::commands()) {
        if (name == QLatin1String(command.name)) {
            return cli::run(command, arguments);
        }
    }
    cli::complain(name.isEmpty() ? usage()
                                 : QStringLiteral("glowsmith-cli: no such command: %1 (see --help)").arg(name));
    return cli::WrongUse;
}

} // namespace

int main(int argc, char *argv[])
{
    // Pictures are drawn and decoded, but nothing is ever shown: no display is needed.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    // What the program and its libraries note for developers is of no use here.
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\ndefault.warning=false"));
    const QGuiApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("glowsmith-cli"));
    glow::initResources();
    // The commands speak English, and so must what they pass on of an upload.
    glow::Languages languages;
    languages.speak(AppSettings::CompleteEnglish);

    return runLine(QCoreApplication::arguments().mid(1));
}
