// Undo and redo: single cases, and the program against a plain model of the history over random editing sequences.
#include "app/mainwindow.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "support/windowcheck.h"
#include "timeline/indicator.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QRandomGenerator>
#include <QtTest>

#include <functional>
#include <map>
#include <vector>

namespace {

// The show as a person would write it down: which tracks stand, which patterns lie on each, and what each holds.
using Track = std::map<const void *, QByteArray>;
using Show = std::map<const void *, Track>;

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
    std::vector<Show> kept;
    int at = -1;

    bool offer(const Show &present)
    {
        const Show nothing;
        const Show &last = at >= 0 ? kept[std::size_t(at)] : nothing;
        bool differs = false;
        for (const auto &[track, held] : present) {
            const auto known = last.find(track);
            if (known == last.end()) {
                differs = true;
                continue;
            }
            for (const auto &[item, blob] : held) {
                const auto before = known->second.find(item);
                differs = differs || before == known->second.end() || before->second != blob;
            }
        }
        if (!differs) {
            return false;
        }
        kept.resize(std::size_t(at + 1));
        kept.push_back(present);
        if (at == 100) {
            kept.erase(kept.begin());
        } else {
            ++at;
        }
        return true;
    }

    // What the show must be after a step.
    Show step(bool back, const Show &present)
    {
        if (back ? at < 1 : at + 1 >= int(kept.size())) {
            return present;
        }
        at += back ? -1 : 1;
        Show result;
        for (const auto &entry : present) {
            const auto known = kept[std::size_t(at)].find(entry.first);
            result[entry.first] = known == kept[std::size_t(at)].end() ? Track() : known->second;
        }
        return result;
    }
};

} // namespace

class TestHistory : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void deletionsAreSeenWithTheNextChange();
    void deletionAfterTheBaseIsFinal();
    void unknownTrackIsEmptied();
    void removedTrackStaysRemoved();
    void patternReturnsToItsTrack();
    void hundredStepsAreKept();
    void nothingIsConnectedTwice();
    void modelAgrees();

private:
    TimelineItem *add(int startMs, int endMs);
    void undo() { window->on_actionUndo_triggered(); }
    void redo() { window->on_actionRedo_triggered(); }
    void moveTo(TimelineItem *item, Timeline *target, int startMs);
    bool act(QRandomGenerator &random, QString &name);
    TimelineItem *anyItem(QRandomGenerator &random, Timeline **track);
    QString disagreement(const Model &model, const Show &expected) const;

    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
    Ui::MainWindow *ui = nullptr;
};

void TestHistory::init()
{
    env.reset(new TestEnv);
    msPerPixel = 10.0F;
    window.reset(new MainWindow);
    ui = window->ui;
    window->show();
}

void TestHistory::cleanup()
{
    window.reset();
    env.reset();
}

TimelineItem *TestHistory::add(int startMs, int endMs)
{
    ui->NEW_radio->setChecked(true);
    ui->Mode_Pic->setCurrentIndex(1);
    ui->Mode_t1->setTime(glow::timeOf(startMs));
    ui->Mode_t2->setTime(glow::timeOf(endMs));
    const auto before = window->currentTimeline->items;
    window->on_Add_Button_clicked();
    for (TimelineItem *item : qAsConst(window->currentTimeline->items)) {
        if (!before.contains(item)) {
            return item;
        }
    }
    return nullptr;
}

// The effect of dragging a pattern's body onto another track, without the mouse.
void TestHistory::moveTo(TimelineItem *item, Timeline *target, int startMs)
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

void TestHistory::deletionsAreSeenWithTheNextChange()
{
    const TimelineItem *a = add(0, 1000);
    TimelineItem *b = add(2000, 3000);
    QCOMPARE(window->history.index, 2);
    window->on_timelineItem_Clicked(b, false);
    QTest::keyClick(window.data(), Qt::Key_Delete);
    QCOMPARE(window->history.index, 2); // taking away is no change by itself
    undo();
    QCOMPARE(written(*window).at(window->currentTimeline).size(), std::size_t(1));
    QVERIFY(written(*window).at(window->currentTimeline).count(a));
    redo();
    QVERIFY(window->currentTimeline->items.contains(b));
    QVERIFY(!b->isHidden());

    // Deleting the first and going back brings it back, and takes the second.
    window->on_timelineItem_Clicked(window->currentTimeline->items.first(), false);
    QTest::keyClick(window.data(), Qt::Key_Delete);
    undo();
    QCOMPARE(window->currentTimeline->items.size(), 1);
    QCOMPARE(window->currentTimeline->items.first(), a);
}

void TestHistory::deletionAfterTheBaseIsFinal()
{
    add(0, 1000);
    window->history.clear();
    window->updateStatus();
    window->on_timelineItem_Clicked(window->currentTimeline->items.first(), false);
    QTest::keyClick(window.data(), Qt::Key_Delete);
    undo();
    QVERIFY(window->currentTimeline->items.isEmpty());
}

void TestHistory::unknownTrackIsEmptied()
{
    add(0, 1000);
    window->on_timeline_add_clicked();
    Timeline *second = window->currentTimeline;
    add(0, 500);
    undo();
    QVERIFY(window->timelines.contains(second));
    QVERIFY(second->items.isEmpty());
    QCOMPARE(whatIsWrong(*window), QString());
}

void TestHistory::removedTrackStaysRemoved()
{
    add(0, 1000);
    window->on_timeline_add_clicked();
    add(0, 500);
    DialogDriver driver;
    driver.answerBox(QMessageBox::Yes);
    window->on_timeline_remove_clicked();
    QVERIFY(driver.done());
    QCOMPARE(window->timelines.size(), 1);
    undo();
    redo();
    QCOMPARE(window->timelines.size(), 1);
    QCOMPARE(window->currentTimeline->items.size(), 1);
    QCOMPARE(whatIsWrong(*window), QString());
}

void TestHistory::patternReturnsToItsTrack()
{
    // Both orders of the two tracks in the map are tried, whatever their addresses.
    for (int round = 0; round < 2; ++round) {
        window->history.clear();
        window->resetDocument();
        window->updateStatus();
        TimelineItem *item = add(0, 1000);
        Timeline *first = window->currentTimeline;
        window->on_timeline_add_clicked();
        Timeline *second = window->currentTimeline;
        add(5000, 6000);
        if (round == 1) {
            qSwap(first, second);
            item = first->items.first();
        }
        emit first->timelinePressed(first, false);
        const int start = glow::msOf(item->startTime);
        moveTo(item, second, start);
        QVERIFY(second->items.contains(item));
        add(8000, 9000); // the move alone is noticed too: the item is new on its track
        undo();
        QVERIFY(second->items.contains(item));
        undo();
        QVERIFY(first->items.contains(item));
        QVERIFY(!second->items.contains(item));
        QCOMPARE(item->parentWidget(), first);
        QVERIFY(!item->isHidden());
        redo();
        QVERIFY(second->items.contains(item));
        QCOMPARE(whatIsWrong(*window), QString());
    }
}

void TestHistory::hundredStepsAreKept()
{
    for (int i = 0; i < 105; ++i) {
        add(i * 1000, i * 1000 + 500);
    }
    QCOMPARE(window->history.index, 100);
    QCOMPARE(window->history.snapshots.size(), 101);
    for (int i = 0; i < 100; ++i) {
        undo();
    }
    QCOMPARE(window->history.index, 0);
    QCOMPARE(window->currentTimeline->items.size(), 5);
    undo();
    QCOMPARE(window->currentTimeline->items.size(), 5);
    add(200000, 200500);
    QCOMPARE(window->history.snapshots.size(), 2);
}

void TestHistory::nothingIsConnectedTwice()
{
    TimelineItem *item = add(0, 1000);
    undo();
    redo();
    undo();
    redo();
    QSignalSpy spy(window->currentTimeline, &Timeline::itemClicked);
    emit item->itemClicked(item, false);
    QCOMPARE(spy.size(), 1);
}

TimelineItem *TestHistory::anyItem(QRandomGenerator &random, Timeline **track)
{
    QList<Timeline *> filled;
    for (Timeline *candidate : qAsConst(window->timelines)) {
        if (!candidate->items.isEmpty()) {
            filled << candidate;
        }
    }
    if (filled.isEmpty()) {
        return nullptr;
    }
    *track = filled.at(int(random.bounded(quint32(filled.size()))));
    // A press on an item makes its track current before anything else.
    emit(*track)->timelinePressed(*track, false);
    return (*track)->items.at(int(random.bounded(quint32((*track)->items.size()))));
}

// One random action; true if the show is offered to the history at its end.
bool TestHistory::act(QRandomGenerator &random, QString &name)
{
    const int start = int(random.bounded(400U)) * 50;
    const int length = 100 + int(random.bounded(60U)) * 50;
    Timeline *track = nullptr;
    switch (random.bounded(11U)) {
    case 0:
    case 1:
    case 2:
        name = QStringLiteral("add %1 %2").arg(start).arg(length);
        add(start, start + length);
        return true;
    case 3:
        if (TimelineItem *item = anyItem(random, &track)) {
            name = QStringLiteral("edit");
            window->on_timelineItem_Clicked(item, false);
            ui->Mode_t2->setTime(item->startTime.addMSecs(length));
            window->on_Add_Button_clicked();
            return true;
        }
        break;
    case 4:
    case 5:
        if (TimelineItem *item = anyItem(random, &track)) {
            name = QStringLiteral("drag");
            Timeline *target = window->timelines.at(int(random.bounded(quint32(window->timelines.size()))));
            moveTo(item, target, start);
            return true;
        }
        break;
    case 6:
        if (TimelineItem *item = anyItem(random, &track)) {
            name = QStringLiteral("delete");
            window->on_timelineItem_Clicked(item, false);
            QTest::keyClick(window.data(), Qt::Key_Delete);
            return true;
        }
        break;
    case 7:
        if (TimelineItem *item = anyItem(random, &track)) {
            name = QStringLiteral("copy and paste");
            item->on_itemCopy_clicked();
            Timeline *target = window->timelines.at(int(random.bounded(quint32(window->timelines.size()))));
            window->on_timeline_Pressed(target, true);
            ui->timeline_headers->indicator->setIndicatorTime(glow::timeOf(start), true);
            window->on_actionPaste_triggered();
            return true;
        }
        break;
    case 8:
        if (TimelineItem *item = anyItem(random, &track)) {
            name = QStringLiteral("menu delete");
            item->on_itemDelete_clicked();
        }
        break;
    case 9: {
        if (window->timelines.size() >= 5) {
            break;
        }
        if (random.bounded(2U) == 0) {
            name = QStringLiteral("add track");
            window->on_timeline_add_clicked();
            break;
        }
        name = QStringLiteral("duplicate");
        const bool filled = !window->currentTimeline->items.isEmpty();
        window->on_tlDuplicated_clicked(window->currentTimeline);
        return filled;
    }
    default: {
        name = QStringLiteral("remove track");
        DialogDriver driver;
        if (window->timelines.size() > 1) {
            driver.answerBox(QMessageBox::Yes);
        }
        window->on_timeline_remove_clicked();
        break;
    }
    }
    return false;
}

QString TestHistory::disagreement(const Model &model, const Show &expected) const
{
    if (window->history.index != model.at || window->history.snapshots.size() != int(model.kept.size())) {
        return QStringLiteral("at %1 of %2, the model at %3 of %4")
            .arg(window->history.index)
            .arg(window->history.snapshots.size())
            .arg(model.at)
            .arg(model.kept.size());
    }
    if (written(*window) != expected) {
        return QStringLiteral("the show differs");
    }
    return whatIsWrong(*window);
}

void TestHistory::modelAgrees()
{
    QRandomGenerator random(4711);
    for (int sequence = 0; sequence < 300; ++sequence) {
        window->resetDocument();
        window->updateStatus();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Model model;
        model.offer(written(*window));
        QStringList done;
        for (int round = 0; round < 8; ++round) {
            QString name;
            if (act(random, name)) {
                model.offer(written(*window));
            }
            done << name;
            QString wrong = disagreement(model, written(*window));
            const int steps = 1 + int(random.bounded(2U));
            for (int i = 0; i < steps && wrong.isEmpty(); ++i) {
                const Show expected = model.step(true, written(*window));
                undo();
                wrong = disagreement(model, expected);
            }
            done << QStringLiteral("undo");
            for (int i = 0; i < steps && wrong.isEmpty(); ++i) {
                const Show expected = model.step(false, written(*window));
                redo();
                wrong = disagreement(model, expected);
            }
            done << QStringLiteral("redo");
            QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("%1 in sequence %2: %3")
                                                     .arg(wrong)
                                                     .arg(sequence)
                                                     .arg(done.join(QStringLiteral(", ")))));
            if (random.bounded(4U) == 0) {
                const Show expected = model.step(true, written(*window));
                undo();
                QCOMPARE(disagreement(model, expected), QString());
            }
        }
    }
}

QTEST_MAIN(TestHistory)
#include "test_history.moc"
