// Tracks, ruler, zoom, play-head and clipboard on the real window.
#include "preview/mygl.h"
#include "showwindow.h"
#include "song/mytime.h"
#include "support/dialogdriver.h"
#include "support/windowcheck.h"
#include "timeline/dragformat.h"
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

class TestTracks : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();
    void addingGoesByTwoOrders();
    void duplicateStandsAboveItsSource();
    void removingAsksAndClosesTheRows();
    void labelsStayInTheirRows();
    void clickOnATrackMakesItCurrentAndSeeks();
    void menuOfATrack();
    void clipboardByKeys();
    void rulerClickAndDragSeek();
    void seekShowsThePlaceInThePattern();
    void previewFollowsTheHead();
    void doubleClickOnAPatternJumpsToIt();
    void startMarkByTheMenu();
    void zoomCentresOnTheHead();
    void zoomBySliderAndWheel();
    void headStaysInView();
    void tracksAndRulerShareTheirX();
    void verticalBarMovesRowsAndLabels();
    void lengthOfTheShow();

private:
    Timeline *current() const { return window->currentTimeline; }
    TimelineItem *add(Timeline *track, int startMs, int endMs) { return ShowWindow::add(track, startMs, endMs); }
    static QString spans(const Timeline *track) { return ShowWindow::spans(track); }
    QList<Timeline *> rows() const; // from the top
    void turnWheel(QWidget *over, int delta);

    QScopedPointer<ShowWindow> show;
    MainWindow *window = nullptr;
    MouseDriver *mouse = nullptr;
    Ui::MainWindow *ui = nullptr;
    TimelineHeaders *ruler = nullptr;
    Indicator *head = nullptr;
    QScrollBar *bar = nullptr;
};

void TestTracks::initTestCase()
{
    show.reset(new ShowWindow);
    window = &show->window;
    mouse = &show->mouse;
    ui = show->ui;
    ruler = ui->timeline_headers;
    head = ruler->indicator;
    bar = ui->timeline_scroll->horizontalScrollBar();
}

void TestTracks::init()
{
    QVERIFY(show->renew());
    head->setIndicatorTime(QTime(0, 0), false);
    bar->setValue(0);
    QGuiApplication::clipboard()->clear();
}

void TestTracks::cleanup()
{
    QTRY_COMPARE(whatIsWrong(*window), QString());
}

void TestTracks::cleanupTestCase()
{
    show.reset();
}

QList<Timeline *> TestTracks::rows() const
{
    QList<Timeline *> found;
    for (int row = 1; row < ui->timeline_layout->count(); ++row) {
        found << qobject_cast<Timeline *>(ui->timeline_layout->itemAt(row)->widget());
    }
    return found;
}

void TestTracks::turnWheel(QWidget *over, int delta)
{
    const QPoint place = over->rect().center();
    QWheelEvent wheel(place, over->mapToGlobal(place), QPoint(), QPoint(0, delta), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&wheel); // as from the window system: only such a one travels up
    qApp->notify(over, &wheel);
}

void TestTracks::addingGoesByTwoOrders()
{
    // From the first entry of the list, or from none, the new track goes to the top row and to the second place.
    Timeline *a = current();
    Timeline *b = show->addTrack();
    QCOMPARE(rows(), (QList<Timeline *>{b, a}));
    QCOMPARE(window->timelines, (QList<Timeline *>{a, b}));
    QCOMPARE(current(), b);
    // From the second entry: index 1 again in both.
    Timeline *c = show->addTrack();
    QCOMPARE(rows(), (QList<Timeline *>{c, b, a}));
    QCOMPARE(window->timelines, (QList<Timeline *>{a, c, b}));
    window->on_timeline_Pressed(b, true);
    Timeline *d = show->addTrack(); // index 2 in list and layout
    QCOMPARE(rows(), (QList<Timeline *>{c, d, b, a}));
    QCOMPARE(window->timelines, (QList<Timeline *>{a, c, d, b}));
    QCOMPARE(a->rowLabel->text(), QStringLiteral("1"));
    QCOMPARE(c->rowLabel->text(), QStringLiteral("4"));
    QCOMPARE(d->rowLabel->styleSheet(),
             QStringLiteral("color: rgb(255,255,255); background-color: rgba(100,100,255,70); "
                            "border: 1px solid rgb(30,35,40);"));
    QCOMPARE(b->rowLabel->styleSheet(),
             QStringLiteral("color: rgb(255,255,255); background-color: rgba(255,255,255,20); "
                            "border: 1px solid rgb(30,35,40);"));
}

void TestTracks::duplicateStandsAboveItsSource()
{
    Timeline *a = current();
    Timeline *b = show->addTrack();
    add(a, 1003, 2000);
    add(a, 1500, 3000);
    window->on_timeline_Pressed(a, true);
    const int before = window->history.snapshots.size();
    a->on_tlDuplicated_clicked();
    Timeline *copy = current();
    QTRY_VERIFY(copy->isVisible());
    QCOMPARE(rows(), (QList<Timeline *>{b, copy, a}));
    QCOMPARE(spans(copy), QStringLiteral("1003-2000 1500-3000")); // neither sorted nor settled
    QVERIFY(copy->items.first()->itemId != a->items.first()->itemId);
    QCOMPARE(window->history.snapshots.size(), before + 1);

    window->on_timeline_Pressed(b, true);
    b->on_tlDuplicated_clicked(); // an empty one leaves no history entry
    QCOMPARE(window->timelines.size(), 4);
    QCOMPARE(window->history.snapshots.size(), before + 1);
}

void TestTracks::removingAsksAndClosesTheRows()
{
    DialogDriver dialogs;
    QTest::mouseClick(ui->timeline_remove, Qt::LeftButton); // the last track stays, and nobody asks
    QCOMPARE(window->timelines.size(), 1);

    Timeline *a = current();
    Timeline *b = show->addTrack();
    Timeline *c = show->addTrack();
    Timeline *d = show->addTrack(); // rows d c b a, list a d c b
    TimelineItem *item = add(c, 0, 1000);
    window->on_timeline_Pressed(c, true);
    bar->setValue(500);
    dialogs.answerBox(QMessageBox::No);
    QTest::mouseClick(ui->timeline_remove, Qt::LeftButton);
    QCOMPARE(window->timelines.size(), 4);
    QCOMPARE(dialogs.boxes().at(0).title, QStringLiteral("確認移除軌道？"));
    QCOMPARE(dialogs.boxes().at(0).text, QStringLiteral("<font color='white'>此動作無法復原</font>"));
    QCOMPARE(dialogs.boxes().at(0).buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(dialogs.boxes().at(0).defaultButton, QMessageBox::No);
    QCOMPARE(dialogs.boxes().at(0).icon, QMessageBox::Warning);

    const int before = window->history.snapshots.size();
    dialogs.answerBox(QMessageBox::Yes);
    QTest::mouseClick(ui->timeline_remove, Qt::LeftButton);
    QCOMPARE(rows(), (QList<Timeline *>{d, b, a}));
    QCOMPARE(current(), a); // the first of the list and no neighbour
    QVERIFY(c->isHidden() && c->rowLabel->isHidden());
    QCOMPARE(c->items, QList<TimelineItem *>{item});
    QCOMPARE(b->rowLabel->text(), QStringLiteral("2"));
    QCOMPARE(d->rowLabel->text(), QStringLiteral("3"));
    QCOMPARE(window->history.snapshots.size(), before);
    QCOMPARE(bar->value(), 500);
    QVERIFY(dialogs.done());
}

void TestTracks::labelsStayInTheirRows()
{
    // Labels of removed tracks stay in their layout; those added later stand in their rows all the same. The check of
    // the whole window after each step compares the places.
    DialogDriver dialogs;
    for (int round = 0; round < 12; ++round) {
        QVERIFY(show->addTrack() != nullptr);
        QTRY_COMPARE(whatIsWrong(*window), QString());
        if (round % 3 == 2) {
            window->on_timeline_Pressed(window->timelines.at(round % window->timelines.size()), true);
            dialogs.answerBox(QMessageBox::Yes);
            window->on_timeline_remove_clicked();
            QTRY_COMPARE(whatIsWrong(*window), QString());
        }
    }
    window->resize(1000, 720);
    QTRY_COMPARE(whatIsWrong(*window), QString());
    window->resize(1300, 885);
}

void TestTracks::clickOnATrackMakesItCurrentAndSeeks()
{
    Timeline *below = current();
    Timeline *above = show->addTrack();
    add(below, 1000, 2000);
    mouse->click(below, QPoint(400, 20));
    QCOMPARE(current(), below);
    QCOMPARE(head->x(), 400);
    QCOMPARE(ui->Mode_t1->time(), QTime(0, 0, 4));
    mouse->click(below, QPoint(410, 20));
    QCOMPARE(head->x(), 410);
    mouse->click(ui->audio_frame, QPoint(300, 30)); // the waveform's pane lets the mouse through
    QCOMPARE(head->x(), 300);
    mouse->click(above->rowLabel, QPoint(5, 20));
    QCOMPARE(current(), above);
    QCOMPARE(head->x(), 300);

    // A press takes the panel out of edit mode.
    QVERIFY(mouse->drag(below->items.first(), QPoint(50, 20), {}));
    QVERIFY(ui->EDIT_radio->isChecked());
    mouse->click(below, QPoint(20, 20));
    QVERIFY(ui->NEW_radio->isChecked() && window->currentItem == nullptr);
}

void TestTracks::menuOfATrack()
{
    const QStringList texts{QStringLiteral("貼上"), QStringLiteral("複製時間軸"), QStringLiteral("移除時間軸")};
    QCOMPARE(mouse->menu(current(), QPoint(200, 20), QString()),
             (QStringList{QStringLiteral("(貼上)"), texts.at(1), texts.at(2)}));
    Timeline *a = current();
    glow::putPatternOnClipboard(add(a, 0, 1000)->itemData);
    QCOMPARE(mouse->menu(a->rowLabel, QPoint(5, 20), texts.at(1)), texts);
    QTRY_COMPARE(window->timelines.size(), 2);
    QCOMPARE(spans(current()), QStringLiteral("0-1000"));
    Timeline *b = current();
    QTRY_VERIFY(b->isVisible() && b->width() == 30000);
    mouse->menu(b, QPoint(500, 20), texts.at(0));
    QCOMPARE(spans(b), QStringLiteral("0-1000 0-1000")); // both stay until a later sort

    DialogDriver dialogs;
    dialogs.answerBox(QMessageBox::Yes);
    mouse->menu(b, QPoint(500, 20), texts.at(2));
    QTRY_COMPARE(window->timelines, QList<Timeline *>{a});
    QVERIFY(dialogs.done());
}

void TestTracks::clipboardByKeys()
{
    QTest::keyClick(window->windowHandle(), Qt::Key_C, Qt::ControlModifier);
    QVERIFY(!glow::clipboardHasPattern());
    QTest::keyClick(window->windowHandle(), Qt::Key_V, Qt::ControlModifier);
    QVERIFY(current()->items.isEmpty());

    TimelineItem *item = add(current(), 1000, 6000);
    QVERIFY(mouse->drag(item, QPoint(100, 20), {}));
    QTest::keyClick(window->windowHandle(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(glow::clipboardPattern(), item->itemData);
    Timeline *above = show->addTrack();
    QTest::keyClick(window->windowHandle(), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(spans(above), QStringLiteral("0-5000"));
    QCOMPARE(window->currentItem, above->items.first());
    QVERIFY(ui->EDIT_radio->isChecked());
    QCOMPARE(ui->Saved_status->text(), QStringLiteral("圖樣數：2"));

    // Cut by the menu, then paste at the play-head and not at the old place.
    mouse->menu(item, QPoint(100, 20), QStringLiteral("剪下"));
    QTRY_VERIFY(item->isHidden());
    head->setIndicatorTime(QTime(0, 0, 7), false);
    window->on_actionPaste_triggered();
    QCOMPARE(spans(above), QStringLiteral("0-5000 7000-12000"));
    QVERIFY(mouse->drag(above->items.last(), QPoint(100, 20), {}));

    auto *foreign = new QMimeData;
    foreign->setData(QStringLiteral("timeline/itemByteArray"), QByteArray("\0\0\0\1junk", 8));
    QGuiApplication::clipboard()->setMimeData(foreign);
    DialogDriver dialogs;
    dialogs.answerBox(QMessageBox::Ok); // its settings are none that the panel knows
    window->on_actionPaste_triggered();
    QVERIFY(dialogs.done());
    QCOMPARE(above->items.size(), 3);
}

void TestTracks::rulerClickAndDragSeek()
{
    mouse->click(ruler, QPoint(250, 10));
    QCOMPARE(head->x(), 250);
    QCOMPARE(head->indicatorTime, QTime(0, 0, 2, 500));
    QCOMPARE(ui->Song_time->time(), QTime(0, 0, 2, 500));
    QWindow *target = window->windowHandle();
    const auto at = [&](int x) { return ruler->mapTo(window, QPoint(x, 10)); };
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

void TestTracks::seekShowsThePlaceInThePattern()
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
    QCOMPARE(head->x(), 501);
}

void TestTracks::previewFollowsTheHead()
{
    TimelineItem *first = add(current(), 1000, 2000);
    TimelineItem *second = add(current(), 2000, 3000);
    head->setIndicatorTime(QTime(0, 0, 0, 980), false);
    QVERIFY(window->previewItem == nullptr);
    head->setIndicatorTime(QTime(0, 0, 0, 990), false); // x + 1 is looked at
    QCOMPARE(window->previewItem, first);
    QCOMPARE(ui->Mode_t1->time(), QTime(0, 0, 0, 990));
    window->on_timelineItem_Clicked(first, false);
    head->setIndicatorTime(QTime(0, 0, 1, 500), false);
    QVERIFY(ui->EDIT_radio->isChecked()); // the same item: the panel stays as it is
    QCOMPARE(ui->Mode_t1->time(), QTime(0, 0, 1));
    head->setIndicatorTime(QTime(0, 0, 2), false);
    QCOMPARE(window->previewItem, second);
    QVERIFY(ui->NEW_radio->isChecked());
    QCOMPARE(ui->Mode_t1->time(), QTime(0, 0, 2));
    head->setIndicatorTime(QTime(0, 0, 4), false);
    QVERIFY(window->previewItem == nullptr);
    // Only the current track counts.
    show->addTrack();
    head->setIndicatorTime(QTime(0, 0, 1, 500), false);
    QVERIFY(window->previewItem == nullptr);
}

void TestTracks::doubleClickOnAPatternJumpsToIt()
{
    ui->timeline_scaler->setValue(120); // 4.4 ms a pixel
    TimelineItem *item = add(current(), 1234, 3000);
    QTRY_COMPARE(current()->width(), 68181);
    QVERIFY(mouse->doubleClick(item, QPoint(100, 20)));
    QCOMPARE(head->indicatorTime, QTime(0, 0, 1, 234));
    QCOMPARE(head->x(), 280); // 280.45 + 0.5, put right by the seek
    QCOMPARE(spans(current()), QStringLiteral("1234-3000"));
}

void TestTracks::startMarkByTheMenu()
{
    head->setIndicatorX(300, true);
    QCOMPARE(mouse->menu(ruler, QPoint(500, 10), QStringLiteral("設定起始")),
             (QStringList{QStringLiteral("設定起始"), QStringLiteral("取消起始")}));
    QTRY_COMPARE(ruler->startMarkX, 300);
    QVERIFY(ruler->startShade->isVisible());
    QCOMPARE(ruler->startShade->geometry(), QRect(0, 0, 300, ruler->height()));
    QCOMPARE(head->x(), 300);
    mouse->click(ruler, QPoint(150, 10)); // the shade lets the mouse through
    QCOMPARE(head->x(), 150);
    mouse->menu(ruler, QPoint(500, 10), QStringLiteral("取消起始"));
    QTRY_COMPARE(ruler->startMarkX, 0);
    QVERIFY(!ruler->startShade->isVisible());
}

void TestTracks::zoomCentresOnTheHead()
{
    head->setIndicatorTime(QTime(0, 4), false);
    const int half = ui->timeline_scroll->width() / 2;
    for (const int value : {160, 45, 120, 80}) {
        ui->timeline_scaler->setValue(value);
        // The range is already that of the new width.
        QCOMPARE(ruler->width(), glow::widthOfLength(300000));
        QCOMPARE(bar->value(), qMin(head->x() - half, bar->maximum()));
        QCOMPARE(bar->maximum(), ruler->width() - ui->timeline_scroll->viewport()->width());
        QCOMPARE(head->indicatorTime, QTime(0, 4));
        QCOMPARE(head->x(), glow::pixelOfTime(240000));
    }
}

void TestTracks::zoomBySliderAndWheel()
{
    TimelineItem *item = add(current(), 1000, 2000);
    ui->timeline_scaler->setValue(100);
    QCOMPARE(msPerPixel, 6.4F);
    QCOMPARE(item->x(), 156);
    QCOMPARE(item->minimumWidth(), 2);
    QTest::mouseDClick(ui->timeline_scaler, Qt::LeftButton);
    QCOMPARE(ui->timeline_scaler->value(), 100);

    // The wheel turned over a track, an item, the ruler: sideways by 40, and with Control held 4 units of the slider.
    ui->timeline_scaler->setValue(80);
    bar->setValue(400);
    for (QWidget *over : {static_cast<QWidget *>(current()), static_cast<QWidget *>(item),
                          static_cast<QWidget *>(ruler), static_cast<QWidget *>(ui->timeline_splitter)}) {
        const int before = bar->value();
        QCOMPARE(ui->timeline_scroll->heldKey, 0);
        turnWheel(over, -120);
        QVERIFY2(bar->value() == before + 40, over->metaObject()->className());
        QCOMPARE(ui->timeline_scroll_2->verticalScrollBar()->value(), 0);
    }
    current()->setFocus();
    QTest::keyPress(window->windowHandle(), Qt::Key_Control);
    QCOMPARE(ui->timeline_scroll->heldKey, int(Qt::Key_Control)); // the key travels up from the track
    turnWheel(current(), 120);
    QCOMPARE(ui->timeline_scaler->value(), 84);
    turnWheel(current(), 12000);
    QCOMPARE(ui->timeline_scaler->value(), 160);
    QTest::keyRelease(window->windowHandle(), Qt::Key_Control);
    QCOMPARE(ui->timeline_scroll->heldKey, 0);
    const int before = bar->value();
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Left, Qt::Key_Down, Qt::Key_PageDown}) {
        QTest::keyClick(window->windowHandle(), key); // arrow keys do not scroll
    }
    QCOMPARE(bar->value(), before);
}

void TestTracks::headStaysInView()
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

void TestTracks::tracksAndRulerShareTheirX()
{
    show->addTrack();
    for (const QSize size : {QSize(1000, 720), QSize(1300, 885), QSize(1500, 1100)}) {
        window->resize(size);
        QTRY_COMPARE(window->size(), size);
        for (const Timeline *track : qAsConst(window->timelines)) {
            QCOMPARE(track->mapTo(window, QPoint()).x(), ruler->mapTo(window, QPoint()).x());
            QCOMPARE(track->width(), ruler->width());
        }
        QTRY_COMPARE(head->height(), ruler->height());
        QTRY_COMPARE(whatIsWrong(*window), QString());
    }
    window->resize(1300, 885);
}

void TestTracks::verticalBarMovesRowsAndLabels()
{
    for (int i = 0; i < 9; ++i) {
        window->on_timeline_add_clicked();
    }
    QScrollBar *rowsBar = ui->timeline_scroll_2->verticalScrollBar();
    QTRY_VERIFY(ui->timeline_vertical_scrollbar->maximum() > 0);
    QTRY_COMPARE(ui->timeline_vertical_scrollbar->maximum(), rowsBar->maximum());
    QCOMPARE(ui->timeline_vertical_scrollbar->pageStep(), rowsBar->pageStep());
    for (const int value : {0, rowsBar->maximum() / 2, rowsBar->maximum()}) {
        ui->timeline_vertical_scrollbar->setValue(value);
        QTRY_COMPARE(whatIsWrong(*window), QString()); // compares the places of labels and tracks
        QCOMPARE(rowsBar->value(), value);
    }
    // Keys and the tab order leave the panes where the bar has put them.
    ui->timeline_vertical_scrollbar->setValue(0);
    rows().last()->setFocus();
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_PageDown, Qt::Key_Tab, Qt::Key_Backtab}) {
        QTest::keyClick(window->windowHandle(), key);
        QCOMPARE(rowsBar->value(), 0);
    }

    // The splitter's handle keeps the labels in their rows too.
    const QList<int> sizes = ui->timeline_splitter->sizes();
    const QSplitterHandle *handle = ui->timeline_splitter->handle(1);
    const QPoint grip = handle->mapTo(window, handle->rect().center());
    QTest::mousePress(window->windowHandle(), Qt::LeftButton, Qt::NoModifier, grip);
    QTest::mouseMove(window->windowHandle(), grip - QPoint(0, 30));
    QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, Qt::NoModifier, grip - QPoint(0, 30));
    QVERIFY(ui->timeline_splitter->sizes() != sizes);
    QTRY_COMPARE(whatIsWrong(*window), QString());
}

void TestTracks::lengthOfTheShow()
{
    add(current(), 100000, 110000);
    ui->timeline_max->setTime(QTime(0, 1));
    QCOMPARE(ruler->timelineLengthMs, 60000);
    QCOMPARE(ruler->width(), 6000);
    QCOMPARE(spans(current()), QStringLiteral("100000-110000"));
    QCOMPARE(ui->Song_Slider->maximum(), 300000);
}

QTEST_MAIN(TestTracks)
#include "test_tracks.moc"
