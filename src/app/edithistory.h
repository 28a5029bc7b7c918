// Undo and redo by whole snapshots: what every track holds, by the identity of tracks and items.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMap>
#include <QPointer>
#include <QVector>

#include <functional>

class Timeline;
class TimelineItem;

class EditHistory
{
public:
    // Tracks to items to blobs. Pointers are the identity across snapshots, so nothing may destroy a track or an item
    // that a snapshot can name; what destroys tracks clears the history in the same step. Blobs are shared with the
    // items, and a track that has not changed is shared between snapshots: a step costs what the changed tracks hold,
    // not what the show holds. What no snapshot names any more, stands on no track and is not held otherwise (isHeld)
    // is destroyed, or a long evening's removed patterns would pile up.
    using TrackSnapshot = QMap<TimelineItem *, QByteArray>;
    using Snapshot = QMap<Timeline *, TrackSnapshot>;

    EditHistory() = default;
    ~EditHistory();
    EditHistory(const EditHistory &) = delete;
    EditHistory &operator=(const EditHistory &) = delete;

    qint32 index = -1; // position of the snapshot that equals the present show, -1 when empty; never above 100
    QList<Snapshot *> snapshots; // owned, oldest first

    // Whether somebody besides tracks and history still points at the item, as the editor does; asked before an item
    // is destroyed. Nobody, while it is empty.
    std::function<bool(const TimelineItem *)> isHeld;

    void clear();

    // Takes a snapshot if the show differs from the present one; true if one was taken. Only what exists now is looked
    // at: taking something away is no change by itself and enters with the next change.
    bool record(const QList<Timeline *> &tracks);

    // One snapshot back or forward, and the show made equal to it. True if a further step is possible both ways.
    bool step(bool back, const QList<Timeline *> &tracks);

private:
    // What a track held when it was last looked at.
    struct Present
    {
        quint64 revision = 0;   // of the track
        bool placed = false;    // every item that the track lists also stands on it
        TrackSnapshot patterns; // shared with the snapshots that hold the same
    };

    Present &presentOf(Timeline *track);
    bool isAt(Timeline *track, const TrackSnapshot &held);
    bool hasChanged(Timeline *track, const Snapshot &old);
    void append(Snapshot *snapshot);
    void drop(Snapshot *snapshot, const Snapshot *neighbour);
    void destroyForgotten();

    QHash<const Timeline *, Present> looked;
    QHash<const TimelineItem *, int> uses; // how often an item is named; what neighbouring snapshots share counts once
    QVector<QPointer<TimelineItem>> dropped; // were named by snapshots that are gone, and by no other
};
