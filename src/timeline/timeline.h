// One track: a row that holds the patterns of the show as child widgets.
#pragma once

#include <QFrame>
#include <QList>

class MyLabel;
class TimelineHeaders;
class TimelineItem;

class Timeline : public QFrame
{
    Q_OBJECT

public:
    explicit Timeline(TimelineHeaders *parent);

    QList<TimelineItem *> items;      // after sortItems ascending by start; between sorts a new item stands at the end
    TimelineItem *dragItem = nullptr; // the item being dragged over this track
    MyLabel *rowLabel = nullptr;      // the track's number at the left of the row
    TimelineHeaders *headers = nullptr; // the ruler; stays valid though the layout reparents the track
    int grabOffset = 0;                 // x of the mouse inside the dragged item at the press
    int rightLimit = 0;                 // neighbours of the dragged item, in track pixels
    int leftLimit = 0;
    int grabItemX = 0;      // x of the dragged item at the press
    bool isCurrent = false; // true on exactly one track
    quint64 revision = 0;   // another number, never used before, whenever the track's patterns or one of their blobs
                            // have changed; the order of the patterns does not count
    QWidget *readyBand = nullptr; // where a new pattern would land

    // The pattern at x in the track's upper part, the topmost one if several lie there, or null: other children (the
    // ready band) do not count.
    TimelineItem *itemAt(int x) const;

    // The pattern that counts as being under a play-head at x.
    TimelineItem *itemUnderHead(int x) const { return itemAt(x + 1); }

    // To be called with every change that revision tells of.
    void touch();

    // A new pattern from a blob (see patternrecord.h), added to this track where its times say.
    TimelineItem *place(const QByteArray &blob);

    // Makes this the current track or takes that from it: look and label.
    void setCurrent(bool current);

    // Shows the ready band for a span, or hides it; a second show without a hide in between hides it.
    void showReadyBand(bool show, int startMs, int lengthMs);

signals:
    void timelineMultiUpdated();                // the zoom has changed: all items place themselves anew
    void timelineDeleteClicked();               // from the menu: the current track, which this is, is to be removed
    void tlDuplicated_clicked(Timeline *track); // from the menu: a copy of the track is to be made
    void wheelScrolled(int delta);              // never emitted
    void itemClicked(TimelineItem *item, bool moved); // as the item's signal of that name
    // A gesture on the item has ended and its collisions are settled, or it was pasted. orig is the item's blob at the
    // press (empty after a paste), orig_tl the track that it was dragged from, null if it is this one.
    void itemDragEnd(QByteArray orig, TimelineItem *item, Timeline *orig_tl = nullptr);
    // A whole pattern of another track is dragged onto this one, which it shall belong to from now on.
    void dragIn(Timeline *track);
    void timelineDoubleClicked();
    // The track becomes the current one. update is true for a press on the track itself, which also ends the editing of
    // a pattern and previews the one under the play-head; false when a drag begins here or enters.
    void timelinePressed(Timeline *track, bool update);
    void mouseMoved(QMouseEvent *e);      // never emitted
    void timelineSorted(Timeline *track); // never emitted

public slots:
    void on_label_pressed(QMouseEvent *e);
    void on_tlDuplicated_clicked();
    void on_itemDoubleClicked(TimelineItem *item);
    void on_itemClicked(TimelineItem *item, bool moved);
    // Start-time order; of items with an equal start the later one in list order has priority.
    void sortItems();
    // Takes the item off the track and hides it. The object lives on: history and selection may still name it.
    void deleteTimelineItem(TimelineItem *item);
    // The only way onto a track. Neither sorts nor resolves collisions.
    void addTimelineItem(TimelineItem *item);
    void on_itemPaste_clicked();
    // The collision pass: the item that moved wins, what it touches is trimmed, removed or split. orig_parent is the
    // track that the item was dragged from, null if the editor placed it: then itemDragEnd is not emitted.
    void on_itemDragEnd(const QByteArray &orig, TimelineItem *item, QWidget *orig_parent = nullptr);

    // A drag of one of this track's items starts here or comes back: it takes the end of the list, and with that the
    // priority in sortItems.
    void beginDrag(TimelineItem *item);

protected:
    void mousePressEvent(QMouseEvent *e) override;
    void mouseDoubleClickEvent(QMouseEvent *e) override;
    void mouseMoveEvent(QMouseEvent *e) override;
    void paintEvent(QPaintEvent *e) override;
    void dragEnterEvent(QDragEnterEvent *e) override;
    void dragMoveEvent(QDragMoveEvent *e) override;
    void dropEvent(QDropEvent *e) override;

private:
    void pressed(QMouseEvent *e, const QWidget *source);
    void releaseItem(TimelineItem *item);
    void touchHolder(const TimelineItem *item);
    void splitItem(TimelineItem *item, const QTime &restStart);
    void findNeighbours();
    void showTimesAt(const QPoint &pos, const QString &edgeText, const QTime &edge);
};
