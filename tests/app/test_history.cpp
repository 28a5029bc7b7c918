// Undo and redo: single cases, and the program against a plain model of the history over random editing sequences.
#include "support/windowtest.h"

#include <QRandomGenerator>

// The show as a person would write it down: what each pattern on each track holds.
using Show = QMap<QPair<const Timeline *, const TimelineItem *>, QByteArray>;

class TestHistory : public WindowTest
{
    Q_OBJECT

private slots:
    void whatComesBackIsNotSelectedAndConnectedOnce()
    {
        TimelineItem *item = addColour(0, 1000);
        QTest::keyClick(window.data(), Qt::Key_Delete); // no pattern is in the panel
        QCOMPARE(window->currentTimeline->items.size(), 1);
        addColour(2000, 3000);
        remove(item);
        QCOMPARE(window->history.index, 2); // taking away is no change by itself
        window->on_actionUndo_triggered();
        QVERIFY(window->currentTimeline->items.contains(item) && item->selected == 0);
        QSignalSpy clicks(window->currentTimeline, &Timeline::itemClicked);
        emit item->itemClicked(item, false);
        QCOMPARE(clicks.size(), 1);
    }

    void hundredStepsAreKept()
    {
        for (int i = 0; i < 105; ++i) {
            addColour(i * 1000, i * 1000 + 500);
        }
        QCOMPARE(window->history.index, 100);
        for (int i = 0; i < 101; ++i) { // one more than there are
            window->on_actionUndo_triggered();
        }
        QCOMPARE(window->history.index, 0);
        QCOMPARE(window->currentTimeline->items.size(), 5);
        addColour(200000, 200500);
        QCOMPARE(window->history.snapshots.size(), 2);
    }

    void thePanelKeepsItsPattern()
    {
        const QPointer<TimelineItem> edited = addColour(0, 1000);
        TimelineItem *placed = addColour(2000, 3000);
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

    void tracksComeAndGo()
    {
        addColour(0, 1000);
        window->on_timeline_add_clicked();
        Timeline *above = window->currentTimeline;
        window->updateStatus(); // a track makes a step of its own
        QCOMPARE(window->history.index, 2);
        addColour(0, 1000);
        window->on_actionUndo_triggered();
        window->on_actionUndo_triggered(); // to where the track was not known: it stands and is empty
        QVERIFY(window->timelines.contains(above) && above->items.isEmpty());
        DialogDriver driver;
        driver.answerBox(QMessageBox::Yes);
        window->on_timeline_remove_clicked();
        window->on_actionRedo_triggered();
        window->on_actionRedo_triggered();
        QVERIFY(window->timelines.size() == 1 && above->items.isEmpty()); // no redo reaches a track that is gone
    }

    // A pattern that is new or changed makes a step; one that is gone does not.
    void modelAgrees()
    {
        QRandomGenerator random(4711);
        for (int sequence = 0; sequence < 40; ++sequence) {
            window->resetDocument();
            window->on_timeline_add_clicked();
            window->on_timeline_add_clicked();
            window->updateStatus();
            QVector<Show> kept{Show()};
            int at = 0;
            for (int step = 0; step < 40; ++step) {
                const int choice = random.bounded(6);
                Show expected = written();
                if (choice >= 3) {
                    const int next = at + (choice < 5 ? -1 : 1);
                    if (next >= 0 && next < kept.size()) {
                        at = next;
                        expected = kept.at(at);
                    }
                    choice < 5 ? window->on_actionUndo_triggered() : window->on_actionRedo_triggered();
                } else if (act(random)) {
                    expected = written();
                    bool changed = false;
                    for (auto entry = expected.begin(); entry != expected.end(); ++entry) {
                        changed |= kept.at(at).value(entry.key()) != entry.value();
                    }
                    if (changed) {
                        kept.resize(++at);
                        kept.append(expected);
                    }
                } else {
                    expected = written();
                }
                destroyWhatIsDue(); // what is destroyed too early is missed later
                const EditHistory &history = window->history;
                const bool same = history.index == at && history.snapshots.size() == kept.size() &&
                                  written() == expected && whatIsWrong(*window).isEmpty();
                QVERIFY2(same, qPrintable(QString("step %1 of sequence %2").arg(step).arg(sequence)));
            }
        }
    }

private:
    Show written() const
    {
        Show show;
        for (const Timeline *track : window->timelines) {
            for (const TimelineItem *item : track->items) {
                show[{track, item}] = item->itemData;
            }
        }
        return show;
    }
    static void destroyWhatIsDue() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    // By the panel, as a user does.
    TimelineItem *addColour(int startMs, int endMs)
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

    // The effect of dragging a pattern's body onto another track, without the mouse.
    void moveTo(TimelineItem *item, Timeline *target, int startMs)
    {
        Timeline *source = window->currentTimeline;
        if (target != source) {
            source->dragItem = item;
            emit target->dragIn(target);
            emit target->timelinePressed(target, false);
        }
        item->setTimes(glow::timeOf(startMs), glow::timeOf(startMs + glow::durationMs(*item)));
        emit item->dragEnd(QByteArray(), item, source);
    }

    // One random action; true if the show is offered to the history at its end.
    bool act(QRandomGenerator &random)
    {
        const int start = random.bounded(400) * 50;
        const int length = 100 + random.bounded(60) * 50;
        Timeline *target = window->timelines.at(random.bounded(3));
        Timeline *track = window->timelines.at(random.bounded(3));
        // A press on a pattern makes its track current before anything else.
        emit track->timelinePressed(track, false);
        const int action = random.bounded(track->items.isEmpty() ? 2 : 6);
        TimelineItem *item = action < 2 ? nullptr : track->items.at(random.bounded(track->items.size()));
        if (item == nullptr) {
            addColour(start, start + length);
        } else if (action == 2) {
            remove(item);
        } else if (action == 3) {
            item->on_itemDelete_clicked(); // from its menu; nothing is offered then
        } else if (action == 4) {
            window->on_timelineItem_Clicked(item, false);
            ui->Mode_t2->setTime(item->startTime.addMSecs(length));
            window->on_Add_Button_clicked();
        } else {
            moveTo(item, target, start);
        }
        return action != 3;
    }
};

QTEST_MAIN(TestHistory)
#include "test_history.moc"
