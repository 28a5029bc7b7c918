// Each gesture on a pattern, with the mouse on the real window: press, drag, release, and what the tracks hold then.
#include "showwindow.h"
#include "support/dialogdriver.h"
#include "support/windowcheck.h"
#include "timeline/indicator.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QApplication>
#include <QDrag>
#include <QScrollBar>
#include <QToolTip>
#include <QtTest>

class TestGestures : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();
    void clickKeepsTheTimesAndRunsThePass();
    void clickMakesTheTrackCurrentWithoutADragEnter();
    void deadZoneHoldsTheItemOnce();
    void bodyMovesToThePixelGrid();
    void bodySnapsToItsNeighbours();
    void rightEdgeFollowsTheMouse();
    void tipLetsTheDragThrough();
    void rightEdgeSnapsToTheTracksEnd();
    void leftEdgeStopsAtZero();
    void edgePulledPastTheOther();
    void coveringRemovesAndHittingSplits();
    void equalStartCutsTheLongerOne();
    void touchingChangesNothing();
    void bodyChangesTracksAndComesBack();
    void edgeStaysOnItsTrack();
    void escapeLeavesItWhereItIs();
    void releaseOutsideTheTracksEndsIt();
    void pressEndedByAQuestion();
    void cursorsTellTheZones();
    void menuOfAnItem();
    void deleteKey();

private:
    TimelineItem *add(Timeline *track, int startMs, int endMs, const QString &settings = QStringLiteral("1?#ff0000"))
    {
        return ShowWindow::add(track, startMs, endMs, settings);
    }
    static QString spans(const Timeline *track) { return ShowWindow::spans(track); }
    Timeline *current() const { return window->currentTimeline; }
    static QPoint on(int x) { return {x, 22}; }
    MouseDriver::Step to(Timeline *track, int x, const std::function<void()> &check = {}) const
    {
        return {track, QPoint(x, 27), check};
    }

    QScopedPointer<ShowWindow> show;
    MainWindow *window = nullptr;
    MouseDriver *mouse = nullptr;
    Ui::MainWindow *ui = nullptr;
};

void TestGestures::initTestCase()
{
    show.reset(new ShowWindow);
    window = &show->window;
    mouse = &show->mouse;
    ui = show->ui;
}

void TestGestures::init()
{
    QVERIFY(show->renew());
}

void TestGestures::cleanup()
{
    QCOMPARE(whatIsWrong(*window), QString());
}

void TestGestures::cleanupTestCase()
{
    show.reset();
}

void TestGestures::clickKeepsTheTimesAndRunsThePass()
{
    TimelineItem *item = add(current(), 1003, 3007);
    add(current(), 2500, 5000);
    const int before = window->history.snapshots.size();
    QVERIFY(mouse->drag(item, on(100), {}));
    QCOMPARE(spans(current()), QStringLiteral("1003-3007 3007-5000"));
    QCOMPARE(window->history.snapshots.size(), before + 1);
    QCOMPARE(window->currentItem, item);
    QCOMPARE(int(item->selected), 1);
    QVERIFY(ui->EDIT_radio->isChecked());
    QVERIFY(current()->dragItem == nullptr);

    // The button is up: the pointer may wander without seeking or dragging.
    const QTime head = ui->timeline_headers->indicator->indicatorTime;
    mouse->hover(current(), QPoint(700, 20));
    QCOMPARE(ui->timeline_headers->indicator->indicatorTime, head);
    QCOMPARE(ui->timeline_headers->hoverPos.x(), 700);
}

void TestGestures::clickMakesTheTrackCurrentWithoutADragEnter()
{
    Timeline *below = current();
    TimelineItem *item = add(below, 1000, 3000);
    TimelineItem *other = add(below, 2000, 4000);
    Timeline *above = show->addTrack();
    QVERIFY(above != nullptr);
    add(above, 0, 9000);
    below->setAcceptDrops(false); // no drag-enter event reaches the track
    bool atTheEnd = false;
    connect(item, &TimelineItem::dragBegins, this,
            [&] { atTheEnd = below->items.last() == item && below->dragItem == item; });
    QVERIFY(mouse->drag(item, on(50), {}));
    QVERIFY(atTheEnd);
    QCOMPARE(current(), below);
    QCOMPARE(spans(below), QStringLiteral("1000-3000 3000-4000"));

    // An edit that follows settles on that track, not on the other one.
    ui->Mode_t2->setTime(QTime(0, 0, 3, 500));
    window->on_Add_Button_clicked();
    QCOMPARE(spans(below), QStringLiteral("1000-3500 3500-4000"));
    QCOMPARE(spans(above), QStringLiteral("0-9000"));
    QVERIFY(!other->isHidden());
}

void TestGestures::deadZoneHoldsTheItemOnce()
{
    TimelineItem *item = add(current(), 1003, 3003);
    QVERIFY(mouse->drag(item, on(50), {to(current(), 152), to(current(), 147)})); // y differs by 0: 27 = 5 + 22
    QCOMPARE(spans(current()), QStringLiteral("1003-3003"));

    QVector<int> places;
    const auto note = [&] { places << item->x(); };
    QVERIFY(mouse->drag(item, on(50), {to(current(), 154, note), to(current(), 155, note), to(current(), 151, note)}));
    QCOMPARE(places, QVector<int>({100, 105, 101}));
    QCOMPARE(spans(current()), QStringLiteral("1010-3010"));
}

void TestGestures::bodyMovesToThePixelGrid()
{
    ui->timeline_scaler->setValue(100); // 6.4 ms a pixel
    TimelineItem *item = add(current(), 1000, 2000);
    QCOMPARE(item->geometry().left(), 156); // 156.25 + 0.5
    QCOMPARE(item->width(), 156);
    const QByteArray blob = item->itemData;
    QVERIFY(mouse->drag(item, on(20), {to(current(), 400, [&] {
                            QCOMPARE(item->x(), 380);
                            QCOMPARE(item->itemData, blob); // only the widget moves
                        })}));
    QCOMPARE(spans(current()), QStringLiteral("2432-3430")); // 380 * 6.4 + 0.5 and 536 * 6.4 + 0.5
    QCOMPARE(glow::readPattern(item->itemData).startTime, QTime(0, 0, 2, 432));
}

void TestGestures::bodySnapsToItsNeighbours()
{
    add(current(), 0, 1000);
    add(current(), 6000, 8000);
    TimelineItem *item = add(current(), 3000, 4000);
    QVERIFY(mouse->drag(item, on(50), {to(current(), 158), to(current(), 155)})); // 108, then 105: within 5.5 of 100
    QCOMPARE(spans(current()), QStringLiteral("0-1000 1000-2000 6000-8000"));
    QVERIFY(mouse->drag(item, on(50), {to(current(), 541), to(current(), 545)})); // ends at 591, then 595
    QCOMPARE(spans(current()), QStringLiteral("0-1000 5000-6000 6000-8000"));
    QVERIFY(mouse->drag(item, on(50), {to(current(), 300), to(current(), 20)}));
    QCOMPARE(spans(current()), QStringLiteral("0-1000 6000-8000")); // over the first one, from 0 on
    QCOMPARE(item->startTime, QTime(0, 0));
}

void TestGestures::rightEdgeFollowsTheMouse()
{
    ui->timeline_scaler->setValue(100);
    TimelineItem *item = add(current(), 1000, 2000);
    QVector<QTime> ends;
    QVERIFY(mouse->drag(item, on(item->width() - 3), {to(current(), 400, [&] {
                            ends << item->startTime << item->endTime;
                            QCOMPARE(QToolTip::text(), QStringLiteral("長度: 00:01.572\n結束時間: 00:02.572"));
                        })}));
    // While pulled: 402 * 6.4 = 2572.8, cut, and the start untouched. Afterwards both lie on the pixel grid, rounded:
    // 156 * 6.4 = 998.4, and a width of 1572 / 6.4 + 0.5 = 246 ends at 402.
    QCOMPARE(ends, QVector<QTime>({QTime(0, 0, 1), QTime(0, 0, 2, 572)}));
    QCOMPARE(spans(current()), QStringLiteral("998-2573"));
}

void TestGestures::tipLetsTheDragThrough()
{
    TimelineItem *item = add(current(), 1000, 2000);
    QRect tip;
    const auto findTip = [&] {
        const auto tops = QApplication::topLevelWidgets();
        for (const QWidget *top : tops) {
            if (top->isVisible() && top->inherits("QTipLabel")) {
                tip = QRect(current()->mapFromGlobal(top->pos()), top->size());
            }
        }
    };
    // The tip opens below the pointer, still over the track. The next move goes right onto it.
    const QPoint onTip(320, 50);
    QVERIFY(mouse->drag(item, on(98), {{current(), QPoint(300, 4), findTip}, {current(), onTip, {}}}));
    QVERIFY2(tip.contains(onTip), qPrintable(QStringLiteral("tip at %1,%2").arg(tip.x()).arg(tip.y())));
    QCOMPARE(spans(current()), QStringLiteral("1000-3220"));
}

void TestGestures::rightEdgeSnapsToTheTracksEnd()
{
    ui->timeline_max->setTime(QTime(0, 0, 8));
    QTRY_COMPARE(current()->width(), 800);
    TimelineItem *item = add(current(), 1000, 7000);
    QVERIFY(mouse->drag(item, on(598), {to(current(), 794)})); // 796 is within 5 of 800
    QCOMPARE(spans(current()), QStringLiteral("1000-8000"));
}

void TestGestures::leftEdgeStopsAtZero()
{
    add(current(), 0, 1000);
    TimelineItem *item = add(current(), 3000, 4000);
    QVERIFY(mouse->drag(item, on(2), {to(current(), 110), to(current(), 105)})); // 103 is within 5 of 100
    QCOMPARE(spans(current()), QStringLiteral("0-1000 1000-4000"));
    QVERIFY(mouse->drag(item, on(2), {to(current(), 80)})); // 78: more than 5 past the neighbour's edge
    QCOMPARE(spans(current()), QStringLiteral("0-780 780-4000"));
    QString tip;
    QVERIFY(mouse->drag(item, on(2), {to(current(), 40), to(current(), 0, [&] { tip = QToolTip::text(); })}));
    QCOMPARE(tip, QStringLiteral("長度: 00:04.000\n開始時間: 00:00.000"));
    QCOMPARE(spans(current()), QStringLiteral("0-4000"));
}

void TestGestures::edgePulledPastTheOther()
{
    TimelineItem *item = add(current(), 3000, 4000);
    QVERIFY(mouse->drag(item, on(98), {to(current(), 100, [&] { QCOMPARE(glow::durationMs(*item), -1980); })}));
    QCOMPARE(spans(current()), QStringLiteral("3000-3020")); // as wide as it shows, two ticks
}

void TestGestures::coveringRemovesAndHittingSplits()
{
    TimelineItem *item = add(current(), 500, 2500);
    TimelineItem *small = add(current(), 4000, 5000);
    add(current(), 6000, 9000, QStringLiteral("1?#00ff00"));
    window->updateStatus();
    QVERIFY(mouse->drag(item, on(50), {to(current(), 300), to(current(), 410)})); // 360 to 560
    QCOMPARE(spans(current()), QStringLiteral("3600-5600 6000-9000"));
    QVERIFY(small->isHidden() && small->parentWidget() == nullptr);
    QCOMPARE(ui->Saved_status->text(), QStringLiteral("圖樣數：2"));

    QVERIFY(mouse->drag(item, on(50), {to(current(), 450), to(current(), 700)})); // 650 to 850
    QCOMPARE(spans(current()), QStringLiteral("6000-6500 6500-8500 8500-9000"));
    QCOMPARE(current()->items.last()->settingsText, QStringLiteral("1?#00ff00"));
    QCOMPARE(ui->Saved_status->text(), QStringLiteral("圖樣數：3"));
    current()->sortItems();
    window->on_actionUndo_triggered();
    QCOMPARE(spans(current()), QStringLiteral("6000-9000 3600-5600"));
}

void TestGestures::equalStartCutsTheLongerOne()
{
    TimelineItem *longer = add(current(), 3000, 8000);
    TimelineItem *item = add(current(), 1000, 2000);
    QVERIFY(mouse->drag(item, on(50), {to(current(), 250), to(current(), 350)}));
    QCOMPARE(spans(current()), QStringLiteral("3000-4000 4000-8000"));
    QCOMPARE(current()->items.last(), longer);
}

void TestGestures::touchingChangesNothing()
{
    TimelineItem *left = add(current(), 1003, 2000);
    TimelineItem *right = add(current(), 3000, 4007);
    const QByteArray before = left->itemData + right->itemData;
    TimelineItem *item = add(current(), 5000, 6000);
    QVERIFY(mouse->drag(item, on(50), {to(current(), 400), to(current(), 250)}));
    QCOMPARE(spans(current()), QStringLiteral("1003-2000 2000-3000 3000-4007"));
    QCOMPARE(left->itemData + right->itemData, before);
}

void TestGestures::bodyChangesTracksAndComesBack()
{
    Timeline *below = current();
    Timeline *above = show->addTrack();
    QVERIFY(above != nullptr);
    TimelineItem *item = add(below, 1000, 3000);
    add(above, 2000, 5000);
    window->updateStatus();
    QSignalSpy ended(above, &Timeline::itemDragEnd);
    QVERIFY(mouse->drag(item, on(50), {to(below, 170), to(above, 250, [&] {
                                           QVERIFY(below->items.isEmpty() && below->dragItem == nullptr);
                                           QCOMPARE(item->parentWidget(), above);
                                           QCOMPARE(above->dragItem, item);
                                           QCOMPARE(current(), above);
                                       })}));
    QCOMPARE(spans(above), QStringLiteral("2000-4000 4000-5000"));
    QCOMPARE(ended.size(), 1);
    QCOMPARE(ended.at(0).at(2).value<Timeline *>(), below);
    QCOMPARE(window->currentItem, item);
    QCOMPARE(ui->Saved_status->text(), QStringLiteral("圖樣數：2"));

    // Back, by way of the other track: one visit each.
    QVERIFY(mouse->drag(item, on(50), {to(above, 300), to(below, 300), to(above, 300), to(below, 350)}));
    QCOMPARE(spans(below), QStringLiteral("3000-5000"));
    QCOMPARE(spans(above), QStringLiteral("4000-5000"));
    QCOMPARE(current(), below);
    QVERIFY(above->dragItem == nullptr && below->dragItem == nullptr);

    // Undo takes it back to where it was, whatever the order of the tracks.
    window->on_actionUndo_triggered();
    QCOMPARE(spans(above), QStringLiteral("4000-5000 2000-4000"));
    QVERIFY(below->items.isEmpty());
}

void TestGestures::edgeStaysOnItsTrack()
{
    Timeline *below = current();
    Timeline *above = show->addTrack();
    QVERIFY(above != nullptr);
    TimelineItem *item = add(below, 1000, 3000);
    add(above, 0, 9000);
    QVERIFY(mouse->drag(item, on(198), {to(below, 350), to(above, 400), to(above, 500)}));
    QCOMPARE(spans(below), QStringLiteral("1000-3520"));
    QCOMPARE(spans(above), QStringLiteral("0-9000"));
    QCOMPARE(current(), above); // a quirk that stays: the crossed track is the current one
    QCOMPARE(item->parentWidget(), below);

    // The Delete key then hides it and leaves it on its own track's list.
    QTest::keyClick(window->windowHandle(), Qt::Key_Delete);
    QVERIFY(item->isHidden() && item->parentWidget() == nullptr);
    QCOMPARE(below->items, QList<TimelineItem *>{item});
    below->items.clear();
}

void TestGestures::escapeLeavesItWhereItIs()
{
    TimelineItem *item = add(current(), 1000, 2000);
    add(current(), 3500, 9000);
    mouse->escapes = true;
    QVERIFY(mouse->drag(item, on(50), {to(current(), 250), to(current(), 300)}));
    QCOMPARE(spans(current()), QStringLiteral("2500-3500 3500-9000"));
    QVERIFY(current()->dragItem == nullptr);
}

void TestGestures::releaseOutsideTheTracksEndsIt()
{
    TimelineItem *item = add(current(), 1000, 2000);
    QVERIFY(mouse->drag(item, on(50), {to(current(), 300), {ui->frame_3, QPoint(500, 10), {}}}));
    QCOMPARE(spans(current()), QStringLiteral("2500-3500"));
    QVERIFY(current()->dragItem == nullptr);
    QCOMPARE(window->currentItem, item);
}

void TestGestures::pressEndedByAQuestion()
{
    // Loading this item into the panel ends in a warning box, whose answer takes longer than the button is held.
    TimelineItem *item = add(current(), 1000, 2000, QStringLiteral("outdated"));
    DialogDriver dialogs;
    QWindow *target = window->windowHandle();
    const QPoint place = item->mapTo(window, on(50));
    int answered = 0;
    const auto answer = [&](QDialog *dialog) {
        QTest::mouseRelease(target, Qt::LeftButton, Qt::NoModifier, place);
        ++answered;
        dialog->accept();
    };
    dialogs.answerWith(answer);
    dialogs.answerWith(answer); // and once more when the gesture has ended
    QTest::mousePress(target, Qt::LeftButton, Qt::NoModifier, place);
    QTRY_COMPARE(answered, 2);
    QVERIFY(dialogs.done());
    QCOMPARE(spans(current()), QStringLiteral("1000-2000"));
    QVERIFY(item->findChildren<QDrag *>().isEmpty());
    QVERIFY(current()->dragItem == nullptr);
}

void TestGestures::cursorsTellTheZones()
{
    TimelineItem *item = add(current(), 1000, 3000);
    const auto shapeAt = [&](int x) {
        mouse->hover(item, on(x));
        return item->cursor().shape();
    };
    QCOMPARE(shapeAt(7), Qt::SplitHCursor);
    QCOMPARE(shapeAt(8), Qt::OpenHandCursor);
    QCOMPARE(shapeAt(192), Qt::OpenHandCursor);
    QCOMPARE(shapeAt(193), Qt::SplitHCursor);
    QCOMPARE(ui->timeline_headers->hoverPos.x(), 293);
}

void TestGestures::menuOfAnItem()
{
    TimelineItem *item = add(current(), 1000, 3000);
    const QStringList texts{QStringLiteral("移除"), QStringLiteral("複製"), QStringLiteral("剪下")};
    QCOMPARE(mouse->menu(item, on(50), QString()), texts);
    QCOMPARE(window->currentItem, item);
    const int before = window->history.snapshots.size();
    mouse->menu(item, on(50), QStringLiteral("移除"));
    QVERIFY(current()->items.isEmpty());
    QVERIFY(item->isHidden());
    QCOMPARE(window->currentItem, item); // the panel stays in edit mode on the hidden item
    QCOMPARE(window->history.snapshots.size(), before);
    QTest::keyClick(window->windowHandle(), Qt::Key_Delete);
    QVERIFY(window->currentItem == nullptr);
    QVERIFY(ui->NEW_radio->isChecked());
}

void TestGestures::deleteKey()
{
    TimelineItem *item = add(current(), 1000, 3000);
    add(current(), 4000, 5000);
    QTest::keyClick(window->windowHandle(), Qt::Key_Delete);
    QCOMPARE(current()->items.size(), 2);
    QVERIFY(mouse->drag(item, on(50), {}));
    ui->timeline_scroll->horizontalScrollBar()->setValue(120);
    // The key travels up from the item that holds the focus, through the areas around it.
    QCOMPARE(QApplication::focusWidget(), item);
    QTest::keyClick(window->windowHandle(), Qt::Key_Delete);
    QCOMPARE(spans(current()), QStringLiteral("4000-5000"));
    QVERIFY(window->currentItem == nullptr);
    QVERIFY(ui->NEW_radio->isChecked());
    QCOMPARE(ui->timeline_scroll->horizontalScrollBar()->value(), 120);
}

QTEST_MAIN(TestGestures)
#include "test_gestures.moc"
