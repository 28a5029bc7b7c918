#include "show/base/startfolder.h"

#include <QDir>
#include <QFileInfo>

namespace glow {

namespace {

// At the path or above it.
QString existingFolder(const QString &path)
{
    if (path.isEmpty() || path.startsWith(u':')) { // a picture that the program brings along has no folder
        return QDir::homePath();
    }
    QFileInfo place(path);
    while (!place.isDir() && !place.isRoot()) {
        place.setFile(place.absolutePath());
    }
    return place.isRoot() && QFileInfo(path) != place ? QDir::homePath() : place.filePath();
}

} // namespace

QString startForOpening(const QString &path)
{
    return !path.startsWith(u':') && QFileInfo::exists(path) ? path : existingFolder(path);
}

QString startForSaving(const QString &path)
{
    const QFileInfo place(path);
    if (place.exists() || place.suffix().isEmpty()) {
        return startForOpening(path);
    }
    return QDir(existingFolder(path)).filePath(place.fileName());
}

} // namespace glow
