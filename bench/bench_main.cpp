// Prints the table of all figures; ends with 1 if one exceeds its limit. A word on the command line measures only the
// parts that begin with it: device, render, edit, song, film.
#include "bench.h"

#include "forms/style.h"
#include "show/base/resources.h"

#include <QApplication>
#include <QDir>
#include <QSettings>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <cstdio>

int main(int argc, char *argv[])
{
    // Nothing of the user's is touched: settings, home and working directory are of this run.
    const QTemporaryDir folder;
    qputenv("HOME", folder.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
    qputenv("XDG_DATA_HOME", folder.path().toLocal8Bit());
    const QString only = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    // The window takes a first argument for a project.
    argc = 1;
    const QApplication application(argc, argv);
    glow::initResources();
    glow::prepareApplication();
    QDir::setCurrent(folder.path());
    QSettings settings(QStringLiteral("Vantorel"), QStringLiteral("Glowsmith"));
    settings.setValue(QStringLiteral("main/language"), 1);
    settings.setValue(QStringLiteral("main/gadget"), 4);
    settings.sync();

    struct Part
    {
        const char *name;
        void (*measure)(QVector<bench::Row> &);
    };
    const Part parts[] = {{"device", bench::device},
                          {"render", bench::render},
                          {"edit", bench::edit},
                          {"song", bench::song},
                          {"film", bench::film}};
    QVector<bench::Row> rows;
    for (const Part &part : parts) {
        if (QLatin1String(part.name).startsWith(only)) {
            part.measure(rows);
        }
    }
    QTextStream(stdout) << bench::table(rows);
    return std::all_of(rows.begin(), rows.end(), bench::within) ? 0 : 1;
}
