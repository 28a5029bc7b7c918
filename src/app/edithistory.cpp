#include "app/edithistory.h"

#include "show/model/patternrecord.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"

#include <QSet>

namespace {

// The newest position that the history reaches; beyond it the oldest snapshot goes.
constexpr qint32 deepest = 100;

// Are these the same tracks' contents, by the address and not only by the bytes? Then they need no look at the
// patterns.
bool shares(const EditHistory::Snapshot *snapshot, Timeline *track, const EditHistory::TrackSnapshot &patterns)
{
    if (snapshot == nullptr) {
        return false;
    }
    const auto found = snapshot->constFind(track);
    return found != snapshot->constEnd() && found->isSharedWith(patterns);
}

void removeAllBut(const EditHistory::TrackSnapshot &held, Timeline *track)
{
    const QList<TimelineItem *> present = track->items;
    for (TimelineItem *item : present) {
        if (!held.contains(item)) {
            track->deleteTimelineItem(item);
        }
    }
}

// isListed: the track's list names the item.
void restoreItem(Timeline *track, TimelineItem *item, bool isListed, const QByteArray &blob)
{
    auto *holder = qobject_cast<Timeline *>(item->parentWidget());
    if (holder != track || !glow::sameBlob(blob, item->itemData)) {
        item->loadData(blob);
    }
    if (holder == track && isListed) {
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

void restoreTrack(Timeline *track, const EditHistory::TrackSnapshot &held)
{
    const QSet<TimelineItem *> listed(track->items.cbegin(), track->items.cend());
    for (auto entry = held.constBegin(); entry != held.constEnd(); ++entry) {
        restoreItem(track, entry.key(), listed.contains(entry.key()), entry.value());
    }
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
    looked.clear();
    destroyForgotten();
}

EditHistory::Present &EditHistory::presentOf(Timeline *track)
{
    Present &present = looked[track];
    // An item that stands elsewhere changes without a word to the track that lists it.
    if (present.revision == track->revision && present.placed) {
        return present;
    }
    present.revision = track->revision;
    present.placed = true;
    present.patterns = TrackSnapshot();
    for (TimelineItem *item : qAsConst(track->items)) {
        present.patterns.insert(item, item->itemData);
        present.placed = present.placed && item->parentWidget() == track;
    }
    return present;
}

bool EditHistory::isAt(Timeline *track, const TrackSnapshot &held)
{
    const Present &present = presentOf(track);
    return present.placed && present.patterns.isSharedWith(held);
}

bool EditHistory::hasChanged(Timeline *track, const Snapshot &old)
{
    const auto known = old.constFind(track);
    if (known == old.constEnd()) {
        return true;
    }
    Present &present = presentOf(track);
    if (present.patterns.isSharedWith(*known)) {
        return false;
    }
    for (auto entry = present.patterns.constBegin(); entry != present.patterns.constEnd(); ++entry) {
        if (!glow::sameBlob(known->value(entry.key()), entry.value())) {
            return true;
        }
    }
    // The same bytes: from here on also the same address, unless patterns have gone.
    if (present.patterns.size() == known->size()) {
        present.patterns = *known;
    }
    return false;
}

void EditHistory::append(Snapshot *snapshot)
{
    const Snapshot *neighbour = snapshots.isEmpty() ? nullptr : snapshots.last();
    for (auto track = snapshot->constBegin(); track != snapshot->constEnd(); ++track) {
        if (shares(neighbour, track.key(), *track)) {
            continue;
        }
        for (auto entry = track->constBegin(); entry != track->constEnd(); ++entry) {
            ++uses[entry.key()];
        }
    }
    snapshots.append(snapshot);
}

// Deletes a snapshot that is in the list no more, at the end of which neighbour stands now, and notes what no other one
// names.
void EditHistory::drop(Snapshot *snapshot, const Snapshot *neighbour)
{
    for (auto track = snapshot->constBegin(); track != snapshot->constEnd(); ++track) {
        if (shares(neighbour, track.key(), *track)) {
            continue;
        }
        for (auto entry = track->constBegin(); entry != track->constEnd(); ++entry) {
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
    for (Timeline *track : tracks) {
        changed = hasChanged(track, old) || changed;
    }
    if (!changed) {
        return false;
    }
    Snapshot fresh;
    for (Timeline *track : tracks) {
        fresh.insert(track, presentOf(track).patterns);
    }
    while (index >= 0 && snapshots.size() - 1 > index) {
        Snapshot *undone = snapshots.takeLast();
        drop(undone, snapshots.last());
    }
    append(new Snapshot(fresh));
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
        } else if (!isAt(track, *held)) {
            removeAllBut(*held, track);
        }
    }
    for (auto held = target.constBegin(); held != target.constEnd(); ++held) {
        if (tracks.contains(held.key()) && !isAt(held.key(), *held)) {
            restoreTrack(held.key(), *held);
        }
    }
    return index > 0 && index < snapshots.size() - 1;
}
