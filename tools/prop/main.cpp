// glowsmith-prop: a simulated prop on the desk. Prints where it can be reached, takes uploads, wipes and terminal
// commands, and keeps what it received.
#include "prop/simulatedprop.h"

#include "show/base/programversion.h"
#include "show/base/resources.h"
#include "show/image/showpicture.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTextStream>

#include <atomic>
#include <csignal>

namespace {

enum ExitCode { Done = 0, Failed = 1, WrongUse = 2 };

std::atomic<bool> interrupted{false};

void interrupt(int)
{
    interrupted = true;
}

void print(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

int complain(const QString &line, ExitCode code)
{
    QTextStream(stderr) << "glowsmith-prop: " << line << Qt::endl;
    return code;
}

struct Options
{
    QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Tells how it is used.")};
    QCommandLineOption version{{QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Tells the version.")};
    QCommandLineOption out{{QStringLiteral("o"), QStringLiteral("out")},
                           QStringLiteral("Keep what is received in this folder. Default: the working directory."),
                           QStringLiteral("DIR"),
                           QStringLiteral(".")};
    QCommandLineOption link{QStringLiteral("link"),
                            QStringLiteral("Make the port's link in this folder. Default: a temporary one."),
                            QStringLiteral("DIR")};
    QCommandLineOption number{QStringLiteral("number"), QStringLiteral("The port's number, 0 to 99."),
                              QStringLiteral("N"), QStringLiteral("0")};
    QCommandLineOption once{QStringLiteral("once"), QStringLiteral("End when the first upload or wipe has ended.")};
    QCommandLineOption silent{QStringLiteral("silent"), QStringLiteral("Never greet.")};
    QCommandLineOption refuse{QStringLiteral("refuse"), QStringLiteral("Refuse uploads.")};
    QCommandLineOption delay{QStringLiteral("delay"), QStringLiteral("Greet and answer so many milliseconds late."),
                             QStringLiteral("MS"), QStringLiteral("0")};
    QCommandLineOption vanish{QStringLiteral("vanish"), QStringLiteral("Be gone after so many bytes of an upload."),
                              QStringLiteral("BYTES")};

    QList<QCommandLineOption> all() const
    {
        return {help, version, out, link, number, once, silent, refuse, delay, vanish};
    }
};

QString description()
{
    return QStringLiteral(
        "A simulated prop: makes a pseudo-terminal and behaves on it as a prop on a serial port does. Set the printed\n"
        "variable for Glowsmith, and its upload, wipe and terminal talk to this program.\n\n"
        "Every upload leaves DIR/show-N.header and DIR/show-N.frames, as received, and DIR/show-N.png, what a prop\n"
        "would show. What is wrong with the data is said and makes the exit code 1.\n\n"
        "Examples:\n"
        "  glowsmith-prop --out received\n"
        "  glowsmith-prop --once --link ports &  GLOWSMITH_PORT_PATTERN=ports/COM%1 glowsmith\n"
        "  glowsmith-prop --refuse --number 5\n\n"
        "Exit codes: 0 done, 1 trouble with the port, the files or the data received, 2 wrong use.");
}

bool readNumber(const QCommandLineParser &parser, const QCommandLineOption &option, int most, int &value)
{
    bool ok = false;
    value = parser.value(option).toInt(&ok);
    return ok && value >= 0 && value <= most;
}

bool save(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// Keeps an upload's bytes and picture; false after a complaint.
bool keepUpload(const PropSession &session, int number, const QDir &folder)
{
    const QString base = folder.filePath(QStringLiteral("show-%1").arg(number));
    const QByteArray all = session.received;
    const int headerSize = static_cast<int>(qMin<qint64>(session.headerBytes, all.size()));
    const QImage picture = glow::drawShow(session.show);
    if (!save(base + QStringLiteral(".header"), all.left(headerSize)) ||
        !save(base + QStringLiteral(".frames"), all.mid(headerSize)) || !picture.save(base + QStringLiteral(".png"))) {
        complain(QStringLiteral("cannot write %1.*").arg(base), Failed);
        return false;
    }
    print(QStringLiteral("upload to track %1: %2 entries, %3 LEDs, %4 columns a second, %5 bytes%6 -> %7.png")
              .arg(session.track)
              .arg(session.show.entries.size())
              .arg(session.show.leds)
              .arg(session.show.rate)
              .arg(all.size())
              .arg(session.show.loop ? QStringLiteral(", looping") : QString(), base));
    for (const QString &problem : session.show.problems) {
        complain(problem, Failed);
    }
    return session.show.problems.isEmpty();
}

// Reports one session that has ended; false if it was not as it should be.
bool report(const PropSession &session, int number, const QDir &folder)
{
    switch (session.kind) {
    case PropSession::Quiet:
        break;
    case PropSession::Upload:
        if (session.refused) {
            print(QStringLiteral("upload to track %1: refused").arg(session.track));
            break;
        }
        return keepUpload(session, number, folder);
    case PropSession::Wipe:
        print(QStringLiteral("wiped"));
        break;
    case PropSession::Commands:
        print(QStringLiteral("commands: ") + QString::fromUtf8(session.received));
        break;
    }
    return true;
}

int serve(SimulatedProp &prop, const QDir &folder, bool once)
{
    ExitCode code = Done;
    int seen = 0;
    while (!interrupted) {
        constexpr int lookMs = 100;
        prop.waitFor([seen](const QVector<PropSession> &all) { return all.size() > seen && !all.at(seen).open; },
                     lookMs);
        const bool last = prop.hasVanished(); // asked first: what it received is there by then
        const PropSession session = prop.session(seen);
        if (session.open) {
            if (last) {
                break;
            }
            continue;
        }
        ++seen;
        if (!report(session, seen, folder)) {
            code = Failed;
        }
        if (once && (session.kind == PropSession::Upload || session.kind == PropSession::Wipe)) {
            break;
        }
    }
    return code;
}

} // namespace

int main(int argc, char *argv[])
{
    // Pictures are drawn, but nothing is ever shown: no display is needed.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false")); // about the surroundings, of no use here
    const QGuiApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("glowsmith-prop"));

    const Options options;
    QCommandLineParser parser;
    parser.setApplicationDescription(description());
    parser.addOptions(options.all());
    if (!parser.parse(QCoreApplication::arguments())) {
        return complain(parser.errorText(), WrongUse);
    }
    if (parser.isSet(options.help)) {
        print(parser.helpText());
        return Done;
    }
    if (parser.isSet(options.version)) {
        print(QStringLiteral("glowsmith-prop %1").arg(glow::programVersion, 0, 'f', 3));
        return Done;
    }
    int number = 0;
    int delay = 0;
    int vanishAfter = -1;
    if (!parser.positionalArguments().isEmpty() || !readNumber(parser, options.number, 99, number) ||
        !readNumber(parser, options.delay, 3600000, delay) ||
        (parser.isSet(options.vanish) && !readNumber(parser, options.vanish, 1 << 30, vanishAfter))) {
        return complain(QStringLiteral("wrong arguments (see --help)"), WrongUse);
    }

    PropBehaviour behaviour;
    behaviour.greetingMs += delay;
    behaviour.replyMs += delay;
    behaviour.vanishAfter = vanishAfter;
    if (parser.isSet(options.silent)) {
        behaviour.greeting.clear();
    }
    if (parser.isSet(options.refuse)) {
        behaviour.reply = "ERR\r\n";
    }
    const QTemporaryDir own;
    const QDir folder(parser.value(options.out));
    const QDir links(parser.isSet(options.link) ? parser.value(options.link) : own.path());
    if (!folder.mkpath(QStringLiteral(".")) || !links.mkpath(QStringLiteral("."))) {
        return complain(QStringLiteral("cannot make the folders"), Failed);
    }
    SimulatedProp prop(behaviour);
    if (!prop.start(links.absoluteFilePath(QStringLiteral("COM%1").arg(number)))) {
        return complain(prop.error(), Failed);
    }
    std::signal(SIGINT, interrupt);
    std::signal(SIGTERM, interrupt);
    print(QStringLiteral("prop on %1, port number %2").arg(prop.port()).arg(number));
    print(QStringLiteral("GLOWSMITH_PORT_PATTERN=") + links.absoluteFilePath(QStringLiteral("COM%1")));
    return serve(prop, folder, parser.isSet(options.once));
}
