// glowsmith-cli relink and pictures: the source pictures of a project.
#include "cli.h"

#include "show/model/missingpictures.h"
#include "show/model/patternrecord.h"
#include "show/model/settingstext.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace cli {

namespace {

struct Count
{
    int done = 0;
    int lost = 0;
    int failed = 0; // there, but not copied
};

// Looks each lost picture up in the folder.
Count relinkPatterns(glow::Project &project, const QString &folder)
{
    Count count;
    for (QVector<QByteArray> &blobs : project.tracks) {
        for (QByteArray &blob : blobs) {
            glow::PatternRecord record = glow::readPattern(blob);
            if (!glow::isPictureLost(record.settingsText)) {
                continue;
            }
            const QString match = glow::findPicture(folder, glow::lostPictureName(record.settingsText));
            if (match.isEmpty()) {
                complain(QStringLiteral("still lost: ") + *glow::sourcePicture(record.settingsText));
                ++count.lost;
                continue;
            }
            record.settingsText = glow::withPicturePath(record.settingsText, match);
            glow::overwritePattern(blob, record);
            print(match);
            ++count.done;
        }
    }
    return count;
}

Count copyPictures(const glow::Project &project, const QString &folder)
{
    Count count;
    for (const QVector<QByteArray> &blobs : project.tracks) {
        for (const QByteArray &blob : blobs) {
            const std::optional<QString> source = glow::sourcePicture(glow::readPattern(blob).settingsText);
            if (!source) {
                continue;
            }
            if (glow::copyPicture(*source, folder)) {
                ++count.done;
            } else if (!QFile::exists(*source)) {
                complain(QStringLiteral("lost: ") + *source);
                ++count.lost;
            } else if (!QFile::exists(QDir(folder).filePath(glow::pictureName(*source)))) {
                complain(QStringLiteral("cannot be copied to %1: %2").arg(folder, *source));
                ++count.failed;
            }
        }
    }
    return count;
}

} // namespace

ExitCode relink(const Call &call)
{
    const QString folder = call.value("pictures");
    if (const QFileInfo place(folder); !place.isDir()) {
        complain(folder + (place.exists() ? QStringLiteral(": is no folder") : QStringLiteral(": no such folder")));
        return Failed;
    }
    const QString path = call.operand();
    std::optional<glow::Project> project = openProject(path);
    if (!project) {
        return Failed;
    }
    const Count count = relinkPatterns(*project, folder);
    if (count.done > 0 && !writeFile(path, glow::writeProject(*project))) {
        return Failed;
    }
    print(QStringLiteral("%1 relinked, %2 still lost").arg(count.done).arg(count.lost));
    return count.lost == 0 ? Done : Failed;
}

ExitCode gatherPictures(const Call &call)
{
    const std::optional<glow::Project> project = openProject(call.operand());
    if (!project) {
        return Failed;
    }
    const QString folder = call.value("output");
    if (!QDir().mkpath(folder)) {
        complain(folder + (QFileInfo::exists(folder) ? QStringLiteral(": is no folder")
                                                     : QStringLiteral(": the folder cannot be made")));
        return Failed;
    }
    const Count count = copyPictures(*project, folder);
    print(QStringLiteral("%1 copied, %2 lost").arg(count.done).arg(count.lost));
    return count.lost + count.failed == 0 ? Done : Failed;
}

} // namespace cli
