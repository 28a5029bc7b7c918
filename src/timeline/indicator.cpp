#include "timeline/indicator.h"

#include "show/model/showtime.h"
#include "show/model/timescale.h"

#include <QPainter>

Indicator::Indicator(int top, QWidget *parent)
    : QWidget(parent)
    , indicatorY(top)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setGeometry(0, top, 1, parent->height());
}

void Indicator::setIndicatorX(int x, bool user)
{
    // Left of the ruler this is below zero; on_timeline_headers_indicatorMoved, which moved() ends in, raises it to 0.
    indicatorTime = QTime::fromMSecsSinceStartOfDay(glow::timeOfPixel(x));
    if (x != this->x()) {
        move(x, indicatorY);
        emit moved(x, user);
    }
}

void Indicator::setIndicatorTime(const QTime &t, bool user)
{
    indicatorTime = t;
    const int x = glow::pixelOfTime(glow::msOf(t));
    if (x != this->x()) {
        move(x, indicatorY);
        emit moved(x, user);
    }
}

void Indicator::paintEvent(QPaintEvent *e)
{
    Q_UNUSED(e)
    QPainter painter(this);
    // Where a pixel is a broken number of screen dots, a line's dots can all lie beside the widget; its area never
    // does.
    painter.fillRect(rect(), QColor(10, 250, 250, 255));
}
