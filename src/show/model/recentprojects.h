// The projects that were opened or saved last, newest first.
#pragma once

#include <QString>
#include <QStringList>

namespace glow {

constexpr int mostRecentProjects = 8;

// The list after a project was opened or saved: its absolute path comes first, each path stands once, and only so many
// stay.
QStringList withRecentProject(QStringList recent, const QString &path);

// The settings' list, and the settings with that project in front.
QStringList recentProjects();
void rememberProject(const QString &path);

} // namespace glow
