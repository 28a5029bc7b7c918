#include "show/model/missingpictures.h"

#include "show/model/settingstext.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace glow {

namespace {

// What is looked for of a path.
QString lookedFor(const QString &path)
{
    return path.section(u'|', 0, 0);
}

} // namespace

std::optional<QString> sourcePicture(const QString &settingsText)
{
    const ParsedSettings parsed = parseSettings(settingsText);
    if (!parsed.settings.has_value() || !parsed.repeats.has_value()) {
        return std::nullopt;
    }
    const auto *picture = std::get_if<PictureSettings>(&*parsed.settings);
    return picture != nullptr ? std::make_optional(picture->path) : std::nullopt;
}

bool isPictureLost(const QString &settingsText)
{
    const std::optional<QString> path = sourcePicture(settingsText);
    return path.has_value() && !QFile::exists(lookedFor(*path));
}

QString pictureName(const QString &path)
{
    return path.mid(path.lastIndexOf(u'/') + 1);
}

QString lostPictureName(const QString &settingsText)
{
    return pictureName(lookedFor(sourcePicture(settingsText).value_or(QString())));
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
