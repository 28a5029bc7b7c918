#include "support/windowcheck.h"

#include "app/mainwindow.h"
#include "timeline/mylabel.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QSet>

namespace {

QString wrongItem(const Timeline &track, const TimelineItem &item)
{
    if (item.parentWidget() != &track) {
        return QStringLiteral("an item is listed on a track that is not its parent");
    }
    if (item.isHidden()) {
        return QStringLiteral("a listed item is hidden");
    }
    const glow::PatternRecord record = glow::readPattern(item.itemData);
    if (record.startTime != item.startTime || record.endTime != item.endTime ||
        record.settingsText != item.settingsText || record.repeatCount != item.repeatCount) {
        return QStringLiteral("an item's blob is out of step with its members");
    }
    return {};
}

QString wrongLabel(const MainWindow &window, const Timeline &track)
{
    const int row = window.ui->timeline_layout->indexOf(const_cast<Timeline *>(&track));
    const QString number = QString::number(window.timelines.size() - row + 1);
    if (track.rowLabel == nullptr || track.rowLabel->text() != number) {
        return QStringLiteral("a label's number is wrong");
    }
    if (window.isVisible()) {
        const int labelY = track.rowLabel->mapTo(&window, QPoint()).y();
        const int trackY = track.mapTo(&window, QPoint()).y();
        if (labelY != trackY) {
            return QStringLiteral("label %1 stands at %2, its track at %3").arg(number).arg(labelY).arg(trackY);
        }
    }
    return {};
}

} // namespace

QString whatIsWrong(const MainWindow &window)
{
    int current = 0;
    QSet<const TimelineItem *> seen;
    for (const Timeline *track : window.timelines) {
        current += track->isCurrent ? 1 : 0;
        QString label = wrongLabel(window, *track);
        if (!label.isEmpty()) {
            return label;
        }
        for (const TimelineItem *item : track->items) {
            if (seen.contains(item)) {
                return QStringLiteral("an item is listed twice");
            }
            seen.insert(item);
            QString wrong = wrongItem(*track, *item);
            if (!wrong.isEmpty()) {
                return wrong;
            }
        }
    }
    if (current != 1 || window.currentTimeline == nullptr || !window.currentTimeline->isCurrent ||
        !window.timelines.contains(window.currentTimeline)) {
        return QStringLiteral("%1 tracks are current").arg(current);
    }
    if (window.ui->NEW_radio->isChecked() && window.currentItem != nullptr) {
        return QStringLiteral("new mode holds an item");
    }
    if (window.ui->NEW_radio->isChecked() == window.ui->EDIT_radio->isChecked()) {
        return QStringLiteral("the panel is in both modes or in none");
    }
    return {};
}
