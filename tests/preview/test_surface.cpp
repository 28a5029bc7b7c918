// The preview as a widget on a system without OpenGL: the window is painted all the same, the prop spins in it.
#include "app/mainwindow.h"
#include "preview/mygl.h"
#include "support/testenv.h"
#include "support/windowcheck.h"
#include "ui_mainwindow.h"

#include <QApplication>
#include <QLabel>
#include <QPixmap>
#include <QScreen>
#include <QVBoxLayout>
#include <QtTest>

class TestSurface : public QObject
{
    Q_OBJECT

private slots:
    void spinsWithoutOpenGL();
    void aPreviewWithoutParentIsHarmless();
    void theWholeWindowStands();
};

void TestSurface::spinsWithoutOpenGL()
{
    QWidget window;
    QVBoxLayout column(&window);
    auto *label = new QLabel;
    label->setStyleSheet(QStringLiteral("background: rgb(0, 0, 255);"));
    label->setFixedHeight(50);
    auto *preview = new MyGL(&window);
    column.addWidget(label);
    column.addWidget(preview, 1);
    window.resize(700, 400);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    QTRY_VERIFY(preview->surface() != preview && preview->surface()->isVisible());
    QWidget *surface = preview->surface();
    QVERIFY(!preview->isVisible());
    QCOMPARE(column.indexOf(surface), 1);
    QCOMPARE(surface->minimumSize(), QSize(200, 200));
    QVERIFY(surface->height() > 300 && surface->width() > 600);

    QPixmap red(2, 2);
    red.fill(Qt::red);
    preview->setPattern(red, 80, 1800, 0.1, 1);
    QCOMPARE(preview->columnCount, 100);
    const qint64 before = preview->stepCount;
    QTRY_VERIFY(preview->stepCount > before + 50);

    // What the user sees: the screen, where there is one.
    const QPoint lit(surface->width() / 2 + static_cast<int>(surface->height() * 0.45), surface->height() / 3);
    const auto seen = [&](const QWidget *widget, const QPoint &at) {
        const QPoint place = widget->mapTo(&window, at);
        const QImage shot = QGuiApplication::platformName() == QLatin1String("offscreen")
                                ? window.grab().toImage()
                                : window.screen()->grabWindow(window.winId()).toImage();
        return QColor(shot.pixel(place));
    };
    QTRY_COMPARE(seen(surface, lit), QColor(Qt::red));
    QTRY_COMPARE(seen(label, QPoint(20, 20)), QColor(Qt::blue));
    QCOMPARE(seen(surface, QPoint(surface->width() - 5, 5)), QColor(Qt::black));

    window.resize(900, 600);
    QTRY_VERIFY(surface->width() > 800 && surface->height() > 500);
}

void TestSurface::aPreviewWithoutParentIsHarmless()
{
    MyGL preview;
    preview.setPattern(QPixmap(), 80, 1800, 5.0, 1);
    QCOMPARE(preview.columnCount, 5000);
    preview.frameTimeAverage = 12;
    preview.update_fps();
    QCOMPARE(preview.frameTimeShown, 12);
    QCoreApplication::processEvents();
}

void TestSurface::theWholeWindowStands()
{
    const TestEnv env;
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    MyGL *preview = window.ui->GLWidget;
    QTRY_VERIFY(preview->surface() != preview && preview->surface()->isVisible());
    QVERIFY(preview->surface()->height() >= 200);
    QCOMPARE(preview->surface()->parentWidget(), window.ui->frame_6->parentWidget());
    window.ui->Mode_Pic->setCurrentIndex(1);
    window.Oviewer_change(0, 255, 0);
    const QWidget *surface = preview->surface();
    const auto seen = [&](const QPoint &place) {
        const QImage shot = QGuiApplication::platformName() == QLatin1String("offscreen")
                                ? window.grab().toImage()
                                : window.screen()->grabWindow(window.winId()).toImage();
        return QColor(shot.pixel(place));
    };
    const QPoint lit(surface->width() / 2 + static_cast<int>(surface->height() * 0.45), surface->height() / 3);
    QTRY_COMPARE(seen(surface->mapTo(&window, lit)), QColor(Qt::green));
    // The rest of the window is there too: its controls look on the screen as they paint themselves.
    const QPoint corner = window.ui->Add_Button->mapTo(&window, QPoint(3, 3));
    QTRY_COMPARE(seen(corner), QColor(window.grab().toImage().pixel(corner)));
    QVERIFY(seen(corner) != QColor(Qt::black));
    window.ui->Oview_slide->setValue(0);
    window.ui->Oview_slide->setValue(4);
    QCOMPARE(preview->spinSpeed, 4);
    QCOMPARE(whatIsWrong(window), QString());
}

int main(int argc, char **argv)
{
    // A remote desktop: windows and no OpenGL.
    qputenv("QT_XCB_GL_INTEGRATION", "none");
    QApplication app(argc, argv);
    TestSurface test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_surface.moc"
