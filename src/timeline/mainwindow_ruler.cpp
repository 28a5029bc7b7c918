// The ruler's length, the zoom, scrolling, and what a move of the play-head brings about.
#include "app/mainwindow.h"

#include "preview/mygl.h"
#include "song/chartview.h"
#include "song/mytime.h"
#include "timeline/indicator.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QCoreApplication>
#include <QDebug>
#include <QScrollBar>

#include <cmath>

namespace {

// A new width of the ruler reaches the scroll bar's range with the next layout pass; whoever scrolls to a place at the
// new width needs that pass first.
void settleScrollRange(Ui::MainWindow &ui)
{
    ui.timeline_layout_out->layout()->activate();
    QEvent request(QEvent::LayoutRequest);
    QCoreApplication::sendEvent(ui.timeline_scroll, &request);
}

// The step that belongs to a share of a pattern. A pattern without a length has no share; that is its beginning.
qint64 stepAt(float share, qint32 columns, qint32 repeats)
{
    const float step = static_cast<float>(columns) * share * static_cast<float>(repeats);
    constexpr float beyond = 9.2e18F;
    return std::isfinite(step) && std::fabs(step) < beyond ? static_cast<qint64>(step) : 0;
}

} // namespace

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
    chartView->resizeToWave();
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
    chartView->resizeToWave();
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    // The handle is not the only one to resize the waveform: a low window squeezes it, and then no splitterMoved tells.
    if (watched == ui->audio_frame && event->type() == QEvent::Resize) {
        on_timeline_splitter_splitterMoved(ui->timeline_splitter->sizes().constFirst(), 1);
    }
    // A button and an action hold the space bar. Qt calls such a key ambiguous, tells one of the two and leaves the
    // show as it is; whichever it tells, the show plays.
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
    Indicator *head = ui->timeline_headers->indicator;
    const int t = qMax(0, glow::msOf(head->indicatorTime));
    const QTime time = glow::timeOf(t);
    TimelineItem *item = currentTimeline->itemUnderHead(x);
    if (user) {
        if (hasSong()) {
            player->blockSignals(true);
            player->setPosition(t);
            ui->Song_Slider->setValue(t);
            ui->Song_time->setTime(time);
            head->setIndicatorTime(time, false);
            player->blockSignals(false);
        } else {
            ui->Song_time->restartClock(time);
        }
        if (item != nullptr && player->state() != QMediaPlayer::PlayingState) {
            const auto into = static_cast<float>(qint64(t) - glow::msOf(item->startTime));
            const float share = into / static_cast<float>(glow::durationMs(*item));
            ui->GLWidget->stepCount = stepAt(share, ui->GLWidget->columnCount, ui->GLWidget->patternRepeats);
            ui->GLWidget->stepOrigin = 0;
        }
    }
    if (item != previewItem) {
        if (item != nullptr) {
            previewPattern(item, glow::durationMs(*item) / 1000.0);
        } else {
            Oviewer_change(0, 0, 0);
        }
        previewItem = item;
        ui->NEW_radio->setChecked(true);
        ui->Mode_t1->setTime(time);
    } else if (ui->NEW_radio->isChecked()) {
        ui->Mode_t1->setTime(time);
    }

    QScrollBar *bar = ui->timeline_scroll->horizontalScrollBar();
    const int view = ui->timeline_scroll->width();
    if (head->x() < bar->value() || head->x() > bar->value() + view) {
        bar->setValue(head->x() - view / 2);
    }
}
