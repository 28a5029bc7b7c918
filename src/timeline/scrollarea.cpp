#include "timeline/scrollarea.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QDebug>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <QWheelEvent>

namespace {

// A notch of a common wheel is 120: 40 pixels sideways, or 4 units of the zoom slider.
constexpr int wheelPerPixel = 3;
constexpr int wheelPerZoomUnit = 30;

bool isTyping()
{
    const QWidget *widget = QApplication::focusWidget();
    return qobject_cast<const QLineEdit *>(widget) != nullptr ||
           qobject_cast<const QAbstractSpinBox *>(widget) != nullptr ||
           (widget != nullptr && widget->testAttribute(Qt::WA_InputMethodEnabled));
}

} // namespace

ScrollArea::ScrollArea(QWidget *parent)
    : QScrollArea(parent)
{
}

void ScrollArea::wheelEvent(QWheelEvent *e)
{
    const int turned = e->angleDelta().y();
    if (isControlHeld(*e)) {
        emit scrolled_with_ctl(turned / wheelPerZoomUnit);
    } else {
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - turned / wheelPerPixel);
    }
}

// A key that was pressed here counts until its release, and a key other than Control keeps Control from counting. A
// release that goes elsewhere must not leave Control held for ever: the wheel of a real mouse says what is held.
bool ScrollArea::isControlHeld(const QWheelEvent &e)
{
    const bool isDown = e.modifiers().testFlag(Qt::ControlModifier);
    if (heldKey == Qt::Key_Control && e.spontaneous() && !isDown) {
        heldKey = 0;
    }
    return heldKey == Qt::Key_Control || (heldKey == 0 && isDown && !isTyping());
}

void ScrollArea::focusOutEvent(QFocusEvent *e)
{
    heldKey = 0; // a dialog, a menu or another window hears of the release
    QScrollArea::focusOutEvent(e);
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
