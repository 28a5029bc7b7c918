// Tracks, ruler, zoom, play-head and clipboard on the real window.
#include "preview/mygl.h"
#include "showtest.h"
#include "song/mytime.h"
#include "support/dialogdriver.h"
#include "support/windowcheck.h"
#include "timeline/indicator.h"
#include "timeline/mylabel.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QScrollBar>
#include <QWheelEvent>
#include <QtTest>

using Tracks = QList<Timeline *>;

class TestTracks : public ShowTest
{
    Q_OBJECT

private slots:
    void addingGoesByTwoOrders()
    {
        Timeline *a = current();
        Timeline *b = addTrack(); // from the first entry of the list, as from the second: index 1 in list and layout
        QCOMPARE(rows(), (Tracks{b, a}));
        Timeline *c = addTrack();
        QCOMPARE(rows(), (Tracks{c, b, a}));
        QCOMPARE(window->timelines, (Tracks{a, c, b}));
        window->on_timeline_Pressed(b, true);
        Timeline *d = addTrack(); // index 2
        QCOMPARE(rows(), (Tracks{c, d, b, a}));
        QCOMPARE(window->timelines, (Tracks{a, c, d, b}));
        QCOMPARE(a->rowLabel->text(), QString("1"));
        QCOMPARE(c->rowLabel->text(), QString("4"));
        const QString style("color: rgb(255,255,255); background-color: rgba(%1); border: 1px solid rgb(30,35,40);");
        QCOMPARE(d->rowLabel->styleSheet(), style.arg("100,100,255,70"));
        QCOMPARE(b->rowLabel->styleSheet(), style.arg("255,255,255,20"));
    }

    void duplicateStandsAboveItsSource()
    {
        Timeline *a = current();
        addAll("1003-2000 1500-3000");
        Timeline *b = addTrack();
        window->on_timeline_Pressed(a, true);
        const int before = window->history.snapshots.size();
        a->on_tlDuplicated_clicked();
        Timeline *copy = current();
        QCOMPARE(rows(), (Tracks{b, copy, a}));
        QCOMPARE(spans(copy), QString("1003-2000 1500-3000")); // neither sorted nor settled
        QVERIFY(copy->items.first()->itemId != a->items.first()->itemId);
        QCOMPARE(window->history.snapshots.size(), before + 1);

        window->on_timeline_Pressed(b, true);
        b->on_tlDuplicated_clicked(); // an empty one leaves no history entry
        QCOMPARE(window->timelines.size(), 4);
        QCOMPARE(window->history.snapshots.size(), before + 1);
    }

    void removingAsksAndClosesTheRows()
    {
        DialogDriver dialogs;
        QTest::mouseClick(ui->timeline_remove, Qt::LeftButton); // the last track stays, and nobody asks
        QCOMPARE(window->timelines.size(), 1);

        Timeline *a = current();
        Timeline *b = addTrack();
        Timeline *c = addTrack();
        Timeline *d = addTrack(); // rows d c b a, list a d c b
        TimelineItem *item = add(c, 0, 1000);
        window->on_timeline_Pressed(c, true);
        bar->setValue(500);
        dialogs.answerBox(QMessageBox::No);
        QTest::mouseClick(ui->timeline_remove, Qt::LeftButton);
        QCOMPARE(window->timelines.size(), 4);
        const DialogDriver::Box box = dialogs.boxes().at(0);
        QCOMPARE(box.title, QString("確認移除軌道？"));
        QCOMPARE(box.text, QString("<font color='white'>此動作無法復原</font>"));
        QCOMPARE(box.buttons, QMessageBox::Yes | QMessageBox::No);
        QCOMPARE(box.defaultButton, QMessageBox::No);
        QCOMPARE(box.icon, QMessageBox::Warning);

        const int before = window->history.snapshots.size();
        dialogs.answerBox(QMessageBox::Yes);
        QTest::mouseClick(ui->timeline_remove, Qt::LeftButton);
        QCOMPARE(rows(), (Tracks{d, b, a}));
        QCOMPARE(current(), a); // the first of the list and no neighbour
        QVERIFY(c->isHidden() && c->rowLabel->isHidden());
        QCOMPARE(c->items, QList<TimelineItem *>{item});
        QCOMPARE(b->rowLabel->text() + d->rowLabel->text(), QString("23"));
        QCOMPARE(window->history.snapshots.size(), before);
        QCOMPARE(bar->value(), 500);
        // The label of the removed one stays in its layout; new ones stand in their rows all the same.
        QTRY_COMPARE(whatIsWrong(*window), QString());
        QVERIFY(addTrack() != nullptr && addTrack() != nullptr);
        QVERIFY(dialogs.done());
    }

    void clickOnATrackMakesItCurrentAndSeeks()
    {
        Timeline *below = current();
        TimelineItem *item = add(below, 1000, 2000);
        Timeline *above = addTrack();
        for (const int x : {400, 410}) { // the second time the track is current already
            mouse->click(below, QPoint(x, 20));
            QCOMPARE(current(), below);
            QCOMPARE(head->x(), x);
            QCOMPARE(ui->Mode_t1->time(), glow::timeOf(x * 10));
        }
        mouse->click(ui->audio_frame, QPoint(300, 30)); // the waveform's pane lets the mouse through
        QCOMPARE(head->x(), 300);
        mouse->click(above->rowLabel, QPoint(5, 20));
        QCOMPARE(current(), above);
        QCOMPARE(head->x(), 300);

        // A press takes the panel out of edit mode.
        QVERIFY(drag(item, 50, {}));
        QVERIFY(ui->EDIT_radio->isChecked());
        mouse->click(below, QPoint(20, 20));
        QVERIFY(ui->NEW_radio->isChecked() && window->currentItem == nullptr);
    }

    void menuOfATrack()
    {
        const QStringList texts{"貼上", "複製時間軸", "移除時間軸"};
        QCOMPARE(mouse->menu(current(), QPoint(200, 20), QString()), (QStringList{"(貼上)", texts.at(1), texts.at(2)}));
        Timeline *a = current();
        add(a, 0, 1000)->on_itemCopy_clicked();
        QCOMPARE(mouse->menu(a->rowLabel, QPoint(5, 20), texts.at(1)), texts);
        QTRY_COMPARE(window->timelines.size(), 2);
        Timeline *b = current();
        QTRY_VERIFY(b->isVisible() && b->width() == 30000);
        mouse->menu(b, QPoint(500, 20), texts.at(0));
        QCOMPARE(spans(b), QString("0-1000 0-1000")); // both stay until a later sort takes the earlier
        TimelineItem *pasted = b->items.last();
        b->sortItems();
        QCOMPARE(b->items, QList<TimelineItem *>{pasted});

        DialogDriver dialogs;
        dialogs.answerBox(QMessageBox::Yes);
        mouse->menu(b, QPoint(500, 20), texts.at(2));
        QTRY_COMPARE(window->timelines, Tracks{a});
        QVERIFY(dialogs.done());
    }

    void clipboardByKeys()
    {
        const QString type("timeline/itemByteArray");
        const auto clip = [] { return QGuiApplication::clipboard()->mimeData(); };
        press(Qt::Key_C, Qt::ControlModifier);
        QVERIFY(!clip()->hasFormat(type));
        press(Qt::Key_V, Qt::ControlModifier);
        QVERIFY(current()->items.isEmpty());

        TimelineItem *item = add(current(), 1000, 6000);
        QVERIFY(drag(item, 100, {}));
        press(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clip()->formats(), QStringList(type));
        QCOMPARE(clip()->data(type), item->itemData);
        Timeline *above = addTrack();
        press(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(spans(above), QString("0-5000"));
        QCOMPARE(window->currentItem, above->items.first());
        QVERIFY(ui->EDIT_radio->isChecked());
        QCOMPARE(ui->Saved_status->text(), QString("圖樣數：2"));

        // Cut by the menu, then paste at the play-head and not at the old place, unsettled over what stands there.
        QSignalSpy ended(above, &Timeline::itemDragEnd);
        mouse->menu(item, QPoint(100, 20), "剪下");
        QTRY_VERIFY(item->isHidden());
        head->setIndicatorTime(QTime(0, 0, 3), false);
        press(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(spans(above), QString("0-5000 3000-8000"));
        QCOMPARE(ended.size(), 1);
        QVERIFY(ended.at(0).at(0).toByteArray().isEmpty() && ended.at(0).at(2).value<Timeline *>() == nullptr);
        QVERIFY(drag(above->items.last(), 300, {}));
        QCOMPARE(spans(above), QString("0-3000 3000-8000"));

        auto *foreign = new QMimeData;
        foreign->setData(type, QByteArray("\0\0\0\1junk", 8));
        QGuiApplication::clipboard()->setMimeData(foreign);
        DialogDriver dialogs;
        dialogs.answerBox(QMessageBox::Ok); // its settings are none that the panel knows
        window->on_actionPaste_triggered();
        QVERIFY(dialogs.done());
        QCOMPARE(above->items.size(), 3);
    }

    void rulerClickAndDragSeek()
    {
        mouse->click(ruler, QPoint(250, 10));
        QCOMPARE(head->x(), 250);
        QCOMPARE(head->indicatorTime, QTime(0, 0, 2, 500));
        QCOMPARE(ui->Song_time->time(), QTime(0, 0, 2, 500));
        QWindow *target = window->windowHandle();
        const auto at = [&](int x) { return ruler->mapTo(window.data(), QPoint(x, 10)); };
        QTest::mousePress(target, Qt::LeftButton, Qt::NoModifier, at(300));
        QTest::mouseMove(target, at(333));
        QCOMPARE(head->x(), 333);
        QTest::mouseMove(target, at(-40)); // left of the ruler the time stops at 0
        QCOMPARE(head->x(), 0);
        QCOMPARE(head->indicatorTime, QTime(0, 0));
        QTest::mouseRelease(target, Qt::LeftButton, Qt::NoModifier, at(0));
        QTest::mouseMove(target, at(400));
        QCOMPARE(head->x(), 0);
        QCOMPARE(ruler->hoverPos.x(), 400);
    }

    void seekShowsThePlaceInThePattern()
    {
        TimelineItem *item = add(current(), 1000, 3000);
        item->repeatCount = 4;
        item->updateData();
        head->setIndicatorX(120, true); // a new item goes back to its column 0
        QCOMPARE(window->previewItem, item);
        QCOMPARE(ui->GLWidget->columnCount, 500);
        QCOMPARE(ui->GLWidget->stepOrigin, ui->GLWidget->stepCount);
        head->setIndicatorX(150, true); // a quarter of 4 times 500 columns
        QCOMPARE(ui->GLWidget->stepCount, qint64(500));
        QCOMPARE(ui->GLWidget->stepOrigin, qint64(0));
        // A pattern without a length has no share to show.
        TimelineItem *empty = add(current(), 5000, 5000);
        head->setIndicatorX(500, true);
        QCOMPARE(window->previewItem, empty);
        head->setIndicatorX(501, true);
        QCOMPARE(ui->GLWidget->stepCount, qint64(0));
    }

    void previewFollowsTheHead()
    {
        TimelineItem *first = addAll("1000-2000 2000-3000");
        const auto goTo = [&](int ms) { head->setIndicatorTime(glow::timeOf(ms), false); };
        goTo(980);
        QVERIFY(window->previewItem == nullptr);
        goTo(990); // x + 1 is looked at
        QCOMPARE(window->previewItem, first);
        QCOMPARE(ui->Mode_t1->time(), QTime(0, 0, 0, 990));
        window->on_timelineItem_Clicked(first, false);
        goTo(1500);
        QVERIFY(ui->EDIT_radio->isChecked()); // the same item: the panel stays as it is
        QCOMPARE(ui->Mode_t1->time(), QTime(0, 0, 1));
        goTo(2000);
        QCOMPARE(window->previewItem, current()->items.last());
        QVERIFY(ui->NEW_radio->isChecked());
        QCOMPARE(ui->Mode_t1->time(), QTime(0, 0, 2));
        // A pattern that is gone is missed with the next move only.
        current()->deleteTimelineItem(current()->items.last());
        QVERIFY(window->previewItem != nullptr);
        goTo(2010);
        QVERIFY(window->previewItem == nullptr);
        addTrack(); // only the current track counts
        goTo(1500);
        QVERIFY(window->previewItem == nullptr);
    }

    void doubleClickOnAPatternJumpsToIt()
    {
        ui->timeline_scaler->setValue(120); // 4.4 ms a pixel
        TimelineItem *item = add(current(), 1234, 3000);
        QTRY_COMPARE(current()->width(), 68181);
        QSignalSpy moved(ruler, &TimelineHeaders::indicatorMoved);
        QVERIFY(mouse->doubleClick(item, QPoint(100, 20)));
        QCOMPARE(moved.last(), (QVariantList{123, true})); // by 10 ms a pixel, 123.4 + 0.5, whatever the zoom
        QCOMPARE(head->indicatorTime, QTime(0, 0, 1, 234));
        QCOMPARE(head->x(), 280); // 280.45 + 0.5, put right by the seek
        QCOMPARE(spans(current()), QString("1234-3000"));
    }

    void startMarkByTheMenu()
    {
        const QStringList texts{"設定起始", "取消起始"};
        head->setIndicatorX(300, true);
        QCOMPARE(mouse->menu(ruler, QPoint(500, 10), texts.at(0)), texts);
        QTRY_COMPARE(ruler->startMarkX, 300);
        QVERIFY(ruler->startShade->isVisible());
        QCOMPARE(ruler->startShade->geometry(), QRect(0, 0, 300, ruler->height()));
        QCOMPARE(head->x(), 300);
        mouse->click(ruler, QPoint(150, 10)); // the shade lets the mouse through
        QCOMPARE(head->x(), 150);
        ui->timeline_scaler->setValue(100);
        QCOMPARE(ruler->startMarkX, 300); // the mark stays at its pixel, and so at another time
        mouse->menu(ruler, QPoint(500, 10), texts.at(1));
        QTRY_COMPARE(ruler->startMarkX, 0);
        QVERIFY(!ruler->startShade->isVisible());
    }

    void zoomCentresOnTheHead()
    {
        head->setIndicatorTime(QTime(0, 4), false);
        const int half = ui->timeline_scroll->width() / 2;
        const QVector<QPair<int, int>> widths{{160, 120000}, {40, 7500}, {120, 68181}, {80, 30000}};
        for (const auto &[slider, width] : widths) {
            bar->setValue(0);
            ui->timeline_scaler->setValue(slider);
            // The range is already that of the new width.
            QCOMPARE(ruler->width(), width);
            QCOMPARE(bar->maximum(), width - ui->timeline_scroll->viewport()->width());
            QCOMPARE(bar->value(), qMin(head->x() - half, bar->maximum()));
            QCOMPARE(head->indicatorTime, QTime(0, 4));
            QCOMPARE(head->x(), glow::pixelOfTime(240000));
            QTRY_COMPARE(current()->width(), width);
            QCOMPARE(current()->mapTo(window.data(), QPoint()).x(), ruler->mapTo(window.data(), QPoint()).x());
        }
    }

    void zoomBySliderAndWheel()
    {
        TimelineItem *item = add(current(), 1000, 2000);
        ui->timeline_scaler->setValue(90);
        QCOMPARE(msPerPixel, 7.9F);
        QCOMPARE(item->x(), 127); // 126.58 + 0.5
        QTest::mouseDClick(ui->timeline_scaler, Qt::LeftButton);
        QCOMPARE(ui->timeline_scaler->value(), 100); // the middle, not the start value

        // The wheel turned over a track, an item, the ruler: sideways by 40, and with Control held 4 units of the
        // slider.
        ui->timeline_scaler->setValue(80);
        for (QWidget *over : {static_cast<QWidget *>(current()), static_cast<QWidget *>(item),
                              static_cast<QWidget *>(ruler), static_cast<QWidget *>(ui->timeline_splitter)}) {
            bar->setValue(400);
            turnWheel(over, -121);
            QVERIFY2(bar->value() == 440, over->metaObject()->className());
            QCOMPARE(ui->timeline_scroll_2->verticalScrollBar()->value(), 0);
        }
        current()->setFocus();
        const QVector<QPair<int, int>> turns{{120, 84}, {29, 84}, {-89, 82}, {12000, 160}};
        QTest::keyPress(window->windowHandle(), Qt::Key_Control);
        QCOMPARE(ui->timeline_scroll->heldKey, int(Qt::Key_Control)); // the key travels up from the track
        for (const auto &[delta, value] : turns) {
            turnWheel(current(), delta);
            QCOMPARE(ui->timeline_scaler->value(), value);
        }
        const int before = bar->value();
        QTest::keyPress(window->windowHandle(), Qt::Key_A, Qt::ControlModifier); // the last key counts, no modifier
        turnWheel(current(), -120);
        QCOMPARE(bar->value(), before + 40);
        QCOMPARE(ui->timeline_scaler->value(), 160);
        QTest::keyRelease(window->windowHandle(), Qt::Key_A);
        QCOMPARE(ui->timeline_scroll->heldKey, 0);
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Left, Qt::Key_Down, Qt::Key_PageDown})
            press(key);
        QCOMPARE(bar->value(), before + 40); // arrow keys do not scroll
    }

    void headStaysInView()
    {
        const int view = ui->timeline_scroll->width();
        head->setIndicatorTime(glow::timeOf(view * 10), false);
        QCOMPARE(bar->value(), 0); // the right border still counts as inside
        head->setIndicatorTime(glow::timeOf(view * 10 + 10), false);
        QCOMPARE(bar->value(), view + 1 - view / 2);
        bar->setValue(20000);
        head->setIndicatorTime(QTime(0, 0, 50), false);
        QCOMPARE(bar->value(), 5000 - view / 2);
    }

    void keysLeaveThePanesInPlace()
    {
        for (int i = 0; i < 9; ++i)
            window->on_timeline_add_clicked();
        QScrollBar *visible = ui->timeline_vertical_scrollbar;
        QScrollBar *rowsBar = ui->timeline_scroll_2->verticalScrollBar();
        QTRY_VERIFY(visible->maximum() > 0 && visible->maximum() == rowsBar->maximum());
        QTRY_COMPARE(visible->pageStep(), rowsBar->pageStep());
        visible->setValue(visible->maximum());
        QCOMPARE(rowsBar->value(), rowsBar->maximum());
        visible->setValue(0);
        rows().last()->setFocus();
        for (const Qt::Key key : {Qt::Key_Down, Qt::Key_PageDown, Qt::Key_Tab, Qt::Key_Backtab}) {
            press(key);
            QCOMPARE(rowsBar->value(), 0);
        }
    }

    void bandShowsOnlyInSilence()
    {
        const auto shown = [&](bool over) {
            QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
            QEvent leave(QEvent::Leave);
            QApplication::sendEvent(ui->Add_Button, over ? static_cast<QEvent *>(&enter) : &leave);
            return !current()->readyBand->isHidden();
        };
        QVERIFY(shown(true));
        QVERIFY(!shown(false));
        ui->Song_play->click();
        QVERIFY(ui->Song_time->clockTimer->isActive());
        QVERIFY(!shown(true));
        ui->Song_play->click();
    }

    void lengthOfTheShow()
    {
        addAll("100000-110000");
        ui->timeline_max->setTime(QTime(0, 1));
        QCOMPARE(ruler->timelineLengthMs, 60000);
        QCOMPARE(ruler->width(), 6000);
        QCOMPARE(spans(current()), QString("100000-110000"));
        QCOMPARE(ui->Song_Slider->maximum(), 300000);
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
