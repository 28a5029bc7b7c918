// Reading songs in the window, through the real media back end: the waveform's place, the window's numbers, and what
// goes wrong.
#include "show/model/timescale.h"
#include "song/chartview.h"
#include "song/mytime.h"
#include "song/songmaker.h"
#include "support/windowtest.h"

#include <QProgressDialog>
#include <QPushButton>
#include <QtCharts/QValueAxis>

class TestSongLoad : public WindowTest
{
    Q_OBJECT

private:
    QString wav(const QString &name, const songs::Song &song)
    {
        songs::writeWav(env->path(name), song);
        return env->path(name);
    }
    // Reads a long one until its decode is well under way, a turn of the event loop at a time, so that it does not end
    // unseen.
    void startLongSong()
    {
        window->ReadSong(wav("long.wav", {96000, 1, 60000}));
        while (window->waveSamples.size() < 50 && window->decodeProgress->isVisible())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QVERIFY(window->waveSamples.size() >= 50 && window->decodeProgress->isVisible());
    }
    // Reads a song to its end.
    void read(const QString &path)
    {
        window->ReadSong(path);
        QTRY_VERIFY_WITH_TIMEOUT(!window->decodeProgress->isVisible(), 60000);
    }

    // Where the wave reaches the view's upper edge: the middle of such columns within 60 milliseconds, in pixels.
    double peakNear(double pixel) const
    {
        const int reach = qMax(4, static_cast<int>(60 / msPerPixel));
        const QImage row = window->chartView->grab(QRect(int(pixel) - reach, 0, 2 * reach + 1, 1)).toImage();
        QVector<int> lit;
        for (int x = 0; x < row.width(); ++x)
            if (qBlue(row.pixel(x, 0)) > 150)
                lit << int(pixel) - reach + x;
        return lit.isEmpty() ? -1 : (lit.first() + lit.last()) / 2.0;
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
        const auto timers = window->decodeProgress->findChildren<QTimer *>();
        return !window->decodeProgress->isVisible() && window->findChildren<QProgressDialog *>().size() == 1 &&
               std::none_of(timers.begin(), timers.end(), [](const QTimer *timer) { return timer->isActive(); });
    }

private slots:
    void theWaveStandsUnderTheRuler()
    {
        // The mp3 encoder puts 576 samples before the song and the decoder takes 529 to get going. The back end neither
        // cuts them off for the waveform nor for the player, so the second that is heard comes that much later.
        const std::pair<QString, double> songsToRead[] = {
            {wav("1.wav", {8000, 1, 3400}), 0},
            {wav("2.wav", {96000, 2, 3400}), 0},
            {QFINDTESTDATA("fixtures/clicks44100.mp3"), 1105 / 44.1}, // no table of contents
            {QFINDTESTDATA("fixtures/clicks16000.mp3"), 1105 / 16.0},
        };
        for (const auto &[path, lateMs] : songsToRead) {
            read(path);
            const double points = (3400 + lateMs) * 0.48;
            QVERIFY(window->waveSamples.size() >= points && window->waveSamples.size() < points + 48);
            for (const int slider : {40, 80, 160}) {
                ui->timeline_scaler->setValue(slider);
                QCOMPARE(window->chartView->width(), int(window->waveSamples.size() / 0.48F / msPerPixel));
                for (double ms = 1000 + lateMs; ms < 3400; ms += 1000) {
                    const double pixel = ms / double(msPerPixel);
                    QVERIFY2(qAbs(peakNear(pixel) - pixel) <= 2, qPrintable(path + QString::number(peakNear(pixel))));
                }
            }
        }
    }

    void theWindowTakesTheSongsNumbers()
    {
        for (const int ms : {300, 300001}) {
            ui->timeline_max->setTime(QTime(0, 20)); // made longer by the user
            ui->Song_play->setEnabled(false);
            const QString path = wav("song of mine.wav", {8000, 1, ms});
            const QSignalSpy shown(ui->Song_time, &QTimeEdit::timeChanged);
            read(path);
            // The song's length, until the player's first notification.
            QVERIFY(shown.contains(QVariantList{QTime(0, 0).addMSecs(ms)}));
            const int area = qMax(ms, 300000);
            QCOMPARE(ui->Song_Slider->maximum(), area);
            QCOMPARE(ui->timeline_headers->timelineLengthMs, area);
            QCOMPARE(ui->Song_dir->text(), QString("song of mine.wav"));
            QCOMPARE(window->audioDecoder->sourceFilename(), path);
            QCOMPARE(window->player->state(), QMediaPlayer::PausedState);
            QVERIFY(ui->Song_play->isEnabled() && qAbs(window->waveSamples.size() - ms * 0.48) < 4);

            const ChartView *view = window->chartView;
            QVERIFY(view->isVisible() && ui->audio_layout->itemAt(0)->widget() == view && dialogIsGoneForGood());
            QVERIFY(view->wavePoints.toVector() == window->waveSamples &&
                    window->waveSeries->pointsVector() == window->waveSamples);
            QCOMPARE(window->waveSeries->color(), QColor(100, 100, 255));
            const auto *axis = qobject_cast<QtCharts::QValueAxis *>(view->chart()->axes(Qt::Vertical).value(0));
            QVERIFY(axis != nullptr && axis->max() == 0.8 * window->waveMax && axis->min() == -axis->max());
        }
    }

    void theDialogCountsPoints()
    {
        window->ReadSong(wav("a.wav", {8000, 1, 20000}));
        QProgressDialog *dialog = window->decodeProgress;
        QVERIFY(dialog->isVisible() && !dialog->isModal() && dialog->maximum() == 32767);
        QCOMPARE(dialog->labelText(), QString("讀取音樂中..."));
        window->durationChanged(2083);
        window->decoder_PositionChanged(1050);
        QVERIFY(dialog->maximum() == 999 && dialog->value() == 504);
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
        ui->Song_time->clockTimer->start(); // as if the show had been played while there was no song
        // A path from the working directory is as good as a whole one.
        songs::writeWav("near.wav", {8000, 1, 2000});
        read("near.wav");
        QCOMPARE(window->audioDecoder->sourceFilename(), QFileInfo("near.wav").absoluteFilePath());
        QVERIFY(!ui->Song_time->clockTimer->isActive());
        window->audioPlotting(); // drawn once more, the waveform is still its own
        QCOMPARE(window->chartView->chart()->series().size(), 1);
        QVERIFY(window->waveSeries->count() == 961 && window->chartView->width() == 200);
        QCOMPARE(ui->audio_layout->count(), 1);
        QCOMPARE(window->chartView->mapTo(ui->timeline_headers, QPoint(0, 0)).x(), 0); // the ruler's left edge
        ui->timeline_splitter->setSizes({400, 60});
        emit ui->timeline_splitter->splitterMoved(ui->timeline_splitter->sizes().first(), 1);
        QTRY_COMPARE(window->chartView->height(), ui->audio_frame->height());
    }

    void cancelMeansNoSong()
    {
        startLongSong();
        window->decodeProgress->findChild<QPushButton *>()->click();
        sendLate(window->audioDecoder);
        QTRY_COMPARE(window->audioDecoder->state(), QAudioDecoder::StoppedState);
        QCoreApplication::processEvents();
        QVERIFY(window->waveSamples.isEmpty() && !window->chartView->isVisible() && dialogIsGoneForGood());

        ui->Song_play->click(); // the show runs in silence
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
        QVERIFY(window->decodeProgress->isVisible() && !window->chartView->isVisible());
        QCOMPARE(window->decodeProgress->maximum(), 32767);
        QTRY_VERIFY(!window->decodeProgress->isVisible());
        QVERIFY(old.isNull() && oldDialog.isNull() && dialogIsGoneForGood());
        QCOMPARE(window->waveSeries->count(), 961);
        startLongSong(); // the window may go during a decode
    }

    void whatCannotBeDecoded()
    {
        const QString good = wav("good.wav", {8000, 1, 1000});
        QByteArray noise(50000, '\0');
        for (int i = 0; i < noise.size(); ++i)
            noise[i] = static_cast<char>((static_cast<quint32>(i) * 2654435761U) >> 13);
        QVERIFY(put(env->path("empty.mp3")) && put(env->path("noise.mp3"), noise) &&
                put(env->path("half.wav"), QByteArray("RIFF\x24\x10\x00\x00WAVEfmt ", 16)) &&
                QImage(300, 200, QImage::Format_RGB32).save(env->path("picture.mp3"), "png"));
        DialogDriver driver;
        const QString dir = env->path() + "/";
        for (const QString &path : {dir + "empty.mp3", dir + "noise.mp3", dir + "half.wav", dir + "picture.mp3",
                                    dir + "missing.wav", dir, QString("C:/Music/gone.mp3"), QString("gone.mp3")}) {
            read(good);
            QVERIFY(window->waveSamples.size() == 481 && ui->Song_play->isEnabled());
            const QtCharts::QChart *before = window->chartView->chart();
            ui->Song_play->setEnabled(false);
            ui->statusBar->clearMessage();
            window->chartView->hide();
            read(path);
            QCOMPARE(ui->statusBar->currentMessage(),
                     QFile::exists(path) ? QString("無法解碼，請確認已安裝正確音訊解碼包") : "找不到歌曲：" + path);
            QVERIFY2(!window->hasSong() && !window->chartView->isVisible() && !ui->Song_play->isEnabled() &&
                         window->chartView->chart() == before && dialogIsGoneForGood() && driver.boxes().isEmpty(),
                     qPrintable(path));
            QCOMPARE(window->audioDecoder->sourceFilename(), path); // as a save keeps it
        }

        // A good file without a sample is told in a box.
        driver.answerBox(QMessageBox::Ok);
        read(wav("silent.wav", {44100, 1, 0}));
        QTRY_VERIFY(driver.done());
        QCOMPARE(driver.boxes().first().text, QString("無法解碼，請確認已安裝正確音訊解碼包"));
        QVERIFY(!ui->Song_play->isEnabled() && window->chartView->isVisible() && dialogIsGoneForGood());
    }

    void theButtonRewindsAndAsks()
    {
        ui->timeline_headers->indicator->setIndicatorTime(QTime(0, 0, 3), true);
        ui->Song_play->click();
        window->player->blockSignals(true);
        DialogDriver driver;
        driver.answerFile({});
        ui->SongRead_Button->click();
        QCOMPARE(driver.files().first().directory, QDir::homePath() + "/Music");
        QCOMPARE(driver.files().first().filters, (QStringList{"(*.mp3 *.wav)", "All files (*.*)"}));
        QVERIFY(!window->player->signalsBlocked() && !ui->Song_time->clockTimer->isActive());
        QVERIFY(ui->timeline_headers->indicator->x() == 0 && ui->Song_Slider->value() == 0);
        QVERIFY(ui->Song_time->time() == QTime(0, 0) && window->audioDecoder == nullptr);
        driver.answerFile({wav("a.wav", {8000, 1, 1000})});
        ui->SongRead_Button->click();
        QTRY_COMPARE(window->waveSamples.size(), 481);
    }
};

QTEST_MAIN(TestSongLoad)
#include "test_songload.moc"
