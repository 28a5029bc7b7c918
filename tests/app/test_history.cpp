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
        kept.resize(std::size_t(at) + 1);
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
    void hundredStepsAreKept();
    void forgottenPatternsAreDestroyed();
    void modelAgrees();

private:
    TimelineItem *add(int startMs, int endMs);
    void remove(TimelineItem *item)
    {
        window->on_timelineItem_Clicked(item, false);
        QTest::keyClick(window.data(), Qt::Key_Delete);
    }
    void undo() { window->on_actionUndo_triggered(); }
    void redo() { window->on_actionRedo_triggered(); }
    void moveTo(TimelineItem *item, Timeline *target, int startMs);
    bool act(QRandomGenerator &random, QString &name);
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
    TimelineItem *a = add(0, 1000);
    TimelineItem *b = add(2000, 3000);
    const Timeline *track = window->currentTimeline;
    remove(b);
    QCOMPARE(window->history.index, 2); // taking away is no change by itself
    undo();
    QCOMPARE(track->items, QList<TimelineItem *>{a});
    redo();
    QVERIFY(track->items.contains(b) && !b->isHidden());

    // Deleting the first and going back brings it back, and takes the second.
    remove(a);
    undo();
    QCOMPARE(track->items, QList<TimelineItem *>{a});

    QSignalSpy clicks(track, &Timeline::itemClicked);
    emit a->itemClicked(a, false);
    QCOMPARE(clicks.size(), 1); // for all its goings it is connected once

    window->history.clear();
    window->updateStatus();
    remove(a);
    undo();
    QVERIFY(track->items.isEmpty()); // there is nothing before the base
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

void TestHistory::forgottenPatternsAreDestroyed()
{
    const auto destroyed = [](const QPointer<TimelineItem> &item) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return item.isNull();
    };
    const QPointer<TimelineItem> removed = add(0, 1000);
    const QPointer<TimelineItem> edited = add(2000, 3000);
    TimelineItem *placed = add(4000, 5000);
    window->on_timelineItem_Clicked(edited, false);
    removed->on_itemDelete_clicked();
    edited->on_itemDelete_clicked();
    add(6000, 7000);
    QVERIFY(!destroyed(removed)); // undo brings it back

    window->on_timelineItem_Clicked(edited, false);
    window->history.clear();
    window->updateStatus();
    QVERIFY(destroyed(removed));
    QVERIFY(!destroyed(edited)); // the panel still edits it
    window->on_timelineItem_Clicked(placed, false);
    window->history.clear();
    QVERIFY(destroyed(edited));
    QVERIFY(window->currentTimeline->items.contains(placed));
}

// One random action; true if the show is offered to the history at its end.
bool TestHistory::act(QRandomGenerator &random, QString &name)
{
    const int start = random.bounded(400) * 50;
    const int length = 100 + random.bounded(60) * 50;
    const int action = random.bounded(11);
    Timeline *target = window->timelines.at(random.bounded(window->timelines.size()));
    name = QString("action %1 at %2 for %3").arg(action).arg(start).arg(length);
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

QString TestHistory::disagreement(const Model &model, const Show &expected) const
{
    const EditHistory &history = window->history;
    if (history.index != model.at || history.snapshots.size() != int(model.kept.size())) {
        return QString("at %1 of %2 instead of %3 of %4")
            .arg(history.index)
            .arg(history.snapshots.size())
            .arg(model.at)
            .arg(model.kept.size());
    }
    return written(*window) == expected ? whatIsWrong(*window) : QString("the show differs");
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
        QString wrong;
        const auto step = [&](bool back) {
            done << (back ? "undo" : "redo");
            const Show expected = model.step(back, written(*window));
            back ? undo() : redo();
            wrong = disagreement(model, expected);
            return wrong.isEmpty();
        };
        for (int round = 0; round < 8 && wrong.isEmpty(); ++round) {
            QString name;
            if (act(random, name)) {
                model.offer(written(*window));
            }
            done << name;
            wrong = disagreement(model, written(*window));
            const int steps = random.bounded(1, 3);
            for (int i = 0; i < 2 * steps && wrong.isEmpty(); ++i) {
                step(i < steps);
            }
            if (wrong.isEmpty() && random.bounded(4) == 0) {
                step(true);
            }
        }
        QVERIFY2(wrong.isEmpty(),
                 qPrintable(QString("%1 in sequence %2: %3").arg(wrong).arg(sequence).arg(done.join(", "))));
    }
}

QTEST_MAIN(TestHistory)
#include "test_history.moc"
