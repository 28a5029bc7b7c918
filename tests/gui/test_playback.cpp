// Playing in the window, with a song and in silence: the controls, and the preview that follows.
#include "preview/mygl.h"
#include "song/songmaker.h"
#include "support/windowtest.h"

#include <QProgressDialog>

class TestPlayback : public WindowTest
{
    Q_OBJECT

private:
    void readSong(int ms)
    {
        songs::writeWav(env->path("song.wav"), {8000, 1, ms});
        window->ReadSong(env->path("song.wav"));
        QTRY_VERIFY_WITH_TIMEOUT(!window->decodeProgress->isVisible() && window->hasSong(), 30000);
        QTRY_COMPARE(state(), QMediaPlayer::PausedState);
        QTRY_COMPARE(window->player->position(), qint64(0));
        QTRY_VERIFY(window->player->duration() > 0);
        QTRY_COMPARE(shown(), 0); // the first notification
    }
    int shown() const { return glow::msOf(ui->Song_time->time()); }
    Indicator *playHead() const { return ui->timeline_headers->indicator; }
    bool showsIcon(const QString &name) const
    {
        return ui->Song_play->icon().pixmap(24).toImage() == QIcon(":/icon/" + name).pixmap(24).toImage();
    }
    bool clockRuns() const { return ui->Song_time->clockTimer->isActive(); }
    QMediaPlayer::State state() const { return window->player->state(); }
    // Everything that tells the place comes to the same one.
    void verifyPlace(int ms) const
    {
        if (window->hasSong())
            QTRY_COMPARE(window->player->position(), qint64(ms));
        QTRY_COMPARE(playHead()->x(), ms / 10);
        QTRY_COMPARE(shown(), ms);
        QTRY_COMPARE(ui->Song_Slider->value(), ms);
    }

private slots:
    void silenceRunsFromThePlayHead()
    {
        playHead()->setIndicatorTime(QTime(0, 1), true);
        window->player->blockSignals(true);
        ui->Song_play->click();
        QVERIFY(showsIcon("pause.png") && !window->player->signalsBlocked());
        QTRY_VERIFY(shown() >= 60200);
        QVERIFY(shown() < 65000);
        QCOMPARE(ui->Song_Slider->value(), glow::msOf(playHead()->indicatorTime));
        window->on_Addbutton_hovered(true);
        QVERIFY(window->currentTimeline->readyBand->isHidden()); // where the next one goes is shown while nothing plays
        ui->Song_play->click();
        QVERIFY(showsIcon("play.png") && !clockRuns());
        const int stopped = shown();
        ui->Song_play->click(); // goes on from where it stopped
        QVERIFY(shown() >= stopped && shown() < stopped + 2000);
        ui->Song_Stop->click();
        QVERIFY(showsIcon("play.png") && !clockRuns());
        verifyPlace(0);

        // The clock runs on beyond the end of the show.
        ui->timeline_max->setTime(QTime(0, 0, 0, 100));
        ui->Song_Slider->setMaximum(100);
        ui->Song_play_2->trigger();
        QTRY_VERIFY(shown() > 200);
        QVERIFY(clockRuns() && playHead()->x() > ui->timeline_headers->width());
        QCOMPARE(ui->Song_Slider->value(), 100);
    }

    // Whatever has the focus: a key that a button and an action both hold would be ambiguous, and then neither answers.
    void spacePlaysAndPauses()
    {
        const QVector<QWidget *> focused{ui->timeline_scroll, ui->GLWidget,   ui->Song_Stop, ui->timeline_scaler,
                                         ui->Song_Slider,     ui->AutoRepeat, window.data()};
        for (QWidget *focus : focused) {
            focus->setFocus();
            for (const bool runs : {true, false}) {
                QTest::keyClick(window->windowHandle(), Qt::Key_Space);
                QVERIFY2(clockRuns() == runs, qPrintable(focus->objectName()));
            }
        }
        QVERIFY(ui->AutoRepeat->isChecked());
    }

    void aSongPlaysPausesAndStops()
    {
        readSong(400);
        for (int round = 0; round < 2; ++round) { // from its end it starts over
            ui->Song_play->click();
            QVERIFY(state() == QMediaPlayer::PlayingState && showsIcon("pause.png") && !clockRuns());
            QTRY_COMPARE(state(), QMediaPlayer::StoppedState);
            QVERIFY(showsIcon("play.png"));
        }

        readSong(3000);
        TimelineItem *red = add(patternBlob("1?#ff0000", 150, 2800));
        ui->Mode_t1->setTime(QTime(0, 2));
        ui->NEW_radio->setChecked(true);
        window->player->blockSignals(true);
        ui->Song_play->click();
        // A new pattern begins at the play-head.
        QVERIFY(!window->player->signalsBlocked() && ui->Mode_t1->time() < QTime(0, 1));
        QTRY_VERIFY(playHead()->x() > 20);
        ui->Song_play->click();
        QCOMPARE(state(), QMediaPlayer::PausedState);
        // So it does all along; a notification within the same pixel sets the play-head's time alone.
        QVERIFY(qAbs(ui->Mode_t1->time().msecsTo(playHead()->indicatorTime)) <= 10);

        // Something else stands in the preview meanwhile; the next notification brings the pattern back.
        window->Oviewer_change(0, 0, 255);
        ui->Song_play->click();
        QTRY_COMPARE(QColor(ui->GLWidget->pixelAt(0, 0)), QColor(Qt::red));
        QCOMPARE(window->previewItem, red);

        // Stop rewinds and never unloads the song.
        ui->Song_Stop->click();
        verifyPlace(0);
        QVERIFY(showsIcon("play.png") && state() == QMediaPlayer::PausedState);

        // Its file may go while it plays.
        ui->Song_play->click();
        QTRY_VERIFY(playHead()->x() > 5);
        QVERIFY(QFile::remove(env->path("song.wav")));
        QTRY_VERIFY(state() != QMediaPlayer::PlayingState);
        ui->Song_play->click();
        QVERIFY(window->hasSong() && !window->decodeProgress->isVisible());
    }

    void seeking()
    {
        const auto seekEveryWay = [this] {
            emit ui->Song_Slider->sliderMoved(2000);
            verifyPlace(2000);
            ui->Song_time->setTime(QTime(0, 0, 3));
            emit ui->Song_time->editingFinished();
            verifyPlace(3000);
            QTest::mouseClick(ui->timeline_headers, Qt::LeftButton, Qt::NoModifier, QPoint(40, 25));
            verifyPlace(400);
            QVERIFY(!clockRuns() && state() != QMediaPlayer::PlayingState);
        };
        seekEveryWay();
        ui->Song_play->click();
        ui->Song_time->setTime(QTime(0, 3)); // an edit under the running clock is overwritten
        emit ui->Song_time->editingFinished();
        QTRY_VERIFY(shown() < 120000);
        emit ui->Song_Slider->sliderMoved(120000); // a seek runs on from its place
        QTRY_VERIFY(shown() >= 120050);
        QVERIFY(shown() < 125000);
        ui->Song_Stop->click();
        readSong(20000);
        seekEveryWay();

        // Only the ruler seeks while a song plays.
        ui->Song_play->click();
        QTRY_VERIFY(playHead()->x() > 45);
        emit ui->Song_Slider->sliderMoved(15000);
        QCOMPARE(shown(), 15000); // for a moment only
        QTRY_VERIFY(shown() < 10000);
        QVERIFY(window->player->position() < 10000);
        QTest::mouseClick(ui->timeline_headers, Qt::LeftButton, Qt::NoModifier, QPoint(1200, 25));
        QTRY_VERIFY(window->player->position() >= 12000);
        QTRY_VERIFY(shown() > 12000);
        QCOMPARE(state(), QMediaPlayer::PlayingState);
    }
};

QTEST_MAIN(TestPlayback)
#include "test_playback.moc"
