#include "show/model/missingpictures.h"

#include "show/model/settingstext.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace glow {

namespace {

QString lostPath(const SettingsText &settings)
{
    return settings.value(0);
}

} // namespace

bool namesPicture(const QString &settingsText)
{
    const SettingsText settings = parseSettings(settingsText);
    return settings.isPicture() && settings.hasGroups();
}

bool isPictureLost(const QString &settingsText)
{
    return namesPicture(settingsText) && !QFile::exists(lostPath(parseSettings(settingsText)));
}

QString pictureName(const QString &path)
{
    return path.mid(path.lastIndexOf(u'/') + 1);
}

QString lostPictureName(const QString &settingsText)
{
    return pictureName(lostPath(parseSettings(settingsText)));
}

QString findPicture(const QString &directory, const QString &name)
{
    if (name.isEmpty()) {
        return {};
    }
    QDirIterator walk(directory, QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        walk.next();
        if (!walk.fileInfo().isDir() && walk.fileName().contains(name)) {
            return walk.fileInfo().absoluteFilePath();
        }
    }
    return {};
}

bool copyPicture(const QString &path, const QString &directory)
{
    return QFileInfo(path).isFile() && QFile::copy(path, directory + u'/' + pictureName(path));
}

} // namespace glow
