#include "timeline/timelineheaders.h"

#include "show/base/numbers.h"
#include "show/model/showtime.h"
#include "show/model/timescale.h"
#include "timeline/indicator.h"

#include <QChildEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

namespace {

// y at which ticks and the hover line end, and below which the ruler paints nothing.
constexpr int ticksBottom = 30;

// A line as wide as a pixel, yet in whole dots of the screen: scaled by a broken number, lines side by side would
// differ.
QPen linePen(const QPainter &painter, const QColor &colour)
{
    QPen pen(colour, qMax(1, qRound(painter.device()->devicePixelRatioF())));
    pen.setCosmetic(true);
    return pen;
}

} // namespace

TimelineHeaders::TimelineHeaders(QWidget *parent)
    : QWidget(parent)
    , ticks(msPerPixel)
{
    indicator = new Indicator(rulerTop, this);
    startShade = new QWidget(this);
    startShade->setGeometry(0, 0, 0, height());
    startShade->setStyleSheet(QStringLiteral("background-color: rgba(100,100,50,50);"));
    startShade->setAttribute(Qt::WA_TransparentForMouseEvents);
    setMouseTracking(true);
    connect(indicator, &Indicator::moved, this, &TimelineHeaders::indicatorMoved);
}

void TimelineHeaders::mouseMoveEvent(QMouseEvent *e)
{
    hoverPos = e->pos();
    if (e->buttons() == Qt::LeftButton || e->button() == Qt::LeftButton || e->button() == Qt::RightButton) {
        indicator->setIndicatorX(e->x(), true);
    }
    update(0, 0, width(), ticksBottom + 1);
}

void TimelineHeaders::mousePressEvent(QMouseEvent *e)
{
    if (e->button() == Qt::LeftButton) {
        mouseMoveEvent(e);
    } else if (e->button() == Qt::RightButton) {
        QMenu menu(tr("時間軸"), this);
        menu.addAction(tr("設定起始"), this, &TimelineHeaders::on_setStart_clicked);
        menu.addAction(tr("取消起始"), this, &TimelineHeaders::on_resetStart_clicked);
        menu.exec(mapToGlobal(e->pos()));
    }
}

void TimelineHeaders::on_setStart_clicked()
{
    startMarkX = indicator->x();
    startShade->setGeometry(0, 0, startMarkX, height());
    startShade->show();
}

void TimelineHeaders::on_resetStart_clicked()
{
    startMarkX = 0;
    startShade->hide();
}

void TimelineHeaders::paintEvent(QPaintEvent *e)
{
    if (e->rect().top() > ticksBottom) {
        return;
    }
    if (ticks.zoom() != msPerPixel) {
        ticks = glow::TickPositions(msPerPixel);
    }
    QPainter painter(this);
    // A label begins left of its tick and reaches to its right.
    const int reach = fontMetrics().horizontalAdvance(QStringLiteral("00:00.000")) + 16;
    const int end = qMin(width(), e->rect().right() + reach);
    const auto exposed = ticks.between(static_cast<float>(e->rect().left() - reach), static_cast<float>(end));
    for (const glow::Tick &tick : exposed) {
        drawTick(painter, tick);
    }
    painter.setPen(linePen(painter, QColor(200, 255, 255, 255)));
    painter.drawLine(hoverPos.x(), rulerTop, hoverPos.x(), ticksBottom);
}

void TimelineHeaders::drawTick(QPainter &painter, const glow::Tick &tick) const
{
    const int x = glow::truncated(static_cast<double>(tick.x));
    switch (glow::lineOfTick(tick.index, msPerPixel)) {
    case glow::TickLine::Long:
        painter.setPen(linePen(painter, QColor(150, 150, 150, 255)));
        painter.drawLine(x, rulerTop, x, ticksBottom);
        break;
    case glow::TickLine::Middle:
        painter.setPen(linePen(painter, QColor(120, 120, 120, 255)));
        painter.drawLine(x, rulerTop + 4, x, ticksBottom);
        break;
    case glow::TickLine::Short:
        painter.setPen(linePen(painter, QColor(100, 100, 100, 255)));
        painter.drawLine(x, rulerTop + 8, x, ticksBottom);
        break;
    case glow::TickLine::None:
        break;
    }
    const QTime time = glow::timeOf(tick.index * int(tickMs));
    switch (glow::labelOfTick(tick.index, msPerPixel)) {
    case glow::TickLabel::Seconds:
        painter.setPen(QColor(255, 255, 255, 255));
        painter.drawText(x - 16, rulerTop - 2, time.toString(QStringLiteral("mm:ss")));
        break;
    case glow::TickLabel::Fraction:
        painter.setPen(QColor(180, 180, 180, 255));
        painter.drawText(x - 15, rulerTop - 2, time.toString(QStringLiteral(".zzz")));
        break;
    case glow::TickLabel::None:
        break;
    }
}

void TimelineHeaders::resizeEvent(QResizeEvent *e)
{
    QWidget::resizeEvent(e);
    indicator->setFixedHeight(height());
    startShade->resize(startShade->width(), height());
}

void TimelineHeaders::childEvent(QChildEvent *e)
{
    QWidget::childEvent(e);
    // The play-head, and above it the band of the start mark, stay in front of tracks and waveform.
    if (e->added() && startShade != nullptr && e->child() != indicator && e->child() != startShade) {
        indicator->raise();
        startShade->raise();
    }
}
