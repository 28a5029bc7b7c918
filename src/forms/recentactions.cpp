#include "forms/recentactions.h"

#include "forms/hints.h"
#include "show/model/recentprojects.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QFontMetrics>
#include <QGuiApplication>

namespace glow {

namespace {

// The name, and the folder as far as there is room for it.
QString entryText(int number, const QString &path)
{
    constexpr int widestFolder = 360;
    const QFileInfo file(path);
    const QString folder =
        QFontMetrics(QGuiApplication::font())
            .elidedText(QDir::toNativeSeparators(file.absolutePath()), Qt::ElideMiddle, widestFolder);
    // An "&" would underline the letter behind it.
    return QStringLiteral("&%1  ").arg(number) +
           QStringLiteral("%1  (%2)").arg(file.fileName(), folder).replace(u'&', QStringLiteral("&&"));
}

} // namespace

QList<QAction *> recentActions(QObject *parent, const std::function<void(const QString &path)> &open)
{
    QList<QAction *> actions;
    const QStringList paths = recentProjects();
    for (const QString &path : paths) {
        auto *action = new QAction(entryText(actions.size() + 1, path), parent);
        action->setStatusTip(QDir::toNativeSeparators(path));
        action->setEnabled(QFileInfo(path).isFile());
        QObject::connect(action, &QAction::triggered, parent, [open, path] { open(path); });
        actions.append(action);
    }
    if (actions.isEmpty()) {
        auto *none = new QAction(hint(QT_TRANSLATE_NOOP("Hints", "（還沒有）")), parent);
        none->setEnabled(false);
        actions.append(none);
    }
    return actions;
}

} // namespace glow
