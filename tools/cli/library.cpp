// glowsmith-cli relink and pictures: the source pictures of a project.
#include "cli.h"

#include "show/base/wholefile.h"
#include "show/model/missingpictures.h"
#include "show/model/patternrecord.h"
#include "show/model/settingstext.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace cli {

namespace {

// Looks each lost picture up in the folder. Counts what was found and what stays lost.
void relinkPatterns(glow::Project &project, const QString &folder, int &found, int &lost)
{
    for (QVector<QByteArray> &blobs : project.tracks) {
        for (QByteArray &blob : blobs) {
            glow::PatternRecord record = glow::readPattern(blob);
            if (!glow::isPictureLost(record.settingsText)) {
                continue;
            }
            const QString match = glow::findPicture(folder, glow::lostPictureName(record.settingsText));
            if (match.isEmpty()) {
                complain(QStringLiteral("still lost: ") + *glow::sourcePicture(record.settingsText));
                ++lost;
                continue;
            }
            record.settingsText = glow::withPicturePath(record.settingsText, match);
            glow::overwritePattern(blob, record);
            print(match);
            ++found;
        }
    }
}

} // namespace

int relink(const QStringList &arguments)
{
    Command command(
        QStringLiteral("relink"),
        QStringLiteral("Finds the project's lost pictures in a folder and its subfolders and writes their new places "
                       "into the project."),
        QStringLiteral("glowsmith-cli relink show.gsw3 --pictures ~/Pictures"));
    const QCommandLineOption folder(QStringLiteral("pictures"), QStringLiteral("Where to look."),
                                    QStringLiteral("DIR"));
    command.parser.addOption(folder);
    command.parser.addPositionalArgument(QStringLiteral("PROJECT"), QStringLiteral("A .gsw3 project."));
    int code = Done;
    glow::Project project;
    if (!command.parse(arguments, 1, code)) {
        return code;
    }
    const QString place = command.parser.value(folder);
    if (place.isEmpty()) {
        complain(QStringLiteral("glowsmith-cli relink: --pictures DIR is needed"));
        return WrongUse;
    }
    if (!QFileInfo(place).isDir()) {
        complain(place + QStringLiteral(": no such folder"));
        return Failed;
    }
    const QString path = command.operand(0);
    if (!openProject(path, project)) {
        return Failed;
    }
    int found = 0;
    int lost = 0;
    relinkPatterns(project, place, found, lost);
    if (found > 0) {
        const glow::WriteResult written = glow::writeWholeFile(path, glow::writeProject(project));
        if (written.state != glow::WriteResult::Written) {
            complain(QStringLiteral("%1: %2").arg(path, written.error));
            return Failed;
        }
    }
    print(QStringLiteral("%1 relinked, %2 still lost").arg(found).arg(lost));
    return lost == 0 ? Done : Failed;
}

int pictures(const QStringList &arguments)
{
    Command command(
        QStringLiteral("pictures"),
        QStringLiteral("Copies every picture that the project uses into one folder. Files that stand there already are "
                       "left as they are."),
        QStringLiteral("glowsmith-cli pictures show.gsw3 -o gathered"));
    const QCommandLineOption out({QStringLiteral("o"), QStringLiteral("output")},
                                 QStringLiteral("The folder; made if absent."), QStringLiteral("DIR"));
    command.parser.addOption(out);
    command.parser.addPositionalArgument(QStringLiteral("PROJECT"), QStringLiteral("A .gsw3 project."));
    int code = Done;
    glow::Project project;
    if (!command.parse(arguments, 1, code)) {
        return code;
    }
    const QString folder = command.parser.value(out);
    if (folder.isEmpty()) {
        complain(QStringLiteral("glowsmith-cli pictures: -o DIR is needed"));
        return WrongUse;
    }
    if (!openProject(command.operand(0), project)) {
        return Failed;
    }
    if (!QDir().mkpath(folder)) {
        complain(folder + QStringLiteral(": cannot be made"));
        return Failed;
    }
    int copied = 0;
    int missing = 0;
    for (const QVector<QByteArray> &blobs : qAsConst(project.tracks)) {
        for (const QByteArray &blob : blobs) {
            const std::optional<QString> source = glow::sourcePicture(glow::readPattern(blob).settingsText);
            if (!source.has_value()) {
                continue;
            }
            if (glow::copyPicture(*source, folder)) {
                ++copied;
            } else if (!QFile::exists(*source)) {
                complain(QStringLiteral("lost: ") + *source);
                ++missing;
            }
        }
    }
    print(QStringLiteral("%1 copied, %2 lost").arg(copied).arg(missing));
    return missing == 0 ? Done : Failed;
}

} // namespace cli
