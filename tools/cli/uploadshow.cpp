// glowsmith-cli upload: a track to the prop, with a progress bar.
#include "cli.h"

#include "device/workerthread.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>

namespace cli {

namespace {

void drawProgress(int percent)
{
    constexpr int width = 40;
    const int filled = percent * width / 100;
    QTextStream(stderr) << "\r[" << QString(filled, u'#') << QString(width - filled, u' ') << "] " << percent << "%"
                        << (percent == 100 ? "\n" : "");
}

// One port alone is tried if it is the only one behind the pattern: a link with the number 0 in a folder of our own.
bool useOnly(const QString &port, const QTemporaryDir &folder)
{
    const QString path = port.contains(u'/') ? QFileInfo(port).absoluteFilePath() : QStringLiteral("/dev/") + port;
    if (!QFileInfo::exists(path)) {
        complain(QStringLiteral("%1: no such port").arg(path));
        return false;
    }
    QFile::link(path, folder.filePath(QStringLiteral("COM0")));
    qputenv("GLOWSMITH_PORT_PATTERN", QFile::encodeName(folder.filePath(QStringLiteral("COM%1"))));
    return true;
}

// The upload works in a folder of its own, from where a relative pattern would lead nowhere.
void fixRelativePorts()
{
    const QString pattern = qEnvironmentVariable("GLOWSMITH_PORT_PATTERN");
    if (pattern.contains(u'/')) {
        qputenv("GLOWSMITH_PORT_PATTERN", QFile::encodeName(QFileInfo(pattern).absoluteFilePath()));
    }
}

// What went wrong, from the word that the upload has for it.
QString explained(const QString &failure)
{
    if (failure.isEmpty()) {
        return QStringLiteral("the prop did not finish");
    }
    if (failure == QLatin1String("ERROR01")) {
        return QStringLiteral("the prop did not answer (ERROR01)");
    }
    if (failure == QLatin1String("ERROR02")) {
        return QStringLiteral("the prop refused the show (ERROR02)");
    }
    return failure;
}

bool writeParts(const glow::DeviceShow &show)
{
    QFile frames(QStringLiteral("extemp.tmp"));
    QFile header(QStringLiteral("extemp2.tmp"));
    if (!frames.open(QIODevice::WriteOnly) || !header.open(QIODevice::WriteOnly)) {
        complain(QStringLiteral("the show cannot be written to the temporary folder"));
        return false;
    }
    glow::writeDeviceImage(show, frames, header);
    return true;
}

} // namespace

int upload(const QStringList &arguments)
{
    Command command(
        QStringLiteral("upload"),
        QStringLiteral("Sends a track to the prop. Without --port every port is asked in turn until a prop answers."),
        QStringLiteral("glowsmith-cli upload show.gsw3 --port /dev/ttyACM0"));
    const TrackChoice choice;
    choice.addTo(command);
    const QCommandLineOption port(QStringLiteral("port"), QStringLiteral("The only port to try."),
                                  QStringLiteral("NAME"));
    command.parser.addOption(port);
    command.parser.addPositionalArgument(QStringLiteral("PROJECT"), QStringLiteral("A .gsw3 project."));
    int code = Done;
    glow::DeviceShow show;
    if (!command.parse(arguments, 1, code) || !chosenShow(command, choice, show, code)) {
        return code;
    }
    const QTemporaryDir folder;
    if (!folder.isValid() || (command.parser.isSet(port) && !useOnly(command.parser.value(port), folder))) {
        return Failed;
    }
    fixRelativePorts();
    const QString before = QDir::currentPath();
    QDir::setCurrent(folder.path());
    if (!writeParts(show)) {
        return Failed;
    }
    WorkerThread thread;
    QString failure;
    int drawn = -1;
    QObject::connect(&thread, &WorkerThread::progress, qApp, [&drawn](int percent, int) {
        if (percent != drawn) {
            drawProgress(percent);
            drawn = percent;
        }
    });
    QObject::connect(&thread, &WorkerThread::expmess, qApp, [&failure](const QString &text) { failure = text; });
    QObject::connect(&thread, &QThread::finished, qApp, &QCoreApplication::quit);
    thread.start();
    QCoreApplication::exec();
    thread.wait();
    QCoreApplication::processEvents();
    QDir::setCurrent(before);
    if (thread.uploadOk == 0) {
        complain((drawn >= 0 ? QStringLiteral("\n") : QString()) + explained(failure));
        return Failed;
    }
    print(QStringLiteral("sent %1 patterns").arg(show.patterns.size()));
    return Done;
}

} // namespace cli
