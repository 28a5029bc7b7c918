// The command line's commands. Each takes its own arguments (its name already taken off), prints to standard output,
// errors to standard error, and returns the exit code: 0 done, 1 it could not be done, 2 wrong use.
#pragma once

#include "show/image/deviceimage.h"
#include "show/model/projectfile.h"

#include <QCommandLineParser>
#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace cli {

enum ExitCode { Done = 0, Failed = 1, WrongUse = 2 };

int info(const QStringList &arguments);
int check(const QStringList &arguments);
int exportShow(const QStringList &arguments);
int show(const QStringList &arguments);
int relink(const QStringList &arguments);
int pictures(const QStringList &arguments);
int upload(const QStringList &arguments);
int film(const QStringList &arguments);

// Shared by the commands.

void print(const QString &line);
void printJson(const QJsonObject &facts); // in UTF-8, whatever the terminal's encoding
void complain(const QString &line);

// A warning if the image does not hold all of its show.
void warnIfCut(const glow::ImageSummary &summary);

// A bar on standard error that stays in its line until it is full, with a word behind it.
void drawProgress(int percent, const QString &word = QString());

// A parser whose help shows the command, what it does, the arguments and an example.
struct Command
{
    Command(const QString &name, const QString &does, const QString &example);

    // Parses; true if the command goes on. Otherwise code is what the program ends with: help was asked for, or the use
    // is wrong.
    bool parse(const QStringList &arguments, int positionals, int &code);

    QString operand(int index) const { return parser.positionalArguments().value(index); }
    // A number within bounds; complains and returns false if the option holds anything else.
    bool number(const QCommandLineOption &option, int least, int most, int &value) const;

    QString name;
    QCommandLineParser parser;
};

// Reads a project of the current form; complains and returns false if it cannot be read or is none.
bool openProject(const QString &path, glow::Project &project);

// The options that say which track is made into a device image, and how.
struct TrackChoice
{
    QCommandLineOption track{
        QStringLiteral("track"),
        QStringLiteral("The track by the number of its label in the window, 1 for the lowest. Default: the "
                       "one that is current when the project is opened, which is the last."),
        QStringLiteral("N")};
    QCommandLineOption slot{QStringLiteral("slot"), QStringLiteral("The track slot on the prop, 1 to 8."),
                            QStringLiteral("1-8"), QStringLiteral("1")};
    QCommandLineOption once{QStringLiteral("once"), QStringLiteral("Play once instead of starting over at the end.")};
    QCommandLineOption startMark{QStringLiteral("start-mark"),
                                 QStringLiteral("Where the show starts, in milliseconds."), QStringLiteral("MS"),
                                 QStringLiteral("0")};

    void addTo(Command &command) const;
};

// The device show of the chosen track of the project that is the command's first operand. False, with the exit code and
// after a complaint, if there is none or the track is empty.
bool chosenShow(const Command &command, const TrackChoice &choice, glow::DeviceShow &show, int &code);

} // namespace cli
