// Reading songs in the window, through the real media back end: the waveform's place, the window's numbers, and what
// goes wrong.
#include "show/model/timescale.h"
#include "song/chartview.h"
#include "song/mytime.h"
#include "song/songmaker.h"
#include "support/dialogdriver.h"
#include "support/windowtest.h"
#include "timeline/indicator.h"
#include "timeline/timelineheaders.h"
#include "ui_mainwindow.h"

#include <QDeadlineTimer>
#include <QImage>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>
#include <QtCharts/QValueAxis>
#include <QtTest>

#include <numeric>

using songs::Song;

namespace {

const QString decodeWarning = "無法解碼，請確認已安裝正確音訊解碼包";

// Lets a decode go on to so many points, a turn of the event loop at a time, so that it does not end unseen.
bool reaches(const MainWindow &window, int points)
{
    const QDeadlineTimer deadline(30000);
    while (window.waveSamples.size() < points && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return window.waveSamples.size() >= points && window.decodeProgress->isVisible();
}

} // namespace

class TestSongLoad : public WindowTest
{
    Q_OBJECT

private:
    QString wav(const QString &name, const Song &song)
    {
        songs::writeWav(env->path(name), song);
        return env->path(name);
    }
    // Reads a long one until its decode is well under way.
    void startLongSong()
    {
        window->ReadSong(wav("long.wav", {96000, 1, 60000}));
        QVERIFY(reaches(*window, 50));
    }
    // Reads a song to its end.
    void read(const QString &path)
    {
        window->ReadSong(path);
        QTRY_VERIFY_WITH_TIMEOUT(!window->decodeProgress->isVisible(), 60000);
    }

    // The middle of the columns that reach the view's upper edge within 60 milliseconds, in the view's pixels.
    double paintedPeakNear(double ms) const
    {
        const double scale = static_cast<double>(msPerPixel);
        const int reach = qMax(4, static_cast<int>(60 / scale));
        const QRect strip(static_cast<int>(ms / scale) - reach, 0, 2 * reach + 1, window->chartView->height());
        const QImage image = window->chartView->grab(strip).toImage();
        QVector<int> lit;
        for (int x = 0; x < image.width(); ++x) {
            if (qBlue(image.pixel(x, 0)) > 150)
                lit << strip.left() + x;
        }
        return lit.isEmpty() ? -1 : std::accumulate(lit.begin(), lit.end(), 0.0) / lit.size();
    }

    // What a decoder that no longer counts might still send.
    static void sendLate(QAudioDecoder *decoder)
    {
        emit decoder->bufferReady();
        emit decoder->positionChanged(30000);
        emit decoder->durationChanged(12345);
        emit decoder->error(QAudioDecoder::FormatError);
        emit decoder->finished();
    }

    // Hidden, and with no timer that could show it later.
    bool dialogIsGoneForGood() const
    {
        const auto dialogs = window->findChildren<QProgressDialog *>();
        return std::none_of(dialogs.begin(), dialogs.end(), [](const QProgressDialog *dialog) {
            const auto timers = dialog->findChildren<QTimer *>();
            return dialog->isVisible() ||
                   std::any_of(timers.begin(), timers.end(), [](const QTimer *timer) { return timer->isActive(); });
        });
    }

private slots:
    void theWaveStandsUnderTheRuler()
    {
        const std::tuple<QString, Song, QString> songsToRead[] = {
            {"1.wav", {8000, 1, 6500}, {}},
            {"2.wav", {44100, 2, 6500}, {}},
            {"3.wav", {96000, 2, 6500}, {}},
            {"4.mp3", {44100, 2, 6500}, "-b:a 128k"},
            {"5.mp3", {16000, 1, 6500}, "-b:a 32k"},
            {"6.mp3", {48000, 2, 6500}, "-q:a 4"},
            {"7.mp3", {44100, 1, 6500}, "-q:a 4 -write_xing 0"}, // no table of contents
            {"8.ogg", {44100, 2, 6500}, {}},
            {"9.flac", {44100, 2, 6500}, {}},
        };
        for (const auto &[name, song, options] : songsToRead) {
            const bool isWav = name.endsWith(".wav");
            const QString path = env->path(name);
            const QString source = wav(isWav ? name : "source.wav", song);
            if (!isWav && !songs::encode(source, path, options.split(' ', Qt::SkipEmptyParts)))
                QSKIP("no ffmpeg that makes all formats");
            // The mp3 encoder puts 576 samples before the song and the decoder takes 529 to get going. The back end
            // neither cuts them off for the waveform nor for the player, so the second that is heard comes that much
            // later.
            const double offsetMs = name.endsWith(".mp3") ? 1105 * 1000.0 / song.rate : 0;
            read(path);

            const double points = (6500 + offsetMs) * 0.48;
            QVERIFY2(window->waveSamples.size() >= points && window->waveSamples.size() < points + 48,
                     qPrintable(QString::number(window->waveSamples.size())));
            for (const int slider : {40, 80, 160}) {
                ui->timeline_scaler->setValue(slider);
                QCOMPARE(window->chartView->width(), static_cast<int>(window->waveSamples.size() / 0.48F / msPerPixel));
                for (int second = 1; second <= 6; ++second) {
                    const double ms = second * 1000 + offsetMs;
                    const double pixel = ms / static_cast<double>(msPerPixel);
                    const double painted = paintedPeakNear(ms);
                    const QString where("%1, slider %2: %3 stands at %4");
                    QVERIFY2(qAbs(painted - pixel) <= 2,
                             qPrintable(where.arg(name).arg(slider).arg(pixel).arg(painted)));
                }
            }
        }
    }

    void theWindowTakesTheSongsNumbers()
    {
        for (const int ms : {300, 300000, 300001}) {
            ui->timeline_max->setTime(QTime(0, 20)); // made longer by the user
            ui->Song_play->setEnabled(false);
            const QString path = wav("song of mine.wav", {8000, 1, ms});
            const QSignalSpy shown(ui->Song_time, &QTimeEdit::timeChanged);
            read(path);

            // The song's length, until the player's first notification.
            QVERIFY(shown.contains(QVariantList{QTime(0, 0).addMSecs(ms)}));
            const int area = qMax(ms, 300000);
            QCOMPARE(ui->Song_dir->text(), QString("song of mine.wav"));
            QCOMPARE(ui->Song_Slider->maximum(), area);
            QCOMPARE(ui->timeline_max->time(), QTime(0, 0).addMSecs(area));
            QCOMPARE(ui->timeline_headers->timelineLengthMs, area);
            QVERIFY(ui->Song_play->isEnabled() && window->hasSong());
            QVERIFY(qAbs(window->waveSamples.size() - ms * 0.48) < 4);
            QCOMPARE(window->audioDecoder->sourceFilename(), path);
            QCOMPARE(window->player->state(), QMediaPlayer::PausedState);

            const ChartView *view = window->chartView;
            QVERIFY(view->isVisible());
            QCOMPARE(ui->audio_layout->itemAt(0)->widget(), view);
            QCOMPARE(view->height(), ui->audio_frame->height());
            QCOMPARE(view->wavePoints, window->waveSamples.toList());
            QCOMPARE(window->waveSeries->pointsVector(), window->waveSamples);
            QCOMPARE(window->waveSeries->pen().color(), QColor(100, 100, 255));
            QCOMPARE(window->waveSeries->pen().width(), 1);
            const auto *axis = qobject_cast<QtCharts::QValueAxis *>(view->chart()->axes(Qt::Vertical).value(0));
            QVERIFY(axis != nullptr && !axis->isVisible());
            QCOMPARE(axis->max(), 0.8 * window->waveMax);
            QCOMPARE(axis->min(), -axis->max());
            QVERIFY(dialogIsGoneForGood());
        }
    }

    void theDialogCountsPoints()
    {
        window->ReadSong(wav("a.wav", {8000, 1, 20000}));
        QProgressDialog *dialog = window->decodeProgress;
        QVERIFY(dialog->isVisible() && !dialog->isModal());
        QCOMPARE(dialog->labelText(), QString("讀取音樂中..."));
        QCOMPARE(dialog->findChild<QPushButton *>()->text(), QString("取消"));
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

    void aSecondSongLeavesNothingOfTheFirst()
    {
        read(wav("a.wav", {44100, 2, 9000}));
        QCOMPARE(window->waveSamples.size(), 4321);
        const QtCharts::QChart *first = window->chartView->chart();
        ui->Song_time->clockTimer->start(); // as if the show had been played while there was no song
        read(wav("b.wav", {8000, 1, 2000}));
        QVERIFY(!ui->Song_time->clockTimer->isActive());
        QCOMPARE(window->waveSamples.size(), 961);
        QVERIFY(window->chartView->chart() != first);
        QCOMPARE(window->waveSeries->count(), 961);
        QCOMPARE(window->chartView->width(), 200);
        QCOMPARE(ui->audio_layout->count(), 1);
        window->audioPlotting(); // drawn once more, the waveform is still its own
        QCOMPARE(window->chartView->chart()->series().size(), 1);
        QCOMPARE(window->waveSeries->count(), 961);

        // A missing one leaves no song and the older chart.
        const QtCharts::QChart *second = window->chartView->chart();
        for (const QString &gone : {env->path("gone.wav"), QString("C:/Music/gone.mp3"), QString("gone.mp3")}) {
            ui->statusBar->clearMessage();
            read(gone);
            QVERIFY(!window->hasSong());
            QCOMPARE(window->chartView->chart(), second);
            QCOMPARE(ui->statusBar->currentMessage(), decodeWarning);
            QCOMPARE(window->audioDecoder->sourceFilename(), gone); // as a save keeps it
        }

        // A path from the working directory is as good as a whole one.
        songs::writeWav("near.wav", {8000, 1, 1000});
        read("near.wav");
        QCOMPARE(window->waveSamples.size(), 481);
        QCOMPARE(ui->Song_dir->text(), QString("near.wav"));
        QCOMPARE(window->audioDecoder->sourceFilename(), QFileInfo("near.wav").absoluteFilePath());
    }

    void cancelMeansNoSong()
    {
        startLongSong();
        window->decodeProgress->findChild<QPushButton *>()->click();
        QVERIFY(window->waveSamples.isEmpty());
        sendLate(window->audioDecoder);
        QTRY_COMPARE(window->audioDecoder->state(), QAudioDecoder::StoppedState);
        QCoreApplication::processEvents();
        QVERIFY(window->waveSamples.isEmpty());
        QVERIFY(!window->chartView->isVisible());
        QVERIFY(dialogIsGoneForGood());
        QCOMPARE(ui->Song_dir->text(), QString("long.wav"));

        ui->Song_play->click(); // the show runs in silence
        QVERIFY(ui->Song_time->clockTimer->isActive());
        QTRY_VERIFY(ui->timeline_headers->indicator->x() > 5);
    }

    void aReplacedDecoderChangesNothing()
    {
        startLongSong();
        const QPointer<QAudioDecoder> old = window->audioDecoder;
        const QPointer<QProgressDialog> oldDialog = window->decodeProgress;
        window->ReadSong(wav("b.wav", {8000, 1, 2000}));
        QVERIFY(window->audioDecoder != old && window->waveSamples.isEmpty() && !oldDialog->isVisible());
        sendLate(old);
        emit oldDialog->canceled();
        QVERIFY(window->decodeProgress->isVisible());
        QCOMPARE(window->decodeProgress->maximum(), 32767);
        QVERIFY(!window->chartView->isVisible());
        QTRY_VERIFY(!window->decodeProgress->isVisible());
        QVERIFY(old.isNull() && oldDialog.isNull());
        QCOMPARE(window->waveSamples.size(), 961);
        QCOMPARE(window->waveSeries->count(), 961);
        QVERIFY(dialogIsGoneForGood());
    }

    void whatCannotBeDecoded()
    {
        QByteArray noise(50000, '\0');
        for (int i = 0; i < noise.size(); ++i)
            noise[i] = static_cast<char>((static_cast<quint32>(i) * 2654435761U) >> 13);
        songs::writeBytes(env->path("empty.mp3"), {});
        songs::writeBytes(env->path("noise.mp3"), noise);
        songs::writeBytes(env->path("half.wav"), QByteArray("RIFF\x24\x10\x00\x00WAVEfmt ", 16));
        QVERIFY(QImage(300, 200, QImage::Format_RGB32).save(env->path("picture.mp3"), "png"));
        const QString good = wav("good.wav", {8000, 1, 1000});
        DialogDriver driver;
        for (const char *name : {"empty.mp3", "noise.mp3", "half.wav", "picture.mp3", "missing.wav", "."}) {
            ui->Song_play->setEnabled(false);
            ui->statusBar->clearMessage();
            window->chartView->hide();
            read(env->path(QLatin1String(name)));
            QCOMPARE(ui->statusBar->currentMessage(), decodeWarning);
            QVERIFY2(!window->hasSong() && !window->chartView->isVisible() && !ui->Song_play->isEnabled(), name);
            QVERIFY2(dialogIsGoneForGood() && driver.boxes().isEmpty(), name);
            read(good); // and the next song is read as ever
            QVERIFY2(window->waveSamples.size() == 481 && ui->Song_play->isEnabled(), name);
        }

        // A good file without a sample is told in a box.
        driver.answerBox(QMessageBox::Ok);
        ui->Song_play->setEnabled(false);
        window->chartView->hide();
        read(wav("silent.wav", {44100, 1, 0}));
        QTRY_VERIFY(driver.done() && driver.boxes().size() == 1);
        QCOMPARE(driver.boxes().first().title, QString("錯誤"));
        QCOMPARE(driver.boxes().first().text, decodeWarning);
        QCOMPARE(driver.boxes().first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        QVERIFY(!ui->Song_play->isEnabled() && window->chartView->isVisible() && dialogIsGoneForGood());
    }

    void theButtonRewindsAndAsks()
    {
        ui->timeline_headers->indicator->setIndicatorTime(QTime(0, 0, 3), true);
        ui->Song_play->click();
        QVERIFY(ui->Song_time->clockTimer->isActive());
        window->player->blockSignals(true);
        DialogDriver driver;
        driver.answerFile({});
        ui->SongRead_Button->click();
        QVERIFY(driver.done());
        QCOMPARE(driver.files().first().title, QString("選歌"));
        QCOMPARE(driver.files().first().directory, QDir::homePath() + "/Music");
        QCOMPARE(driver.files().first().filters, (QStringList{"(*.mp3 *.wav)", "All files (*.*)"}));
        QVERIFY(!window->player->signalsBlocked() && !ui->Song_time->clockTimer->isActive());
        QCOMPARE(ui->timeline_headers->indicator->x(), 0);
        QCOMPARE(ui->Song_time->time(), QTime(0, 0));
        QCOMPARE(ui->Song_Slider->value(), 0);
        QVERIFY(window->audioDecoder == nullptr);

        driver.answerFile({wav("a.wav", {8000, 1, 1000})});
        ui->SongRead_Button->click();
        QTRY_COMPARE(window->waveSamples.size(), 481);
        QVERIFY(driver.done());
    }

    void theWaveFollowsItsFrame()
    {
        read(wav("a.wav", {8000, 1, 30000}));
        QVector<int> heights;
        for (const int tracks : {150, 400}) {
            ui->timeline_splitter->setSizes({tracks, 460 - tracks});
            emit ui->timeline_splitter->splitterMoved(ui->timeline_splitter->sizes().first(), 1);
            QCoreApplication::processEvents();
            heights << ui->audio_frame->height();
            QCOMPARE(window->chartView->size(), QSize(3000, heights.last()));
        }
        QVERIFY(heights.last() < heights.first());
        // Wave and ruler share their left edge.
        QCOMPARE(window->chartView->mapTo(ui->timeline_headers, QPoint(0, 0)).x(), 0);
    }

    void theWindowMayGoDuringADecode()
    {
        for (const int points : {0, 50, 500}) {
            MainWindow other;
            other.show();
            other.ReadSong(wav("long.wav", {44100, 2, 60000}));
            QVERIFY(reaches(other, points));
        }
    }
};

QTEST_MAIN(TestSongLoad)
#include "test_songload.moc"
