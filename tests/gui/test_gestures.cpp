// Each gesture on a pattern, with the mouse on the real window: press, drag, release, and what the tracks hold then.
#include "showtest.h"

#include <QDrag>
#include <QToolTip>

class TestGestures : public ShowTest
{
    Q_OBJECT

private slots:
    void gesturesSettleTheTrack()
    {
        const struct
        {
            const char *name;
            const char *before; // the first one is dragged
            int grab;
            QVector<int> path;
            const char *after;
            int slider = 80;
        } rows[] = {
            {"click off the pixel grid", "1003-3007 2500-5000", 100, {}, "1003-3007 3007-5000"},
            // 380 * 6.4 + 0.5 and 536 * 6.4 + 0.5
            {"body at 6.4 ms a pixel", "1000-2000", 20, {400}, "2432-3430", 100},
            {"body snaps left", "3000-4000 0-1000", 50, {158, 155}, "0-1000 1000-2000"}, // 105 is within 5.5 of 100
            {"body stops at 0 and covers", "5000-6000 0-1000 6000-8000", 50, {300, 20}, "0-1000 6000-8000"},
            {"Escape ends it where it is", "1000-2000 3500-9000", 50, {250, 300}, "2500-3500 3500-9000"},
            {"right edge snaps", "1000-2000 4000-5000", 98, {393, 402}, "1000-4000 4000-5000"}, // 2 ahead of the mouse
            {"right edge past the left", "3000-4000", 98, {100}, "3000-3020"}, // as wide as it shows, two ticks
            {"left edge snaps", "3000-4000 0-1000", 2, {110, 105}, "0-1000 1000-4000"},
            {"left edge stops at 0 and covers", "780-4000 0-780", 2, {40, 0}, "0-4000"},
        };
        for (const auto &row : rows) {
            init();
            ui->timeline_scaler->setValue(row.slider);
            TimelineItem *item = addAll(row.before);
            Steps steps;
            for (const int x : row.path)
                steps << to(x);
            mouse->escapes = QByteArray(row.name).startsWith("Escape");
            QVERIFY2(drag(item, row.grab, steps), row.name);
            QVERIFY2(spans(current()) == row.after, qPrintable(row.name + (": " + spans(current()))));
            QVERIFY2(current()->dragItem == nullptr && window->currentItem == item, row.name);
            cleanup();
        }
    }

    void clickMakesTheTrackCurrentWithoutADragEnter()
    {
        Timeline *below = current();
        TimelineItem *item = addAll("1000-3000 2000-4000");
        add(addTrack(), 0, 9000);
        below->setAcceptDrops(false); // no drag-enter event reaches the track
        QVERIFY(drag(item, 50, {}));
        QCOMPARE(current(), below);
        // An edit that follows settles on that track, not on the other one.
        ui->Mode_t2->setTime(QTime(0, 0, 3, 500));
        window->on_Add_Button_clicked();
        QCOMPARE(spans(below), QString("1000-3500 3500-4000"));
    }

    void whileItIsPulled()
    {
        TimelineItem *item = add(current(), 1003, 3003);
        const QByteArray blob = item->itemData;
        QVector<int> places; // of the body, which moves its widget alone
        const auto place = [&] { places << (item->itemData == blob ? item->x() : -1); };
        QVERIFY(drag(item, 50, {to(154, place), to(155, place), to(151, place)}));
        QCOMPARE(places, QVector<int>({100, 105, 101}));
        QCOMPARE(spans(current()), QString("1010-3010"));

        // An edge tells its times: 402 * 6.4 = 2572.8, cut, and the other bound untouched, also behind the edge.
        ui->timeline_scaler->setValue(100);
        item->setTimes(QTime(0, 0, 1), QTime(0, 0, 2));
        QStringList seen;
        const auto note = [&] { seen << spans(current()) << QToolTip::text(); };
        QVERIFY(drag(item, 153, {to(100, note), to(400, note)}));
        QCOMPARE(seen.at(0), QString("1000-652"));
        QCOMPARE(seen.mid(2), (QStringList{"1000-2572", "長度: 00:01.572\n結束時間: 00:02.572"}));
        // Afterwards both bounds lie on the pixel grid: 156 * 6.4 = 998.4, and the width of 1572 / 6.4 + 0.5 = 246 ends
        // at 402.
        QCOMPARE(spans(current()), QString("998-2573"));
        item->setTimes(QTime(0, 0, 1), QTime(0, 0, 2));
        QVERIFY(drag(item, 2, {to(102, note)}));
        QCOMPARE(seen.mid(4), (QStringList{"640-2000", "長度: 00:01.360\n開始時間: 00:00.640"}));
    }

    void tipLetsTheDragThrough()
    {
        TimelineItem *item = add(current(), 1000, 2000);
        QRect tip;
        const auto findTip = [&] {
            for (const QWidget *top : QApplication::topLevelWidgets()) {
                if (top->isVisible() && top->inherits("QTipLabel"))
                    tip = QRect(current()->mapFromGlobal(top->pos()), top->size());
            }
        };
        // The tip opens below the pointer, still over the track. The next move goes right onto it.
        const QPoint onTip(320, 50);
        QVERIFY(drag(item, 98, {{current(), QPoint(300, 4), findTip}, {current(), onTip, {}}}));
        QVERIFY(tip.contains(onTip));
        QCOMPARE(spans(current()), QString("1000-3220"));
    }

    void bodyChangesTracksAndAnEdgeDoesNot()
    {
        Timeline *below = current();
        Timeline *above = addTrack();
        TimelineItem *item = add(below, 1000, 3000);
        add(above, 2000, 5000);
        window->updateStatus();
        bool moved = false;
        const auto look = [&] {
            moved = below->items.isEmpty() && below->dragItem == nullptr && above->dragItem == item &&
                    item->parentWidget() == above && current() == above;
        };
        QVERIFY(drag(item, 50, {on(below, 170), on(above, 250, look)}));
        QVERIFY(moved);
        QCOMPARE(spans(above), QString("2000-4000 4000-5000"));
        // Back, by way of the other track, and released where no track is.
        QVERIFY(
            drag(item, 50,
                 {on(above, 300), on(below, 300), on(above, 300), on(below, 350), {ui->frame_3, QPoint(500, 10), {}}}));
        QCOMPARE(spans(below) + ' ' + spans(above), QString("3000-5000 4000-5000"));
        QVERIFY(current() == below && above->dragItem == nullptr && below->dragItem == nullptr);

        // An edge stays on its track, though the one that it crosses becomes the current one.
        QVERIFY(drag(item, 198, {on(below, 550), on(above, 600), on(above, 700)}));
        QCOMPARE(spans(below) + ' ' + spans(above), QString("3000-5520 4000-5000"));
        QCOMPARE(current(), above);

        // Undo takes it back to where it was, whatever the order of the tracks.
        window->on_actionUndo_triggered();
        window->on_actionUndo_triggered();
        QCOMPARE(spans(above), QString("4000-5000 2000-4000"));
        QVERIFY(below->items.isEmpty());
    }

    void pressEndedByAQuestion()
    {
        // Loading this item into the panel ends in a warning box, whose answer takes longer than the button is held.
        TimelineItem *item = add(current(), 1000, 2000, "outdated");
        DialogDriver dialogs;
        QWindow *target = window->windowHandle();
        const QPoint place = mouse->inWindow(item, QPoint(50, 22));
        const auto answer = [&](QDialog *dialog) {
            QTest::mouseRelease(target, Qt::LeftButton, Qt::NoModifier, place);
            dialog->accept();
        };
        dialogs.answerWith(answer);
        dialogs.answerWith(answer); // and once more when the gesture has ended
        QTest::mousePress(target, Qt::LeftButton, Qt::NoModifier, place);
        QTRY_VERIFY(dialogs.done());
        QVERIFY(item->findChildren<QDrag *>().isEmpty() && current()->dragItem == nullptr);
    }

    void clickedItemIsRemovedByMenuAndKey()
    {
        TimelineItem *item = addAll("1003-3007 2500-5000 6000-7000");
        const int before = window->history.snapshots.size();
        QVERIFY(drag(item, 100, {}));
        QVERIFY(window->history.snapshots.size() == before + 1 && item->selected == 1 && ui->EDIT_radio->isChecked());
        // The button is up: the pointer may wander without seeking or dragging, and its shape tells the zones.
        for (const int x : {7, 8, 192, 193}) {
            QTest::mouseMove(window->windowHandle(), mouse->inWindow(item, QPoint(x, 22)));
            QCOMPARE(item->cursor().shape(), x == 7 || x == 193 ? Qt::SplitHCursor : Qt::OpenHandCursor);
        }
        QVERIFY(head->indicatorTime == QTime(0, 0) && ruler->hoverPos.x() == 100 + 193);
        // The key travels up from the item that holds the focus, through the areas around it.
        bar->setValue(120);
        press(Qt::Key_Delete);
        QCOMPARE(spans(current()), QString("3007-5000 6000-7000"));
        QCOMPARE(bar->value(), 120);

        item = current()->items.first();
        mouse->menu(item, QPoint(50, 22), "移除");
        QCOMPARE(spans(current()), QString("6000-7000"));
        QVERIFY(item->isHidden() && window->currentItem == item); // the panel stays in edit mode on the hidden item
        press(Qt::Key_Delete);
        QVERIFY(window->currentItem == nullptr && ui->NEW_radio->isChecked());
    }
};

QTEST_MAIN(TestGestures)
#include "test_gestures.moc"
