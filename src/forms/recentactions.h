// The projects that were opened or saved last, as entries of a menu.
#pragma once

#include <QList>
#include <QString>

#include <functional>

class QAction;
class QObject;

namespace glow {

// One entry a project, newest first, those whose files are gone greyed; it runs open with the project's path. A single
// greyed entry says so if there is none. The entries belong to parent.
QList<QAction *> recentActions(QObject *parent, const std::function<void(const QString &path)> &open);

} // namespace glow
