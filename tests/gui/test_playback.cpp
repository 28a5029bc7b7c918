// Playing in the window, with a song and in silence: the controls, and the preview that follows.
#include "app/mainwindow.h"
#include "app/patternrecord.h"
#include "preview/mygl.h"
#include "song/songmaker.h"
#include "support/testenv.h"
#include "timeline/indicator.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QProgressDialog>
#include <QSignalSpy>
#include <QtTest>

class TestPlayback : public QObject
{
    Q_OBJECT

private:
    void readSong(int ms)
    {
        songs::writeWav(env->path(QStringLiteral("song.wav")), {8000, 1, ms});
        window->ReadSong(env->path(QStringLiteral("song.wav")));
        QTRY_VERIFY_WITH_TIMEOUT(!window->decodeProgress->isVisible() && window->hasSong(), 30000);
        QTRY_COMPARE(window->player->state(), QMediaPlayer::PausedState);
        QTRY_COMPARE(window->player->position(), qint64(0));
        QTRY_VERIFY(window->player->duration() > 0);
        QTRY_COMPARE(shown(), 0); // the first notification
    }
    TimelineItem *addPattern(int start, int end, const QColor &color)
    {
        glow::PatternRecord record;
        record.thumbnail = QPixmap(85, 85);
        record.thumbnail.fill(color);
        record.startTime = glow::timeOf(start);
        record.endTime = glow::timeOf(end);
        record.solidColor = color;
        record.patternKind = glow::ColourPattern;
        record.repeatCount = 1;
        record.settingsText = color.name();
        auto *item = new TimelineItem(glow::writePattern(record), window->currentTimeline);
        window->currentTimeline->addTimelineItem(item);
        window->currentTimeline->sortItems();
        return item;
    }
    int shown() const { return glow::msOf(ui->Song_time->time()); }
    Indicator *playHead() const { return ui->timeline_headers->indicator; }
    bool showsIcon(const char *path) const
    {
        return ui->Song_play->icon().pixmap(24).toImage() == QIcon(QLatin1String(path)).pixmap(24).toImage();
    }
    bool showsPlay() const { return showsIcon(":/icon/play.png"); }
    bool showsPause() const { return showsIcon(":/icon/pause.png"); }
    bool clockRuns() const { return ui->Song_time->clockTimer->isActive(); }
    bool playing() const { return window->player->state() == QMediaPlayer::PlayingState; }
    void clickRuler(int x) { QTest::mouseClick(ui->timeline_headers, Qt::LeftButton, Qt::NoModifier, QPoint(x, 25)); }
    void editTime(const QTime &time)
    {
        ui->Song_time->setTime(time);
        emit ui->Song_time->editingFinished();
    }

    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
    Ui::MainWindow *ui = nullptr;

private slots:
    void init()
    {
        env.reset(new TestEnv);
        msPerPixel = 10.0F;
        window.reset(new MainWindow);
        ui = window->ui;
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.data()));
    }
    void cleanup()
    {
        window.reset();
        env.reset();
    }

    void silenceRunsFromThePlayHead()
    {
        QVERIFY(showsPlay());
        playHead()->setIndicatorTime(QTime(0, 1), true);
        window->player->blockSignals(true);
        ui->Song_play->click();
        QVERIFY(showsPause());
        QVERIFY(!window->player->signalsBlocked());
        QTRY_VERIFY(shown() >= 60200);
        QVERIFY(shown() < 65000);
        const int now = glow::msOf(playHead()->indicatorTime);
        QCOMPARE(ui->Song_Slider->value(), now);
        QCOMPARE(playHead()->x(), static_cast<int>(now / 10.0 + 0.5));
        ui->Song_play->click();
        QVERIFY(showsPlay() && !clockRuns());
        const int stopped = shown();
        ui->Song_play->click(); // goes on from where it stopped
        QVERIFY(shown() >= stopped && shown() < stopped + 2000);
    }

    void stopRewindsInSilence()
    {
        playHead()->setIndicatorTime(QTime(0, 0, 5), true);
        QCOMPARE(playHead()->x(), 500);
        ui->Song_Stop->click(); // the clock stands already
        QCOMPARE(playHead()->x(), 0);
        QCOMPARE(shown(), 0);

        ui->Song_play->click();
        QTRY_VERIFY(playHead()->x() > 5);
        QSignalSpy moved(playHead(), &Indicator::moved);
        ui->Song_Stop->click();
        QVERIFY(showsPlay() && !clockRuns());
        QCOMPARE(ui->Song_Slider->value(), 0);
        QCOMPARE(playHead()->indicatorTime, QTime(0, 0));
        QCOMPARE(shown(), 0);
        QCOMPARE(moved.size(), 1);
        QCOMPARE(moved.first(), (QVariantList{0, false}));
    }

    void seekingInSilence()
    {
        QTest::ignoreMessage(QtDebugMsg, "song slider moved 61000");
        emit ui->Song_Slider->sliderMoved(61000);
        QCOMPARE(shown(), 61000);
        QCOMPARE(playHead()->x(), 6100);
        editTime(QTime(0, 0, 2));
        QCOMPARE(playHead()->x(), 200);
        QCOMPARE(ui->Song_Slider->value(), 2000);
        clickRuler(40);
        QCOMPARE(shown(), 400);
        QVERIFY(!clockRuns());

        ui->Song_play->click();
        editTime(QTime(0, 3)); // an edit under the running clock is overwritten
        QTRY_VERIFY(shown() < 120000);
        emit ui->Song_Slider->sliderMoved(120000); // a seek runs on from its place
        QTRY_VERIFY(shown() >= 120050);
        QVERIFY(shown() < 125000);
    }

    void silenceRunsOnBeyondTheShow()
    {
        ui->timeline_max->setTime(QTime(0, 0, 0, 100));
        ui->Song_Slider->setMaximum(100);
        ui->Song_play->click();
        QTRY_VERIFY(shown() > 200);
        QVERIFY(clockRuns());
        QCOMPARE(ui->Song_Slider->value(), 100);
        QVERIFY(playHead()->x() > ui->timeline_headers->width());
    }

    void spacePlaysAndPauses()
    {
        QCOMPARE(ui->Song_play->shortcut(), QKeySequence(Qt::Key_Space));
        QCOMPARE(ui->Song_play_2->shortcut(), QKeySequence(Qt::Key_Space));
        const QVector<QWidget *> focused{ui->timeline_scroll, ui->GLWidget, ui->Song_Stop, ui->timeline_scaler,
                                         window.data()};
        for (QWidget *focus : focused) {
            focus->setFocus();
            for (const bool runs : {true, false, true, false}) {
                QTest::keyClick(window->windowHandle(), Qt::Key_Space);
                QVERIFY2(clockRuns() == runs, qPrintable(focus->objectName()));
            }
        }
        ui->Song_play_2->trigger();
        QVERIFY(clockRuns());
    }

    void aSongPlaysPausesAndStops()
    {
        readSong(3000);
        ui->Mode_t1->setTime(QTime(0, 2));
        ui->NEW_radio->setChecked(true);
        window->player->blockSignals(true);
        ui->Song_play->click();
        QVERIFY(!window->player->signalsBlocked());
        QVERIFY(playing() && showsPause() && !clockRuns());
        QVERIFY(ui->Mode_t1->time() < QTime(0, 1)); // a new pattern begins at the play-head
        QTRY_VERIFY(playHead()->x() > 20);
        QVERIFY(ui->Song_Slider->value() > 190);
        ui->Song_play->click();
        QCOMPARE(window->player->state(), QMediaPlayer::PausedState);
        QVERIFY(showsPlay());

        // Stop rewinds and never unloads the song.
        ui->Song_play->click();
        QSignalSpy states(window->player, &QMediaPlayer::stateChanged);
        ui->Song_Stop->click();
        QCOMPARE(playHead()->x(), 0);
        QTRY_COMPARE(window->player->position(), qint64(0));
        QTRY_COMPARE(shown(), 0);
        QCOMPARE(ui->Song_Slider->value(), 0);
        QVERIFY(showsPlay());
        for (const QList<QVariant> &state : states) {
            QCOMPARE(state.first().value<QMediaPlayer::State>(), QMediaPlayer::PausedState);
        }
    }

    void seekingInAPausedSong()
    {
        readSong(5000);
        emit ui->Song_Slider->sliderMoved(2000);
        QTRY_COMPARE(window->player->position(), qint64(2000));
        QTRY_COMPARE(playHead()->x(), 200);
        QCOMPARE(shown(), 2000);
        editTime(QTime(0, 0, 3));
        QTRY_COMPARE(window->player->position(), qint64(3000));
        QTRY_COMPARE(playHead()->x(), 300);
        clickRuler(40);
        QTRY_COMPARE(window->player->position(), qint64(400));
        QCOMPARE(shown(), 400);
        QCOMPARE(window->player->state(), QMediaPlayer::PausedState);
    }

    void onlyTheRulerSeeksAPlayingSong()
    {
        readSong(20000);
        ui->Song_play->click();
        QTRY_VERIFY(playHead()->x() > 5);
        emit ui->Song_Slider->sliderMoved(15000);
        QCOMPARE(shown(), 15000); // for a moment only
        QTRY_VERIFY(shown() < 10000);
        QVERIFY(window->player->position() < 10000);
        clickRuler(1200);
        QTRY_VERIFY(window->player->position() >= 12000);
        QTRY_VERIFY(shown() > 12000);
        QVERIFY(playing());
    }

    void theEndOfTheSong()
    {
        readSong(400);
        for (int round = 0; round < 2; ++round) {
            ui->Song_play->click();
            QVERIFY(playing() && showsPause());
            QTRY_COMPARE(window->player->state(), QMediaPlayer::StoppedState);
            QVERIFY(showsPlay());
        }
    }

    void thePreviewFollowsTheShow_data()
    {
        QTest::addColumn<bool>("withSong");
        QTest::newRow("song") << true;
        QTest::newRow("silence") << false;
    }
    void thePreviewFollowsTheShow()
    {
        QFETCH(bool, withSong);
        if (withSong) {
            readSong(4000);
        }
        TimelineItem *red = addPattern(300, 900, Qt::red);
        TimelineItem *green = addPattern(1500, 2100, Qt::green);
        TimelineItem *blue = addPattern(2100, 2700, Qt::blue);
        struct Seen
        {
            int x;
            TimelineItem *item;
            QRgb colour;
        };
        QVector<Seen> seen;
        connect(ui->timeline_headers, &TimelineHeaders::indicatorMoved, this, [&](int x) {
            seen.append({x, window->previewItem, ui->GLWidget->pixelAt(ui->GLWidget->columns() / 2, 3)});
        });
        ui->EDIT_radio->setEnabled(true);
        ui->EDIT_radio->setChecked(true);
        ui->Song_play->click();
        QTRY_VERIFY_WITH_TIMEOUT(playHead()->x() > 290, 10000);
        ui->Song_play->click();

        QVector<TimelineItem *> order;
        for (const Seen &moment : qAsConst(seen)) {
            // The pattern under the pixel right of the play-head counts.
            const int ms = (moment.x + 1) * 10;
            TimelineItem *under = nullptr;
            for (TimelineItem *item : {red, green, blue}) {
                if (ms >= glow::msOf(item->startTime) && ms < glow::msOf(item->endTime)) {
                    under = item;
                }
            }
            QVERIFY2(moment.item == under, qPrintable(QString::number(moment.x)));
            if (order.isEmpty() || order.last() != under) {
                order.append(under);
            }
            if (order.size() > 1) { // before the first pattern the preview shows what the editor holds
                QCOMPARE(QColor(moment.colour), under != nullptr ? under->solidColor : QColor(Qt::black));
            }
        }
        QCOMPARE(order, (QVector<TimelineItem *>{nullptr, red, nullptr, green, blue, nullptr}));
        QVERIFY(ui->NEW_radio->isChecked());
        // A notification within the same pixel sets the play-head's time alone.
        QVERIFY(qAbs(ui->Mode_t1->time().msecsTo(playHead()->indicatorTime)) <= 10);
    }

    void playShowsThePatternUnderThePlayHead()
    {
        readSong(4000);
        TimelineItem *red = addPattern(500, 3500, Qt::red);
        clickRuler(200);
        QCOMPARE(window->previewItem, red);
        // Something else stands in the preview meanwhile; the next notification brings the pattern back.
        window->Oviewer_change(0, 0, 255);
        ui->Song_play->click();
        QTRY_COMPARE(window->previewItem, red);
        QCOMPARE(QColor(ui->GLWidget->pixelAt(0, 0)), QColor(Qt::red));
    }

    void aSongThatVanishesWhileItPlays()
    {
        readSong(1500);
        ui->Song_play->click();
        QTRY_VERIFY(playHead()->x() > 5);
        QVERIFY(QFile::remove(env->path(QStringLiteral("song.wav"))));
        QTRY_VERIFY(!playing());
        ui->Song_Stop->click();
        ui->Song_play->click();
        ui->Song_play->click();
        QVERIFY(window->hasSong());
        QVERIFY(!window->decodeProgress->isVisible());
    }

    void theWindowMayGoWhileASongPlays()
    {
        readSong(3000);
        ui->Song_play->click();
        QTRY_VERIFY(window->player->position() > 50);
        window.reset();
    }
};

QTEST_MAIN(TestPlayback)
#include "test_playback.moc"
