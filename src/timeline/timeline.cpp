// A track's list, its order and its look; drags stand in timeline_drag.cpp.
#include "timeline/timeline.h"

#include "show/base/numbers.h"
#include "show/model/collision.h"
#include "show/model/timescale.h"
#include "timeline/dragformat.h"
#include "timeline/gesture.h"
#include "timeline/indicator.h"
#include "timeline/mylabel.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"

#include <QDebug>
#include <QMenu>
#include <QMetaMethod>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <optional>

namespace {

constexpr int trackHeight = 55;

// An item leaves this much of the track's height free.
constexpr int itemFreeHeight = 10;

// The height at which items are looked for.
constexpr int probeY = 10;

// Widest outline: how far beyond the exposed part an edge of the track's rectangle can still matter.
constexpr int outlineReach = 4;

// Milliseconds per pixel by which a double click on an item finds the play-head's first x, whatever the zoom.
constexpr double jumpScale = 10.0;

const QString labelStyle =
    QStringLiteral("color: rgb(255,255,255); background-color: rgba(255,255,255,20); border: 1px solid rgb(30,35,40);");
const QString currentLabelStyle =
    QStringLiteral("color: rgb(255,255,255); background-color: rgba(100,100,255,70); border: 1px solid rgb(30,35,40);");

// Disconnects everything from the widget's own signals. destroyed() stays connected: Qt keeps style rules
// for each widget by its address, and would otherwise keep them for good and give them to another one made there.
void disconnectSignals(QWidget *widget)
{
    const QMetaObject *meta = widget->metaObject();
    for (int i = QObject::staticMetaObject.methodCount(); i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.methodType() == QMetaMethod::Signal) {
            QObject::disconnect(widget, method, nullptr, QMetaMethod());
        }
    }
}

QVector<glow::Span> spansOf(const QList<TimelineItem *> &items)
{
    QVector<glow::Span> spans;
    spans.reserve(items.size());
    for (const TimelineItem *item : items) {
        spans.append(glow::spanOf(*item));
    }
    return spans;
}

} // namespace

Timeline::Timeline(TimelineHeaders *parent)
    : QFrame(parent)
    , headers(parent)
    , readyBand(new QWidget(this))
{
    touch();
    setAcceptDrops(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFixedHeight(trackHeight);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    readyBand->setStyleSheet(QStringLiteral("background-color: rgba(255, 0, 0, 0.5);"));
    readyBand->hide();
}

void Timeline::touch()
{
    static quint64 last = 0;
    revision = ++last;
}

// The item is about to come here or to go from here, and it can stand on another track than the one that lists it.
void Timeline::touchHolder(const TimelineItem *item)
{
    touch();
    if (auto *holder = qobject_cast<Timeline *>(item->parentWidget())) {
        holder->touch();
    }
}

TimelineItem *Timeline::itemAt(int x) const
{
    const QPoint point(x, probeY);
    if (!rect().contains(point)) {
        return nullptr;
    }
    const QObjectList &stack = children();
    for (auto child = stack.crbegin(); child != stack.crend(); ++child) {
        auto *item = qobject_cast<TimelineItem *>(*child);
        if (item != nullptr && !item->isHidden() && item->geometry().contains(point)) {
            return item;
        }
    }
    return nullptr;
}

void Timeline::setCurrent(bool current)
{
    isCurrent = current;
    if (rowLabel != nullptr) {
        rowLabel->setStyleSheet(current ? currentLabelStyle : labelStyle);
    }
    update();
}

void Timeline::showReadyBand(bool show, int startMs, int lengthMs)
{
    qDebug() << show << startMs << lengthMs;
    if (!show || !readyBand->isHidden()) {
        readyBand->hide();
        return;
    }
    readyBand->setGeometry(glow::widthOfLength(startMs), 0, glow::widthOfLength(lengthMs), height());
    readyBand->show();
    qDebug() << "SHOW READY" << readyBand->geometry();
}

void Timeline::on_label_pressed(QMouseEvent *e)
{
    pressed(e, rowLabel);
}

void Timeline::on_tlDuplicated_clicked()
{
    emit tlDuplicated_clicked(this);
}

void Timeline::on_itemDoubleClicked(TimelineItem *item)
{
    Indicator *head = headers->indicator;
    head->indicatorTime = item->startTime;
    // At another zoom this x is off; the seek that follows sets it right from the time.
    const int x = glow::truncated(glow::msOf(item->startTime) / jumpScale + 0.5);
    if (x != head->x()) {
        head->move(x, head->indicatorY);
        emit head->moved(x, true);
    }
}

void Timeline::on_itemClicked(TimelineItem *item, bool moved)
{
    emit itemClicked(item, moved);
}

void Timeline::sortItems()
{
    const QList<TimelineItem *> before = items;
    const glow::SortedSpans sorted = glow::sortSpans(spansOf(before));
    for (const glow::SpanEdit &edit : sorted.edits) {
        TimelineItem *item = before.at(edit.index);
        if (edit.kind == glow::SpanEdit::Remove) {
            qDebug() << this << "remove" << item;
            releaseItem(item);
        } else {
            item->setPlace(edit.times);
        }
    }
    if (sorted.order.size() != before.size()) {
        touch();
    }
    items.clear();
    for (const int position : sorted.order) {
        items.append(before.at(position));
    }
    qDebug() << "sorted" << items;
}

void Timeline::deleteTimelineItem(TimelineItem *item)
{
    qDebug() << this << "remove" << item;
    releaseItem(item);
}

void Timeline::releaseItem(TimelineItem *item)
{
    touchHolder(item);
    items.removeOne(item);
    // Qt would hand the focus to any widget of the window, and keys held for the wheel would go there.
    if (item->hasFocus()) {
        setFocus();
    }
    item->setParent(nullptr);
    disconnectSignals(item);
    disconnect(item);
    item->hide();
}

void Timeline::addTimelineItem(TimelineItem *item)
{
    qDebug() << this << "add" << item;
    touchHolder(item);
    items.append(item);
    item->setParent(this);
    connect(item, &TimelineItem::itemDeleted, this, &Timeline::deleteTimelineItem);
    connect(item, &TimelineItem::itemClicked, this, &Timeline::on_itemClicked);
    connect(item, &TimelineItem::itemDoubleClicked, this, &Timeline::on_itemDoubleClicked);
    connect(item, &TimelineItem::dragBegins, this, &Timeline::beginDrag);
    connect(item, &TimelineItem::dragEnd, this, &Timeline::on_itemDragEnd);
    connect(this, &Timeline::timelineMultiUpdated, item, qOverload<>(&TimelineItem::update_timeline_multi));
    item->setFixedHeight(height() - itemFreeHeight);
    item->setMinimumWidth(glow::minimumItemWidth());
    item->update_timeline_multi(false);
    item->show();
}

TimelineItem *Timeline::place(const QByteArray &blob)
{
    auto *item = new TimelineItem(blob, this);
    addTimelineItem(item);
    return item;
}

void Timeline::on_itemPaste_clicked()
{
    if (!glow::clipboardHasPattern()) {
        return;
    }
    TimelineItem *item = place(glow::clipboardPattern());
    const QTime start = headers->indicator->indicatorTime;
    const float end = static_cast<float>(glow::durationMs(*item)) + static_cast<float>(glow::msOf(start));
    item->setTimes(start, glow::timeOf(glow::truncated(static_cast<double>(end))));
    emit itemDragEnd(QByteArray(), item, nullptr);
}

void Timeline::on_itemDragEnd(const QByteArray &orig, TimelineItem *item, QWidget *orig_parent)
{
    qDebug() << item << dragItem << "drag end";
    sortItems();
    const int id = items.indexOf(item);
    qDebug() << "id current" << id;
    const std::optional<int> position = id < 0 ? std::nullopt : std::make_optional(id);

    const QList<TimelineItem *> before = items;
    const auto edits = glow::settleSpans(spansOf(before), position, glow::spanOf(*item));
    for (const glow::SpanEdit &edit : edits) {
        TimelineItem *other = before.at(edit.index);
        switch (edit.kind) {
        case glow::SpanEdit::Remove:
            qDebug() << this << "remove" << other;
            qDebug() << "item" << items.indexOf(other) << "covered";
            releaseItem(other);
            break;
        case glow::SpanEdit::Split: {
            // The copy is made first: it keeps the settings and the end.
            TimelineItem *rest = place(other->itemData);
            other->setPlace(edit.times);
            rest->setPlace(edit.rest);
            break;
        }
        case glow::SpanEdit::SetTimes:
            other->setPlace(edit.times);
            break;
        }
    }
    dragItem = nullptr;
    if (orig_parent == this) {
        emit itemDragEnd(orig, item, nullptr);
    } else if (orig_parent != nullptr) {
        emit itemDragEnd(orig, item, qobject_cast<Timeline *>(orig_parent));
    }
}

void Timeline::pressed(QMouseEvent *e, const QWidget *source)
{
    const glow::Gesture gesture;
    emit timelinePressed(this, true);
    if (e->button() == Qt::RightButton) {
        QMenu menu(tr("圖樣"), this);
        QAction *paste = menu.addAction(tr("貼上"), this, &Timeline::on_itemPaste_clicked);
        paste->setEnabled(glow::clipboardHasPattern());
        menu.addSeparator();
        menu.addAction(tr("複製時間軸"), this, qOverload<>(&Timeline::on_tlDuplicated_clicked));
        menu.addAction(tr("移除時間軸"), this, &Timeline::timelineDeleteClicked);
        menu.exec(source->mapToGlobal(e->pos()));
    } else if (e->button() == Qt::LeftButton) {
        // The press has just made this track current, so the event travels on to the ruler, which seeks.
        e->setAccepted(!isCurrent);
    }
}

void Timeline::mousePressEvent(QMouseEvent *e)
{
    pressed(e, this);
}

void Timeline::mouseDoubleClickEvent(QMouseEvent *e)
{
    Q_UNUSED(e)
    emit timelineDoubleClicked();
}

void Timeline::mouseMoveEvent(QMouseEvent *e)
{
    headers->mouseMoveEvent(e);
}

void Timeline::paintEvent(QPaintEvent *e)
{
    // Of a rectangle (-2, 0, width + 4, height), what lies near the exposed part: its sides are outside the widget.
    const int left = std::max(-2, e->rect().left() - outlineReach);
    const int right = std::min(width() + 2, e->rect().right() + outlineReach);
    const QRect row(left, 0, right - left, height());
    QPainter painter(this);
    if (isCurrent) {
        painter.setBrush(QColor(100, 100, 255, 70));
        painter.drawRect(row);
    }
    painter.setPen(QPen(QColor(30, 35, 40, 255), 2));
    painter.setBrush(QColor(0, 0, 0, 50));
    painter.drawRect(row);
}
