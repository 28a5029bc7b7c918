// What the window remembers from one run to the next: how it was laid out, and which projects were open.
#include "app/mainwindow.h"

#include "forms/hints.h"
#include "forms/recentactions.h"
#include "show/base/appsettings.h"
#include "ui_mainwindow.h"

#include <QMenu>
#include <QSignalBlocker>

void MainWindow::keepLayout() const
{
    AppSettings settings;
    settings.setValue(AppSettings::layoutKey, saveState());
    settings.setValue(AppSettings::splitterKey, ui->splitter->saveState());
    settings.setValue(AppSettings::waveSplitterKey, ui->timeline_splitter->saveState());
}

void MainWindow::restoreLayout()
{
    const AppSettings settings;
    // A dock that floats comes back in its size, too; one that begins to float starts out small.
    const QSignalBlocker quiet(ui->dockWidget_3);
    restoreState(settings.value(AppSettings::layoutKey).toByteArray());
    ui->splitter->restoreState(settings.value(AppSettings::splitterKey).toByteArray());
    ui->timeline_splitter->restoreState(settings.value(AppSettings::waveSplitterKey).toByteArray());
}

void MainWindow::addRecentProjects()
{
    QMenu *recent = ui->menu->addMenu(glow::hint(QT_TRANSLATE_NOOP("Hints", "最近的專案")));
    recent->setObjectName(QStringLiteral("menuRecent"));
    // Files come and go while the program runs.
    connect(recent, &QMenu::aboutToShow, this, [this, recent] {
        recent->clear();
        recent->addActions(glow::recentActions(recent, [this](const QString &path) {
            if (mayReplaceShow()) {
                LoadFile(path);
            }
        }));
    });
}
