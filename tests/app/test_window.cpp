// The window's shell: construction, closing, new, keys, dropped files, the gadget menu, the status text.
#include "app/mainwindow.h"
#include "app/propvalues.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "support/windowcheck.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QActionGroup>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QtTest>

class TestWindow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void gadgetRowSetsBothNumbers();
    void customKeepsTheNumbers();
    void noStoredGadgetMeansNoNumbers();
    void closingAsksEveryTime_data();
    void closingAsksEveryTime();
    void newOnYesStartsAfresh();
    void newOnCancelForgetsTheFile();
    void deleteNeedsAnItem();
    void languageIsForTheNextStart();
    void firstDroppedFileCounts();
    void unknownSuffixIsRefused_data();
    void unknownSuffixIsRefused();
    void titleMarkTakesTheSecondBlank();

private:
    void build()
    {
        window.reset();
        window.reset(new MainWindow);
        ui = window->ui;
        window->show();
    }
    void addColour();
    void drop(const QList<QUrl> &urls);
    QAction *gadget(int position) { return window->gadgetGroup->actions().at(position); }

    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
    Ui::MainWindow *ui = nullptr;
};

void TestWindow::init()
{
    env.reset(new TestEnv);
    msPerPixel = 10.0F;
    ledCount = 0;
    frameRate = 0;
    build();
}

void TestWindow::cleanup()
{
    window.reset();
    env.reset();
}

void TestWindow::addColour()
{
    ui->Mode_Pic->setCurrentIndex(1);
    window->on_Add_Button_clicked();
}

void TestWindow::drop(const QList<QUrl> &urls)
{
    QMimeData data;
    data.setUrls(urls);
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.data(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.data(), &event);
}

void TestWindow::gadgetRowSetsBothNumbers()
{
    QCOMPARE(window->gadgetGroup->actions().size(), 6);
    QVERIFY(gadget(3)->isChecked());
    gadget(2)->trigger();
    QCOMPARE(ledCount, qint16(48));
    QCOMPARE(frameRate, 1100.0F);
    QCOMPARE(ui->FPS_V->value(), 1100);
    QCOMPARE(ui->gadget_name->text(), QStringLiteral("Brevon Alto-48LED"));
    QCOMPARE(env->value(QStringLiteral("main/gadget")).toInt(), 2);
    build();
    QVERIFY(gadget(2)->isChecked());
    QCOMPARE(ledCount, qint16(48));
}

void TestWindow::customKeepsTheNumbers()
{
    gadget(0)->trigger();
    QVERIFY(ui->Leds->isEnabled());
    QVERIFY(ui->FPS_V->isEnabled());
    QCOMPARE(ui->Leds->value(), 70);
    QCOMPARE(ui->gadget_name->text(), QStringLiteral("Brevon Max-70LED"));
    QCOMPARE(env->value(QStringLiteral("main/gadget")).toInt(), 3);
    ui->FPS_V->setValue(1200);
    QCOMPARE(frameRate, 1200.0F);
    gadget(1)->trigger();
    QVERIFY(!ui->Leds->isEnabled());
}

void TestWindow::noStoredGadgetMeansNoNumbers()
{
    env->setValue(QStringLiteral("main/gadget"), 0);
    env->setValue(QStringLiteral("main/language"), 0);
    build();
    QVERIFY(gadget(0)->isChecked());
    QVERIFY(!ui->actionChinese->isChecked());
    QVERIFY(ui->Leds->isEnabled());
    // Text and effect without a height: nothing to divide by, nothing to crash on.
    for (int tab = 0; tab < 4; ++tab) {
        ui->Mode_Pic->setCurrentIndex(tab);
        QVERIFY(window->suggestRepeat() >= 1);
    }
    env->setValue(QStringLiteral("main/gadget"), 99);
    build();
    QCOMPARE(whatIsWrong(*window), QString());
}

void TestWindow::closingAsksEveryTime_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("closes");
    QTest::newRow("no") << int(QMessageBox::No) << true;
    QTest::newRow("cancel") << int(QMessageBox::Cancel) << false;
    QTest::newRow("save") << int(QMessageBox::Save) << true;
}

void TestWindow::closingAsksEveryTime()
{
    QFETCH(int, answer);
    QFETCH(bool, closes);
    const QString path = env->path(QStringLiteral("show.gsw3"));
    window->currentFile = path;
    window->hasFile = true;
    window->resize(1111, 777);
    DialogDriver driver;
    driver.answerBox(static_cast<QMessageBox::StandardButton>(answer));
    QCOMPARE(window->close(), closes);
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().first().text, QStringLiteral("<font color='white'>關閉前儲存？</font>"));
    QCOMPARE(driver.boxes().first().buttons, QMessageBox::Save | QMessageBox::No | QMessageBox::Cancel);
    QCOMPARE(driver.boxes().first().defaultButton, QMessageBox::Save);
    QCOMPARE(env->value(QStringLiteral("window/size")).toSize(), QSize(1111, 777));
    QCOMPARE(env->value(QStringLiteral("window/maximize")).toBool(), false);
    QCOMPARE(QFile::exists(path), answer == QMessageBox::Save);
}

void TestWindow::newOnYesStartsAfresh()
{
    addColour();
    window->on_timelineItem_Clicked(window->currentTimeline->items.first(), false);
    window->hasFile = true;
    window->setWindowTitle(QStringLiteral("Glowsmith - a.gsw3  "));
    DialogDriver driver;
    driver.answerBox(QMessageBox::Yes);
    QVERIFY(window->on_actionNew_triggered());
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().first().defaultButton, QMessageBox::Cancel);
    QCOMPARE(window->timelines.size(), 1);
    QVERIFY(window->currentTimeline->items.isEmpty());
    QVERIFY(window->currentItem == nullptr);
    QVERIFY(window->previewItem == nullptr);
    QVERIFY(ui->NEW_radio->isChecked());
    QCOMPARE(ui->Mode_t1->time(), QTime(0, 0));
    QCOMPARE(ui->Mode_t2->time(), QTime(0, 0, 5));
    QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith"));
    QVERIFY(!window->hasFile);
    QCOMPARE(window->history.index, 0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(whatIsWrong(*window), QString());
    QCOMPARE(window->findChildren<Timeline *>().size(), 1);
}

void TestWindow::newOnCancelForgetsTheFile()
{
    addColour();
    window->hasFile = true;
    DialogDriver driver;
    driver.answerBox(QMessageBox::Cancel);
    QVERIFY(!window->on_actionNew_triggered());
    QVERIFY(driver.done());
    QCOMPARE(window->currentTimeline->items.size(), 1);
    QVERIFY(!window->hasFile);
    QCOMPARE(window->history.index, 0);
    window->on_actionUndo_triggered();
    QCOMPARE(window->currentTimeline->items.size(), 1);
}

void TestWindow::deleteNeedsAnItem()
{
    addColour();
    TimelineItem *item = window->currentTimeline->items.first();
    QTest::keyClick(window.data(), Qt::Key_Delete);
    QCOMPARE(window->currentTimeline->items.size(), 1);
    window->on_timelineItem_Clicked(item, false);
    QTest::keyClick(window.data(), Qt::Key_Delete);
    QVERIFY(window->currentTimeline->items.isEmpty());
    QVERIFY(item->isHidden());
    QVERIFY(item->parentWidget() == nullptr);
    QVERIFY(ui->NEW_radio->isChecked());
    QVERIFY(ui->Saved_status->text().endsWith(QStringLiteral("：0")));
}

void TestWindow::languageIsForTheNextStart()
{
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    ui->actionEnglish->trigger();
    QCOMPARE(driver.boxes().last().text, QStringLiteral("Change after restart."));
    QCOMPARE(env->value(QStringLiteral("main/language")).toInt(), 2);
    driver.answerBox(QMessageBox::Ok);
    ui->actionChinese->trigger();
    QCOMPARE(driver.boxes().last().text, QStringLiteral("重啟程式後生效"));
    QCOMPARE(env->value(QStringLiteral("main/language")).toInt(), 1);
    QVERIFY(driver.done());
}

void TestWindow::firstDroppedFileCounts()
{
    const QString first = env->path(QStringLiteral("a.png"));
    const QString second = env->path(QStringLiteral("b.png"));
    QImage picture(10, 10, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QVERIFY(picture.save(first));
    QVERIFY(picture.save(second));
    ui->Mode_Pic->setCurrentIndex(2);
    drop({QUrl::fromLocalFile(first), QUrl::fromLocalFile(second)});
    QCOMPARE(ui->PicDir->text(), first);
    QCOMPARE(ui->Mode_Pic->currentIndex(), 0);
    drop({QUrl(QStringLiteral("http://localhost/a.png"))}); // no local file: nothing
    QCOMPARE(ui->PicDir->text(), first);
}

void TestWindow::unknownSuffixIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("suffix");
    QTest::newRow("capitals") << QStringLiteral("/a.PNG") << QStringLiteral("PNG");
    QTest::newRow("a picture of another format") << QStringLiteral("/a.bmp") << QStringLiteral("bmp");
}

void TestWindow::unknownSuffixIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, suffix);
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    drop({QUrl::fromLocalFile(name)});
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().first().text, QStringLiteral("無法辨識的副檔名 .") + suffix);
}

void TestWindow::titleMarkTakesTheSecondBlank()
{
    addColour();
    QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith"));
    window->setWindowTitle(QStringLiteral("Glowsmith - a.gsw3  "));
    window->updateStatus();
    QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith - a.gsw3  "));
    addColour();
    QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith - a.gsw3 *"));
    QVERIFY(window->modified);
}

QTEST_MAIN(TestWindow)
#include "test_window.moc"
