#include "show/model/recentprojects.h"

#include "show/base/appsettings.h"

#include <QFileInfo>

namespace glow {

QStringList withRecentProject(QStringList recent, const QString &path)
{
    const QString whole = QFileInfo(path).absoluteFilePath();
    recent.removeAll(whole);
    recent.prepend(whole);
    return recent.mid(0, mostRecentProjects);
}

QStringList recentProjects()
{
    return AppSettings().value(AppSettings::recentKey).toStringList().mid(0, mostRecentProjects);
}

void rememberProject(const QString &path)
{
    AppSettings().setValue(AppSettings::recentKey, withRecentProject(recentProjects(), path));
}

} // namespace glow
