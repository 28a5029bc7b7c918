// The preview in the real window: what reaches it, its speed controls, and that it spins on the screen. Runs a second
// time as on a remote desktop without OpenGL, where a plain widget stands in for it.
#include "preview/mygl.h"
#include "show/model/propvalues.h"
#include "support/pixels.h"
#include "support/windowtest.h"

#include <QScreen>

class TestPreview : public WindowTest
{
    Q_OBJECT

private slots:
    void picturesReachThePreview()
    {
        const MyGL *prop = ui->GLWidget;
        window->foreColor = green;
        ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
        ui->Mode_last->setValue(3.0);
        ui->Mode_loop->setValue(4);
        window->Oviewer_change();
        QCOMPARE(prop->pixelAt(749, 69), green);
        window->on_Add_Button_clicked();
        window->glpreview_change(false, window->textPixmap, 36, 1, 0.5, 5);
        QCOMPARE(prop->patternImage.size(), QSize(100, 36));
        window->previewPattern(*window->currentTimeline->items.first(), 5.0);
        QCOMPARE(prop->columnCount, 1250);

        // Another number of LEDs begins anew.
        QTRY_COMPARE(prop->stripImage.pixel(200, 100), green);
        ui->Leds->setValue(36);
        QCOMPARE(prop->stripImage.pixel(200, 100), black);
        QCOMPARE(prop->stepOrigin, qint64(0));
    }

    void speedControls()
    {
        const auto shows = [this](int speed, bool still) {
            return ui->GLWidget->spinSpeed == speed && ui->static_checkbox->isChecked() == still;
        };
        QVERIFY(shows(9, false));
        ui->Oview_slide->setValue(0);
        QVERIFY(shows(0, true));
        ui->static_checkbox->click(); // unchecked with the slider still at 0 stays still
        QVERIFY(shows(0, false));
        ui->Oview_slide->setValue(-3);
        QVERIFY(shows(-3, false));
        ui->static_checkbox->click();
        QVERIFY(shows(0, true));
        ui->static_checkbox->click();
        QVERIFY(shows(-3, false));
    }

    void spinsOnTheScreen()
    {
        MyGL *prop = ui->GLWidget;
        ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
        window->Oviewer_change(255, 0, 0);
        const bool raster = qgetenv("QT_XCB_GL_INTEGRATION") == "none";
        QWidget *surface = prop->surface();
        QVERIFY(surface->isVisible() && (raster ? surface != prop && !prop->isVisible() : surface == prop));
        const auto onScreen = [this](const QPoint &place) {
            return window->screen()->grabWindow(window->winId()).toImage().pixel(place) | 0xff000000U;
        };
        const auto seen = [&](int x, int y) { return onScreen(surface->mapTo(window.data(), QPoint(x, y))); };
        const int w = surface->width();
        const int h = surface->height();
        QTRY_COMPARE_WITH_TIMEOUT(seen(w / 2 + int(h * 0.45), h / 4), red, 30000);           // the strip
        QTRY_VERIFY_WITH_TIMEOUT(qRed(seen(w / 2 - int(h * 0.45), h * 3 / 20)) > 40, 30000); // the disc behind the bar
        QCOMPARE(seen(w / 2 - int(h * 0.45), h / 2), black);                                 // its centre
        QCOMPARE(seen(w - 3, h - 3), black);
        // The rest of the window is there too: its controls look on the screen as they paint themselves.
        const QPoint corner = ui->Add_Button->mapTo(window.data(), QPoint(3, 3));
        QTRY_COMPARE(onScreen(corner), window->grab().toImage().pixel(corner) | 0xff000000U);
        QVERIFY(onScreen(corner) != black);
        window->resize(window->size() + QSize(150, 100));
        QTRY_VERIFY(surface->width() > w);
        surface->hide(); // or each frame would change the mean
        prop->frameTimeAverage = 7;
        QTRY_COMPARE(prop->frameTimeShown, 7);
    }
};

QTEST_MAIN(TestPreview)
#include "test_preview.moc"
