#include "timeline/scrollarea2.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

ScrollArea2::ScrollArea2(QWidget *parent)
    : QScrollArea(parent)
{
}

void ScrollArea2::mousePressEvent(QMouseEvent *e)
{
    e->ignore();
}

void ScrollArea2::wheelEvent(QWheelEvent *e)
{
    e->ignore();
}

void ScrollArea2::keyPressEvent(QKeyEvent *e)
{
    e->ignore();
}

bool ScrollArea2::focusNextPrevChild(bool next)
{
    // QScrollArea's own would scroll to the widget.
    return QWidget::focusNextPrevChild(next); // NOLINT(bugprone-parent-virtual-call)
}
