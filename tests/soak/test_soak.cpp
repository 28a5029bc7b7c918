// Random work on the real window: test_soak [OPERATIONS [SEED [CHECK_EVERY]]]. After each hundred operations the whole
// window is checked, from time to time the show is thrown away and the memory weighed. Whatever ends the run names the
// seed and the operation, so the same arguments come back to it; CHECK_EVERY 1 then finds the guilty one.
#include "mousedriver.h"
#include "support/windowtest.h"

#include "preview/mygl.h"
#include "show/model/projectfile.h"

#include <QPixmapCache>
#include <QRandomGenerator>
#include <QScrollBar>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
extern "C" void __sanitizer_set_death_callback(void (*)());
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

// Caches of fonts and effects fill up in the course of a run.
constexpr qint64 mostGrowth = 8000000;

quint32 seed = 20240229;
int operation = 0;
QStringList recent; // names of operations, the running one last

void whereItStood()
{
    std::fprintf(stderr, "soak: seed %u, operation %d (%s)\n", seed, operation, qPrintable(recent.join(", ")));
}

class Soak
{
public:
    Soak()
    {
        ui->GLWidget->repaintTimer.stop(); // what the preview paints is of no interest here
        window.show();
    }

    bool run(int operations, int checkEvery)
    {
        int weights = 0;
        for (const Operation &one : table) {
            weights += one.weight;
        }
        for (operation = 1; operation <= operations && !failed; ++operation) {
            int pick = below(weights);
            auto chosen = table.begin();
            for (; pick >= chosen->weight; ++chosen) {
                pick -= chosen->weight;
            }
            recent = recent.mid(recent.size() - 7) << chosen->name;
#ifdef Q_OS_UNIX
            alarm(120);
#endif
            chooseItem();
            if (item != nullptr || !chosen->needsItem) {
                chosen->act();
            }
            QCoreApplication::processEvents();
            expect(driver.done(), "only expected dialogs came: " + driver.unexpected.join(' '));
            if (operation % checkEvery == 0 || operation == operations) {
                // Rows and labels find their places with the next pass of the layout.
                const bool inOrder = QTest::qWaitFor([this] { return whatIsWrong(window).isEmpty(); });
                expect(inOrder, "the window is in order: " + whatIsWrong(window));
            }
            if (operation % 1000 == 100 || operation == operations) {
                weigh();
            }
        }
        return !failed;
    }

private:
    struct Operation
    {
        const char *name;
        int weight;
        std::function<void()> act;
        bool needsItem = false;
    };

    int below(int limit)
    {
        return int(random.bounded(limit));
    }
    QString showFile()
    {
        return env.path(QString("show%1.gsw3").arg(below(3)));
    }
    Timeline *anyTrack()
    {
        return window.timelines.at(below(window.timelines.size()));
    }
    void seek()
    {
        ui->timeline_headers->indicator->setIndicatorTime(glow::timeOf(below(60000)), true);
    }

    void chooseItem()
    {
        QList<TimelineItem *> all;
        for (const Timeline *track : qAsConst(window.timelines)) {
            all += track->items;
        }
        item = all.isEmpty() ? nullptr : all.at(below(all.size()));
    }

    void expect(bool held, const QString &what)
    {
        if (!held) {
            failed = true;
            std::fprintf(stderr, "soak: not so: %s\n", qPrintable(what));
            whereItStood();
        }
    }

    void add()
    {
        ui->NEW_radio->click();
        ui->Mode_Pic->setCurrentIndex(below(4));
        ui->Mode_last->setValue(0.001 * (1 + below(4000)));
        ui->Mode_loop->setValue(1 + below(20));
        (below(2) != 0 ? ui->radio_speed_slide : ui->radio_speed_m)->click();
        ui->Color_R->setValue(below(256));
        ui->text_Edit->setText(QString("show %1").arg(below(100)));
        ui->Spe_comboBox->setCurrentIndex(below(ui->Spe_comboBox->count()));
        if (below(2) != 0) {
            seek();
        }
        ui->Add_Button->click();
    }

    void edit()
    {
        mark();
        ui->Mode_last->setValue(0.001 * below(6000));
        ui->Speed_slide->setValue(1 + below(99));
        ui->Color_G->setValue(below(256));
        ui->Add_Button->click();
    }

    void mark()
    {
        pull(-1);
    }

    // Presses on the item at grabX (below 0: releases at once in its middle) and drags it to two random places in
    // sight.
    void pull(int grabX)
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
        expect(mouse.drag(item, place, steps), "a drag ends");
    }

    void deleteKey()
    {
        mark();
        const TimelineItem *marked = window.currentItem;
        // It would leave a pattern on the list of another track than the current one.
        if (marked != nullptr && marked->parentWidget() == window.currentTimeline) {
            QTest::keyClick(&window, Qt::Key_Delete);
        }
    }

    void removeTrack()
    {
        if (window.timelines.size() > 1) {
            driver.answerBox(below(3) == 0 ? QMessageBox::No : QMessageBox::Yes);
        }
        window.on_timeline_remove_clicked();
    }

    void save()
    {
        window.currentFile = showFile();
        window.hasFile = true;
        ui->actionSave->trigger();
        expect(contentOf(window.currentFile) == glow::writeProject(window.asProject()), "the file is the show");
    }

    void load()
    {
        const QString path = showFile();
        driver.answerBox(QMessageBox::Yes);
        driver.answerFile(QFile::exists(path) ? QStringList(path) : QStringList());
        ui->actionLoad->trigger();
    }

    void startAnew(QMessageBox::StandardButton answer)
    {
        driver.answerBox(answer);
        ui->actionNew->trigger();
    }

    // A new show, which nothing of the old ones may outlive.
    void weigh()
    {
        startAnew(QMessageBox::Yes);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QPixmapCache::clear(); // bounded, but by more than what is looked for here
        int items = 0;
        for (const QWidget *widget : QApplication::allWidgets()) {
            items += qobject_cast<const TimelineItem *>(widget) != nullptr ? 1 : 0;
        }
        qint64 bytes = 0; // told by the sanitizer only
#if defined(__SANITIZE_ADDRESS__)
        bytes = qint64(__sanitizer_get_current_allocated_bytes());
#endif
        settled = settled == 0 ? bytes : settled;
        std::fprintf(stderr, "soak: %6d operations, %d forgotten patterns, %.1f MB\n", operation, items, bytes / 1e6);
        expect(items == 0, "no pattern outlives its show");
        expect(bytes - settled < mostGrowth, "the memory does not grow");
    }

    TestEnv env;
    MainWindow window;
    Ui::MainWindow *ui = window.ui;
    MouseDriver mouse{&window};
    DialogDriver driver;
    QRandomGenerator random{seed};
    TimelineItem *item = nullptr; // of any track
    bool failed = false;
    qint64 settled = 0; // bytes that the program held when it was first weighed

    const std::vector<Operation> table{
        {"add", 20, [this] { add(); }},
        {"edit", 12, [this] { edit(); }, true},
        {"move", 12, [this] { pull(item->width() / 2); }, true},
        {"trim", 10, [this] { pull(below(2) == 0 ? 1 : item->width() - 2); }, true},
        {"cut", 2, [this] { item->on_itemCut_clicked(); }, true},
        {"remove", 2, [this] { item->on_itemDelete_clicked(); }, true},
        {"delete key", 4, [this] { deleteKey(); }, true},
        {"mark", 6, [this] { mark(); }, true},
        {"copy", 6, [this] { ui->actionCopy->trigger(); }},
        {"paste", 8, [this] { ui->actionPaste->trigger(); }},
        {"add track", 2, [this] { window.timelines.size() < 8 ? window.on_timeline_add_clicked() : removeTrack(); }},
        {"copy track", 1,
         [this] { window.timelines.size() < 8 ? anyTrack()->on_tlDuplicated_clicked() : removeTrack(); }},
        {"remove track", 3, [this] { removeTrack(); }},
        {"select track", 4, [this] { emit window.currentTimeline->timelinePressed(anyTrack(), true); }},
        {"undo", 12, [this] { ui->actionUndo->trigger(); }},
        {"redo", 6, [this] { ui->actionRedo->trigger(); }},
        {"zoom", 5, [this] { ui->timeline_scaler->setValue(below(ui->timeline_scaler->maximum() + 1)); }},
        {"seek", 12, [this] { seek(); }},
        {"play", 3, [this] { ui->Song_play->click(); }},
        {"stop", 2, [this] { ui->Song_Stop->click(); }},
        {"save", 3, [this] { save(); }},
        {"load", 2, [this] { load(); }},
        {"new", 1, [this] { startAnew(below(3) == 0 ? QMessageBox::Cancel : QMessageBox::Yes); }},
    };
};

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
    QLoggingCategory::setFilterRules("default.debug=false");
    const bool passed = Soak().run(operations, checkEvery);
    std::fprintf(stderr, "soak: %s, seed %u\n", passed ? "passed" : "FAILED", seed);
    return passed ? 0 : 1;
}
