#include "timeline/scrollarea.h"

#include <QDebug>
#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

namespace {

// A notch of a common wheel is 120: 40 pixels sideways, or 4 units of the zoom slider.
constexpr int wheelPerPixel = 3;
constexpr int wheelPerZoomUnit = 30;

} // namespace

ScrollArea::ScrollArea(QWidget *parent)
    : QScrollArea(parent)
{
}

void ScrollArea::wheelEvent(QWheelEvent *e)
{
    const int turned = e->angleDelta().y();
    if (heldKey == Qt::Key_Control) {
        emit scrolled_with_ctl(turned / wheelPerZoomUnit);
    } else {
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - turned / wheelPerPixel);
    }
}

void ScrollArea::keyPressEvent(QKeyEvent *e)
{
    // Space plays and Delete removes a pattern, wherever the focus is.
    if (e->key() == Qt::Key_Space || e->key() == Qt::Key_Delete) {
        e->ignore();
        return;
    }
    heldKey = e->key();
}

void ScrollArea::keyReleaseEvent(QKeyEvent *e)
{
    Q_UNUSED(e)
    heldKey = 0;
}

void ScrollArea::mouseMoveEvent(QMouseEvent *e)
{
    qDebug() << e;
    e->ignore();
}

bool ScrollArea::focusNextPrevChild(bool next)
{
    // QScrollArea's own would scroll to the middle of a track, which is always in view.
    return QWidget::focusNextPrevChild(next); // NOLINT(bugprone-parent-virtual-call)
}
