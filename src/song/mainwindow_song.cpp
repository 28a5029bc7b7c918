// Reading a song: the player gets the file, and a decoder runs over all of it for the waveform.
#include "app/mainwindow.h"

#include "forms/hints.h"
#include "forms/statusnotes.h"
#include "forms/timeleftlabel.h"
#include "show/base/startfolder.h"
#include "show/draw/waveform.h"
#include "show/model/showtime.h"
#include "song/chartview.h"
#include "song/mytime.h"
#include "song/songformat.h"
#include "ui_mainwindow.h"

#include <QAudioBuffer>
#include <QDebug>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFileInfo>
#include <QGraphicsLayout>
#include <QMessageBox>
#include <QProgressDialog>
#include <QScopedPointer>
#include <QThread>
#include <QTimer>
#include <QUrl>
#include <QtCharts/QChart>
#include <QtCharts/QValueAxis>

#include <algorithm>

using namespace QtCharts;

namespace {

// The back end hands out small buffers of about 30 milliseconds of song and queues no more than four of them. One turn
// of a busy event loop for each four would make a song last many seconds, so a turn reads for this long, and while it
// does it waits a little for a decoder that has fallen behind. Little: a millisecond of patience made a five-minute
// song half a second slower, and ten made it twice as slow. The rest of a turn is a repaint of the window, which can
// take as long; the two together stay short enough for the cancel button to answer at once.
constexpr int readSliceMs = 20;
constexpr int readPatienceUs = 300;
constexpr int readNapUs = 50;

// The show area is never shorter than this after a song was read.
constexpr int leastShowMs = 300000;

constexpr char goneSong[] = QT_TRANSLATE_NOOP("Hints", "找不到歌曲：%1");

bool waitForBuffer(const QAudioDecoder &decoder)
{
    for (int waited = 0; waited < readPatienceUs; waited += readNapUs) {
        if (decoder.bufferAvailable()) {
            return true;
        }
        QThread::usleep(readNapUs);
    }
    return decoder.bufferAvailable();
}

// The length of a song that was decoded to its end, as 32 bits. A back end that does not know it reports -1; then it
// is what the points make.
int songLengthMs(const QAudioDecoder &decoder, int pointCount)
{
    const qint64 duration = decoder.duration();
    return static_cast<int>(duration >= 0 ? duration : glow::timeOfWavePoints(std::max(pointCount - 1, 0)));
}

QChart *chartOf(QLineSeries *series, double limit)
{
    auto *chart = new QChart;
    chart->setMargins(QMargins(0, 0, 0, 0));
    chart->layout()->setContentsMargins(0, 0, 0, 0);
    chart->legend()->hide();
    chart->setBackgroundBrush(QColor(30, 35, 40)); // in tone with the window, so that the play-head stands out
    chart->addSeries(series);
    auto *axis = new QValueAxis;
    axis->setRange(-limit, limit);
    chart->addAxis(axis, Qt::AlignLeft);
    axis->hide();
    series->attachAxis(axis);
    return chart;
}

} // namespace

// The waveform's view, hidden until there is a song, and the keys of playing.
void MainWindow::setUpSong()
{
    chartView = new ChartView(ui->audio_frame);
    chartView->setAccessibleName(glow::hint(QT_TRANSLATE_NOOP("Hints", "波形")));
    chartView->setFocusPolicy(Qt::NoFocus);
    ui->audio_frame->installEventFilter(this);
    ui->Song_play->installEventFilter(this);
    ui->Song_play_2->installEventFilter(this);
    chartView->hide();
}

void MainWindow::on_SongRead_Button_clicked()
{
    player->blockSignals(false);
    rewindSong();
    const QString path = QFileDialog::getOpenFileName(
        this, tr("選歌"), glow::startForOpening(QDir::homePath() + QStringLiteral("/Music")),
        QStringLiteral("(*.mp3 *.wav);;All files (*.*)"));
    if (!path.isEmpty()) {
        ReadSong(path);
    }
}

void MainWindow::ReadSong(const QString &path)
{
    glow::retract(ui->statusBar, tr("無法解碼，請確認已安裝正確音訊解碼包"));
    glow::retract(ui->statusBar, glow::hint(goneSong).section(u'%', 0, 0));
    ui->Song_dir->setText(path.mid(path.lastIndexOf(u'/') + 1));
    ui->Song_dir->setToolTip(path.toHtmlEscaped());

    // Made anew for each song, so that after a second one the slots run twice for each notification. They only set
    // values.
    connect(player, &QMediaPlayer::positionChanged, this, &MainWindow::positionChanged);
    connect(player, &QMediaPlayer::stateChanged, this, &MainWindow::stateChanged);

    // The back ends open no relative path. One that leads nowhere here, such as another system's, is saved as it
    // stands.
    const QFileInfo info(path);
    const QString file = info.isRelative() && info.exists() ? info.absoluteFilePath() : path;
    player->setMedia(QUrl::fromLocalFile(file));

    // What a decode of an older song still delivers is dropped: its slots look at the sender (isStaleDecode).
    endDecode();
    forgetDecode();
    audioDecoder = new QAudioDecoder(this);
    audioDecoder->setAudioFormat(glow::waveFormat());
    audioDecoder->setSourceFilename(file);
    waveSeries = new QLineSeries(this);
    QPen pen(QColor(100, 100, 255, 255));
    pen.setWidth(1);
    waveSeries->setPen(pen);
    waveSamples.clear();
    waveMax = 0;

    connect(audioDecoder, &QAudioDecoder::bufferReady, this, &MainWindow::readAudioBuffer);
    connect(audioDecoder, &QAudioDecoder::finished, this, &MainWindow::audioPlotting);
    connect(audioDecoder, &QAudioDecoder::positionChanged, this, &MainWindow::decoder_PositionChanged);
    connect(audioDecoder, &QAudioDecoder::durationChanged, this, &MainWindow::durationChanged);
    connect(audioDecoder, QOverload<QAudioDecoder::Error>::of(&QAudioDecoder::error), this, &MainWindow::decodeFailed);

    // It closes at the decode's end and not by its value: a song without a table of contents can be longer than the
    // back end first took it for.
    decodeProgress = new QProgressDialog(tr("讀取音樂中..."), tr("取消"), 0, 32767, this);
    decodeProgress->setWindowTitle(tr("選歌"));
    decodeProgress->setAutoClose(false);
    decodeProgress->setAutoReset(false);
    connect(decodeProgress, &QProgressDialog::canceled, this, &MainWindow::cancel_decoder);
    decodeProgress->show();

    decoding = true;
    audioDecoder->start();
}

// True for a slot that was called by something that no longer counts: a replaced decoder or its dialog, or the present
// decoder after the end of its decode.
bool MainWindow::isStaleDecode(const QObject *caller) const
{
    if (qobject_cast<const QAudioDecoder *>(caller) != nullptr) {
        return caller != audioDecoder || !decoding;
    }
    return qobject_cast<const QProgressDialog *>(caller) != nullptr && caller != decodeProgress;
}

// Ends the present decode, whatever its state, and closes its dialog for good.
void MainWindow::endDecode()
{
    const bool running = decoding;
    decoding = false;
    timeLeft->end(TimeLeftLabel::Song);
    if (running) {
        audioDecoder->stop();
    }
    if (decodeProgress != nullptr) {
        decodeProgress->reset();
        decodeProgress->hide();
    }
}

// Gives up what the decode of an older song was made with; a waveform that is shown stays until the next one.
void MainWindow::forgetDecode()
{
    for (QObject *old : {static_cast<QObject *>(audioDecoder), static_cast<QObject *>(decodeProgress)}) {
        if (old != nullptr) {
            old->deleteLater();
        }
    }
    if (waveSeries != nullptr && waveSeries->chart() == nullptr) {
        waveSeries->deleteLater();
    }
}

void MainWindow::cancel_decoder()
{
    if (isStaleDecode(sender())) {
        return;
    }
    endDecode();
    waveSamples.clear();
}

void MainWindow::decodeFailed()
{
    if (isStaleDecode(sender()) || !decoding) {
        return;
    }
    qDebug() << "decode error" << audioDecoder->errorString();
    endDecode();
    waveSamples.clear();
    tellOfSong();
}

// No decoder can read a file that is gone.
void MainWindow::tellOfSong()
{
    const QString path = audioDecoder->sourceFilename();
    ui->statusBar->showMessage(QFileInfo::exists(path) ? tr("無法解碼，請確認已安裝正確音訊解碼包")
                                                       : glow::hint(goneSong).arg(QDir::toNativeSeparators(path)));
}

void MainWindow::decoder_PositionChanged(qlonglong ms)
{
    if (!isStaleDecode(sender()) && decodeProgress != nullptr) {
        decodeProgress->setValue(glow::wavePointsOfTime(ms));
        if (decoding && audioDecoder->duration() > 0) {
            timeLeft->follow(TimeLeftLabel::Song, double(ms) / double(audioDecoder->duration()));
        }
    }
}

void MainWindow::durationChanged(qlonglong t)
{
    if (!isStaleDecode(sender()) && decodeProgress != nullptr) {
        decodeProgress->setMaximum(glow::wavePointsOfTime(t));
    }
}

void MainWindow::readAudioBuffer()
{
    // Each buffer announces itself, also those that an earlier turn has read with others: while a further turn is
    // scheduled the announcements add nothing, or a hundred of them would hold up the event loop for a hundred turns.
    if (isStaleDecode(sender()) || !decoding || readScheduled) {
        return;
    }
    QElapsedTimer slice;
    slice.start();
    decodeProgress->setUpdatesEnabled(false); // it would paint itself at once for each buffer
    while (decoding && !slice.hasExpired(readSliceMs) && waitForBuffer(*audioDecoder)) {
        takeAudioBuffer();
    }
    decodeProgress->setUpdatesEnabled(true);
    if (decoding && slice.hasExpired(readSliceMs)) {
        readScheduled = true;
        QTimer::singleShot(0, this, [this] {
            readScheduled = false;
            readAudioBuffer();
        });
    }
}

void MainWindow::takeAudioBuffer()
{
    const QAudioBuffer buffer = audioDecoder->read();
    if (!buffer.isValid()) {
        return;
    }
    if (!glow::isWaveBuffer(buffer)) {
        decodeFailed();
        return;
    }
    const qint64 position = glow::endOfBuffer(buffer, audioDecoder->position());
    if (waveSamples.isEmpty()) {
        qDebug() << "Init Plot" << position;
        chartView->firstDecodePos = static_cast<double>(position);
    }
    glow::appendWavePoints(waveSamples, waveMax, buffer.constData<qint16>(), buffer.sampleCount(), position);
}

// The decode has come to its end.
void MainWindow::audioPlotting()
{
    if (isStaleDecode(sender()) || audioDecoder == nullptr || !drainDecoder()) {
        return;
    }
    showWaveform();
    decodeProgress->setValue(decodeProgress->maximum());
    endDecode();

    const int length = songLengthMs(*audioDecoder, waveSamples.size());
    qDebug() << "song duration" << length << "buffer length" << waveSamples.size();
    if (length == 0) {
        QMessageBox::warning(this, tr("錯誤"), tr("無法解碼，請確認已安裝正確音訊解碼包"), QMessageBox::Ok);
        return;
    }
    takeLength(length);
    readyPlayer();
    updateStatus();
}

// Reads the buffers that are left. False if they cannot be read, which has ended the decode already.
bool MainWindow::drainDecoder()
{
    const bool reading = decoding;
    while (decoding && audioDecoder->bufferAvailable()) {
        takeAudioBuffer();
    }
    if (reading && !decoding) {
        return false;
    }
    decoding = false;
    return true;
}

void MainWindow::showWaveform()
{
    chartView->show();
    waveSeries->replace(waveSamples); // one notification instead of one for each point
    qDebug() << "series max" << waveMax;
    chartView->setMinimumSize(0, 0); // a chart of no size has nothing to lay out
    chartView->resize(0, 0);
    const QScopedPointer<QChart> old(chartView->chart());
    if (waveSeries->chart() != nullptr) {
        waveSeries->chart()->removeSeries(waveSeries); // plotted once more: a chart takes its series down with it
    }
    chartView->setChart(chartOf(waveSeries, glow::waveAxisLimit(waveMax)));
    chartView->wavePoints = waveSamples.toList();
    chartView->setRenderHint(QPainter::Antialiasing);
    chartView->resizeToWave();
    ui->audio_layout->insertWidget(0, chartView);
    connect(chartView, &ChartView::chartClicked, this, &MainWindow::on_Song_Slider_sliderMoved);
}

// The show area and the slider become as long as the song, the show area never shorter than an empty show's.
void MainWindow::takeLength(int lengthMs)
{
    const int shown = std::max(lengthMs, leastShowMs);
    ui->Song_Slider->setMaximum(shown);
    ui->timeline_max->setTime(glow::timeOf(shown));
    ui->Song_time->setTime(glow::timeOf(lengthMs));
}

void MainWindow::readyPlayer()
{
    ui->Song_play->setEnabled(true);
    player->play();
    player->stop();
    player->pause();
    // The player is the clock from here on. One that ran in silence would fight it, and no button would reach it.
    ui->Song_time->clockTimer->stop();
    stateChanged(player->state());
}

void MainWindow::on_Song_dir_linkHovered(const QString &link)
{
    Q_UNUSED(link)
    ui->Song_dir->setText(player->media().request().url().toString());
}

void MainWindow::resizeWave()
{
    chartView->resizeToWave();
}
