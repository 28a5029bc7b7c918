#include "forms/pathlabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

PathLabel::PathLabel(QWidget *parent)
    : QLabel(parent)
{
}

bool PathLabel::event(QEvent *e)
{
    if (e->type() == QEvent::ToolTip && toolTip().isEmpty() && !text().isEmpty()) {
        QToolTip::showText(static_cast<QHelpEvent *>(e)->globalPos(), text().toHtmlEscaped(), this);
        return true;
    }
    return QLabel::event(e);
}

void PathLabel::paintEvent(QPaintEvent *e)
{
    const QRect place = contentsRect();
    // A text that is being selected stays as it stands, so that the mouse finds its letters.
    if (hasSelectedText() || fontMetrics().horizontalAdvance(text()) <= place.width()) {
        QLabel::paintEvent(e);
        return;
    }
    QPainter painter(this);
    style()->drawItemText(&painter, place, int(alignment()), palette(), isEnabled(),
                          fontMetrics().elidedText(text(), Qt::ElideMiddle, place.width()), foregroundRole());
}
