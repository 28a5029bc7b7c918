// Undo and redo: single cases, and the program against a plain model of the history over random editing sequences.
#include "support/dialogdriver.h"
#include "support/windowcheck.h"
#include "support/windowtest.h"
#include "timeline/indicator.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QRandomGenerator>
#include <QtTest>

namespace {

// The show as a person would write it down: which tracks stand, which patterns lie on each, and what each holds.
using Track = QMap<const TimelineItem *, QByteArray>;
using Show = QMap<const Timeline *, Track>;

Show written(const MainWindow &window)
{
    Show show;
    for (const Timeline *track : window.timelines) {
        Track &held = show[track];
        for (const TimelineItem *item : track->items) {
            held[item] = item->itemData;
        }
    }
    return show;
}

// The history by its rules, over shows written down.
struct Model
{
    QVector<Show> kept;
    int at = -1;

    // A track or a pattern that is new or changed makes a step; one that is gone does not.
    void offer(const Show &present)
    {
        const Show last = kept.value(at);
        Show both = last;
        for (auto track = present.begin(); track != present.end(); ++track) {
            Track &held = both[track.key()];
            for (auto item = track->begin(); item != track->end(); ++item) {
                held[item.key()] = item.value();
            }
        }
        if (kept.isEmpty() || both != last) {
            kept.resize(at + 1);
            kept.append(present);
            kept = kept.mid(qMax(0, kept.size() - 101));
            at = kept.size() - 1;
        }
    }

    // What the show must be after a step.
    Show step(bool back, const Show &present)
    {
        const int next = at + (back ? -1 : 1);
        if (next < 0 || next >= kept.size()) {
            return present;
        }
        at = next;
        Show result;
        for (auto track = present.begin(); track != present.end(); ++track) {
            result[track.key()] = kept.at(at).value(track.key());
        }
        return result;
    }
};

} // namespace

class TestHistory : public WindowTest
{
    Q_OBJECT

private slots:
    void whatComesBackIsNotSelectedAndConnectedOnce()
    {
        TimelineItem *item = add(0, 1000);
        QTest::keyClick(window.data(), Qt::Key_Delete); // no pattern is in the panel
        QCOMPARE(window->currentTimeline->items.size(), 1);
        add(2000, 3000);
        remove(item);
        QCOMPARE(window->history.index, 2); // taking away is no change by itself
        undo();
        QVERIFY(window->currentTimeline->items.contains(item) && item->selected == 0);
        QSignalSpy clicks(window->currentTimeline, &Timeline::itemClicked);
        emit item->itemClicked(item, false);
        QCOMPARE(clicks.size(), 1);
    }

    void hundredStepsAreKept()
    {
        for (int i = 0; i < 105; ++i) {
            add(i * 1000, i * 1000 + 500);
        }
        QCOMPARE(window->history.index, 100);
        for (int i = 0; i < 101; ++i) { // one more than there are
            undo();
        }
        QCOMPARE(window->history.index, 0);
        QCOMPARE(window->currentTimeline->items.size(), 5);
        add(200000, 200500);
        QCOMPARE(window->history.snapshots.size(), 2);
    }

    void thePanelKeepsItsPattern()
    {
        const QPointer<TimelineItem> edited = add(0, 1000);
        TimelineItem *placed = add(2000, 3000);
        window->on_timelineItem_Clicked(edited, false);
        edited->on_itemDelete_clicked();
        for (const bool held : {true, false}) {
            window->history.clear();
            destroyWhatIsDue();
            QCOMPARE(edited.isNull(), !held);
            window->on_timelineItem_Clicked(placed, false);
            window->updateStatus();
        }
    }

    void modelAgrees()
    {
        QRandomGenerator random(4711);
        for (int sequence = 0; sequence < 80; ++sequence) {
            window->resetDocument();
            window->updateStatus();
            Model model;
            model.offer(written(*window));
            for (int step = 0; step < 40; ++step) {
                const int choice = random.bounded(6);
                Show expected;
                if (choice < 3) {
                    if (act(random)) {
                        model.offer(written(*window));
                    }
                    expected = written(*window);
                } else {
                    expected = model.step(choice < 5, written(*window));
                    choice < 5 ? undo() : redo();
                }
                destroyWhatIsDue(); // what is destroyed too early is missed later
                const QString wrong = disagreement(model, expected);
                QVERIFY2(wrong.isEmpty(),
                         qPrintable(QString("%1 at step %2 of sequence %3").arg(wrong).arg(step).arg(sequence)));
            }
        }
    }

private:
    TimelineItem *add(int startMs, int endMs)
    {
        ui->NEW_radio->setChecked(true);
        ui->Mode_Pic->setCurrentIndex(1);
        ui->Mode_t1->setTime(glow::timeOf(startMs));
        ui->Mode_t2->setTime(glow::timeOf(endMs));
        window->on_Add_Button_clicked();
        return window->currentTimeline->items.last();
    }

    void remove(TimelineItem *item)
    {
        window->on_timelineItem_Clicked(item, false);
        QTest::keyClick(window.data(), Qt::Key_Delete);
    }
    void undo() { window->on_actionUndo_triggered(); }
    void redo() { window->on_actionRedo_triggered(); }
    static void destroyWhatIsDue() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    // The effect of dragging a pattern's body onto another track, without the mouse.
    void moveTo(TimelineItem *item, Timeline *target, int startMs)
    {
        Timeline *source = window->currentTimeline;
        const QByteArray orig = item->itemData;
        if (target != source) {
            source->dragItem = item;
            emit target->dragIn(target);
            emit target->timelinePressed(target, false);
        }
        const int length = glow::durationMs(*item);
        item->setTimes(glow::timeOf(startMs), glow::timeOf(startMs + length));
        emit item->dragEnd(orig, item, source);
    }

    // One random action; true if the show is offered to the history at its end.
    bool act(QRandomGenerator &random)
    {
        const int start = random.bounded(400) * 50;
        const int length = 100 + random.bounded(60) * 50;
        const int action = random.bounded(11);
        Timeline *target = window->timelines.at(random.bounded(window->timelines.size()));
        if (action < 3) {
            add(start, start + length);
            return true;
        }
        if (action == 3 && window->timelines.size() < 5) {
            window->on_timeline_add_clicked();
            return false;
        }
        if (action == 4 && window->timelines.size() < 5) {
            const bool filled = !target->items.isEmpty();
            window->on_timeline_Pressed(target, false);
            window->on_tlDuplicated_clicked(target);
            return filled;
        }
        if (action == 5 && window->timelines.size() > 1) {
            DialogDriver driver;
            driver.answerBox(QMessageBox::Yes);
            window->on_timeline_remove_clicked();
            return false;
        }
        // All others need a pattern. A press on it makes its track current before anything else.
        Timeline *track = window->timelines.at(random.bounded(window->timelines.size()));
        if (track->items.isEmpty()) {
            return false;
        }
        emit track->timelinePressed(track, false);
        TimelineItem *item = track->items.at(random.bounded(track->items.size()));
        switch (action) {
        case 6:
            remove(item);
            return true;
        case 7:
            item->on_itemDelete_clicked(); // from its menu; nothing is offered then
            return false;
        case 8:
            item->on_itemCopy_clicked();
            window->on_timeline_Pressed(target, true);
            ui->timeline_headers->indicator->setIndicatorTime(glow::timeOf(start), true);
            window->on_actionPaste_triggered();
            return true;
        case 9:
            window->on_timelineItem_Clicked(item, false);
            ui->Mode_t2->setTime(item->startTime.addMSecs(length));
            window->on_Add_Button_clicked();
            return true;
        default:
            moveTo(item, target, start);
            return true;
        }
    }

    QString disagreement(const Model &model, const Show &expected) const
    {
        const EditHistory &history = window->history;
        if (history.index != model.at || history.snapshots.size() != model.kept.size()) {
            return QString::asprintf("at %d of %d instead of %d of %d", history.index, history.snapshots.size(),
                                     model.at, model.kept.size());
        }
        return written(*window) == expected ? whatIsWrong(*window) : QString("the show differs");
    }
};

QTEST_MAIN(TestHistory)
#include "test_history.moc"
