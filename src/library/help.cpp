#include "library/help.h"

#include "forms/statusnotes.h"
#include "show/base/hint.h"
#include "show/base/installation.h"

#include <QAction>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QStatusBar>
#include <QUrl>

namespace glow {

namespace {

struct Entry
{
    const char *name;
    const char *text;
    const char *tip;
    const char *page; // the catalogue has the page in its own language
    const char *shortcut;
};

constexpr Entry entries[] = {
    {"actionManual", QT_TRANSLATE_NOOP("Hints", "使用手冊"),
     QT_TRANSLATE_NOOP("Hints", "在瀏覽器開啟使用手冊，不需網路"), QT_TRANSLATE_NOOP("Hints", "manual.zh-TW.html"),
     "F1"},
    // A page of its own: what starts the browser can lose the place within a page.
    {"actionKeys", QT_TRANSLATE_NOOP("Hints", "按鍵與滑鼠"),
     QT_TRANSLATE_NOOP("Hints", "在瀏覽器開啟按鍵與滑鼠手勢的一覽表"), QT_TRANSLATE_NOOP("Hints", "keys.zh-TW.html"),
     ""},
};

} // namespace

void addHelp(QMenu *menu, QStatusBar *bar)
{
    menu->addSeparator();
    for (const Entry &entry : entries) {
        QAction *action = menu->addAction(hint(entry.text));
        action->setObjectName(QLatin1String(entry.name));
        action->setStatusTip(hint(entry.tip));
        action->setShortcut(QKeySequence(QLatin1String(entry.shortcut)));
        const QString page = hint(entry.page);
        QObject::connect(action, &QAction::triggered, bar, [page, bar] { openManual(page, bar); });
    }
}

void openManual(const QString &page, QStatusBar *bar)
{
    const QString path = manualPage(page);
    if (!QFileInfo(path).isFile()) {
        note(bar,
             hint(QT_TRANSLATE_NOOP("Hints", "使用手冊沒有安裝：缺少檔案 %1")).arg(QDir::toNativeSeparators(path)));
    } else if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path))) {
        note(bar,
             hint(QT_TRANSLATE_NOOP("Hints", "無法開啟瀏覽器，請自行開啟 %1")).arg(QDir::toNativeSeparators(path)));
    }
}

} // namespace glow
