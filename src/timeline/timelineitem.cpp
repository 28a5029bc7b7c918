#include "timeline/timelineitem.h"

#include "show/draw/itemtexture.h"
#include "show/model/dragheader.h"
#include "show/model/propvalues.h"
#include "show/model/timescale.h"
#include "timeline/dragformat.h"
#include "timeline/gesture.h"
#include "timeline/timeline.h"

#include <QDrag>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace {

// Times from a damaged file reach far beyond a day; a widget's place stays where adding its size to it cannot overflow.
constexpr int farthestX = 1 << 29;

// The smallest width once a zoom change has re-laid the item, at every zoom.
constexpr int relaidMinimumWidth = 2;

// Widest outline, and so how far beyond the exposed part an edge can still matter.
constexpr int outlineReach = 8;

} // namespace

TimelineItem::TimelineItem(const QByteArray &data, QWidget *parent)
    : QPushButton(parent)
{
    loadData(data);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    setMouseTracking(true);
    // The tab key must not have to walk through a whole show.
    setFocusPolicy(Qt::ClickFocus);
    itemId = QStringLiteral("0x%1").arg(reinterpret_cast<quintptr>(this), 16, 16, QLatin1Char('0'));
    show();
}

void TimelineItem::loadData(const QByteArray &data)
{
    static_cast<glow::PatternRecord &>(*this) = glow::readPattern(data);
    itemData = data;
    update_timeline_multi(true);
}

void TimelineItem::updateData()
{
    const bool known = thumbnail.cacheKey() == writtenKey && itemData.isSharedWith(written);
    written.clear();
    writtenThumbnail = glow::overwritePattern(itemData, *this, known ? writtenThumbnail : 0);
    writtenKey = thumbnail.cacheKey();
    written = itemData;
    if (auto *track = qobject_cast<Timeline *>(parentWidget())) {
        track->touch();
    }

    const QString start = glow::timeText(startTime);
    const QString end = glow::timeText(endTime);
    const QTime length = QTime::fromMSecsSinceStartOfDay(glow::durationMs(*this));
    setToolTip(tr("長度: ") + glow::timeText(length) + u'\n' + tr("開始時間: ") + start + u'\n' + tr("結束時間: ") +
               end);
    setAccessibleName(tr("圖樣") + u' ' + start + u'-' + end);
}

void TimelineItem::update_timeline_multi(bool rewrite)
{
    const int x = qBound(-farthestX, glow::pixelOfTime(glow::msOf(startTime)), farthestX);
    const int width = qBound(0, glow::pixelOfTime(glow::durationMs(*this)), QWIDGETSIZE_MAX);
    setGeometry(x, trackY, width, height());
    if (rewrite) {
        updateData();
    }
    update();
}

void TimelineItem::update_timeline_multi()
{
    setMinimumWidth(relaidMinimumWidth);
    update_timeline_multi(false);
}

void TimelineItem::setTimes(const QTime &start, const QTime &end)
{
    glow::retime(*this, start, end, ledCount, frameRate);
    update_timeline_multi(true);
}

void TimelineItem::setPlace(glow::Span place)
{
    glow::applySpan(*this, place, ledCount, frameRate);
    update_timeline_multi(true);
}

void TimelineItem::on_itemDelete_clicked()
{
    emit itemDeleted(this);
}

void TimelineItem::on_itemCopy_clicked()
{
    glow::putPatternOnClipboard(itemData);
}

void TimelineItem::on_itemCut_clicked()
{
    on_itemCopy_clicked();
    emit itemDeleted(this);
}

void TimelineItem::mousePressEvent(QMouseEvent *e)
{
    const glow::Gesture gesture;
    raise();
    e->accept();
    if (e->button() == Qt::RightButton) {
        showContextMenu(e->globalPos());
    } else if (e->button() == Qt::LeftButton) {
        runDrag(e->pos());
    }
}

void TimelineItem::mouseMoveEvent(QMouseEvent *e)
{
    setCursor(zoneAt(e->x()) == Zone::Body ? Qt::OpenHandCursor : Qt::SplitHCursor);
    // The track hands it on to the ruler's hover line.
    e->ignore();
}

void TimelineItem::mouseReleaseEvent(QMouseEvent *e)
{
    // The press has dealt with the whole gesture; a button's own release handling must not run.
    e->accept();
}

void TimelineItem::mouseDoubleClickEvent(QMouseEvent *e)
{
    if (e->button() == Qt::LeftButton) {
        emit itemDoubleClicked(this);
    }
}

void TimelineItem::showContextMenu(const QPoint &globalPos)
{
    QMenu menu(tr("圖樣"), this);
    menu.addAction(tr("移除"), this, &TimelineItem::on_itemDelete_clicked);
    menu.addAction(tr("複製"), this, &TimelineItem::on_itemCopy_clicked);
    menu.addAction(tr("剪下"), this, &TimelineItem::on_itemCut_clicked);
    emit itemClicked(this, false);
    if (!glow::Gesture::isPointless()) {
        menu.exec(globalPos);
    }
}

TimelineItem::Zone TimelineItem::zoneAt(int x) const
{
    if (x < edgeMargin) {
        return Zone::LeftEdge;
    }
    return x > width() - edgeMargin ? Zone::RightEdge : Zone::Body;
}

QMimeData *TimelineItem::mimeFor(Zone zone, int grabX) const
{
    const QByteArray header = glow::writeDragHeader({x(), grabX, itemId});
    auto *data = new QMimeData;
    data->setData(glow::mimeItem, header);
    switch (zone) {
    case Zone::LeftEdge:
        data->setData(glow::mimeLeftEdge, header);
        break;
    case Zone::RightEdge:
        data->setData(glow::mimeRightEdge, header);
        break;
    case Zone::Body:
        data->setData(glow::mimePattern, itemData);
        break;
    }
    return data;
}

void TimelineItem::runDrag(const QPoint &pos)
{
    selected = 1;
    const QByteArray orig = itemData;
    const QRect before = geometry();
    QWidget *const origParent = parentWidget();

    const Zone zone = zoneAt(pos.x());
    setCursor(zone == Zone::Body ? Qt::ClosedHandCursor : Qt::SplitHCursor);
    auto *drag = new QDrag(this);
    drag->setMimeData(mimeFor(zone, pos.x()));
    drag->setHotSpot(pos);
    pressPos = mapToParent(pos);

    const bool held = QGuiApplication::mouseButtons().testFlag(Qt::LeftButton);
    emit itemClicked(this, false);
    if (glow::Gesture::isPointless()) {
        return;
    }
    emit dragBegins(this);
    if (execWhileHeld(drag, held) != Qt::MoveAction && !glow::Gesture::isPointless()) {
        settleAfterDrag(orig, before, origParent);
    }
}

Qt::DropAction TimelineItem::execWhileHeld(QDrag *drag, bool heldBefore)
{
    // Loading the item can have asked the user something. With the button long up nothing would ever end a drag.
    if (heldBefore && !QGuiApplication::mouseButtons().testFlag(Qt::LeftButton)) {
        delete drag;
        return Qt::IgnoreAction;
    }
    return drag->exec(Qt::MoveAction);
}

void TimelineItem::settleAfterDrag(const QByteArray &orig, const QRect &before, QWidget *origParent)
{
    setCursor(Qt::OpenHandCursor);
    if (geometry() != before) {
        setTimes(glow::timeOf(glow::roundedTimeOfPixel(x())), glow::timeOf(glow::roundedTimeOfPixel(x() + width())));
    }
    emit dragEnd(orig, this, origParent);
}

void TimelineItem::paintEvent(QPaintEvent *e)
{
    QPainter painter(this);
    painter.setPen(selected != 0 ? QPen(QColor(240, 240, 250, 255), 6) : QPen(QColor(0, 0, 0, 255), 2));

    const QRect exposed = e->rect();
    const glow::ItemTexture texture = glow::itemTexture(*this, size(), exposed.left(), exposed.right());
    if (!texture.picture.isNull()) {
        painter.setBrush(QBrush(texture.picture));
        painter.setBrushOrigin(texture.x, 0);
    }
    // Of a rectangle (-1, -1, width, height + 2), what lies near the exposed part: painting costs what is seen.
    const int left = std::max(-1, exposed.left() - outlineReach);
    const int right = std::min(width() - 1, exposed.right() + outlineReach);
    painter.drawRect(left, -1, right - left, height() + 2);
}
