#include "app/edithistory.h"

#include "show/model/patternrecord.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"

namespace {

// The newest position that the history reaches; beyond it the oldest snapshot goes.
constexpr qint32 deepest = 100;

void restoreItem(Timeline *track, TimelineItem *item, const QByteArray &blob)
{
    auto *holder = qobject_cast<Timeline *>(item->parentWidget());
    const bool placed = holder == track && track->items.contains(item);
    if (holder != track || !glow::sameBlob(blob, item->itemData)) {
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

} // namespace

EditHistory::~EditHistory()
{
    qDeleteAll(snapshots);
}

void EditHistory::clear()
{
    while (!snapshots.isEmpty()) {
        drop(snapshots.takeFirst());
    }
    index = -1;
    destroyForgotten();
}

void EditHistory::append(Snapshot *snapshot)
{
    for (const TrackSnapshot &track : qAsConst(*snapshot)) {
        for (auto entry = track.constBegin(); entry != track.constEnd(); ++entry) {
            ++uses[entry.key()];
        }
    }
    snapshots.append(snapshot);
}

// Deletes a snapshot that is in the list no more and notes what no other one names.
void EditHistory::drop(Snapshot *snapshot)
{
    for (const TrackSnapshot &track : qAsConst(*snapshot)) {
        for (auto entry = track.constBegin(); entry != track.constEnd(); ++entry) {
            const auto count = uses.find(entry.key());
            if (--*count == 0) {
                uses.erase(count);
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
        if (uses.contains(item) || (isHeld && isHeld(item))) {
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
            changed = changed || isNew || !glow::sameBlob(known->value(item), item->itemData);
        }
    }
    if (!changed) {
        return false;
    }
    while (index >= 0 && snapshots.size() - 1 > index) {
        drop(snapshots.takeLast());
    }
    append(new Snapshot(fresh));
    if (index >= deepest) {
        drop(snapshots.takeFirst());
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
