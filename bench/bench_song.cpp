// Songs in the real window, its preview painting: reading one, and what its waveform costs afterwards.
#include "bench.h"

#include "app/mainwindow.h"
#include "song/chartview.h"
#include "song/mytime.h"
#include "ui_mainwindow.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPaintEvent>
#include <QProcess>
#include <QProgressDialog>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <limits>

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

// Takes the time of every paint event of a widget: what the program itself does for a repaint. What the window system
// and a graphics card, real or not, do with the whole window afterwards is not in it.
class PaintTimer : public QObject
{
public:
    explicit PaintTimer(QWidget *widget) { widget->installEventFilter(this); }

    double ms = 0;
    int widest = 0; // pixels, of the stretch that a paint showed

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::Paint || inside) {
            return false;
        }
        inside = true;
        widest = std::max(widest, static_cast<QPaintEvent *>(event)->rect().width());
        QElapsedTimer timer;
        timer.start();
        QCoreApplication::sendEvent(watched, event);
        ms += timer.nsecsElapsed() / 1e6;
        inside = false;
        return true;
    }

private:
    bool inside = false;
};

void measurePainting(MainWindow &window, QVector<bench::Row> &rows)
{
    if (!makeSong(QStringLiteral("ten.wav"), 600, {QStringLiteral("-ar"), QStringLiteral("8000")})) {
        rows.append({QStringLiteral("The waveform of ten minutes"), 0, 0, 2, QStringLiteral("no ffmpeg")});
        return;
    }
    read(window, QStringLiteral("ten.wav"));
    QWidget *wave = window.chartView->viewport();
    const int visible = window.ui->timeline_scroll->viewport()->width();
    for (const int zoom : {40, 80, 160}) {
        window.ui->timeline_scaler->setValue(zoom);
        QScrollBar *bar = window.ui->timeline_scroll->horizontalScrollBar();
        bar->setValue(bar->maximum() / 2);
        QCoreApplication::processEvents();
        QVector<double> taken;
        for (int i = 0; i < 50; ++i) {
            // Beside an OpenGL widget Qt may put off even QWidget::repaint, so the paint event itself is waited for.
            PaintTimer paint(wave);
            wave->update();
            while (paint.widest == 0) {
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            }
            // A repaint that shows less than what is visible is none.
            taken.append(paint.widest >= visible ? paint.ms : std::numeric_limits<double>::infinity());
        }
        std::sort(taken.begin(), taken.end());
        rows.append({QStringLiteral("The visible %1 pixels of ten minutes of waveform at zoom %2, repainted in the "
                                    "window; 9 of 10 take no longer")
                         .arg(visible)
                         .arg(zoom),
                     taken.at(taken.size() * 9 / 10), 0, 2, QString()});
    }
    int zoom = 80;
    const double zooming = bench::median(20, [&window, &zoom, wave] {
        PaintTimer paint(wave);
        zoom = zoom == 155 ? 160 : 155;
        window.ui->timeline_scaler->setValue(zoom);
        while (paint.widest == 0) {
            QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    });
    rows.append({QStringLiteral("One zoom step with ten minutes of waveform until the window is composed anew"),
                 zooming, 0, 33, QString()});
}

// The clock without a song. Its error is what it tells against a steady clock at that very moment, over a minute, with
// the preview painting: an error that grew would show. How soon the eye sees it depends on the next repaint and not on
// the clock.
void measureClock(QVector<bench::Row> &rows)
{
    QVector<double> errors;
    {
        MainWindow window;
        window.show();
        QCoreApplication::processEvents();
        window.on_Song_play_clicked();
        QElapsedTimer wall;
        wall.start();
        const int begin = QTime::currentTime().msecsSinceStartOfDay();
        const myTime *field = window.ui->Song_time;
        QObject::connect(field, &myTime::timer_timeout, &window, [&](qlonglong ms) {
            const qint64 due =
                field->clockBase.msecsSinceStartOfDay() + begin - field->clockStartStamp + wall.elapsed();
            errors.append(std::abs(double(due - ms)));
        });
        while (wall.elapsed() < 60000) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }
    std::sort(errors.begin(), errors.end());
    rows.append(
        {QStringLiteral("The clock without a song against the wall clock, 99 of 100 of the %1 times told in 60 s "
                        "with the preview painting")
             .arg(errors.size()),
         errors.at(errors.size() * 99 / 100), 0, 10, QString()});

    // In a window of its own, where nothing else paints.
    myTime field;
    field.show();
    QElapsedTimer gap;
    QVector<double> gaps;
    QObject::connect(&field, &myTime::timer_timeout, &field, [&](qlonglong) {
        gaps.append(gap.isValid() ? gap.nsecsElapsed() / 1e6 : 0);
        gap.start();
    });
    field.restartClock(QTime(0, 0));
    QElapsedTimer wall;
    wall.start();
    const std::clock_t used = std::clock();
    field.clockTimer->start();
    while (wall.elapsed() < 10000) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    const double perSecond = 1000.0 * double(std::clock() - used) / CLOCKS_PER_SEC / 10;
    std::sort(gaps.begin(), gaps.end());
    rows.append({QStringLiteral("The same clock by itself: between two times told, 99 of 100"),
                 gaps.at(gaps.size() * 99 / 100), 0, 10, QString()});
    rows.append({QStringLiteral("The same clock by itself: time of a processor core in a second, field repainted"),
                 perSecond, 0, 250, QString()});
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
