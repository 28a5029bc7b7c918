// The screen capture tool, used with the mouse as a user would. Runs a second time at a scale factor of 2.
#include "render/desktopgrab.h"
#include "render/screencapture.h"
#include "support/dialogdriver.h"
#include "support/pixels.h"
#include "support/windowtest.h"
#include "ui_mainwindow.h"
#include "ui_screencapture.h"

#include <QPainter>
#include <QScreen>
#include <QWindow>
#include <QtTest>

namespace {

// What lies on the desktop: a picture in which no two neighbouring device pixels are alike, so that any blur shows.
class Backdrop : public QWidget
{
public:
    Backdrop()
    {
        setWindowFlags(Qt::FramelessWindowHint);
        setGeometry(200, 150, 400, 300);
        const QSize pixels = size() * devicePixelRatioF();
        picture = painted(pixels.width(), pixels.height(),
                          [](int x, int y) { return qRgb(x * 37 % 256, y * 59 % 256, ((x + y) & 1) * 255); });
        picture.setDevicePixelRatio(devicePixelRatioF());
    }

    QImage picture;

protected:
    void paintEvent(QPaintEvent * /*e*/) override { QPainter(this).drawImage(0, 0, picture); }
};

} // namespace

class TestCapture : public WindowTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        backdrop.reset(new Backdrop);
        ratio = qRound(backdrop->devicePixelRatioF());
        backdrop->show();
        QVERIFY(QTest::qWaitForWindowExposed(backdrop.data()));
    }

    // The window and its floating panel, which stood on what is captured, are not in it. Drags in both directions give
    // the same rectangle. A cancelled save leaves the tool open for the next one.
    void rectangleToFile()
    {
        const QString path = env->path("piece.png");
        const QRect chosen(220, 200, 300, 150);
        QDockWidget *panel = ui->dockWidget_3;
        panel->setFloating(true);
        panel->move(backdrop->pos());
        QVERIFY(QTest::qWaitForWindowExposed(panel));
        QTRY_VERIFY(pieceOf(glow::grabDesktop()).pixel(0, 0) != backdrop->picture.pixel(0, 0));
        const QRect before = window->geometry();
        use([&] {
            QCOMPARE(window->geometry().x(), -before.width());
            QCOMPARE(QApplication::activeModalWidget(), capture);
            QCOMPARE(capture->geometry(), window->screen()->geometry());
            QVERIFY(capture->ui->dockWidget->isFloating() && capture->ui->dockWidget->isVisible());
            QCOMPARE(pieceOf(capture->screenImage), backdrop->picture);
            // A white veil of alpha 150: 105 parts of the picture. It stands on the screen pixel by pixel.
            const auto veiled = [](int channel) { return (channel * 105 + 255 * 150) / 255; };
            const QRgb plain = behind({333, 222});
            QVERIFY(distance(capture->veiledImage.pixel(device({333, 222})),
                             qRgb(veiled(qRed(plain)), veiled(qGreen(plain)), veiled(qBlue(plain)))) <= 1);
            QTRY_COMPARE(pieceOf(glow::grabDesktop()), pieceOf(capture->veiledImage));

            driver.answerFile({});
            driver.answerFile({path});
            for (const auto &[from, to] : {qMakePair(chosen.bottomLeft(), chosen.topRight()),
                                           qMakePair(chosen.topLeft(), chosen.bottomRight())}) {
                QVERIFY(capture->isVisible());
                press(from);
                move(to);
                QCOMPARE(capture->selection, chosen);
                // Clear within, framed in red, veiled outside.
                QCOMPARE(shown({300, 230}), behind({300, 230}));
                QCOMPARE(shown({220, 230}), red);
                QCOMPARE(shown({300, 200}), red);
                QVERIFY(distance(shown({530, 230}), behind({530, 230})) > 20);
                release(to);
            }
            QVERIFY(!capture->isVisible());
        });
        QImage saved = QImage(path).convertToFormat(QImage::Format_RGB32);
        saved.setDevicePixelRatio(ratio); // files do not keep it
        QCOMPARE(saved,
                 backdrop->picture.copy(QRect(device(chosen.topLeft() - backdrop->pos()), chosen.size() * ratio)));
        QCOMPARE(ui->PicDir->text(), path);
        QCOMPARE(window->picturePixmap.size(), QSize(400, 200));
        QVERIFY(window->isVisible() && panel->isVisible() && panel->isFloating());
        QCOMPARE(window->geometry(), before);
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
            tap({320, 300});
            QCOMPARE(drawnAt({320, 300}), black);
            // The painter draws on the image that is shown and saved, though it is shared meanwhile.
            const QImage shared = capture->overlayImage;
            capture->on_clr_BTN_clicked();
            QCOMPARE(qAlpha(drawnAt({320, 300})), 0);
            QCOMPARE(shown({320, 300}), capture->veiledImage.pixel(device({320, 300})));
            capture->on_color_choose_clicked();
            QCOMPARE(tools->color_choose->styleSheet(), QStringLiteral("background-color: rgb(0, 0, 255);"));
            tools->PenSize->setValue(9);
            QCOMPARE(tools->size_slide->value(), 9);
            drag({300, 300}, {400, 300});
            QCOMPARE(drawnAt({350, 303}), blue);
            QCOMPARE(qAlpha(drawnAt({350, 306})), 0);
            QCOMPARE(shown({320, 300}), blue);

            // The cursor is as large as what the tool will leave.
            tools->size_slide->setValue(20);
            QCOMPARE(tools->PenSize->value(), 20);
            QCOMPARE(capture->cursor().pixmap().toImage().pixel(10, 10), blue);
            tools->era_BTN->click();
            drag({350, 280}, {350, 320});
            QCOMPARE(qAlpha(drawnAt({350, 300})), 0);

            tools->cap_BTN->click();
            QCOMPARE(capture->cursor().shape(), Qt::CrossCursor);
            // No button held: a dot of the pen follows the pointer over the veil.
            move({700, 500});
            QCOMPARE(shown({700, 500}), blue);
            move({750, 500});
            QCOMPARE(shown({700, 500}), capture->veiledImage.pixel(device({700, 500})));
            drag({310, 290}, {409, 329});
        });
        const QImage saved(path);
        QCOMPARE(saved.size(), QSize(100, 40) * ratio);
        QCOMPARE(saved.pixel(device({10, 10})), blue);
        QCOMPARE(saved.pixel(device({40, 10})), behind({350, 300}));
        QCOMPARE(saved.pixel(device({10, 30})), behind({320, 320}));
    }

    // A click without a rectangle saves the whole desktop. A suffix that no format has saves nothing. Where the usual
    // folder is missing the dialog starts in another one. Closing the dock ends the tool.
    void mereClick()
    {
        for (const bool saved : {true, false}) {
            const QString path = env->path(saved ? "whole.png" : "piece.unheardof");
            use([&] {
                driver.answerFile({path});
                tap({300, 300});
            });
            QCOMPARE(driver.files().last().directory, QDir::homePath() + (saved ? "/pictures" : "/Pictures"));
            QCOMPARE(driver.files().last().filters, QStringList("*.png"));
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
            QVERIFY(capture != nullptr);
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
    void press(const QPoint &pos) { QTest::mousePress(capture->windowHandle(), Qt::LeftButton, {}, pos); }
    void move(const QPoint &pos) { QTest::mouseMove(capture->windowHandle(), pos); }
    void release(const QPoint &pos) { QTest::mouseRelease(capture->windowHandle(), Qt::LeftButton, {}, pos); }
    void tap(const QPoint &pos)
    {
        press(pos);
        release(pos);
    }
    void drag(const QPoint &from, const QPoint &to)
    {
        press(from);
        move((from + to) / 2);
        move(to);
        release(to);
    }
    // The first device pixel of a logical one.
    QPoint device(const QPoint &pos) const { return pos * ratio; }
    // What the tool shows there.
    QRgb shown(const QPoint &pos) const
    {
        return capture->palette().brush(capture->backgroundRole()).textureImage().pixel(device(pos));
    }
    QRgb drawnAt(const QPoint &pos) const { return capture->overlayImage.pixel(device(pos)); }
    // The piece of a desktop on which the backdrop stands.
    QImage pieceOf(const QImage &picture) const
    {
        return picture.copy(QRect(backdrop->pos() * ratio, backdrop->picture.size()));
    }
    QRgb behind(const QPoint &pos) const { return backdrop->picture.pixel(device(pos - backdrop->pos())); }

    QScopedPointer<Backdrop> backdrop;
    int ratio = 1;
    DialogDriver driver;
    ScreenCapture *capture = nullptr; // while it is open
};

QTEST_MAIN(TestCapture)
#include "test_capture.moc"
