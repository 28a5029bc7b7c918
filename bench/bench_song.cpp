// Songs in the real window, its preview painting: reading one, and what its waveform costs afterwards.
#include "bench.h"

#include "app/mainwindow.h"
#include "song/chartview.h"
#include "song/mytime.h"
#include "ui_mainwindow.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QProgressDialog>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace {

// Music-like noise of that length.
bool makeSong(const QString &file, int seconds, const QStringList &options)
{
    const QString source =
        QStringLiteral("anoisesrc=r=44100:c=pink:a=0.4:d=%1,tremolo=f=2:d=0.8,aformat=channel_layouts="
                       "stereo")
            .arg(seconds);
    return QProcess::execute(QStringLiteral("ffmpeg"),
                             QStringList{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y"),
                                         QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"), source} +
                                 options + QStringList{file}) == 0;
}

void read(MainWindow &window, const QString &file)
{
    window.ReadSong(QFileInfo(file).absoluteFilePath());
    while (window.decodeProgress->isVisible()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    window.chartView->viewport()->repaint();
}

void measureReading(MainWindow &window, QVector<bench::Row> &rows)
{
    const QString what = QStringLiteral("A five-minute mp3 as a finished waveform, the preview painting");
    if (!makeSong(QStringLiteral("five.mp3"), 300, {QStringLiteral("-b:a"), QStringLiteral("192k")})) {
        rows.append({what, 0, 0, 3, QStringLiteral("no ffmpeg that makes an mp3")});
        return;
    }
    const double floor = bench::median(3, [] {
        QProcess::execute(QStringLiteral("ffmpeg"),
                          {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y"), QStringLiteral("-i"),
                           QStringLiteral("five.mp3"), QStringLiteral("-ac"), QStringLiteral("1"),
                           QStringLiteral("-ar"), QStringLiteral("480"), QStringLiteral("-f"), QStringLiteral("s16le"),
                           QStringLiteral("five.raw")});
    });
    const double reading = bench::median(3, [&window] { read(window, QStringLiteral("five.mp3")); });
    rows.append({what, reading, floor, 3, QString()});
}

void measurePainting(MainWindow &window, QVector<bench::Row> &rows)
{
    if (!makeSong(QStringLiteral("ten.wav"), 600, {QStringLiteral("-ar"), QStringLiteral("8000")})) {
        rows.append({QStringLiteral("The waveform of ten minutes"), 0, 0, 2, QStringLiteral("no ffmpeg")});
        return;
    }
    read(window, QStringLiteral("ten.wav"));
    for (const int zoom : {40, 80, 160}) {
        window.ui->timeline_scaler->setValue(zoom);
        QScrollBar *bar = window.ui->timeline_scroll->horizontalScrollBar();
        bar->setValue(bar->maximum() / 2);
        QCoreApplication::processEvents();
        const double painting = bench::median(50, [&window] { window.chartView->viewport()->repaint(); });
        rows.append({QStringLiteral("The visible stretch of ten minutes of waveform at zoom %1, repainted").arg(zoom),
                     painting, 0, 2, QString()});
    }
    int zoom = 80;
    const double zooming = bench::median(20, [&window, &zoom] {
        zoom = zoom == 155 ? 160 : 155;
        window.ui->timeline_scaler->setValue(zoom);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        QCoreApplication::sendPostedEvents(&window, QEvent::UpdateRequest);
    });
    rows.append({QStringLiteral("One zoom step with ten minutes of waveform, repainted"), zooming, 0, 33, QString()});
}

// The clock without a song against the wall clock, looked at whenever the event loop comes round.
void measureClock(QVector<bench::Row> &rows)
{
    MainWindow window;
    window.show();
    QCoreApplication::processEvents();
    window.on_Song_play_clicked();
    const myTime *field = window.ui->Song_time;
    QElapsedTimer wall;
    wall.start();
    const int begin = field->time().msecsSinceStartOfDay();
    QVector<double> lags;
    while (wall.elapsed() < 2000) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        lags.append(std::abs(double(begin + wall.elapsed() - field->time().msecsSinceStartOfDay())));
    }
    window.on_Song_play_clicked();
    std::sort(lags.begin(), lags.end());
    rows.append({QStringLiteral("The clock without a song behind the wall clock, 99 of 100 looks"),
                 lags.at(lags.size() * 99 / 100), 0, 10, QString()});
}

} // namespace

void bench::song(QVector<Row> &rows)
{
    measureClock(rows);
    MainWindow window;
    window.resize(1600, 900);
    window.show();
    QCoreApplication::processEvents();
    measureReading(window, rows);
    measurePainting(window, rows);
}
