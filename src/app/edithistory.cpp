#include "app/edithistory.h"

#include "timeline/timeline.h"
#include "timeline/timelineitem.h"

#include <algorithm>

namespace {

// The newest position that the history reaches; beyond it the oldest snapshot goes.
constexpr qint32 deepest = 100;

// Blobs are shared between items and snapshots, so most comparisons end at the same address.
bool sameBlob(const QByteArray &a, const QByteArray &b)
{
    return a.constData() == b.constData() ? a.size() == b.size() : a == b;
}

void restoreItem(Timeline *track, TimelineItem *item, const QByteArray &blob)
{
    auto *holder = qobject_cast<Timeline *>(item->parentWidget());
    const bool placed = holder == track && track->items.contains(item);
    if (holder != track || !sameBlob(blob, item->itemData)) {
        item->loadData(blob);
    }
    if (placed) {
        return;
    }
    // Whatever still lists or shows it lets go first, a track that was removed since included: so nothing is ever
    // listed or connected twice.
    if (holder != nullptr && holder != track) {
        holder->deleteTimelineItem(item);
    }
    track->deleteTimelineItem(item);
    track->addTimelineItem(item);
}

bool names(const EditHistory::Snapshot &snapshot, TimelineItem *item)
{
    return std::any_of(snapshot.cbegin(), snapshot.cend(),
                       [item](const EditHistory::TrackSnapshot &track) { return track.contains(item); });
}

} // namespace

EditHistory::~EditHistory()
{
    qDeleteAll(snapshots);
}

void EditHistory::clear()
{
    while (!snapshots.isEmpty()) {
        Snapshot *oldest = snapshots.takeFirst();
        drop(oldest, snapshots.value(0));
    }
    index = -1;
    destroyForgotten();
}

// Deletes a snapshot that is in the list no more and notes what the one next to it does not name.
void EditHistory::drop(Snapshot *snapshot, const Snapshot *neighbour)
{
    for (const TrackSnapshot &track : qAsConst(*snapshot)) {
        for (auto entry = track.constBegin(); entry != track.constEnd(); ++entry) {
            if (neighbour == nullptr || !names(*neighbour, entry.key())) {
                dropped.append(entry.key());
            }
        }
    }
    delete snapshot;
}

void EditHistory::destroyForgotten()
{
    QVector<QPointer<TimelineItem>> kept;
    for (const QPointer<TimelineItem> &item : qAsConst(dropped)) {
        if (item.isNull() || item->parentWidget() != nullptr) {
            continue;
        }
        const bool named = std::any_of(snapshots.cbegin(), snapshots.cend(),
                                       [&item](const Snapshot *snapshot) { return names(*snapshot, item); });
        if (named || (isHeld && isHeld(item))) {
            kept.append(item);
        } else {
            item->deleteLater();
        }
    }
    dropped = kept;
}

bool EditHistory::record(const QList<Timeline *> &tracks)
{
    static const Snapshot nothing;
    const Snapshot &old = index >= 0 && index < snapshots.size() ? *snapshots.at(index) : nothing;
    bool changed = false;
    Snapshot fresh;
    for (Timeline *track : tracks) {
        const auto known = old.constFind(track);
        const bool isNew = known == old.constEnd();
        changed = changed || isNew;
        TrackSnapshot &held = fresh[track];
        for (TimelineItem *item : qAsConst(track->items)) {
            held.insert(item, item->itemData);
            changed = changed || isNew || !sameBlob(known->value(item), item->itemData);
        }
    }
    if (!changed) {
        return false;
    }
    while (index >= 0 && snapshots.size() - 1 > index) {
        Snapshot *undone = snapshots.takeLast();
        drop(undone, snapshots.last());
    }
    snapshots.append(new Snapshot(fresh));
    if (index >= deepest) {
        Snapshot *oldest = snapshots.takeFirst();
        drop(oldest, snapshots.first());
    } else {
        ++index;
    }
    destroyForgotten();
    return true;
}

bool EditHistory::step(bool back, const QList<Timeline *> &tracks)
{
    if (back ? index < 1 : index >= snapshots.size() - 1) {
        return false;
    }
    index += back ? -1 : 1;
    const Snapshot &target = *snapshots.at(index);

    // All removals come first: a pattern that changed tracks must have left the one before the other takes it.
    for (Timeline *track : tracks) {
        const auto held = target.constFind(track);
        if (held == target.constEnd()) {
            const auto children = track->findChildren<TimelineItem *>(QString(), Qt::FindDirectChildrenOnly);
            for (TimelineItem *item : children) {
                track->deleteTimelineItem(item);
            }
            continue;
        }
        const QList<TimelineItem *> present = track->items;
        for (TimelineItem *item : present) {
            if (!held->contains(item)) {
                track->deleteTimelineItem(item);
            }
        }
    }
    for (auto held = target.constBegin(); held != target.constEnd(); ++held) {
        if (!tracks.contains(held.key())) {
            continue;
        }
        for (auto entry = held->constBegin(); entry != held->constEnd(); ++entry) {
            restoreItem(held.key(), entry.key(), entry.value());
        }
    }
    return index > 0 && index < snapshots.size() - 1;
}
