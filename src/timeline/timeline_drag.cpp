// Drags over a track.
#include "timeline/timeline.h"

#include "show/model/dragheader.h"
#include "show/model/snapping.h"
#include "show/model/timescale.h"
#include "timeline/dragformat.h"
#include "timeline/timelineitem.h"

#include <QApplication>
#include <QDebug>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QToolTip>
#include <QWindow>

#include <algorithm>
#include <iterator>

namespace {

// The mouse must move this far before a press becomes a drag, once in a gesture.
constexpr int deadZone = 5;

// Outside of any track, so that the dead zone is never met again.
const QPoint movedOn(-10, -10);

// Neighbours are looked for this far from the item's edges.
constexpr int neighbourGap = 10;

// A tip can come to lie under the mouse, and a window there would catch the drag.
void letDragsThrough()
{
    const auto windows = QApplication::topLevelWidgets();
    for (const QWidget *widget : windows) {
        if (widget->inherits("QTipLabel") && widget->windowHandle() != nullptr) {
            widget->windowHandle()->setFlag(Qt::WindowTransparentForInput);
        }
    }
}

} // namespace

void Timeline::beginDrag(TimelineItem *item)
{
    if (items.removeOne(item)) {
        dragItem = item;
        items.append(item);
    }
    emit timelinePressed(this, false);
}

void Timeline::dragEnterEvent(QDragEnterEvent *e)
{
    qDebug() << this << "drag enter";
    const QMimeData *data = e->mimeData();
    if (!data->hasFormat(glow::mimeItem)) {
        e->ignore();
        return;
    }
    const glow::DragHeader header = glow::readDragHeader(data->data(glow::mimeItem));
    grabItemX = header.itemX;
    grabOffset = header.grabX;
    leftLimit = 0;
    rightLimit = width();
    const auto found = std::find_if(items.cbegin(), items.cend(),
                                    [&header](const TimelineItem *item) { return item->itemId == header.itemId; });
    if (found != items.cend()) {
        dragItem = *found;
        items.append(items.takeAt(int(std::distance(items.cbegin(), found))));
    }
    if (dragItem != nullptr) {
        e->accept();
    } else if (data->hasFormat(glow::mimePattern)) {
        emit dragIn(this);
        e->accept();
    }
    // An edge drag stays on its own track, and yet makes the one it crosses current.
    emit timelinePressed(this, false);
}

void Timeline::findNeighbours()
{
    const TimelineItem *left = itemAt(dragItem->x() - neighbourGap);
    const TimelineItem *right = itemAt(dragItem->x() + dragItem->width() + neighbourGap);
    leftLimit = left != nullptr && left != dragItem ? left->x() + left->width() : 0;
    rightLimit = right != nullptr && right != dragItem ? right->x() : width();
}

void Timeline::showTimesAt(const QPoint &pos, const QString &edgeText, const QTime &edge)
{
    const QTime length = QTime::fromMSecsSinceStartOfDay(glow::durationMs(*dragItem));
    QToolTip::showText(mapToGlobal(pos),
                       tr("長度: ") + glow::timeText(length) + QLatin1Char('\n') + edgeText + glow::timeText(edge));
    letDragsThrough();
}

void Timeline::dragMoveEvent(QDragMoveEvent *e)
{
    const QMimeData *data = e->mimeData();
    if (!data->hasFormat(glow::mimeItem) || dragItem == nullptr) {
        return;
    }
    const QPoint p = e->pos();
    qDebug() << "drag move event" << dragItem->pressPos << p;
    if ((dragItem->pressPos - p).manhattanLength() < deadZone) {
        return;
    }
    dragItem->pressPos = movedOn;
    findNeighbours();

    if (data->hasFormat(glow::mimeRightEdge)) {
        const int x = glow::snappedRightEdge(p.x(), rightLimit);
        dragItem->setTimes(dragItem->startTime, glow::timeOf(glow::timeOfPixel(x)));
        showTimesAt(p, tr("結束時間: "), dragItem->endTime);
    } else if (data->hasFormat(glow::mimeLeftEdge)) {
        const int x = glow::snappedLeftEdge(p.x(), leftLimit);
        dragItem->setTimes(glow::timeOf(glow::timeOfPixel(x)), dragItem->endTime);
        showTimesAt(p, tr("開始時間: "), dragItem->startTime);
    } else {
        const int x = glow::snappedBody(p.x() - grabOffset, dragItem->width(), leftLimit, rightLimit);
        dragItem->move(x, TimelineItem::trackY);
    }
}

void Timeline::dropEvent(QDropEvent *e)
{
    // Never accepted: the press handler of the item sees every end of a drag as the same and finishes the gesture.
    dragItem = nullptr;
    e->ignore();
}
