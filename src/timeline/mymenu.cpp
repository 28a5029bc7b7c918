#include "timeline/mymenu.h"

#include <QAction>
#include <QHelpEvent>
#include <QToolTip>

namespace {

// Where a tip stands: beside the menu, in steps of the height so that it does not tremble with the mouse.
constexpr int tipRight = 170;
constexpr int tipStep = 10;
constexpr int tipUp = 15;

} // namespace

myMenu::myMenu(QWidget *parent)
    : QMenu(parent)
{
    setToolTipDuration(-1);
}

bool myMenu::event(QEvent *e)
{
    if (e->type() == QEvent::ToolTip && activeAction() != nullptr) {
        const auto *help = static_cast<QHelpEvent *>(e);
        QToolTip::showText(QPoint(x() + tipRight, help->globalY() / tipStep * tipStep - tipUp),
                           activeAction()->toolTip());
    } else {
        QToolTip::hideText();
    }
    return QMenu::event(e);
}
