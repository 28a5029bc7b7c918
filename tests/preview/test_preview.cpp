// The preview in the real window: what reaches it, its speed controls, and that it spins on the screen.
#include "app/mainwindow.h"
#include "app/propvalues.h"
#include "preview/mygl.h"
#include "support/testenv.h"
#include "support/windowcheck.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QScreen>
#include <QtTest>

class TestPreview : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void coloursReachThePreview();
    void patternsOfATrackReachThePreview();
    void speedControls();
    void spinsOnTheScreen();
    void newLedsBlackenTheImages();

private:
    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
    Ui::MainWindow *ui = nullptr;
    MyGL *prop = nullptr;
};

void TestPreview::init()
{
    env.reset(new TestEnv);
    msPerPixel = 10.0F;
    window.reset(new MainWindow);
    ui = window->ui;
    prop = ui->GLWidget;
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.data()));
}

void TestPreview::cleanup()
{
    window.reset();
    env.reset();
}

void TestPreview::coloursReachThePreview()
{
    ui->Mode_last->setValue(3.0);
    ui->radio_speed_m->setChecked(true);
    ui->Mode_loop->setValue(4);
    window->Oviewer_change(1, 2, 3);
    QCOMPARE(prop->columnCount, 750);
    QCOMPARE(prop->patternRepeats, 4);
    QCOMPARE(int(prop->patternLeds), 70);
    QCOMPARE(QColor(prop->pixelAt(749, 69)), QColor(1, 2, 3));
    window->foreColor = QColor(40, 50, 60);
    window->Oviewer_change();
    QCOMPARE(QColor(prop->pixelAt(0, 0)), QColor(40, 50, 60));
    QPixmap green(3, 3);
    green.fill(Qt::green);
    window->glpreview_change(false, green, 36, 1, 0.5, 5);
    QCOMPARE(prop->patternImage.size(), QSize(100, 36));
    QCOMPARE(prop->patternRepeats, 5);
}

void TestPreview::patternsOfATrackReachThePreview()
{
    window->foreColor = QColor(200, 0, 100);
    ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
    ui->radio_speed_m->setChecked(true);
    ui->Mode_loop->setValue(2);
    window->on_Add_Button_clicked();
    window->Oviewer_change(0, 0, 0);
    const TimelineItem *item = window->currentTimeline->items.first();
    window->previewPattern(item, 5.0);
    QCOMPARE(prop->columnCount, 2500);
    QCOMPARE(QColor(prop->pixelAt(1000, 35)), QColor(200, 0, 100));
    window->previewPattern(nullptr, 1.0);
    QCOMPARE(QColor(prop->pixelAt(0, 35)), QColor(0, 0, 0));
}

void TestPreview::speedControls()
{
    QCOMPARE(prop->spinSpeed, 9);
    QVERIFY(!ui->static_checkbox->isChecked());
    ui->Oview_slide->setValue(-4);
    QCOMPARE(prop->spinSpeed, -4);
    QVERIFY(!ui->static_checkbox->isChecked());
    ui->Oview_slide->setValue(0);
    QVERIFY(ui->static_checkbox->isChecked());
    QCOMPARE(prop->spinSpeed, 0);
    ui->static_checkbox->click(); // unchecked with the slider still at 0 stays still
    QCOMPARE(prop->spinSpeed, 0);
    ui->Oview_slide->setValue(3);
    QCOMPARE(prop->spinSpeed, 3);
    QVERIFY(prop->stepCount < 97); // begins anew after the still picture
    ui->static_checkbox->click();
    QVERIFY(ui->static_checkbox->isChecked());
    QCOMPARE(prop->spinSpeed, 0);
    QCOMPARE(ui->Oview_slide->value(), 3);
    ui->static_checkbox->click();
    QCOMPARE(prop->spinSpeed, 3);
    ui->Oview_slide->setValue(6);
    QVERIFY(!ui->static_checkbox->isChecked());
}

void TestPreview::spinsOnTheScreen()
{
    ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
    window->foreColor = QColor(255, 0, 0);
    window->Oviewer_change();
    const qint64 before = prop->stepCount;
    QTRY_VERIFY(prop->stepCount > before + 1000); // more than a whole turn
    const QWidget *surface = prop->surface();
    QCOMPARE(surface, prop);
    const auto seen = [&](const QPoint &at) {
        const QPoint place = surface->mapTo(window.data(), at);
        return QColor(window->screen()->grabWindow(window->winId()).toImage().pixel(place));
    };
    const int w = surface->width();
    const int h = surface->height();
    QTRY_COMPARE(seen(QPoint(w / 2 + int(h * 0.45), h / 4)), QColor(Qt::red)); // the strip
    QTRY_VERIFY(seen(QPoint(w / 2 - int(h * 0.45), h * 3 / 20)).red() > 40);   // the disc, when the bar has passed
    QCOMPARE(seen(QPoint(w / 2 - int(h * 0.45), h / 2)), QColor(Qt::black));   // its centre
    QCOMPARE(seen(QPoint(w - 3, h - 3)), QColor(Qt::black));
    QCOMPARE(seen(QPoint(3, h - 3)), QColor(Qt::black));
    QTRY_VERIFY(prop->frameTimeShown < 60); // half a second later
    QCOMPARE(whatIsWrong(*window), QString());
}

void TestPreview::newLedsBlackenTheImages()
{
    ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
    window->Oviewer_change(0, 255, 0);
    QTRY_COMPARE(prop->stripImage.pixel(200, 100), qRgb(0, 255, 0));
    prop->repaintTimer.stop();
    ui->Leds->setValue(36);
    QCOMPARE(prop->stripImage.pixel(200, 100), qRgb(0, 0, 0));
    QCOMPARE(prop->stepOrigin, qint64(0));
    QCOMPARE(prop->rows(), 36);
    ui->Leds->setValue(0);
    QCOMPARE(prop->rows(), 0);
    prop->runSteps(50);
    ui->Leds->setValue(999);
    prop->runSteps(50);
    QCOMPARE(prop->rows(), 999);
}

QTEST_MAIN(TestPreview)
#include "test_preview.moc"
