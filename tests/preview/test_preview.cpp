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
    void init()
    {
        env.reset(new TestEnv);
        msPerPixel = 10.0F;
        window.reset(new MainWindow);
        ui = window->ui;
        prop = ui->GLWidget;
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.data()));
    }
    void cleanup()
    {
        window.reset();
        env.reset();
    }

    void picturesReachThePreview()
    {
        window->foreColor = QColor(40, 50, 60);
        ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
        ui->Mode_last->setValue(3.0);
        ui->radio_speed_m->setChecked(true);
        ui->Mode_loop->setValue(4);
        QCOMPARE(prop->columnCount, 750);
        QCOMPARE(prop->patternRepeats, 4);
        QCOMPARE(int(prop->patternLeds), 70);
        QCOMPARE(QColor(prop->pixelAt(0, 0)), QColor(40, 50, 60));
        window->Oviewer_change(1, 2, 3);
        QCOMPARE(QColor(prop->pixelAt(749, 69)), QColor(1, 2, 3));
        window->Oviewer_change();
        QCOMPARE(QColor(prop->pixelAt(0, 0)), QColor(40, 50, 60));
        window->on_Add_Button_clicked();

        QPixmap green(3, 3);
        green.fill(Qt::green);
        window->glpreview_change(false, green, 36, 1, 0.5, 5);
        QCOMPARE(prop->patternImage.size(), QSize(100, 36));
        QCOMPARE(prop->patternRepeats, 5);
        window->previewPattern(window->currentTimeline->items.first(), 5.0);
        QCOMPARE(prop->columnCount, 1250);
        QCOMPARE(QColor(prop->pixelAt(1000, 35)), QColor(40, 50, 60));
        window->previewPattern(nullptr, 1.0);
        QCOMPARE(QColor(prop->pixelAt(0, 35)), QColor(0, 0, 0));
    }

    void speedControls()
    {
        const auto shows = [this](int speed, bool still) {
            return prop->spinSpeed == speed && ui->static_checkbox->isChecked() == still;
        };
        QVERIFY(shows(9, false));
        ui->Oview_slide->setValue(-4);
        QVERIFY(shows(-4, false));
        ui->Oview_slide->setValue(0);
        QVERIFY(shows(0, true));
        ui->static_checkbox->click(); // unchecked with the slider still at 0 stays still
        QVERIFY(shows(0, false));
        ui->Oview_slide->setValue(3);
        QVERIFY(shows(3, false));
        QVERIFY(prop->stepCount < 97); // begins anew after the still picture
        ui->static_checkbox->click();
        QVERIFY(shows(0, true));
        QCOMPARE(ui->Oview_slide->value(), 3);
        ui->Oview_slide->setValue(6);
        QVERIFY(shows(6, false));
    }

    void spinsOnTheScreen()
    {
        ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
        window->Oviewer_change(255, 0, 0);
        const qint64 before = prop->stepCount;
        QTRY_VERIFY_WITH_TIMEOUT(prop->stepCount > before + 1000, 30000); // more than a whole turn
        QCOMPARE(prop->surface(), prop);
        const auto seen = [this](int x, int y) {
            const QPoint place = prop->mapTo(window.data(), QPoint(x, y));
            return QColor(window->screen()->grabWindow(window->winId()).toImage().pixel(place));
        };
        const int w = prop->width();
        const int h = prop->height();
        QTRY_COMPARE(seen(w / 2 + int(h * 0.45), h / 4), QColor(Qt::red)); // the strip
        QTRY_VERIFY(seen(w / 2 - int(h * 0.45), h * 3 / 20).red() > 40);   // the disc, when the bar has passed
        QCOMPARE(seen(w / 2 - int(h * 0.45), h / 2), QColor(Qt::black));   // its centre
        QCOMPARE(seen(w - 3, h - 3), QColor(Qt::black));
        QCOMPARE(seen(3, h - 3), QColor(Qt::black));
        QCOMPARE(whatIsWrong(*window), QString());
        prop->repaintTimer.stop();
        prop->frameTimeAverage = 7;
        QTRY_COMPARE(prop->frameTimeShown, 7);
    }

    void newLedsBlackenTheImages()
    {
        ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
        window->Oviewer_change(0, 255, 0);
        QTRY_COMPARE(prop->stripImage.pixel(200, 100), qRgb(0, 255, 0));
        prop->repaintTimer.stop();
        ui->Leds->setValue(36);
        QCOMPARE(prop->stripImage.pixel(200, 100), qRgb(0, 0, 0));
        QCOMPARE(prop->stepOrigin, qint64(0));
        for (const int leds : {36, 0, 999}) {
            ui->Leds->setValue(leds);
            QCOMPARE(prop->rows(), leds);
            prop->runSteps(50);
        }
    }

private:
    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
    Ui::MainWindow *ui = nullptr;
    MyGL *prop = nullptr;
};

QTEST_MAIN(TestPreview)
#include "test_preview.moc"
