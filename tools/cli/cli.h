// The command line's commands. Each is a row of one table (commands.cpp) and a function that does it: prints to
// standard output, complains on standard error, and returns the exit code.
#pragma once

#include "show/image/deviceimage.h"
#include "show/model/projectfile.h"

#include <QByteArray>
#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace cli {

enum ExitCode {
    Done = 0,
    Failed = 1,  // it could not be done, or check found something
    WrongUse = 2 // of the arguments
};

class Call;

struct Command
{
    const char *name;
    const char *purpose;     // its line in the list of commands
    const char *does;        // what its help says, in sentences
    const char *example;     // a whole line, behind the program's name
    const char *operand;     // what the one operand is called in the help
    const char *operandHelp; // and what it is
    QList<QCommandLineOption> options;
    const char *needed; // the option without which there is nothing to do; empty for none
    ExitCode (*run)(const Call &call);
};

QVector<Command> commands();

// Parses the arguments behind the command's name and does what they say. Help and wrong use end here.
ExitCode run(const Command &command, const QStringList &arguments);

// A command as it was called, understood and with everything that it needs.
class Call
{
public:
    Call(const Command &command, const QCommandLineParser &parser);

    QString operand() const;
    bool isSet(const char *option) const;
    QString value(const char *option) const;
    // Nothing, after a complaint, if the option holds anything but a number within the bounds.
    std::optional<int> number(const char *option, int least, int most) const;
    // Complains of how the command was called.
    ExitCode misuse(const QString &how) const;

private:
    const Command &command;
    const QCommandLineParser &parser;
};

ExitCode info(const Call &call);
ExitCode check(const Call &call, const glow::DeviceShow &show);
ExitCode exportBin(const Call &call, const glow::DeviceShow &show);
ExitCode drawPicture(const Call &call);
ExitCode relink(const Call &call);
ExitCode gatherPictures(const Call &call);
ExitCode upload(const Call &call, const glow::DeviceShow &show);
ExitCode film(const Call &call);
ExitCode beats(const Call &call);

// Shared by the commands.

void print(const QString &line);
void printJson(const QJsonObject &facts); // in UTF-8, whatever the terminal's encoding
void complain(const QString &line);

// A warning if the image does not hold all of its show.
void warnIfCut(const glow::ImageSummary &summary);

// Each of these complains if it fails, and names the file and the reason.
std::optional<QByteArray> readFile(const QString &path);
bool isReadable(const QString &path);                          // a regular file that is opened elsewhere
std::optional<glow::Project> openProject(const QString &path); // of the current form
bool writeFile(const QString &path, const QByteArray &bytes);  // "-" is standard output

// Tells what was written; on standard error if it went to standard output.
void printWritten(const QString &path, const QString &what);

// Does something with the track that the call chooses (trackOptions) of the project that it names; complains if there
// is none or the track is empty.
ExitCode withShow(const Call &call, ExitCode (*run)(const Call &call, const glow::DeviceShow &show));

// The options that say which track is made into a device image, and how.
QList<QCommandLineOption> trackOptions();

// What a film is to be, but for its file.
QList<QCommandLineOption> filmOptions();

} // namespace cli
