// Editing on the real window: play-head, zoom, adding, history, opening.
#include "bench.h"

#include "app/mainwindow.h"
#include "show/model/patternrecord.h"
#include "show/model/projectfile.h"
#include "timeline/indicator.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QScrollBar>

namespace {

// A picture whose encoding takes about as much as a photograph's: 20 kB at 170 by 85.
QPixmap busyPicture(int seed)
{
    QImage image(170, 85, QImage::Format_RGB32);
    quint32 state = 12345U + quint32(seed);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            state = state * 1664525U + 1013904223U;
            const int noise = int(state >> 28U);
            image.setPixel(x, y, qRgb((x + noise) & 255, (y * 2 + noise) & 255, ((x * y) >> 4) & 255));
        }
    }
    return QPixmap::fromImage(image);
}

QVector<QByteArray> manyPatterns(int count, int first = 0)
{
    QVector<QByteArray> blobs;
    for (int i = first; i < first + count; ++i) {
        glow::PatternRecord record;
        record.thumbnail = busyPicture(i);
        record.startTime = glow::timeOf(i * 600);
        record.endTime = glow::timeOf(i * 600 + 500);
        record.repeatCount = 2;
        record.settingsText = QStringLiteral("3?2?#ff0000|#000000|5|0|10?0|1|0");
        record.patternKind = glow::EffectPattern;
        blobs.append(glow::writePattern(record));
    }
    return blobs;
}

void settle()
{
    for (int i = 0; i < 5; ++i) {
        QCoreApplication::processEvents();
    }
}

void measureOpening(MainWindow &window, const QVector<QByteArray> &blobs, QVector<bench::Row> &rows)
{
    glow::Project project;
    project.ledCount = 80;
    project.frameRate = 2100.0F;
    project.tracks = {blobs};
    QFile file(QStringLiteral("bench.gsw3"));
    file.open(QIODevice::WriteOnly);
    file.write(glow::writeProject(project));
    file.close();
    const double opening = bench::median(3, [&window] {
        window.LoadFile(QStringLiteral("bench.gsw3"));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    });
    const double floor = bench::median(3, [&blobs] {
        for (const QByteArray &blob : blobs) {
            QBuffer in;
            in.setData(blob.mid(4));
            in.open(QIODevice::ReadOnly);
            const QImage image = QImage::fromData(blob.mid(4), "png");
            QBuffer out;
            out.open(QIODevice::WriteOnly);
            image.save(&out, "png");
        }
    });
    rows.append({QStringLiteral("Opening 500 patterns; floor: decoding and encoding their PNGs"), opening, floor, 1.5,
                 QString()});
}

// What happens in one place, in a show of so many patterns on ten tracks, each with another picture.
struct InOnePlace
{
    double offering = 0; // milliseconds
    double undoing = 0;
};

InOnePlace measureInOnePlace(MainWindow &window, int patterns)
{
    glow::Project project;
    project.ledCount = 80;
    project.frameRate = 2100.0F;
    for (int track = 0; track < 10; ++track) {
        project.tracks.append(manyPatterns(patterns / 10, track * patterns / 10));
    }
    QFile file(QStringLiteral("large.gsw3"));
    file.open(QIODevice::WriteOnly);
    file.write(glow::writeProject(project));
    file.close();
    window.LoadFile(QStringLiteral("large.gsw3"));
    settle();
    InOnePlace result;
    constexpr int offers = 100;
    result.offering = bench::median(20,
                                    [&window] {
                                        for (int i = 0; i < offers; ++i) {
                                            window.updateStatus();
                                        }
                                    }) /
                      offers;
    TimelineItem *changed = window.currentTimeline->items.first();
    changed->setTimes(changed->startTime, changed->endTime.addMSecs(10));
    window.updateStatus();
    result.undoing = bench::median(20,
                                   [&window] {
                                       window.on_actionUndo_triggered();
                                       window.updateStatus();
                                       window.on_actionRedo_triggered();
                                       window.updateStatus();
                                   }) /
                     2;
    return result;
}

void measureLargeShow(MainWindow &window, QVector<bench::Row> &rows)
{
    const InOnePlace small = measureInOnePlace(window, 500);
    const InOnePlace large = measureInOnePlace(window, 5000);
    rows.append({QStringLiteral("Offering an unchanged show of 5000 patterns on ten tracks; floor: of 500"),
                 large.offering, small.offering, 2, QString()});
    rows.append({QStringLiteral("An undo or redo that changes one of 5000 patterns; floor: of 500"), large.undoing,
                 small.undoing, 2, QString()});
}

} // namespace

void bench::edit(QVector<Row> &rows)
{
    QElapsedTimer start;
    start.start();
    MainWindow window;
    window.show();
    settle();
    rows.append({QStringLiteral("Construction of the main window until it is shown and answers"),
                 start.nsecsElapsed() / 1e6, 0, 2000, QString()});

    const QVector<QByteArray> blobs = manyPatterns(500);
    measureOpening(window, blobs, rows);

    qint64 bytes = 0;
    for (const TimelineItem *item : qAsConst(window.currentTimeline->items)) {
        bytes += item->itemData.size();
    }
    const double offering = median(50, [&window] { window.history.record(window.timelines); });
    rows.append({QStringLiteral("Offering an unchanged show of 500 patterns (%1 MB) to the history")
                     .arg(double(bytes) / 1e6, 0, 'f', 1),
                 offering, 0, 2, QString()});

    window.ui->timeline_scaler->setValue(160);
    settle();
    Indicator *indicator = window.ui->timeline_headers->indicator;
    // Everything visible of ruler, tracks and play-head is painted onto a surface in memory, which is more than a move
    // exposes. The window's own composition, done by the graphics card, is not counted.
    QWidget *area = window.ui->timeline_layout_out;
    const QRect visible(window.ui->timeline_scroll->horizontalScrollBar()->value(), 0,
                        window.ui->timeline_scroll->viewport()->width(), area->height());
    QImage surface(visible.size(), QImage::Format_ARGB32_Premultiplied);
    int x = 2000;
    const double moving = median(200, [indicator, area, &visible, &surface, &x] {
        indicator->setIndicatorX(++x, false);
        area->render(&surface, QPoint(), QRegion(visible), QWidget::DrawChildren);
    });
    rows.append({QStringLiteral("Moving the play-head by a pixel at the closest zoom, ruler and tracks repainted"),
                 moving, 0, 2, QString()});

    int zoom = 80;
    const double zooming = median(20, [&window, &zoom] {
        zoom = zoom == 80 ? 85 : 80;
        window.ui->timeline_scaler->setValue(zoom);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        QCoreApplication::sendPostedEvents(&window, QEvent::UpdateRequest);
    });
    rows.append({QStringLiteral("One zoom step with 500 patterns, repainted"), zooming, 0, 33, QString()});

    window.ui->Mode_Pic->setCurrentIndex(1);
    window.ui->Mode_t1->setTime(QTime(0, 5, 10));
    window.ui->Mode_last->setValue(0.2);
    const double adding = median(20, [&window] { window.on_Add_Button_clicked(); });
    rows.append({QStringLiteral("Adding a pattern to a show of 500"), adding, 0, 20, QString()});

    measureLargeShow(window, rows);
}
