// The preview as a widget on a system without OpenGL: the window is painted all the same, the prop spins in it.
#include "app/mainwindow.h"
#include "preview/mygl.h"
#include "support/testenv.h"
#include "support/windowcheck.h"
#include "ui_mainwindow.h"

#include <QApplication>
#include <QPixmap>
#include <QScreen>
#include <QtTest>

class TestSurface : public QObject
{
    Q_OBJECT

private slots:
    void spinsWithoutOpenGL()
    {
        const TestEnv env;
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        MyGL *preview = window.ui->GLWidget;
        QTRY_VERIFY(preview->surface() != preview && preview->surface()->isVisible());
        const QWidget *surface = preview->surface();
        QVERIFY(!preview->isVisible());
        QCOMPARE(surface->minimumSize(), QSize(200, 200));
        QVERIFY(surface->height() >= 200);
        QCOMPARE(surface->parentWidget(), window.ui->frame_6->parentWidget());

        window.ui->Mode_Pic->setCurrentIndex(1);
        window.Oviewer_change(0, 255, 0);
        const qint64 before = preview->stepCount;
        QTRY_VERIFY(preview->stepCount > before + 50);
        // What the user sees: the screen, where there is one.
        const auto seen = [&window](const QPoint &place) {
            const QImage shot = QGuiApplication::platformName() == QLatin1String("offscreen")
                                    ? window.grab().toImage()
                                    : window.screen()->grabWindow(window.winId()).toImage();
            return QColor(shot.pixel(place));
        };
        const QPoint lit(surface->width() / 2 + static_cast<int>(surface->height() * 0.45), surface->height() / 3);
        QTRY_COMPARE(seen(surface->mapTo(&window, lit)), QColor(Qt::green));
        QCOMPARE(seen(surface->mapTo(&window, QPoint(surface->width() - 5, 5))), QColor(Qt::black));
        // The rest of the window is there too: its controls look on the screen as they paint themselves.
        const QPoint corner = window.ui->Add_Button->mapTo(&window, QPoint(3, 3));
        QTRY_COMPARE(seen(corner), QColor(window.grab().toImage().pixel(corner)));
        QVERIFY(seen(corner) != QColor(Qt::black));
        window.ui->Oview_slide->setValue(0);
        window.ui->Oview_slide->setValue(4);
        QCOMPARE(preview->spinSpeed, 4);
        QCOMPARE(whatIsWrong(window), QString());

        const int width = surface->width();
        window.resize(window.size() + QSize(150, 100));
        QTRY_VERIFY(surface->width() > width);
    }

    void aPreviewWithoutParentIsHarmless()
    {
        MyGL preview;
        preview.setPattern(QPixmap(), 80, 1800, 5.0, 1);
        QCOMPARE(preview.columnCount, 5000);
        preview.frameTimeAverage = 12;
        preview.update_fps();
        QCOMPARE(preview.frameTimeShown, 12);
        QCoreApplication::processEvents();
    }
};

int main(int argc, char **argv)
{
    // A remote desktop: windows and no OpenGL.
    qputenv("QT_XCB_GL_INTEGRATION", "none");
    QApplication app(argc, argv);
    TestSurface test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_surface.moc"
