// The ruler's length, the zoom, scrolling, and what a move of the play-head brings about.
#include "app/mainwindow.h"

#include "show/model/timescale.h"
#include "timeline/indicator.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QCoreApplication>
#include <QDebug>
#include <QScrollBar>

namespace {

// A new width of the ruler reaches the scroll bar's range only with the next layout pass, so scrolling to a place at
// the new width needs that pass first.
void settleScrollRange(Ui::MainWindow &ui)
{
    ui.timeline_layout_out->layout()->activate();
    QEvent request(QEvent::LayoutRequest);
    QCoreApplication::sendEvent(ui.timeline_scroll, &request);
}

} // namespace

// The ruler's length, and the scroll bars that move tracks and labels together.
void MainWindow::setUpTimeline()
{
    ui->audio_frame->setAttribute(Qt::WA_TransparentForMouseEvents);
    on_timeline_max_timeChanged(ui->timeline_max->time());
    ui->Song_Slider->setMaximum(glow::msOf(ui->timeline_max->time()));

    QScrollBar *rows = ui->timeline_scroll_2->verticalScrollBar();
    connect(rows, &QScrollBar::rangeChanged, this, &MainWindow::timeline_vertical_scroll_changed);
    connect(ui->timeline_vertical_scrollbar, &QScrollBar::valueChanged, rows, &QScrollBar::setValue);
    connect(ui->timeline_vertical_scrollbar, &QScrollBar::valueChanged, ui->timeline_rowheader->verticalScrollBar(),
            &QScrollBar::setValue);
}

void MainWindow::on_timeline_scaler_valueChanged(int value)
{
    msPerPixel = glow::msPerPixelOfSlider(value);
    TimelineHeaders *ruler = ui->timeline_headers;
    ruler->setFixedWidth(glow::widthOfLength(ruler->timelineLengthMs));
    ruler->indicator->setIndicatorTime(ruler->indicator->indicatorTime, false);
    settleScrollRange(*ui);
    ui->timeline_scroll->horizontalScrollBar()->setValue(ruler->indicator->x() - ui->timeline_scroll->width() / 2);
    for (Timeline *track : qAsConst(timelines)) {
        emit track->timelineMultiUpdated();
    }
    resizeWave();
    qDebug() << "tack: " << tickMs / msPerPixel;
}

void MainWindow::on_timeline_max_timeChanged(const QTime &time)
{
    TimelineHeaders *ruler = ui->timeline_headers;
    ruler->timelineLengthMs = glow::msOf(time);
    ruler->setFixedWidth(glow::widthOfLength(ruler->timelineLengthMs));
}

void MainWindow::on_timeline_scrolled(int delta)
{
    ui->timeline_scaler->setValue(ui->timeline_scaler->value() + delta);
}

void MainWindow::on_timeline_splitter_splitterMoved(int pos, int index)
{
    Q_UNUSED(index)
    ui->audio_spacer->setFixedHeight(qMax(0, 1 - pos + ui->timeline_splitter->height()));
    resizeWave();
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    // The handle is not all that resizes the waveform: a low window squeezes it without a splitterMoved.
    if (watched == ui->audio_frame && event->type() == QEvent::Resize) {
        on_timeline_splitter_splitterMoved(ui->timeline_splitter->sizes().constFirst(), 1);
    }
    // A button and an action both hold the space bar. Qt then sends an ambiguous shortcut to one of the two, which does
    // nothing by itself; whichever gets it, the show plays.
    if (event->type() == QEvent::Shortcut && (watched == ui->Song_play || watched == ui->Song_play_2)) {
        on_Song_play_clicked();
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::timeline_vertical_scroll_changed(int min, int max)
{
    const int page = ui->timeline_scroll_2->verticalScrollBar()->pageStep();
    for (QScrollBar *bar : {ui->timeline_vertical_scrollbar, ui->timeline_rowheader->verticalScrollBar()}) {
        bar->setRange(min, max);
        bar->setPageStep(page);
    }
}

void MainWindow::on_timeline_headers_indicatorMoved(int x, bool user)
{
    const int t = qMax(0, glow::msOf(headTime())); // left of the ruler the time is below zero for a moment
    const QTime time = glow::timeOf(t);
    TimelineItem *item = currentTimeline->itemUnderHead(x);
    if (user) {
        seekClock(time);
        if (item != nullptr && player->state() != QMediaPlayer::PlayingState) {
            const auto into = static_cast<float>(qint64(t) - glow::msOf(item->startTime));
            seekPreview(into / static_cast<float>(glow::durationMs(*item)));
        }
    }
    followPattern(item, time);
    keepHeadInView();
}

// The preview shows the pattern under the play-head, and a new pattern would begin there.
void MainWindow::followPattern(TimelineItem *item, const QTime &time)
{
    if (item == previewItem) {
        if (ui->NEW_radio->isChecked()) {
            ui->Mode_t1->setTime(time);
        }
        return;
    }
    if (item != nullptr) {
        previewPattern(*item, glow::durationMs(*item) / 1000.0);
    } else {
        Oviewer_change(0, 0, 0);
    }
    previewItem = item;
    ui->NEW_radio->setChecked(true);
    ui->Mode_t1->setTime(time);
}

void MainWindow::keepHeadInView()
{
    QScrollBar *bar = ui->timeline_scroll->horizontalScrollBar();
    const int view = ui->timeline_scroll->width();
    const int x = ui->timeline_headers->indicator->x();
    if (x < bar->value() || x > bar->value() + view) {
        bar->setValue(x - view / 2);
    }
}

QTime MainWindow::headTime() const
{
    return ui->timeline_headers->indicator->indicatorTime;
}

void MainWindow::setHeadTime(const QTime &time)
{
    ui->timeline_headers->indicator->setIndicatorTime(time, false);
}

int MainWindow::startMarkMs() const
{
    return glow::timeOfPixel(ui->timeline_headers->startMarkX);
}
