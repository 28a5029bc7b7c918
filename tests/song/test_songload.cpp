// Reading songs in the window, through the real media back end: the waveform's place, the window's numbers, and what
// goes wrong.
#include "app/mainwindow.h"
#include "song/chartview.h"
#include "song/songmaker.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "timeline/indicator.h"
#include "timeline/timelineheaders.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QImage>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>
#include <QtCharts/QValueAxis>
#include <QtTest>

using songs::Song;

namespace {

const QString decodeWarning = QStringLiteral("無法解碼，請確認已安裝正確音訊解碼包");

} // namespace

class TestSongLoad : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void theWaveStandsUnderTheRuler_data();
    void theWaveStandsUnderTheRuler();
    void theWindowTakesTheSongsNumbers_data();
    void theWindowTakesTheSongsNumbers();
    void theDialogCountsPoints();
    void aSecondSongLeavesNothingOfTheFirst();
    void cancelMeansNoSong();
    void aReplacedDecoderChangesNothing();
    void whatCannotBeDecoded_data();
    void whatCannotBeDecoded();
    void nothingToDecodeIsAWarning();
    void aMissingSongAfterAGoodOne();
    void theButtonRewindsAndAsks();
    void theWaveFollowsItsFrame();
    void theWindowMayGoDuringADecode();

private:
    QString wav(const QString &name, const Song &song)
    {
        songs::writeWav(env->path(name), song);
        return env->path(name);
    }
    // Reads a song to its end.
    void read(const QString &path)
    {
        window->ReadSong(path);
        QTRY_VERIFY_WITH_TIMEOUT(!window->decodeProgress->isVisible(), 30000);
    }
    double peakNear(int second, double offsetMs) const;
    double paintedPeakNear(int second, double offsetMs) const;
    bool dialogIsGoneForGood() const;

    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
    Ui::MainWindow *ui = nullptr;
};

void TestSongLoad::init()
{
    env.reset(new TestEnv);
    msPerPixel = 10.0F;
    window.reset(new MainWindow);
    ui = window->ui;
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.data()));
}

void TestSongLoad::cleanup()
{
    window.reset();
    env.reset();
}

// The point number of the highest point within a tenth of a second.
double TestSongLoad::peakNear(int second, double offsetMs) const
{
    const double expected = (second * 1000 + offsetMs) * 0.48;
    QPointF peak(-1, 0);
    for (const QPointF &point : window->waveSamples) {
        if (qAbs(point.x() - expected) < 48 && point.y() > peak.y()) {
            peak = point;
        }
    }
    return peak.x();
}

// The middle of the columns that reach the view's upper edge within 60 milliseconds, in the view's pixels.
double TestSongLoad::paintedPeakNear(int second, double offsetMs) const
{
    const double expected = (second * 1000 + offsetMs) / static_cast<double>(msPerPixel);
    const int reach = qMax(4, static_cast<int>(60 / msPerPixel));
    const QRect strip(static_cast<int>(expected) - reach, 0, 2 * reach + 1, window->chartView->height());
    const QImage image = window->chartView->grab(strip).toImage();
    int count = 0;
    double sum = 0;
    for (int x = 0; x < image.width(); ++x) {
        if (qBlue(image.pixel(x, 0)) > 150) {
            ++count;
            sum += x;
        }
    }
    return count > 0 ? strip.left() + sum / count : -1;
}

// Hidden, and with no timer that could show it later.
bool TestSongLoad::dialogIsGoneForGood() const
{
    const auto dialogs = window->findChildren<QProgressDialog *>();
    for (const QProgressDialog *dialog : dialogs) {
        if (dialog->isVisible()) {
            return false;
        }
        const auto timers = dialog->findChildren<QTimer *>();
        for (const QTimer *timer : timers) {
            if (timer->isActive()) {
                return false;
            }
        }
    }
    return true;
}

void TestSongLoad::theWaveStandsUnderTheRuler_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("channels");
    QTest::addColumn<QStringList>("options");
    QTest::newRow("8 kHz mono") << "a.wav" << 8000 << 1 << QStringList();
    QTest::newRow("44.1 kHz stereo") << "a.wav" << 44100 << 2 << QStringList();
    QTest::newRow("96 kHz stereo") << "a.wav" << 96000 << 2 << QStringList();
    QTest::newRow("mp3") << "a.mp3" << 44100 << 2 << QStringList{"-b:a", "128k"};
    QTest::newRow("mp3, low rate") << "a.mp3" << 16000 << 1 << QStringList{"-b:a", "32k"};
    QTest::newRow("mp3, variable") << "a.mp3" << 48000 << 2 << QStringList{"-q:a", "4"};
    QTest::newRow("mp3, no contents") << "a.mp3" << 44100 << 1 << QStringList{"-q:a", "4", "-write_xing", "0"};
    QTest::newRow("ogg") << "a.ogg" << 44100 << 2 << QStringList();
    QTest::newRow("flac") << "a.flac" << 44100 << 2 << QStringList();
}

void TestSongLoad::theWaveStandsUnderTheRuler()
{
    QFETCH(QString, name);
    QFETCH(int, rate);
    QFETCH(QStringList, options);
    QFETCH(int, channels);
    const QString source = wav(QStringLiteral("source.wav"), {rate, channels, 6500});
    const QString path = env->path(name);
    double offsetMs = 0;
    if (name.endsWith(QLatin1String(".wav"))) {
        QVERIFY(QFile::rename(source, path));
    } else if (!songs::haveFfmpeg() || !songs::encode(source, path, options)) {
        QSKIP("no ffmpeg that makes this format");
    }
    if (name.endsWith(QLatin1String(".mp3"))) {
        // The encoder puts 576 samples before the song and the decoder takes 529 to get going. The back end neither
        // cuts them off for the waveform nor for the player, so the second that is heard comes that much later.
        offsetMs = 1105 * 1000.0 / rate;
    }
    read(path);

    const double points = (6500 + offsetMs) * 0.48;
    QVERIFY2(window->waveSamples.size() >= points && window->waveSamples.size() < points + 48,
             qPrintable(QString::number(window->waveSamples.size())));
    for (const int slider : {40, 80, 160}) {
        ui->timeline_scaler->setValue(slider);
        QCOMPARE(window->chartView->width(), static_cast<int>(window->waveSamples.size() / 0.48F / msPerPixel));
        for (int second = 1; second <= 6; ++second) {
            const double pixel = (second * 1000 + offsetMs) / static_cast<double>(msPerPixel);
            const double inPoints = peakNear(second, offsetMs) / 0.48 / static_cast<double>(msPerPixel);
            const double painted = paintedPeakNear(second, offsetMs);
            const QString where = QStringLiteral("second %1, slider %2: pixel %3, in the points %4, painted %5")
                                      .arg(second)
                                      .arg(slider)
                                      .arg(pixel)
                                      .arg(inPoints)
                                      .arg(painted);
            QVERIFY2(qAbs(inPoints - pixel) <= 2, qPrintable(where));
            QVERIFY2(qAbs(painted - pixel) <= 2, qPrintable(where));
        }
    }
}

void TestSongLoad::theWindowTakesTheSongsNumbers_data()
{
    QTest::addColumn<int>("ms");
    QTest::addColumn<int>("area");
    QTest::newRow("a third of a second") << 300 << 300000;
    QTest::newRow("exactly five minutes") << 300000 << 300000;
    QTest::newRow("a millisecond more") << 300001 << 300001;
    QTest::newRow("ten minutes") << 600000 << 600000;
}

void TestSongLoad::theWindowTakesTheSongsNumbers()
{
    QFETCH(int, ms);
    QFETCH(int, area);
    ui->timeline_max->setTime(QTime(0, 20)); // made longer by the user
    ui->Song_play->setEnabled(false);
    const QString path = wav(QStringLiteral("song of mine.wav"), {8000, 1, ms});
    window->ReadSong(path);
    QVector<QTime> shown;
    connect(ui->Song_time, &QTimeEdit::timeChanged, this, [&shown](const QTime &time) { shown << time; });
    QTRY_VERIFY_WITH_TIMEOUT(!window->decodeProgress->isVisible(), 60000);

    QVERIFY(shown.contains(QTime(0, 0).addMSecs(ms))); // the song's length, until the player's first notification
    QCOMPARE(ui->Song_dir->text(), QStringLiteral("song of mine.wav"));
    QCOMPARE(ui->Song_Slider->maximum(), area);
    QCOMPARE(ui->timeline_max->time(), QTime(0, 0).addMSecs(area));
    QCOMPARE(ui->timeline_headers->timelineLengthMs, area);
    QVERIFY(ui->Song_play->isEnabled());
    QVERIFY(window->hasSong());
    QVERIFY(qAbs(window->waveSamples.size() - ms * 0.48) < 4);
    QCOMPARE(window->audioDecoder->sourceFilename(), path);
    QCOMPARE(window->player->state(), QMediaPlayer::PausedState);

    ChartView *view = window->chartView;
    QVERIFY(view->isVisible());
    QCOMPARE(ui->audio_layout->itemAt(0)->widget(), view);
    QCOMPARE(view->height(), ui->audio_frame->height());
    QCOMPARE(view->wavePoints.size(), window->waveSamples.size());
    QCOMPARE(window->waveSeries->pointsVector(), window->waveSamples);
    QCOMPARE(view->chart()->series().size(), 1);
    QCOMPARE(window->waveSeries->pen().color(), QColor(100, 100, 255));
    QCOMPARE(window->waveSeries->pen().width(), 1);
    const auto *axis = qobject_cast<QtCharts::QValueAxis *>(view->chart()->axes(Qt::Vertical).value(0));
    QVERIFY(axis != nullptr && !axis->isVisible());
    QCOMPARE(axis->max(), 0.8 * window->waveMax);
    QCOMPARE(axis->min(), -axis->max());
    QVERIFY(view->chart()->axes(Qt::Horizontal).isEmpty());
    QVERIFY(dialogIsGoneForGood());
}

void TestSongLoad::theDialogCountsPoints()
{
    window->ReadSong(wav(QStringLiteral("a.wav"), {8000, 1, 20000}));
    QProgressDialog *dialog = window->decodeProgress;
    QVERIFY(dialog->isVisible() && !dialog->isModal());
    QCOMPARE(dialog->labelText(), QStringLiteral("讀取音樂中..."));
    QCOMPARE(dialog->findChild<QPushButton *>()->text(), QStringLiteral("取消"));
    QCOMPARE(dialog->maximum(), 32767);
    window->durationChanged(2083);
    QCOMPARE(dialog->maximum(), 999);
    window->decoder_PositionChanged(1050);
    QCOMPARE(dialog->value(), 504);
    window->decoder_PositionChanged(2083); // a guess of the length that was too short closes nothing
    QVERIFY(dialog->isVisible());
    window->durationChanged(-1); // unknown: a bar that only moves
    QCOMPARE(dialog->maximum(), 0);
    QTRY_VERIFY(!dialog->isVisible());
    QCOMPARE(window->waveSamples.size(), 9601);
}

void TestSongLoad::aSecondSongLeavesNothingOfTheFirst()
{
    read(wav(QStringLiteral("a.wav"), {44100, 2, 9000}));
    QCOMPARE(window->waveSamples.size(), 4321);
    const QtCharts::QChart *first = window->chartView->chart();
    read(wav(QStringLiteral("b.wav"), {8000, 1, 2000}));
    QCOMPARE(window->waveSamples.size(), 961);
    QVERIFY(window->chartView->chart() != first);
    QCOMPARE(window->waveSeries->count(), 961);
    QCOMPARE(window->chartView->width(), 200);
    QCOMPARE(ui->audio_layout->count(), 1);
    QVERIFY(window->waveSamples.last().x() < 960);
}

void TestSongLoad::cancelMeansNoSong()
{
    window->ReadSong(wav(QStringLiteral("long.wav"), {96000, 1, 60000}));
    QTRY_VERIFY(window->waveSamples.size() > 50);
    QVERIFY(window->decodeProgress->isVisible());
    window->decodeProgress->findChild<QPushButton *>()->click();

    QVERIFY(window->waveSamples.isEmpty());
    // What was on its way, and what a slower back end might still send.
    emit window->audioDecoder->bufferReady();
    emit window->audioDecoder->positionChanged(2000);
    emit window->audioDecoder->durationChanged(60000);
    emit window->audioDecoder->finished();
    QTRY_COMPARE(window->audioDecoder->state(), QAudioDecoder::StoppedState);
    QCoreApplication::processEvents();
    QVERIFY(window->waveSamples.isEmpty());
    QVERIFY(!window->chartView->isVisible());
    QVERIFY(dialogIsGoneForGood());
    QCOMPARE(ui->Song_dir->text(), QStringLiteral("long.wav"));

    ui->Song_play->click(); // the show runs in silence
    QVERIFY(ui->Song_time->clockTimer->isActive());
    QTRY_VERIFY(ui->timeline_headers->indicator->x() > 5);
}

void TestSongLoad::aReplacedDecoderChangesNothing()
{
    window->ReadSong(wav(QStringLiteral("long.wav"), {96000, 1, 60000}));
    QTRY_VERIFY(window->waveSamples.size() > 50);
    QAudioDecoder *old = window->audioDecoder;
    QProgressDialog *oldDialog = window->decodeProgress;
    window->ReadSong(wav(QStringLiteral("b.wav"), {8000, 1, 2000}));
    QVERIFY(window->audioDecoder != old);
    QVERIFY(window->waveSamples.isEmpty());
    QVERIFY(!oldDialog->isVisible());
    const auto bother = [old, oldDialog] {
        emit old->bufferReady();
        emit old->positionChanged(30000);
        emit old->durationChanged(12345);
        emit old->error(QAudioDecoder::FormatError);
        emit old->finished();
        emit oldDialog->canceled();
    };
    bother();
    QVERIFY(window->decodeProgress->isVisible());
    QCOMPARE(window->decodeProgress->maximum(), 32767);
    QVERIFY(!window->chartView->isVisible());
    QTRY_VERIFY(!window->decodeProgress->isVisible());
    bother();
    QCOMPARE(window->waveSamples.size(), 961);
    QCOMPARE(window->waveSeries->count(), 961);
    QVERIFY(dialogIsGoneForGood());
}

void TestSongLoad::whatCannotBeDecoded_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QByteArray noise(50000, '\0');
    for (int i = 0; i < noise.size(); ++i) {
        noise[i] = static_cast<char>((static_cast<quint32>(i) * 2654435761U) >> 13);
    }
    QByteArray picture;
    QBuffer out(&picture);
    QImage image(300, 200, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    image.save(&out, "png");
    QTest::newRow("empty") << "empty.mp3" << QByteArray();
    QTest::newRow("noise") << "noise.mp3" << noise;
    QTest::newRow("words") << "words.wav" << QByteArray("hello ").repeated(1000);
    QTest::newRow("picture") << "picture.mp3" << picture;
    QTest::newRow("half a header") << "half.wav" << QByteArray("RIFF\x24\x10\x00\x00WAVEfmt ", 16);
    QTest::newRow("missing") << "missing.wav" << QByteArray("-");
    QTest::newRow("folder") << "." << QByteArray("-");
}

void TestSongLoad::whatCannotBeDecoded()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    const QString path = env->path(name);
    if (bytes != "-") {
        songs::writeBytes(path, bytes);
    }
    DialogDriver driver;
    ui->Song_play->setEnabled(false);
    read(path);
    QCOMPARE(ui->statusBar->currentMessage(), decodeWarning);
    QVERIFY(!window->hasSong());
    QVERIFY(!window->chartView->isVisible());
    QVERIFY(!ui->Song_play->isEnabled());
    QVERIFY(dialogIsGoneForGood());
    QVERIFY(driver.boxes().isEmpty());

    read(wav(QStringLiteral("good.wav"), {8000, 1, 1000})); // and the next song is read as ever
    QCOMPARE(window->waveSamples.size(), 481);
    QVERIFY(ui->Song_play->isEnabled());
}

void TestSongLoad::nothingToDecodeIsAWarning()
{
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    ui->Song_play->setEnabled(false);
    read(wav(QStringLiteral("silent.wav"), {44100, 1, 0}));
    QTRY_VERIFY(driver.done() && driver.boxes().size() == 1);
    QCOMPARE(driver.boxes().first().title, QStringLiteral("錯誤"));
    QCOMPARE(driver.boxes().first().text, decodeWarning);
    QCOMPARE(driver.boxes().first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QVERIFY(!ui->Song_play->isEnabled());
    QVERIFY(window->chartView->isVisible());
    QVERIFY(dialogIsGoneForGood());
}

void TestSongLoad::aMissingSongAfterAGoodOne()
{
    read(wav(QStringLiteral("a.wav"), {8000, 1, 2000}));
    const QtCharts::QChart *chart = window->chartView->chart();
    read(env->path(QStringLiteral("gone.wav")));
    QVERIFY(!window->hasSong());
    QCOMPARE(window->chartView->chart(), chart); // an older chart stays
    QCOMPARE(ui->statusBar->currentMessage(), decodeWarning);

    // A path from the working directory is as good as a whole one.
    songs::writeWav(QStringLiteral("near.wav"), {8000, 1, 1000});
    read(QStringLiteral("near.wav"));
    QCOMPARE(window->waveSamples.size(), 481);
    QCOMPARE(ui->Song_dir->text(), QStringLiteral("near.wav"));
    QCOMPARE(window->audioDecoder->sourceFilename(), QFileInfo(QStringLiteral("near.wav")).absoluteFilePath());
}

void TestSongLoad::theButtonRewindsAndAsks()
{
    ui->timeline_headers->indicator->setIndicatorTime(QTime(0, 0, 3), true);
    ui->Song_play->click();
    QVERIFY(ui->Song_time->clockTimer->isActive());
    window->player->blockSignals(true);
    DialogDriver driver;
    driver.answerFile({});
    ui->SongRead_Button->click();
    QVERIFY(driver.done());
    QCOMPARE(driver.files().first().title, QStringLiteral("選歌"));
    QCOMPARE(driver.files().first().directory, QDir::homePath() + QStringLiteral("/Music"));
    QCOMPARE(driver.files().first().filters, (QStringList{"(*.mp3 *.wav)", "All files (*.*)"}));
    QVERIFY(!window->player->signalsBlocked());
    QVERIFY(!ui->Song_time->clockTimer->isActive());
    QCOMPARE(ui->timeline_headers->indicator->x(), 0);
    QCOMPARE(ui->Song_time->time(), QTime(0, 0));
    QCOMPARE(ui->Song_Slider->value(), 0);
    QVERIFY(window->audioDecoder == nullptr);

    driver.answerFile({wav(QStringLiteral("a.wav"), {8000, 1, 1000})});
    ui->SongRead_Button->click();
    QTRY_COMPARE(window->waveSamples.size(), 481);
    QVERIFY(driver.done());
}

void TestSongLoad::theWaveFollowsItsFrame()
{
    read(wav(QStringLiteral("a.wav"), {8000, 1, 30000}));
    ui->timeline_splitter->setSizes({150, 300});
    emit ui->timeline_splitter->splitterMoved(150, 1);
    QCoreApplication::processEvents();
    const int tall = ui->audio_frame->height();
    QCOMPARE(window->chartView->size(), QSize(3000, tall));
    ui->timeline_splitter->setSizes({400, 60});
    emit ui->timeline_splitter->splitterMoved(400, 1);
    QCoreApplication::processEvents();
    QVERIFY(ui->audio_frame->height() < tall);
    QCOMPARE(window->chartView->height(), ui->audio_frame->height());
    // Wave and ruler share their left edge.
    QCOMPARE(window->chartView->mapTo(ui->timeline_headers, QPoint(0, 0)).x(), 0);
}

void TestSongLoad::theWindowMayGoDuringADecode()
{
    for (const int points : {0, 50, 500}) {
        MainWindow other;
        other.show();
        other.ReadSong(wav(QStringLiteral("long.wav"), {44100, 2, 60000}));
        QTRY_VERIFY(other.waveSamples.size() >= points);
        QVERIFY(other.decodeProgress->isVisible());
    }
}

QTEST_MAIN(TestSongLoad)
#include "test_songload.moc"
