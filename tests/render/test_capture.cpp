// The screen capture tool, used with the mouse as a user would. Runs a second time at a scale factor of 2.
#include "render/desktopgrab.h"
#include "render/screencapture.h"
#include "support/pixels.h"
#include "support/windowtest.h"
#include "ui_screencapture.h"

#include <QLabel>
#include <QScreen>
#include <QWindow>

class TestCapture : public WindowTest
{
    Q_OBJECT

private slots:
    // On the desktop lies a picture in which no two neighbouring device pixels are alike, so that any blur shows.
    void initTestCase()
    {
        backdrop.setWindowFlags(Qt::FramelessWindowHint);
        backdrop.setGeometry(200, 150, 400, 300);
        ratio = qRound(backdrop.devicePixelRatioF());
        picture = painted(400 * ratio, 300 * ratio,
                          [](int x, int y) { return qRgb(x * 37 % 256, y * 59 % 256, ((x + y) & 1) * 255); });
        picture.setDevicePixelRatio(ratio);
        backdrop.setPixmap(QPixmap::fromImage(picture));
        backdrop.show();
        QVERIFY(QTest::qWaitForWindowExposed(&backdrop));
    }

    // The window and its floating panel, which stood on what is captured, are not in it. Drags in both directions give
    // the same rectangle. A cancelled save leaves the tool open for the next one.
    void rectangleToFile()
    {
        const QString path = env->path("piece.png");
        const QRect chosen(220, 200, 300, 150);
        QDockWidget *panel = ui->dockWidget_3;
        panel->setFloating(true);
        panel->move(backdrop.pos());
        QVERIFY(QTest::qWaitForWindowExposed(panel));
        QTRY_VERIFY(pieceOf(glow::grabDesktop()).pixel(0, 0) != picture.pixel(0, 0));
        const QRect before = window->geometry();
        use([&] {
            QCOMPARE(window->geometry().x(), -before.width());
            QCOMPARE(capture->geometry(), window->screen()->geometry());
            QCOMPARE(pieceOf(capture->screenImage), picture);
            // A white veil of alpha 150: 105 parts of the picture. It stands on the screen pixel by pixel.
            const auto veiled = [](int channel) { return (channel * 105 + 255 * 150) / 255; };
            const QRgb plain = behind({333, 222});
            QVERIFY(distance(shown({333, 222}),
                             qRgb(veiled(qRed(plain)), veiled(qGreen(plain)), veiled(qBlue(plain)))) <= 1);
            QTRY_COMPARE(pieceOf(glow::grabDesktop()), pieceOf(capture->veiledImage));

            driver.answerFile({});
            driver.answerFile({path});
            for (const auto &[from, to] : {qMakePair(chosen.bottomLeft(), chosen.topRight()),
                                           qMakePair(chosen.topLeft(), chosen.bottomRight())}) {
                QVERIFY(capture->isVisible());
                QTest::mousePress(capture->windowHandle(), Qt::LeftButton, {}, from);
                move(to);
                QCOMPARE(capture->selection, chosen);
                // Clear within, framed in red, veiled outside.
                QCOMPARE(shown({300, 230}), behind({300, 230}));
                QVERIFY(shown({220, 230}) == red && shown({300, 200}) == red);
                QVERIFY(distance(shown({530, 230}), behind({530, 230})) > 20);
                QTest::mouseRelease(capture->windowHandle(), Qt::LeftButton, {}, to);
            }
            QVERIFY(!capture->isVisible());
        });
        const QPoint corner = (chosen.topLeft() - backdrop.pos()) * ratio;
        QCOMPARE(QImage(path).convertToFormat(QImage::Format_RGB32),
                 painted(300 * ratio, 150 * ratio, [&](int x, int y) { return picture.pixel(corner + QPoint(x, y)); }));
        QCOMPARE(ui->PicDir->text(), path);
        QVERIFY(window->geometry() == before && window->isVisible() && panel->isVisible() && panel->isFloating());
        QVERIFY(QGuiApplication::quitOnLastWindowClosed());
    }

    // Pen, eraser and clearing; the drawing is saved along, within the rectangle.
    void drawing()
    {
        const QString path = env->path("drawn.png");
        use([&] {
            const Ui::ScreenCapture *tools = capture->ui;
            driver.answerColor(QColor());
            driver.answerColor(Qt::blue);
            driver.answerFile({path});
            // A cancelled choice leaves an invalid colour, which draws black.
            capture->on_color_choose_clicked();
            tools->pen_BTN->click();
            drag({320, 300}, {320, 300});
            QCOMPARE(drawnAt({320, 300}), black);
            // The painter draws on the image that is shown and saved, though it is shared meanwhile.
            const QImage shared = capture->overlayImage;
            capture->on_clr_BTN_clicked();
            QVERIFY(drawnAt({320, 300}) == 0 && shown({320, 300}) != black);
            capture->on_color_choose_clicked();
            tools->PenSize->setValue(9);
            drag({300, 300}, {400, 300});
            QVERIFY(drawnAt({350, 303}) == blue && drawnAt({350, 306}) == 0 && shown({320, 300}) == blue);

            // The cursor is as large as what the tool will leave.
            QCOMPARE(tools->size_slide->value(), 9);
            tools->size_slide->setValue(20);
            QCOMPARE(tools->PenSize->value(), 20);
            QCOMPARE(capture->cursor().pixmap().toImage().pixel(10, 10), blue);
            tools->era_BTN->click();
            drag({350, 280}, {350, 320});
            QCOMPARE(drawnAt({350, 300}), 0U);

            tools->cap_BTN->click();
            QCOMPARE(capture->cursor().shape(), Qt::CrossCursor);
            // No button held: a dot of the pen follows the pointer over the veil.
            move({700, 500});
            QCOMPARE(shown({700, 500}), blue);
            move({750, 500});
            QVERIFY(shown({700, 500}) != blue);
            drag({310, 290}, {409, 329});
        });
        const QImage saved(path);
        QCOMPARE(saved.pixel(QPoint(10, 10) * ratio), blue);
        QCOMPARE(saved.pixel(QPoint(40, 10) * ratio), behind({350, 300}));
        QCOMPARE(saved.pixel(QPoint(10, 30) * ratio), behind({320, 320}));
    }

    // A click without a rectangle saves the whole desktop. A suffix that no format has saves nothing. Where the usual
    // folder is missing the dialog starts in another one. Closing the dock ends the tool.
    void mereClick()
    {
        for (const bool saved : {true, false}) {
            const QString path = env->path(saved ? "whole.png" : "piece.unheardof");
            use([&] {
                driver.answerFile({path});
                drag({300, 300}, {300, 300});
            });
            QCOMPARE(driver.files().last().directory, QDir::homePath() + (saved ? "/pictures" : "/Pictures"));
            QCOMPARE(QImage(path).size(), saved ? window->screen()->size() * ratio : QSize(0, 0));
            QVERIFY(QDir::home().rename(saved ? "pictures" : "gone", saved ? "gone" : "pictures"));
        }
        use([] {});
        QCOMPARE(ui->PicDir->text(), env->path("whole.png"));
    }

private:
    // Presses the window's button; the gestures are what the user does in the tool. Ends it by its dock when they did
    // not.
    void use(const std::function<void()> &gestures)
    {
        driver.answerWith([&](QDialog *dialog) {
            capture = qobject_cast<ScreenCapture *>(dialog);
            driver.overlook(capture);
            QTimer::singleShot(0, capture, [&] {
                gestures();
                capture->ui->dockWidget->close();
            });
        });
        ui->Pic_Capture->click();
        driver.overlook(nullptr);
        QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(';')));
    }
    void move(const QPoint &pos) { QTest::mouseMove(capture->windowHandle(), pos); }
    void drag(const QPoint &from, const QPoint &to)
    {
        QTest::mousePress(capture->windowHandle(), Qt::LeftButton, {}, from);
        for (int part = 1; from != to && part <= 2; ++part)
            move(from + (to - from) * part / 2);
        QTest::mouseRelease(capture->windowHandle(), Qt::LeftButton, {}, to);
    }
    // What the tool shows at the first device pixel of a logical one; what was drawn there; what lies behind.
    QRgb shown(const QPoint &pos) const
    {
        return capture->palette().brush(capture->backgroundRole()).textureImage().pixel(pos * ratio);
    }
    QRgb drawnAt(const QPoint &pos) const { return capture->overlayImage.pixel(pos * ratio); }
    QRgb behind(const QPoint &pos) const { return picture.pixel((pos - backdrop.pos()) * ratio); }
    // The piece of a desktop on which the backdrop stands.
    QImage pieceOf(const QImage &desktop) const { return desktop.copy(QRect(backdrop.pos() * ratio, picture.size())); }

    QLabel backdrop;
    QImage picture;
    int ratio = 1;
    DialogDriver driver;
    ScreenCapture *capture = nullptr; // while it is open
};

QTEST_MAIN(TestCapture)
#include "test_capture.moc"
