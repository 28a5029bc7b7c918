// Tracks, ruler, zoom, play-head and clipboard on the real window.
#include "show/model/timescale.h"
#include "showtest.h"
#include "song/mytime.h"
#include "timeline/mylabel.h"

#include <QMimeData>
#include <QWheelEvent>

using Tracks = QList<Timeline *>;

class TestTracks : public ShowTest
{
    Q_OBJECT

private slots:
    void addingAndDuplicatingGoByTwoOrders()
    {
        Timeline *a = current();
        addAll("1003-2000 1500-3000");
        Timeline *b = addTrack(); // from the first entry of the list, as from the second: index 1 in list and layout
        Timeline *c = addTrack();
        window->on_timeline_Pressed(b, true);
        Timeline *d = addTrack(); // index 2
        QCOMPARE(rows(), (Tracks{c, d, b, a}));
        QCOMPARE(window->timelines, (Tracks{a, c, d, b}));
        QCOMPARE(c->rowLabel->text(), QString("4"));
        QVERIFY(d->rowLabel->styleSheet() != c->rowLabel->styleSheet());

        // A copy stands above its source, which is copied as it is.
        const int before = window->history.snapshots.size();
        const QStringList menu{"(貼上)", "複製時間軸", "移除時間軸"};
        QCOMPARE(mouse->menu(a->rowLabel, QPoint(5, 20), menu.at(1)), menu);
        QTRY_COMPARE(rows(), (Tracks{c, d, b, current(), a}));
        QCOMPARE(spans(current()), QString("1003-2000 1500-3000"));
        QVERIFY(current()->items.first()->itemId != a->items.first()->itemId);
        b->on_tlDuplicated_clicked(); // an empty one leaves no history entry
        QVERIFY(window->timelines.size() == 6 && window->history.snapshots.size() == before + 1);
    }

    void removingAsksAndClosesTheRows()
    {
        DialogDriver dialogs;
        QTest::mouseClick(ui->timeline_remove, Qt::LeftButton); // the last track stays, and nobody asks
        Timeline *a = current();
        Timeline *b = addTrack();
        Timeline *c = addTrack();
        Timeline *d = addTrack(); // rows d c b a, list a d c b
        add(c, 0, 1000);
        window->on_timeline_Pressed(c, true);
        bar->setValue(500);
        dialogs.answerBox(QMessageBox::No);
        QTest::mouseClick(ui->timeline_remove, Qt::LeftButton);
        QVERIFY(window->timelines.size() == 4 && dialogs.boxes().at(0).defaultButton == QMessageBox::No);
        dialogs.answerBox(QMessageBox::Yes);
        mouse->menu(c, QPoint(700, 20), "移除時間軸");
        QTRY_COMPARE(rows(), (Tracks{d, b, a}));
        QCOMPARE(current(), a); // the first of the list and no neighbour
        QVERIFY(c->isHidden() && c->rowLabel->isHidden() && c->items.size() == 1);
        QCOMPARE(bar->value(), 500);
        // The label of the removed one stays in its layout; new ones stand in their rows all the same.
        addTrack();
        QTRY_COMPARE(whatIsWrong(*window), QString());
        QVERIFY(dialogs.done());
    }

    void clickOnATrackMakesItCurrentAndSeeks()
    {
        Timeline *below = current();
        TimelineItem *item = add(below, 1000, 2000);
        Timeline *above = addTrack();
        QVERIFY(drag(item, 50, {}));
        QVERIFY(ui->EDIT_radio->isChecked());
        mouse->click(below, QPoint(400, 20)); // which takes the panel out of edit mode
        QCOMPARE(current(), below);
        QCOMPARE(head->x(), 400);
        QVERIFY(ui->NEW_radio->isChecked() && window->currentItem == nullptr);
        QCOMPARE(ui->Mode_t1->time(), QTime(0, 0, 4));
        mouse->click(ui->audio_frame, QPoint(300, 30)); // the waveform's pane lets the mouse through
        QCOMPARE(head->x(), 300);
        mouse->click(above->rowLabel, QPoint(5, 20));
        QCOMPARE(current(), above);
        QCOMPARE(head->x(), 300);
    }

    void clipboardByKeys()
    {
        press(Qt::Key_C, Qt::ControlModifier); // nothing yet
        press(Qt::Key_V, Qt::ControlModifier);
        QVERIFY(current()->items.isEmpty());
        TimelineItem *item = add(current(), 1000, 6000);
        QVERIFY(drag(item, 100, {}));
        press(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->mimeData()->data("timeline/itemByteArray"), item->itemData);
        Timeline *above = addTrack();
        press(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(spans(above), QString("0-5000"));
        QVERIFY(window->currentItem == above->items.first() && ui->Saved_status->text() == "圖樣數：2");

        // Cut by the menu, then paste at the play-head and not at the old place, unsettled over what stands there.
        QGuiApplication::clipboard()->clear();
        mouse->menu(item, QPoint(100, 20), "剪下");
        QTRY_VERIFY(item->isHidden());
        head->setIndicatorTime(QTime(0, 0, 3), false);
        mouse->menu(above, QPoint(700, 20), "貼上");
        QTRY_COMPARE(spans(above), QString("0-5000 3000-8000"));
        QVERIFY(drag(above->items.last(), 300, {}));
        QCOMPARE(spans(above), QString("0-3000 3000-8000"));
    }

    void rulerClickAndDragSeek()
    {
        QWindow *target = window->windowHandle();
        const auto at = [&](int x) { return mouse->inWindow(ruler, QPoint(x, 10)); };
        QTest::mousePress(target, Qt::LeftButton, Qt::NoModifier, at(250));
        QCOMPARE(head->x(), 250);
        QCOMPARE(ui->Song_time->time(), QTime(0, 0, 2, 500));
        QTest::mouseMove(target, at(333));
        QCOMPARE(head->x(), 333);
        QTest::mouseMove(target, at(-40)); // left of the ruler the time stops at 0
        QCOMPARE(head->indicatorTime, QTime(0, 0));
        QTest::mouseRelease(target, Qt::LeftButton, Qt::NoModifier, at(0));
    }

    void seekShowsThePlaceInThePattern()
    {
        TimelineItem *item = add(current(), 1000, 3000);
        item->repeatCount = 4;
        item->updateData();
        head->setIndicatorX(120, true); // a new item goes back to its column 0
        QVERIFY(window->previewItem == item && ui->GLWidget->columnCount == 500);
        QCOMPARE(ui->GLWidget->stepOrigin, ui->GLWidget->stepCount);
        window->on_timelineItem_Clicked(item, false);
        head->setIndicatorX(150, true); // a quarter of 4 times 500 columns
        QCOMPARE(ui->GLWidget->stepCount, qint64(500));
        // The same item: the panel stays as it is.
        QVERIFY(ui->EDIT_radio->isChecked() && ui->Mode_t1->time() == QTime(0, 0, 1));
        add(current(), 5000, 5000); // without a length it has no share to show
        head->setIndicatorX(500, true);
        head->setIndicatorX(501, true);
        QCOMPARE(ui->GLWidget->stepCount, qint64(0));
        // Only the current track counts.
        addTrack();
        head->setIndicatorX(150, true);
        QVERIFY(window->previewItem == nullptr && ui->NEW_radio->isChecked());
        QCOMPARE(QColor(ui->GLWidget->pixelAt(0, 0)), QColor(Qt::black));
    }

    void doubleClickOnAPatternJumpsToIt()
    {
        ui->timeline_scaler->setValue(120); // 4.4 ms a pixel
        TimelineItem *item = add(current(), 1234, 3000);
        QTRY_COMPARE(current()->width(), 68181);
        QSignalSpy moved(ruler, &TimelineHeaders::indicatorMoved);
        QMouseEvent twice(QEvent::MouseButtonDblClick, QPointF(100, 20), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(item, &twice);
        QCOMPARE(moved.last(), (QVariantList{123, true})); // by 10 ms a pixel, 123.4 + 0.5, whatever the zoom
        QCOMPARE(head->indicatorTime, QTime(0, 0, 1, 234));
        QCOMPARE(head->x(), 280); // 280.45 + 0.5, put right by the seek
    }

    void startMarkByTheMenu()
    {
        const QStringList texts{"設定起始", "取消起始"};
        head->setIndicatorX(300, true);
        QCOMPARE(mouse->menu(ruler, QPoint(500, 10), texts.at(0)), texts);
        QTRY_VERIFY(ruler->startMarkX == 300 && ruler->startShade->isVisible() && ruler->startShade->width() == 300);
        mouse->click(ruler, QPoint(150, 10)); // the shade lets the mouse through
        QCOMPARE(head->x(), 150);
        ui->timeline_scaler->setValue(100);
        QCOMPARE(ruler->startMarkX, 300); // the mark stays at its pixel, and so at another time
        mouse->menu(ruler, QPoint(500, 10), texts.at(1));
        QTRY_VERIFY(ruler->startMarkX == 0 && !ruler->startShade->isVisible());
    }

    void zoomCentresOnTheHead()
    {
        head->setIndicatorTime(QTime(0, 4), false);
        for (const int slider : {160, 40, 120}) {
            bar->setValue(0);
            ui->timeline_scaler->setValue(slider);
            // The range is already that of the new width.
            QCOMPARE(ruler->width(), glow::widthOfLength(300000));
            QCOMPARE(bar->maximum(), ruler->width() - ui->timeline_scroll->viewport()->width());
            QCOMPARE(bar->value(), qMin(head->x() - ui->timeline_scroll->width() / 2, bar->maximum()));
            QVERIFY(head->indicatorTime == QTime(0, 4) && head->x() == glow::pixelOfTime(240000));
        }
        QTest::mouseDClick(ui->timeline_scaler, Qt::LeftButton);
        QCOMPARE(ui->timeline_scaler->value(), 100); // the middle, not the start value
        ui->timeline_max->setTime(QTime(0, 0, 8));
        QTRY_COMPARE(current()->width(), 1250); // 8000 / 6.4
    }

    // Turned over a track, an item, the ruler: sideways by 40, and with Control held 4 units of the slider.
    void wheelScrollsAndZooms()
    {
        TimelineItem *item = add(current(), 1000, 2000);
        for (QWidget *over : std::initializer_list<QWidget *>{current(), item, ruler, ui->timeline_splitter}) {
            bar->setValue(400);
            turnWheel(over, -121);
            QVERIFY2(bar->value() == 440, over->metaObject()->className());
        }
        current()->setFocus();
        QTest::keyPress(window->windowHandle(), Qt::Key_Control); // the key travels up from the track
        for (const auto &[delta, value] : {qMakePair(120, 84), qMakePair(29, 84), qMakePair(-89, 82)}) {
            turnWheel(current(), delta);
            QCOMPARE(ui->timeline_scaler->value(), value);
        }
        QTest::keyPress(window->windowHandle(), Qt::Key_A, Qt::ControlModifier); // the last key counts, no modifier
        bar->setValue(400);
        turnWheel(current(), -120);
        QCOMPARE(bar->value(), 440);
        QTest::keyRelease(window->windowHandle(), Qt::Key_A);
    }

    void theViewFollowsTheHeadAndNoKey()
    {
        const int view = ui->timeline_scroll->width();
        head->setIndicatorTime(glow::timeOf(view * 10), false);
        QCOMPARE(bar->value(), 0); // the right border still counts as inside
        head->setIndicatorTime(glow::timeOf(view * 10 + 10), false);
        QCOMPARE(bar->value(), view + 1 - view / 2);
        bar->setValue(20000);
        head->setIndicatorTime(QTime(0, 0, 50), false);
        QCOMPARE(bar->value(), 5000 - view / 2);

        for (int i = 0; i < 9; ++i)
            window->on_timeline_add_clicked();
        QScrollBar *rowsBar = ui->timeline_scroll_2->verticalScrollBar();
        QTRY_VERIFY(rowsBar->maximum() > 0);
        rows().first()->setFocus();
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Left, Qt::Key_Down, Qt::Key_PageDown, Qt::Key_Tab}) {
            press(key);
            QCOMPARE(rowsBar->value(), 0);
            QCOMPARE(bar->value(), 5000 - view / 2);
        }
        QCOMPARE(QApplication::focusWidget(), rows().at(1)); // the tab key goes from the top down
    }

private:
    // from the top
    Tracks rows() const
    {
        Tracks found;
        for (int row = 1; row < ui->timeline_layout->count(); ++row)
            found << qobject_cast<Timeline *>(ui->timeline_layout->itemAt(row)->widget());
        return found;
    }

    void turnWheel(QWidget *over, int delta)
    {
        const QPoint place = over->rect().center();
        QWheelEvent wheel(place, over->mapToGlobal(place), QPoint(), QPoint(0, delta), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&wheel); // as from the window system: only such a one travels up
        qApp->notify(over, &wheel);
    }
};

QTEST_MAIN(TestTracks)
#include "test_tracks.moc"
