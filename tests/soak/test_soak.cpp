// Random work on the real window: test_soak [OPERATIONS [SEED [CHECK_EVERY]]]. After each hundred operations the whole
// window is checked and the memory weighed. Whatever ends the run names the seed and the operation, so the same
// arguments come back to it; CHECK_EVERY 1 then finds the guilty one.
#include "mousedriver.h"
#include "song/songmaker.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "support/windowcheck.h"

#include "app/mainwindow.h"
#include "preview/mygl.h"
#include "show/base/wholefile.h"
#include "show/model/projectfile.h"
#include "timeline/indicator.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QElapsedTimer>
#include <QImage>
#include <QPixmapCache>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSet>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iterator>

#if defined(__SANITIZE_ADDRESS__)
extern "C" void __sanitizer_set_death_callback(void (*)());
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

// Caches of fonts and effects fill up in the course of a run, and the audio framework keeps some kilobytes of each
// song.
constexpr qint64 mostGrowth = 8000000;

quint32 seed = 20240229;
int operation = 0;
QStringList recent; // names of operations, the running one last

void whereItStood()
{
    std::fprintf(stderr, "soak: seed %u, operation %d (%s)\n", seed, operation,
                 qPrintable(recent.join(QStringLiteral(", "))));
}

// Bytes that the program holds; told by the sanitizer only.
qint64 heapBytes()
{
#if defined(__SANITIZE_ADDRESS__)
    return qint64(__sanitizer_get_current_allocated_bytes());
#else
    return 0;
#endif
}

class Soak
{
public:
    Soak();
    bool run(int operations, int checkEvery);

private:
    struct Operation
    {
        const char *name;
        int weight;
        void (*act)(Soak &s);
    };
    static const Operation table[];

    int below(int limit) { return int(random.bounded(limit)); }
    QString file(const char *name) const { return dir.filePath(QLatin1String(name)); }
    QString showFile() { return dir.filePath(QStringLiteral("show%1.gsw3").arg(below(3))); }
    Timeline *anyTrack() { return window.timelines.at(below(window.timelines.size())); }
    void withItem(const std::function<void(TimelineItem *)> &act);
    void pull(TimelineItem *item, int grabX);
    void seek() { ui->timeline_headers->indicator->setIndicatorTime(glow::timeOf(below(60000)), true); }
    void add();
    void save();
    void exportBin();
    void expect(bool held, const QString &what);
    void check();
    void weigh();

    TestEnv env;
    MainWindow window;
    Ui::MainWindow *ui = window.ui;
    MouseDriver mouse{&window};
    DialogDriver driver;
    QTemporaryDir dir;
    QRandomGenerator random{seed};
    bool failed = false;
    bool strays = false;    // whether the Delete key met a pattern beside the current track
    qint64 settledRest = 0; // bytes beside show and history after the first hundred operations
    QElapsedTimer clock;
};

const Soak::Operation Soak::table[] = {
    {"add", 20, [](Soak &s) { s.add(); }},
    {"edit", 12,
     [](Soak &s) {
         s.withItem([&s](TimelineItem *item) {
             s.pull(item, -1);
             s.ui->Mode_last->setValue(0.001 * s.below(6000));
             s.ui->Speed_slide->setValue(1 + s.below(99));
             s.ui->Color_G->setValue(s.below(256));
             s.ui->Add_Button->click();
         });
     }},
    {"move", 12, [](Soak &s) { s.withItem([&s](TimelineItem *item) { s.pull(item, item->width() / 2); }); }},
    {"trim", 10,
     [](Soak &s) { s.withItem([&s](TimelineItem *item) { s.pull(item, s.below(2) == 0 ? 1 : item->width() - 2); }); }},
    {"cut or remove", 4,
     [](Soak &s) {
         s.withItem([&s](TimelineItem *item) {
             s.below(2) == 0 ? item->on_itemCut_clicked() : item->on_itemDelete_clicked();
         });
     }},
    {"delete key", 4,
     [](Soak &s) {
         s.withItem([&s](TimelineItem *item) {
             s.pull(item, -1);
             TimelineItem *marked = s.window.currentItem;
             s.strays |= marked != nullptr && marked->parentWidget() != s.window.currentTimeline;
             QTest::keyClick(&s.window, Qt::Key_Delete);
         });
     }},
    {"copy", 6,
     [](Soak &s) {
         s.withItem([&s](TimelineItem *item) {
             s.pull(item, -1);
             s.ui->actionCopy->trigger();
         });
     }},
    {"paste", 8,
     [](Soak &s) {
         s.seek();
         s.ui->actionPaste->trigger();
     }},
    {"more tracks", 3,
     [](Soak &s) {
         if (s.window.timelines.size() < 8) {
             s.below(3) != 0 ? s.window.on_timeline_add_clicked() : s.window.currentTimeline->on_tlDuplicated_clicked();
         }
     }},
    {"remove track", 3,
     [](Soak &s) {
         if (s.window.timelines.size() > 1) {
             s.driver.answerBox(s.below(3) == 0 ? QMessageBox::No : QMessageBox::Yes);
         }
         s.window.on_timeline_remove_clicked();
     }},
    {"select track", 4,
     [](Soak &s) {
         Timeline *track = s.anyTrack();
         emit track->timelinePressed(track, true);
     }},
    {"undo", 12, [](Soak &s) { s.ui->actionUndo->trigger(); }},
    {"redo", 6, [](Soak &s) { s.ui->actionRedo->trigger(); }},
    {"zoom", 5, [](Soak &s) { s.ui->timeline_scaler->setValue(s.below(s.ui->timeline_scaler->maximum() + 1)); }},
    {"seek", 8, [](Soak &s) { s.seek(); }},
    {"play", 3,
     [](Soak &s) {
         s.ui->Song_play->click();
         s.ui->GLWidget->repaintTimer.start();
         QTest::qWait(20);
         s.ui->GLWidget->repaintTimer.stop();
         s.below(2) == 0 ? s.ui->Song_Stop->click() : s.ui->Song_play->click();
     }},
    {"gadget", 1,
     [](Soak &s) {
         const auto entries = s.window.gadgetGroup->actions();
         entries.at(s.below(entries.size()))->trigger();
     }},
    {"picture", 1, [](Soak &s) { s.window.picload(s.file("a.png")); }},
    {"song", 1,
     [](Soak &s) {
         s.window.ReadSong(s.file("a.wav"));
         s.expect(QTest::qWaitFor([&s] { return s.window.hasSong(); }, 20000), QStringLiteral("a song is read"));
     }},
    {"save", 3, [](Soak &s) { s.save(); }},
    {"load", 2,
     [](Soak &s) {
         const QString path = s.showFile();
         s.driver.answerBox(QMessageBox::Yes);
         s.driver.answerFile(QFile::exists(path) ? QStringList(path) : QStringList());
         s.ui->actionLoad->trigger();
     }},
    {"new", 1,
     [](Soak &s) {
         s.driver.answerBox(s.below(3) == 0 ? QMessageBox::Cancel : QMessageBox::Yes);
         s.ui->actionNew->trigger();
     }},
    {"export", 1, [](Soak &s) { s.exportBin(); }},
};

Soak::Soak()
{
    ui->GLWidget->repaintTimer.stop(); // what the preview paints is of no interest here
    window.show();
    songs::writeWav(file("a.wav"), {8000, 1, 1500});
    QImage image(60, 40, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    image.save(file("a.png"));
}

void Soak::withItem(const std::function<void(TimelineItem *)> &act)
{
    QList<TimelineItem *> all;
    for (const Timeline *track : qAsConst(window.timelines)) {
        std::copy_if(track->items.begin(), track->items.end(), std::back_inserter(all),
                     [](const TimelineItem *item) { return item->parentWidget() != nullptr; });
    }
    if (!all.isEmpty()) {
        act(all.at(below(all.size())));
    }
}

void Soak::add()
{
    ui->NEW_radio->click();
    ui->Mode_Pic->setCurrentIndex(below(4));
    ui->Mode_last->setValue(0.001 * (1 + below(4000)));
    ui->Mode_loop->setValue(1 + below(20));
    (below(2) != 0 ? ui->radio_speed_slide : ui->radio_speed_m)->click();
    ui->Color_R->setValue(below(256));
    ui->text_Edit->setText(QStringLiteral("show %1").arg(below(100)));
    ui->Spe_comboBox->setCurrentIndex(below(ui->Spe_comboBox->count()));
    ui->Spe_width->setValue(below(100));
    if (below(2) != 0) {
        seek();
    }
    ui->Add_Button->click();
}

// Presses on the item at grabX (below 0: releases at once in its middle) and drags it to two random places in sight.
void Soak::pull(TimelineItem *item, int grabX)
{
    ui->timeline_scroll->ensureVisible(item->x(), 0, 100, 0);
    ui->Song_Stop->click(); // a play-head that runs takes the view along
    const QPoint place(grabX < 0 ? item->width() / 2 : grabX, item->height() / 2);
    QPoint inWindow;
    // What was done before may still move the rows.
    for (int still = 0; still < 3; ++still) {
        const int row = item->mapTo(ui->timeline_scroll_2->widget(), place).y();
        ui->timeline_vertical_scrollbar->setValue(row - ui->timeline_scroll_2->viewport()->height() / 2);
        QTest::qWait(1);
        still = inWindow == item->mapTo(&window, place) ? still : 0;
        inWindow = item->mapTo(&window, place);
    }
    if (!window.rect().contains(inWindow) || window.childAt(inWindow) != item) {
        return; // under a neighbour, or too long for the window
    }
    QVector<MouseDriver::Step> steps;
    for (int i = 0; i < 2 && grabX >= 0; ++i) {
        Timeline *track = below(3) == 0 ? anyTrack() : qobject_cast<Timeline *>(item->parentWidget());
        const int left = ui->timeline_scroll->horizontalScrollBar()->value();
        steps.append({track, QPoint(left + 20 + below(ui->timeline_scroll->viewport()->width() - 40), 27), {}});
    }
    expect(mouse.drag(item, place, steps), QStringLiteral("a drag ends"));
}

void Soak::save()
{
    window.currentFile = showFile();
    window.hasFile = true;
    ui->actionSave->trigger();
    expect(glow::readWholeFile(window.currentFile) == glow::writeProject(window.asProject()),
           QStringLiteral("the file is the show"));
}

void Soak::exportBin()
{
    const QString path = file("show.bin");
    QFile::remove(path);
    const bool any = !window.currentTimeline->items.isEmpty();
    if (any) {
        driver.answerFile({path});
    }
    driver.answerBox(QMessageBox::Ok);
    window.on_Ex_Button_clicked();
    expect(any == QFile::exists(path), QStringLiteral("the export is there"));
}

void Soak::expect(bool held, const QString &what)
{
    if (!held) {
        failed = true;
        std::fprintf(stderr, "soak: not so: %s\n", qPrintable(what));
        whereItStood();
    }
}

void Soak::check()
{
    // Rows and labels find their places with the next pass of the layout.
    const bool settled = QTest::qWaitFor([this] { return whatIsWrong(window, strays).isEmpty(); });
    expect(settled, QStringLiteral("the window is in order: ") + whatIsWrong(window, strays));
}

// What the show and its history hold by design, against what the program holds.
void Soak::weigh()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QPixmapCache::clear(); // bounded, but by more than what is looked for here
    QSet<const TimelineItem *> known;
    QSet<const char *> blobs;
    qint64 bytes = 0;
    const auto count = [&](const TimelineItem *item, const QByteArray &blob) {
        if (!known.contains(item)) {
            known.insert(item);
            bytes += qint64(item->thumbnail.width()) * item->thumbnail.height() * item->thumbnail.depth() / 8;
        }
        if (!blobs.contains(blob.constData())) {
            blobs.insert(blob.constData());
            bytes += blob.capacity();
        }
    };
    for (const Timeline *track : qAsConst(window.timelines)) {
        for (const TimelineItem *item : track->items) {
            count(item, item->itemData);
        }
    }
    for (const EditHistory::Snapshot *snapshot : qAsConst(window.history.snapshots)) {
        for (const EditHistory::TrackSnapshot &track : *snapshot) {
            for (auto entry = track.begin(); entry != track.end(); ++entry) {
                count(entry.key(), entry.value());
            }
        }
    }
    // Items on removed tracks wait for New or Load; any other that nothing names any more should be gone.
    int forgotten = 0;
    const auto widgets = QApplication::allWidgets();
    for (const QWidget *widget : widgets) {
        const auto *item = qobject_cast<const TimelineItem *>(widget);
        if (item != nullptr && item->parentWidget() != nullptr) {
            count(item, item->itemData);
        } else if (item != nullptr && !known.contains(item)) {
            ++forgotten;
        }
    }
    const qint64 rest = heapBytes() - bytes;
    settledRest = settledRest == 0 ? rest : settledRest;
    std::fprintf(
        stderr,
        "soak: %6d operations, %4lld s, %d tracks, %d items and %.1f MB in show and history, %d forgotten items, "
        "%.1f MB beside them, %d objects\n",
        operation, clock.elapsed() / 1000, window.timelines.size(), known.size(), double(bytes) / 1e6, forgotten,
        double(rest) / 1e6, window.findChildren<QObject *>().size());
    expect(forgotten < 5, QStringLiteral("what nothing names any more is gone"));
    expect(rest - settledRest < mostGrowth, QStringLiteral("the memory beside show and history does not grow"));
}

bool Soak::run(int operations, int checkEvery)
{
    int weights = 0;
    for (const Operation &one : table) {
        weights += one.weight;
    }
    clock.start();
    for (operation = 1; operation <= operations && !failed; ++operation) {
        int pick = below(weights);
        const Operation *chosen = table;
        while (pick >= chosen->weight) {
            pick -= chosen->weight;
            ++chosen;
        }
        recent = recent.mid(recent.size() - 7) << QLatin1String(chosen->name);
#ifdef Q_OS_UNIX
        alarm(120);
#endif
        chosen->act(*this);
        QCoreApplication::processEvents();
        expect(driver.done(), QStringLiteral("only expected dialogs came: ") + driver.unexpected.join(u' '));
        if (operation % checkEvery == 0) {
            check();
        }
        if (operation % 100 == 0) {
            weigh();
        }
    }
    return !failed;
}

} // namespace

int main(int argc, char **argv)
{
    const int operations = argc > 1 ? std::atoi(argv[1]) : 160;
    seed = argc > 2 ? quint32(std::strtoul(argv[2], nullptr, 10)) : seed;
    const int checkEvery = argc > 3 ? qMax(1, std::atoi(argv[3])) : 100;
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_set_death_callback(whereItStood);
#endif
#ifdef Q_OS_UNIX
    std::signal(SIGALRM, [](int) {
        whereItStood();
        _exit(3);
    });
#endif
    argc = 1; // the window opens a file that is named on the command line
    const QApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    std::fprintf(stderr, "soak: %d operations, seed %u\n", operations, seed);
    const bool passed = Soak().run(operations, checkEvery);
    std::fprintf(stderr, "soak: %s\n", passed ? "passed" : "FAILED");
    return passed ? 0 : 1;
}
