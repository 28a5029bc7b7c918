// Playing in the window, with a song and in silence: the controls, and the preview that follows.
#include "app/mainwindow.h"
#include "app/patternrecord.h"
#include "preview/mygl.h"
#include "song/chartview.h"
#include "song/songmaker.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "timeline/indicator.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QLineEdit>
#include <QProgressDialog>
#include <QScrollBar>
#include <QSignalSpy>
#include <QtTest>

class TestPlayback : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void silenceRunsFromThePlayHead();
    void stopRewindsInSilence();
    void seekingInSilence();
    void silenceRunsOnBeyondTheShow();
    void spacePlaysAndPauses_data();
    void spacePlaysAndPauses();
    void aSongPlaysAndPauses();
    void stopNeverUnloadsTheSong();
    void seekingInAPausedSong();
    void onlyTheRulerSeeksAPlayingSong();
    void theEndOfTheSong();
    void thePreviewFollowsTheShow_data();
    void thePreviewFollowsTheShow();
    void playShowsThePatternUnderThePlayHead();
    void aSongThatVanishesWhileItPlays();
    void theWindowMayGoWhileASongPlays();

private:
    QString wav(const QString &name, int ms)
    {
        songs::writeWav(env->path(name), {8000, 1, ms});
        return env->path(name);
    }
    void readSong(int ms);
    TimelineItem *addPattern(int start, int end, const QColor &color);
    QTime shown() const { return ui->Song_time->time(); }
    Indicator *playHead() const { return ui->timeline_headers->indicator; }
    bool showsIcon(const QString &path) const
    {
        return ui->Song_play->icon().pixmap(24).toImage() == QIcon(path).pixmap(24).toImage();
    }
    bool showsPlay() const { return showsIcon(QStringLiteral(":/icon/play.png")); }
    bool showsPause() const { return showsIcon(QStringLiteral(":/icon/pause.png")); }
    bool playing() const { return window->player->state() == QMediaPlayer::PlayingState; }

    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
    Ui::MainWindow *ui = nullptr;
};

void TestPlayback::init()
{
    env.reset(new TestEnv);
    msPerPixel = 10.0F;
    window.reset(new MainWindow);
    ui = window->ui;
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.data()));
}

void TestPlayback::cleanup()
{
    window.reset();
    env.reset();
}

void TestPlayback::readSong(int ms)
{
    window->ReadSong(wav(QStringLiteral("song.wav"), ms));
    QTRY_VERIFY_WITH_TIMEOUT(!window->decodeProgress->isVisible() && window->hasSong(), 30000);
    QTRY_COMPARE(window->player->state(), QMediaPlayer::PausedState);
    QTRY_COMPARE(window->player->position(), qint64(0));
    QTRY_VERIFY(window->player->duration() > 0);
    QTRY_COMPARE(shown(), QTime(0, 0)); // the first notification
}

TimelineItem *TestPlayback::addPattern(int start, int end, const QColor &color)
{
    glow::PatternRecord record;
    record.thumbnail = QPixmap(85, 85);
    record.thumbnail.fill(color);
    record.startTime = QTime(0, 0).addMSecs(start);
    record.endTime = QTime(0, 0).addMSecs(end);
    record.solidColor = color;
    record.patternKind = glow::ColourPattern;
    record.repeatCount = 1;
    record.settingsText = color.name();
    auto *item = new TimelineItem(glow::writePattern(record), window->currentTimeline);
    window->currentTimeline->addTimelineItem(item);
    window->currentTimeline->sortItems();
    return item;
}

void TestPlayback::silenceRunsFromThePlayHead()
{
    QVERIFY(showsPlay());
    playHead()->setIndicatorTime(QTime(0, 1), true);
    window->player->blockSignals(true);
    ui->Song_play->click();
    QVERIFY(showsPause());
    QVERIFY(!window->player->signalsBlocked());
    QVERIFY(shown() >= QTime(0, 1));
    QTRY_VERIFY(shown() >= QTime(0, 1, 0, 200));
    QVERIFY(shown() < QTime(0, 1, 5));
    QCOMPARE(ui->Song_Slider->value(), QTime(0, 0).msecsTo(playHead()->indicatorTime));
    QCOMPARE(playHead()->x(), static_cast<int>(QTime(0, 0).msecsTo(playHead()->indicatorTime) / 10.0 + 0.5));
    QVERIFY(playHead()->x() >= 6020);

    ui->Song_play->click();
    QVERIFY(showsPlay());
    QVERIFY(!ui->Song_time->clockTimer->isActive());
    const QTime stopped = shown();
    ui->Song_play->click(); // goes on from where it stopped
    QVERIFY(shown() >= stopped && stopped.msecsTo(shown()) < 2000);
}

void TestPlayback::stopRewindsInSilence()
{
    playHead()->setIndicatorTime(QTime(0, 0, 5), true);
    QCOMPARE(playHead()->x(), 500);
    ui->Song_Stop->click(); // the clock stands already
    QCOMPARE(playHead()->x(), 0);
    QCOMPARE(shown(), QTime(0, 0));

    ui->Song_play->click();
    QTRY_VERIFY(playHead()->x() > 5);
    QSignalSpy moved(playHead(), &Indicator::moved);
    ui->Song_Stop->click();
    QVERIFY(!ui->Song_time->clockTimer->isActive());
    QVERIFY(showsPlay());
    QCOMPARE(ui->Song_Slider->value(), 0);
    QCOMPARE(playHead()->indicatorTime, QTime(0, 0));
    QCOMPARE(shown(), QTime(0, 0));
    QCOMPARE(moved.size(), 1);
    QCOMPARE(moved.first(), (QVariantList{0, false}));
}

void TestPlayback::seekingInSilence()
{
    emit ui->Song_Slider->sliderMoved(61000);
    QCOMPARE(shown(), QTime(0, 1, 1));
    QCOMPARE(playHead()->x(), 6100);
    ui->Song_time->setTime(QTime(0, 0, 2));
    emit ui->Song_time->editingFinished();
    QCOMPARE(playHead()->x(), 200);
    QCOMPARE(ui->Song_Slider->value(), 2000);
    QTest::mouseClick(ui->timeline_headers, Qt::LeftButton, Qt::NoModifier, QPoint(40, 25));
    QCOMPARE(shown(), QTime(0, 0, 0, 400));
    QVERIFY(!ui->Song_time->clockTimer->isActive());

    ui->Song_play->click();
    ui->Song_time->setTime(QTime(0, 3)); // an edit under the running clock is overwritten
    emit ui->Song_time->editingFinished();
    QTRY_VERIFY(shown() < QTime(0, 2));
    emit ui->Song_Slider->sliderMoved(120000); // a seek runs on from its place
    QTRY_VERIFY(shown() >= QTime(0, 2, 0, 50));
    QVERIFY(shown() < QTime(0, 2, 5));
}

void TestPlayback::silenceRunsOnBeyondTheShow()
{
    ui->timeline_max->setTime(QTime(0, 0, 0, 100));
    ui->Song_Slider->setMaximum(100);
    ui->Song_play->click();
    QTRY_VERIFY(shown() > QTime(0, 0, 0, 200));
    QVERIFY(ui->Song_time->clockTimer->isActive());
    QCOMPARE(ui->Song_Slider->value(), 100);
    QVERIFY(playHead()->x() > ui->timeline_headers->width());
}

void TestPlayback::spacePlaysAndPauses_data()
{
    QTest::addColumn<QString>("focus");
    QTest::newRow("tracks") << "timeline_scroll";
    QTest::newRow("preview") << "GLWidget";
    QTest::newRow("button") << "Song_Stop";
    QTest::newRow("slider") << "timeline_scaler";
    QTest::newRow("window") << "";
}

void TestPlayback::spacePlaysAndPauses()
{
    QFETCH(QString, focus);
    QWidget *target = focus.isEmpty() ? window.data() : window->findChild<QWidget *>(focus);
    QVERIFY(target != nullptr);
    target->setFocus();
    QTest::keyClick(window->windowHandle(), Qt::Key_Space);
    QVERIFY(ui->Song_time->clockTimer->isActive());
    QTest::keyClick(window->windowHandle(), Qt::Key_Space);
    QVERIFY(!ui->Song_time->clockTimer->isActive());
}

void TestPlayback::aSongPlaysAndPauses()
{
    readSong(3000);
    ui->Mode_t1->setTime(QTime(0, 2));
    ui->NEW_radio->setChecked(true);
    window->player->blockSignals(true);
    ui->Song_play->click();
    QVERIFY(!window->player->signalsBlocked());
    QCOMPARE(window->player->state(), QMediaPlayer::PlayingState);
    QVERIFY(showsPause());
    QVERIFY(!ui->Song_time->clockTimer->isActive());
    QVERIFY(ui->Mode_t1->time() < QTime(0, 1)); // a new pattern begins at the play-head
    QTRY_VERIFY(playHead()->x() > 20);
    QVERIFY(ui->Song_Slider->value() > 190);
    ui->Song_play->click();
    QCOMPARE(window->player->state(), QMediaPlayer::PausedState);
    QVERIFY(showsPlay());
}

void TestPlayback::stopNeverUnloadsTheSong()
{
    readSong(3000);
    ui->Song_play->click();
    QTRY_VERIFY(playHead()->x() > 5);
    QSignalSpy states(window->player, &QMediaPlayer::stateChanged);
    ui->Song_Stop->click();
    QCOMPARE(playHead()->x(), 0);
    QTRY_COMPARE(window->player->position(), qint64(0));
    QCOMPARE(window->player->state(), QMediaPlayer::PausedState);
    for (const QList<QVariant> &state : states) {
        QCOMPARE(state.first().value<QMediaPlayer::State>(), QMediaPlayer::PausedState);
    }
    QTRY_COMPARE(shown(), QTime(0, 0));
    QCOMPARE(ui->Song_Slider->value(), 0);
    QVERIFY(showsPlay());
}

void TestPlayback::seekingInAPausedSong()
{
    readSong(5000);
    emit ui->Song_Slider->sliderMoved(2000);
    QTRY_COMPARE(window->player->position(), qint64(2000));
    QTRY_COMPARE(playHead()->x(), 200);
    QCOMPARE(shown(), QTime(0, 0, 2));
    ui->Song_time->setTime(QTime(0, 0, 3));
    emit ui->Song_time->editingFinished();
    QTRY_COMPARE(window->player->position(), qint64(3000));
    QTRY_COMPARE(playHead()->x(), 300);
    QTest::mouseClick(ui->timeline_headers, Qt::LeftButton, Qt::NoModifier, QPoint(40, 25));
    QTRY_COMPARE(window->player->position(), qint64(400));
    QCOMPARE(shown(), QTime(0, 0, 0, 400));
    QCOMPARE(window->player->state(), QMediaPlayer::PausedState);
}

void TestPlayback::onlyTheRulerSeeksAPlayingSong()
{
    readSong(20000);
    ui->Song_play->click();
    QTRY_VERIFY(playHead()->x() > 5);
    emit ui->Song_Slider->sliderMoved(15000);
    QCOMPARE(shown(), QTime(0, 0, 15)); // for a moment only
    QTRY_VERIFY(shown() < QTime(0, 0, 10));
    QVERIFY(window->player->position() < 10000);

    QTest::mouseClick(ui->timeline_headers, Qt::LeftButton, Qt::NoModifier, QPoint(1200, 25));
    QTRY_VERIFY(window->player->position() >= 12000);
    QTRY_VERIFY(shown() > QTime(0, 0, 12));
    QVERIFY(playing());
}

void TestPlayback::theEndOfTheSong()
{
    readSong(400);
    ui->Song_play->click();
    QVERIFY(showsPause());
    QTRY_COMPARE(window->player->state(), QMediaPlayer::StoppedState);
    QVERIFY(showsPlay());
    ui->Song_play->click(); // and once more
    QVERIFY(playing());
    QTRY_COMPARE(window->player->state(), QMediaPlayer::StoppedState);
}

void TestPlayback::thePreviewFollowsTheShow_data()
{
    QTest::addColumn<bool>("withSong");
    QTest::newRow("song") << true;
    QTest::newRow("silence") << false;
}

void TestPlayback::thePreviewFollowsTheShow()
{
    QFETCH(bool, withSong);
    if (withSong) {
        readSong(3000);
    }
    TimelineItem *red = addPattern(200, 600, Qt::red);
    TimelineItem *green = addPattern(900, 1300, Qt::green);
    TimelineItem *blue = addPattern(1300, 1700, Qt::blue);

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
    QTRY_VERIFY(playHead()->x() > 190);
    ui->Song_play->click();

    QVector<TimelineItem *> order;
    for (const Seen &moment : qAsConst(seen)) {
        // The pattern under the pixel right of the play-head counts.
        const int ms = (moment.x + 1) * 10;
        TimelineItem *under = nullptr;
        for (TimelineItem *item : {red, green, blue}) {
            if (ms >= QTime(0, 0).msecsTo(item->startTime) && ms < QTime(0, 0).msecsTo(item->endTime)) {
                under = item;
            }
        }
        const QString where = QStringLiteral("x %1").arg(moment.x);
        QVERIFY2(moment.item == under, qPrintable(where));
        if (order.isEmpty() || order.last() != under) {
            order.append(under);
        }
        const QColor expected = under != nullptr ? under->solidColor : QColor(Qt::black);
        if (under != nullptr || order.size() > 1) {
            QCOMPARE(QColor(moment.colour), expected);
        }
    }
    QCOMPARE(order, (QVector<TimelineItem *>{nullptr, red, nullptr, green, blue, nullptr}));
    QVERIFY(ui->NEW_radio->isChecked());
    // A notification within the same pixel sets the play-head's time alone.
    QVERIFY(qAbs(ui->Mode_t1->time().msecsTo(playHead()->indicatorTime)) <= 10);
}

void TestPlayback::playShowsThePatternUnderThePlayHead()
{
    readSong(4000);
    TimelineItem *red = addPattern(500, 3500, Qt::red);
    QTest::mouseClick(ui->timeline_headers, Qt::LeftButton, Qt::NoModifier, QPoint(200, 25));
    QCOMPARE(window->previewItem, red);
    QVERIFY(ui->GLWidget->columnCount > 0);
    // Something else stands in the preview meanwhile; the next notification brings the pattern back.
    window->Oviewer_change(0, 0, 255);
    ui->Song_play->click();
    QTRY_COMPARE(window->previewItem, red);
    QCOMPARE(QColor(ui->GLWidget->pixelAt(0, 0)), QColor(Qt::red));
    QTRY_VERIFY(playHead()->x() > 210);
}

void TestPlayback::aSongThatVanishesWhileItPlays()
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

void TestPlayback::theWindowMayGoWhileASongPlays()
{
    MainWindow other;
    other.show();
    other.ReadSong(wav(QStringLiteral("other.wav"), 3000));
    QTRY_VERIFY(!other.decodeProgress->isVisible() && other.hasSong());
    other.on_Song_play_clicked();
    QTRY_VERIFY(other.player->position() > 50);
}

QTEST_MAIN(TestPlayback)
#include "test_playback.moc"
