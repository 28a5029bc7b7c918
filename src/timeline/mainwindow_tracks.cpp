// Tracks, the selection, drags between tracks, and the clipboard.
#include "app/mainwindow.h"

#include "timeline/dragformat.h"
#include "timeline/indicator.h"
#include "timeline/mylabel.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QDebug>
#include <QMessageBox>
#include <QMouseEvent>
#include <QScrollBar>

void MainWindow::addTimeline(short index)
{
    auto *track = new Timeline(ui->timeline_headers);
    if (currentTimeline != nullptr) {
        currentTimeline->setCurrent(false);
    }
    connect(track, &Timeline::itemClicked, this, &MainWindow::on_timelineItem_Clicked);
    connect(track, &Timeline::itemDragEnd, this, &MainWindow::on_timelineItem_dragEnd);
    connect(track, &Timeline::timelinePressed, this, &MainWindow::on_timeline_Pressed);
    connect(track, &Timeline::dragIn, this, &MainWindow::on_timeline_dragIn);
    connect(track, qOverload<Timeline *>(&Timeline::tlDuplicated_clicked), this, &MainWindow::on_tlDuplicated_clicked);
    connect(track, &Timeline::timelineDeleteClicked, this, &MainWindow::on_timeline_remove_clicked);

    // One index serves list and layout alike, though the layout begins with a spacer: the two orders differ.
    const int place = qMax<int>(index, 1);
    ui->timeline_layout->insertWidget(qMin(place, ui->timeline_layout->count()), track);
    timelines.insert(qMin(place, timelines.size()), track);

    auto *label = new MyLabel(this);
    connect(label, &MyLabel::mousePress, track, &Timeline::on_label_pressed);
    ui->timeline_rowheader_layout->insertWidget(qMin(place, ui->timeline_rowheader_layout->count()), label);
    track->rowLabel = label;

    currentTimeline = track;
    track->setCurrent(true);
    renumberTracks();
}

int MainWindow::trackNumber(const Timeline *track) const
{
    return track->rowLabel->text().toInt();
}

void MainWindow::renumberTracks()
{
    // The labels of removed tracks stay behind in their layout; those that count stand at their tracks' places. The tab
    // key goes through the tracks from the top down.
    QWidget *above = ui->timeline_scroll_2;
    for (int row = 1; row < ui->timeline_layout->count(); ++row) {
        auto *track = qobject_cast<Timeline *>(ui->timeline_layout->itemAt(row)->widget());
        if (track == nullptr) {
            continue;
        }
        track->rowLabel->setText(QString::number(timelines.size() - row + 1));
        track->setAccessibleName(tr("軌道") + u' ' + track->rowLabel->text());
        setTabOrder(above, track);
        above = track;
        QLayoutItem *place = ui->timeline_rowheader_layout->itemAt(row);
        if (place == nullptr || place->widget() != track->rowLabel) {
            ui->timeline_rowheader_layout->removeWidget(track->rowLabel);
            ui->timeline_rowheader_layout->insertWidget(qMin(row, ui->timeline_rowheader_layout->count()),
                                                        track->rowLabel);
        }
    }
}

void MainWindow::on_timeline_Pressed(Timeline *t, bool update)
{
    if (currentTimeline != nullptr) {
        currentTimeline->setCurrent(false);
    }
    currentTimeline = t;
    t->setCurrent(true);
    if (!update) {
        return;
    }
    ui->NEW_radio->toggle();
    const TimelineItem *item = t->itemUnderHead(ui->timeline_headers->indicator->x());
    if (item != nullptr) {
        const float seconds = static_cast<float>(glow::durationMs(*item)) / 1000.0F;
        previewPattern(*item, static_cast<double>(seconds));
    } else {
        Oviewer_change(0, 0, 0);
    }
}

void MainWindow::on_timeline_add_clicked()
{
    addTimeline(static_cast<short>(timelines.indexOf(currentTimeline)));
}

void MainWindow::on_tlDuplicated_clicked(Timeline *t)
{
    QList<QByteArray> blobs;
    for (const TimelineItem *item : qAsConst(t->items)) {
        blobs.append(item->itemData);
    }
    addTimeline(static_cast<short>(ui->timeline_layout->indexOf(currentTimeline)));
    for (const QByteArray &blob : qAsConst(blobs)) {
        currentTimeline->place(blob);
    }
    if (!blobs.isEmpty()) {
        updateStatus();
    }
}

void MainWindow::on_timeline_remove_clicked()
{
    QScrollBar *bar = ui->timeline_scroll->horizontalScrollBar();
    const int scrolled = bar->value();
    if (timelines.size() > 1) {
        const auto answer =
            QMessageBox::warning(this, tr("確認移除軌道？"), tr("<font color='white'>此動作無法復原</font>"),
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
        if (answer != QMessageBox::Yes) {
            return;
        }
        // Hidden and never freed: the history can still name the track and what stands on it.
        timelines.removeOne(currentTimeline);
        currentTimeline->rowLabel->hide();
        currentTimeline->hide();
        currentTimeline->isCurrent = false;
        ui->timeline_layout->removeWidget(currentTimeline);

        currentTimeline = timelines.first();
        currentTimeline->setCurrent(true);
        ui->NEW_radio->setChecked(true);
    }
    renumberTracks();
    bar->setValue(scrolled);
}

void MainWindow::deselect()
{
    if (currentItem != nullptr) {
        currentItem->selected = 0;
        currentItem->update();
    }
    currentItem = nullptr;
}

void MainWindow::on_timelineItem_Clicked(TimelineItem *item, bool moved)
{
    Q_UNUSED(moved)
    previewItem = item;
    loadItemToEditor(item);
}

void MainWindow::on_timeline_dragIn(Timeline *t)
{
    TimelineItem *item = currentTimeline->dragItem;
    if (item == nullptr) {
        return;
    }
    QScrollBar *bar = ui->timeline_scroll->horizontalScrollBar();
    const int scrolled = bar->value();
    currentTimeline->deleteTimelineItem(item);
    currentTimeline->dragItem = nullptr;
    t->addTimelineItem(item);
    t->dragItem = item;
    item->show();
    bar->setValue(scrolled);
}

void MainWindow::on_timelineItem_dragEnd(const QByteArray &orig, TimelineItem *item, Timeline *orig_tl)
{
    Q_UNUSED(orig)
    Q_UNUSED(orig_tl)
    qDebug() << "item drag end";
    previewItem = item;
    loadItemToEditor(item);
    updateStatus();
}

void MainWindow::on_itemCopy_clicked()
{
    if (currentItem != nullptr) {
        qDebug() << "COPY";
        currentItem->on_itemCopy_clicked();
    }
}

void MainWindow::on_itemPaste_clicked()
{
    currentTimeline->on_itemPaste_clicked();
}

void MainWindow::on_actionCopy_triggered()
{
    if (currentItem != nullptr) {
        currentItem->on_itemCopy_clicked();
    }
}

void MainWindow::on_actionPaste_triggered()
{
    if (glow::clipboardHasPattern()) {
        currentTimeline->on_itemPaste_clicked();
    }
}

bool MainWindow::isTrackEmpty() const
{
    return currentTimeline->items.isEmpty();
}

QVector<QByteArray> MainWindow::trackBlobs() const
{
    QVector<QByteArray> blobs;
    for (const TimelineItem *item : qAsConst(currentTimeline->items)) {
        blobs.append(item->itemData);
    }
    return blobs;
}

QVector<glow::PatternRecord> MainWindow::sortedPatterns()
{
    currentTimeline->sortItems();
    QVector<glow::PatternRecord> patterns;
    for (const TimelineItem *item : qAsConst(currentTimeline->items)) {
        patterns.append(*item);
    }
    return patterns;
}

QStringList MainWindow::settingsTexts() const
{
    QStringList texts;
    for (const Timeline *track : timelines) {
        for (const TimelineItem *item : track->items) {
            texts.append(item->settingsText);
        }
    }
    return texts;
}

void MainWindow::rewriteSettings(const std::function<QString(const QString &)> &rewrite)
{
    for (const Timeline *track : qAsConst(timelines)) {
        for (TimelineItem *item : track->items) {
            const QString text = rewrite(item->settingsText);
            if (text != item->settingsText) {
                qDebug() << text;
                item->settingsText = text;
                item->updateData();
            }
        }
    }
}
