// Playing: the player is the clock of a show with a song, the time field runs one for a show without. Both end in the
// play-head, whose moves take effect in on_timeline_headers_indicatorMoved.
#include "app/mainwindow.h"

#include "show/model/showtime.h"
#include "song/mytime.h"
#include "ui_mainwindow.h"

#include <QDebug>

namespace {

void showPlaying(Ui::MainWindow &form, bool playing)
{
    form.Song_play->setIcon(QIcon(playing ? QStringLiteral(":/icon/pause.png") : QStringLiteral(":/icon/play.png")));
}

} // namespace

void MainWindow::on_Song_play_clicked()
{
    player->blockSignals(false);
    if (hasSong()) {
        if (player->state() == QMediaPlayer::PlayingState) {
            player->pause();
            return;
        }
        if (ui->NEW_radio->isChecked()) {
            ui->Mode_t1->setTime(ui->Song_time->time());
        }
        previewItem = nullptr; // so that the first notification sets the preview anew
        player->play();
        return;
    }
    QTimer *clock = ui->Song_time->clockTimer;
    showPlaying(*ui, !clock->isActive());
    if (clock->isActive()) {
        clock->stop();
        return;
    }
    ui->Song_time->restartClock(headTime());
    clock->start();
}

void MainWindow::on_Song_play_2_triggered()
{
    on_Song_play_clicked();
}

// Pauses whatever is the clock and takes the play-head back to the start. The player is never stopped, so that the song
// stays loaded and seekable.
void MainWindow::rewindSong()
{
    if (hasSong()) {
        player->pause();
        player->setPosition(0);
    } else {
        ui->Song_time->clockTimer->stop();
        showPlaying(*ui, false);
    }
    ui->Song_Slider->setValue(0);
    setHeadTime(QTime(0, 0));
    ui->Song_time->setTime(QTime(0, 0));
}

void MainWindow::on_Song_Stop_clicked()
{
    player->blockSignals(false);
    rewindSong();
}

void MainWindow::positionChanged(qlonglong t)
{
    const int ms = static_cast<int>(t);
    ui->Song_Slider->setValue(ms);
    ui->Song_time->setTime(glow::timeOf(ms));
    setHeadTime(glow::timeOf(ms));
    player->blockSignals(false);
}

void MainWindow::timerTimeout(qlonglong t)
{
    const int ms = static_cast<int>(t);
    ui->Song_Slider->setValue(ms);
    setHeadTime(glow::timeOf(ms));
    player->blockSignals(false);
}

void MainWindow::stateChanged(QMediaPlayer::State state)
{
    showPlaying(*ui, state == QMediaPlayer::PlayingState);
}

void MainWindow::on_Song_Slider_sliderMoved(int position)
{
    qDebug() << "song slider moved" << position;
    if (hasSong() && player->state() != QMediaPlayer::PlayingState) {
        player->setPosition(position);
    } else {
        // While a song plays this shows for a moment only: the slider does not seek a playing song.
        ui->Song_time->restartClock(glow::timeOf(position));
    }
}

void MainWindow::on_Song_time_editingFinished()
{
    const QTime t = ui->Song_time->time();
    qDebug() << "song time change" << t;
    if (hasSong() && player->state() != QMediaPlayer::PlayingState) {
        player->setPosition(glow::msOf(t));
    } else if (!ui->Song_time->clockTimer->isActive()) {
        ui->Song_time->restartClock(t);
    }
}

void MainWindow::on_Song_rate_valueChanged(double arg1)
{
    player->setPlaybackRate(arg1);
}

void MainWindow::on_Song_rec_clicked() {}

void MainWindow::seekClock(const QTime &time)
{
    if (!hasSong()) {
        ui->Song_time->restartClock(time);
        return;
    }
    player->blockSignals(true);
    player->setPosition(glow::msOf(time));
    ui->Song_Slider->setValue(glow::msOf(time));
    ui->Song_time->setTime(time);
    setHeadTime(time);
    player->blockSignals(false);
}
