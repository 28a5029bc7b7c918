#include "song/chartview.h"

#include "show/base/numbers.h"
#include "show/model/timescale.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QtCharts/QLineSeries>
#include <QtCharts/QValueAxis>

using namespace QtCharts;

ChartView::ChartView(QWidget *parent)
    : QChartView(parent)
{
    // A click on the wave is one on the ruler behind it, and seeks from there.
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void ChartView::resizeToWave()
{
    columnsStale = true;
    if (wavePoints.isEmpty()) {
        return;
    }
    setFixedSize(glow::waveWidth(wavePoints.size()), parentWidget() != nullptr ? parentWidget()->height() : height());
    viewport()->update();
}

void ChartView::mouseMoveEvent(QMouseEvent *e)
{
    e->ignore();
}

void ChartView::mousePressEvent(QMouseEvent *e)
{
    e->ignore();
}

void ChartView::resizeEvent(QResizeEvent *e)
{
    // The chart keeps the size that it had: laying out a song's points anew takes far longer than a frame, and the view
    // paints them without it.
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    QGraphicsView::resizeEvent(e);
}

void ChartView::paintEvent(QPaintEvent *e)
{
    QPainter painter(viewport());
    painter.fillRect(e->rect(), chart()->backgroundBrush());
    if (chart()->series().isEmpty()) {
        return;
    }
    const auto *line = qobject_cast<QLineSeries *>(chart()->series().constFirst());
    const QList<QAbstractAxis *> axes = chart()->axes(Qt::Vertical);
    const auto *axis = axes.isEmpty() ? nullptr : qobject_cast<QValueAxis *>(axes.constFirst());
    if (line == nullptr || axis == nullptr) {
        return;
    }
    prepareColumns();
    glow::drawWave(painter, e->rect(), columns, viewport()->height(), axis->max(), line->color(), devicePixelRatioF());
}

void ChartView::prepareColumns()
{
    const double scale = devicePixelRatioF();
    if (!columnsStale && columnsScale == scale) {
        return;
    }
    // The ruler's scale, so that the wave stands under the ruler even where the song has gaps.
    const double pixelsPerPoint = 1.0 / (static_cast<double>(wavePointsPerMs) * static_cast<double>(msPerPixel));
    columns.build(wavePoints, pixelsPerPoint * scale, glow::truncated(viewport()->width() * scale));
    columnsStale = false;
    columnsScale = scale;
}
