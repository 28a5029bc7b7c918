// One pattern on a track: the widget and the record in one. The record's whole persistent state is the blob itemData.
#pragma once

#include "show/model/patternrecord.h"

#include <QFont>
#include <QPoint>
#include <QPushButton>

class QDrag;
class QMimeData;

class TimelineItem : public QPushButton, public glow::PatternRecord
{
    Q_OBJECT

public:
    static constexpr int trackY = 5; // y of every item in its track

    // Builds the item from a blob (see patternrecord.h; untrusted bytes give nulls and zeros), places it and shows it.
    TimelineItem(const QByteArray &data, QWidget *parent);

    // Reads the blob into the members, keeps it as itemData, then places the widget, which encodes itemData anew.
    void loadData(const QByteArray &data);

    // Writes the members over itemData, without truncating it, and renews the tool tip.
    void updateData();

    // Places the widget from its times at the present zoom; with rewrite runs updateData afterwards.
    void update_timeline_multi(bool rewrite);

    // The only ways in which a time of a placed item changes: to times that the user gave, or to the place that a
    // collision rule found (glow::applySpan). In speed mode the repeat count follows.
    void setTimes(const QTime &start, const QTime &end);
    void setPlace(glow::Span place);

    QByteArray itemData;   // the serialised record, always in step with the members
    QFont itemFont;        // present and default-constructed; never stored
    QString itemId;        // unique among live items while the program runs; recognises the item in a drag
    QPoint pressPos;       // mouse position at the last left press, in the parent's coordinates
    qint16 edgeMargin = 8; // width in pixels of the zone at each end where a press starts a resize
    quint8 selected = 0;   // 1 while this is the item in the editor or pressed: drawn with a thick light outline

signals:
    // Every signal names the item itself, for its track connects the signals of all its items to the same slots.
    //
    // A press with either button: the item goes into the editor. moved is always false.
    void itemClicked(TimelineItem *item, bool moved);
    void itemDoubleClicked(TimelineItem *item);
    void itemDeleted(TimelineItem *item); // asked for by the item's menu; the track takes it off
    void itemCopyed(QByteArray data);     // never emitted: copying goes straight to the clipboard
    // A gesture with the left button has ended, a mere click included, and the item's times are those of its new place.
    // orig is the blob at the press, orig_parent the track at the press.
    void dragEnd(QByteArray orig, TimelineItem *item, QWidget *orig_parent);
    // A left press is about to start a drag. Not every platform sends the track below a drag-enter event if the mouse
    // does not move.
    void dragBegins(TimelineItem *item);

public slots:
    void update_timeline_multi(); // places the widget anew after a change of the zoom
    void on_itemDelete_clicked();
    void on_itemCopy_clicked();
    void on_itemCut_clicked();

protected:
    void mousePressEvent(QMouseEvent *e) override;
    void mouseMoveEvent(QMouseEvent *e) override;
    void mouseReleaseEvent(QMouseEvent *e) override;
    void mouseDoubleClickEvent(QMouseEvent *e) override;
    void paintEvent(QPaintEvent *e) override;

private:
    // What a press takes hold of: an edge to pull, or the whole pattern.
    enum class Zone { LeftEdge, Body, RightEdge };
    Zone zoneAt(int x) const;
    QMimeData *mimeFor(Zone zone, int grabX) const; // a drag's data (see dragformat.h)

    void showContextMenu(const QPoint &globalPos);

    // The whole gesture of the left button, from the press at pos to the release.
    void runDrag(const QPoint &pos);
    // Runs the drag until the button is released, or not at all if that has happened since heldBefore was asked.
    // MoveAction means that another program has taken the pattern.
    Qt::DropAction execWhileHeld(QDrag *drag, bool heldBefore);
    void settleAfterDrag(const QByteArray &orig, const QRect &before, QWidget *origParent);

    // What updateData wrote last, shared with itemData until somebody changes that, and how much of it is the thumbnail
    // of that key: an unchanged thumbnail need not be encoded again.
    QByteArray written;
    qint64 writtenKey = 0;
    int writtenThumbnail = 0;
};
