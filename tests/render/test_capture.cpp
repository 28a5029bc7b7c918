// The screen capture tool, used with the mouse as a user would. Runs a second time at a scale factor of 2.
#include "app/mainwindow.h"
#include "app/propvalues.h"
#include "render/desktopgrab.h"
#include "render/screencapture.h"
#include "support/dialogdriver.h"
#include "support/pixels.h"
#include "support/testenv.h"
#include "ui_mainwindow.h"
#include "ui_screencapture.h"

#include <QPainter>
#include <QScreen>
#include <QSignalSpy>
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

class TestCapture : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        backdrop.reset(new Backdrop);
        ratio = qRound(backdrop->devicePixelRatioF());
        desktop = QGuiApplication::primaryScreen()->size();
        backdrop->show();
        QVERIFY(QTest::qWaitForWindowExposed(backdrop.data()));
    }

    void init()
    {
        // The windows before must have left the screen, or they stand in the next picture.
        fresh.reset();
        QTRY_COMPARE(pieceOf(glow::grabDesktop()), backdrop->picture);
        fresh.reset(new ScreenCapture(nullptr));
        capture = fresh.data();
        taken.reset(new QSignalSpy(capture, &ScreenCapture::callback));
        driver.reset(new DialogDriver);
        driver->overlook(capture);
    }

    void cleanup()
    {
        fresh.reset();
        QVERIFY2(driver->done(), qPrintable(driver->unexpected.join(QLatin1Char(';'))));
    }

    // Drags in both directions give the same rectangle. A cancelled save leaves the tool open for the next one.
    void rectangleToFile()
    {
        QCOMPARE(pieceOf(capture->screenImage), backdrop->picture);
        // A white veil of alpha 150: 105 parts of the picture.
        const auto veiled = [](int channel) { return (channel * 105 + 255 * 150) / 255; };
        const QRgb plain = behind({333, 222});
        QVERIFY(distance(capture->veiledImage.pixel(device({333, 222})),
                         qRgb(veiled(qRed(plain)), veiled(qGreen(plain)), veiled(qBlue(plain)))) <= 1);

        const QRect chosen(250, 200, 100, 60);
        const QString path = env.path(QStringLiteral("piece.png"));
        driver->answerFile({});
        driver->answerFile({path});
        use([&] {
            QCOMPARE(QApplication::activeModalWidget(), capture);
            QCOMPARE(capture->geometry(), QRect(QPoint(0, 0), desktop));
            QVERIFY(capture->ui->dockWidget->isFloating() && capture->ui->dockWidget->isVisible());
            for (const auto &[from, to] : {qMakePair(chosen.bottomLeft(), chosen.topRight()),
                                           qMakePair(chosen.topLeft(), chosen.bottomRight())}) {
                QVERIFY(capture->isVisible() && taken->isEmpty());
                press(from);
                move(to);
                QCOMPARE(capture->selection, chosen);
                // Clear within, framed in red, veiled outside.
                QCOMPARE(shown({300, 230}), behind({300, 230}));
                QCOMPARE(shown({250, 230}), red);
                QCOMPARE(shown({300, 200}), red);
                QVERIFY(distance(shown({400, 230}), behind({400, 230})) > 20);
                release(to);
            }
            QVERIFY(!capture->isVisible());
        });
        QCOMPARE(driver->files().at(0).title, QStringLiteral("儲存圖片"));
        QCOMPARE(driver->files().at(0).filters, QStringList(QStringLiteral("*.png")));
        QCOMPARE(*taken, QList<QVariantList>{{path}});
        QVERIFY(isPiece(path, chosen));
    }

    // Pen, eraser and clearing; the drawing is saved along, within the rectangle.
    void drawing()
    {
        const QString path = env.path(QStringLiteral("drawn.png"));
        const Ui::ScreenCapture *ui = capture->ui;
        driver->answerColor(QColor());
        driver->answerColor(Qt::blue);
        driver->answerFile({path});
        use([&] {
            // A cancelled choice leaves an invalid colour, which draws black.
            capture->on_color_choose_clicked();
            QCOMPARE(capture->cursor().shape(), Qt::CrossCursor);
            ui->pen_BTN->click();
            tap({320, 300});
            QCOMPARE(drawnAt({320, 300}), black);
            // The painter draws on the image that is shown and saved, though it is shared meanwhile.
            const QImage shared = capture->overlayImage;
            capture->on_clr_BTN_clicked();
            QCOMPARE(qAlpha(drawnAt({320, 300})), 0);
            QCOMPARE(shown({320, 300}), capture->veiledImage.pixel(device({320, 300})));
            capture->on_color_choose_clicked();
            QCOMPARE(ui->color_choose->styleSheet(), QStringLiteral("background-color: rgb(0, 0, 255);"));
            ui->PenSize->setValue(9);
            QCOMPARE(ui->size_slide->value(), 9);
            drag({300, 300}, {400, 300});
            QCOMPARE(drawnAt({350, 303}), blue);
            QCOMPARE(qAlpha(drawnAt({350, 306})), 0);
            QCOMPARE(shown({320, 300}), blue);

            // The cursor is as large as what the tool will leave.
            ui->size_slide->setValue(20);
            QCOMPARE(ui->PenSize->value(), 20);
            const auto cursor = [this] { return capture->cursor().pixmap().toImage(); };
            QCOMPARE(cursor().size(), QSize(21, 21));
            QCOMPARE(cursor().pixel(10, 10), blue);
            ui->era_BTN->click();
            QCOMPARE(qAlpha(cursor().pixel(10, 10)), 0); // a ring
            drag({350, 280}, {350, 320});
            QCOMPARE(qAlpha(drawnAt({350, 300})), 0);

            ui->cap_BTN->click();
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

    // A click without a rectangle saves the whole desktop. A suffix that no format has saves nothing, and the path is
    // passed on all the same. Where the usual folder is missing the dialog starts in another one.
    void mereClick()
    {
        for (const bool saved : {true, false}) {
            init();
            const QString path = env.path(saved ? QStringLiteral("whole.png") : QStringLiteral("piece.unheardof"));
            driver->answerFile({path});
            use([this] { tap({300, 300}); });
            QCOMPARE(driver->files().at(0).directory, QDir::homePath() + (saved ? "/pictures" : "/Pictures"));
            QCOMPARE(*taken, QList<QVariantList>{{path}});
            QCOMPARE(QImage(path).size(), saved ? desktop * ratio : QSize(0, 0));
            QVERIFY(driver->done());
            QVERIFY(QDir::home().rename(saved ? "pictures" : "gone", saved ? "gone" : "pictures"));
        }
        init();
        use([] {}); // closing the dock ends the tool
        QVERIFY(taken->isEmpty());
    }

    // The whole way: the button, a rectangle with the mouse, the file, and the picture in the editor. The window and
    // its floating panel, which stood on what was captured, are not in it.
    void fromTheWindow()
    {
        const QString path = env.path(QStringLiteral("taken.png"));
        const QRect chosen(220, 200, 300, 150);
        fresh.reset();
        driver->overlook(nullptr);
        if (desktop.width() < 1280 || desktop.height() < 720) {
            driver->answerBox(QMessageBox::Ok); // the window says so when it is built
        }
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QDockWidget *panel = window.ui->dockWidget_3;
        panel->setFloating(true);
        panel->move(backdrop->pos());
        QVERIFY(QTest::qWaitForWindowExposed(panel));
        const QRect before = window.geometry();
        QTRY_VERIFY(pieceOf(glow::grabDesktop()).pixel(0, 0) != backdrop->picture.pixel(0, 0));

        bool covered = false;
        driver->answerWith([&](QDialog *dialog) {
            capture = qobject_cast<ScreenCapture *>(dialog);
            QVERIFY(capture != nullptr);
            QCOMPARE(window.geometry().x(), -before.width());
            driver->overlook(capture);
            driver->answerFile({path});
            QTimer::singleShot(0, capture, [&] {
                covered =
                    QTest::qWaitFor([&] { return pieceOf(glow::grabDesktop()) == pieceOf(capture->veiledImage); });
                drag(chosen.topLeft(), chosen.bottomRight());
                capture->close();
            });
        });
        window.ui->Pic_Capture->click();
        QVERIFY2(covered, "the screen does not show, pixel by pixel, what the tool means to show");
        QVERIFY(isPiece(path, chosen));
        QCOMPARE(window.ui->PicDir->text(), path);
        QCOMPARE(window.picturePixmap.size(), QSize(400, 200));
        QVERIFY(window.isVisible() && panel->isVisible() && panel->isFloating());
        QCOMPARE(window.geometry(), before);
        QVERIFY(QGuiApplication::quitOnLastWindowClosed());
    }

private:
    // Runs the tool as the window does, with the gestures inside; ends it by its dock when they did not.
    void use(const std::function<void()> &gestures)
    {
        QTimer::singleShot(0, capture, [this, gestures] {
            gestures();
            capture->ui->dockWidget->close();
        });
        capture->exec();
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
    // That a saved file is this piece of the backdrop, pixel by pixel.
    bool isPiece(const QString &path, const QRect &piece) const
    {
        QImage saved = QImage(path).convertToFormat(QImage::Format_RGB32);
        saved.setDevicePixelRatio(ratio); // files do not keep it
        return saved == backdrop->picture.copy(QRect(device(piece.topLeft() - backdrop->pos()), piece.size() * ratio));
    }

    TestEnv env;
    QScopedPointer<Backdrop> backdrop;
    int ratio = 1;
    QSize desktop;
    // Each function's own.
    QScopedPointer<DialogDriver> driver;
    QScopedPointer<ScreenCapture> fresh;
    QScopedPointer<QSignalSpy> taken;
    ScreenCapture *capture = nullptr; // the fresh one or the window's
};

QTEST_MAIN(TestCapture)
#include "test_capture.moc"
