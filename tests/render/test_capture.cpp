// The screen capture tool, used with the mouse as a user would. Runs a second time at a scale factor of 2.
#include "app/mainwindow.h"
#include "app/propvalues.h"
#include "render/desktopgrab.h"
#include "render/screencapture.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "ui_mainwindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QDockWidget>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <QWindow>

#include <functional>

namespace {

// What lies on the desktop: a picture in which no two neighbouring device pixels are alike, so that any blur shows.
class Backdrop : public QWidget
{
public:
    Backdrop()
    {
        setWindowFlags(Qt::FramelessWindowHint);
        setGeometry(200, 150, 400, 300);
        picture = QImage(size() * devicePixelRatioF(), QImage::Format_RGB32);
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                picture.setPixel(x, y, qRgb(x * 37 % 256, y * 59 % 256, ((x + y) & 1) * 255));
            }
        }
        picture.setDevicePixelRatio(devicePixelRatioF());
    }

    QImage picture;
    int presses = 0;

protected:
    void paintEvent(QPaintEvent * /*e*/) override { QPainter(this).drawImage(0, 0, picture); }
    void mousePressEvent(QMouseEvent * /*e*/) override { ++presses; }
};

int distance(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
}

} // namespace

class TestCapture : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void standsOverTheDesktop();
    void rectangleToFile();
    void drawing();
    void mereClick();
    void tools();
    void fromTheWindow();

private:
    // Runs the tool as the window does, with the gestures inside; ends it when they did not.
    static void use(ScreenCapture &capture, const std::function<void()> &gestures)
    {
        QTimer::singleShot(0, &capture, [&capture, gestures] {
            gestures();
            capture.close();
        });
        capture.exec();
    }
    static void press(ScreenCapture &capture, const QPoint &pos)
    {
        QTest::mousePress(capture.windowHandle(), Qt::LeftButton, {}, pos);
    }
    static void move(ScreenCapture &capture, const QPoint &pos) { QTest::mouseMove(capture.windowHandle(), pos); }
    static void release(ScreenCapture &capture, const QPoint &pos)
    {
        QTest::mouseRelease(capture.windowHandle(), Qt::LeftButton, {}, pos);
    }
    static void drag(ScreenCapture &capture, const QPoint &from, const QPoint &to)
    {
        press(capture, from);
        move(capture, (from + to) / 2);
        move(capture, to);
        release(capture, to);
    }
    template <typename Widget = QAbstractButton> static Widget *tool(ScreenCapture &capture, const char *name)
    {
        return capture.findChild<Widget *>(QLatin1String(name));
    }
    // The first device pixel of a logical one.
    QPoint device(const QPoint &pos) const { return pos * ratio; }
    // What the tool shows there.
    QColor shown(const ScreenCapture &capture, const QPoint &pos) const
    {
        return capture.palette().brush(capture.backgroundRole()).textureImage().pixelColor(device(pos));
    }
    QColor drawnAt(const ScreenCapture &capture, const QPoint &pos) const
    {
        return capture.overlayImage.pixelColor(device(pos));
    }
    // The piece of a desktop on which the backdrop stands.
    QImage pieceOf(const QImage &desktop) const
    {
        return desktop.copy(QRect(backdrop->pos() * ratio, backdrop->picture.size()));
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
};

void TestCapture::initTestCase()
{
    backdrop.reset(new Backdrop);
    ratio = qRound(backdrop->devicePixelRatioF());
    QCOMPARE(double(ratio), backdrop->devicePixelRatioF());
    backdrop->show();
    QVERIFY(QTest::qWaitForWindowExposed(backdrop.data()));
}

// The windows before must have left the screen, or they stand in the next picture.
void TestCapture::init()
{
    QTRY_COMPARE(pieceOf(glow::grabDesktop()), backdrop->picture);
}

void TestCapture::standsOverTheDesktop()
{
    ScreenCapture capture(nullptr);
    const QSignalSpy spy(&capture, &ScreenCapture::callback);
    const QSize desktop = QGuiApplication::primaryScreen()->size();
    QCOMPARE(capture.screenImage.size(), desktop * ratio);
    QCOMPARE(capture.overlayImage.size(), desktop * ratio);
    QCOMPARE(capture.overlayImage.format(), QImage::Format_ARGB32);
    QCOMPARE(pieceOf(capture.screenImage), backdrop->picture);
    // A white veil of alpha 150: 105 parts of the picture.
    for (const QPoint &pos : {QPoint(200, 150), QPoint(333, 222), QPoint(599, 449)}) {
        const QRgb plain = behind(pos);
        const QRgb veiled = qRgb((qRed(plain) * 105 + 255 * 150) / 255, (qGreen(plain) * 105 + 255 * 150) / 255,
                                 (qBlue(plain) * 105 + 255 * 150) / 255);
        QVERIFY(distance(capture.veiledImage.pixel(device(pos)), veiled) <= 1);
    }

    use(capture, [&] {
        QVERIFY(capture.isVisible());
        QCOMPARE(QApplication::activeModalWidget(), &capture);
        QCOMPARE(capture.geometry(), QRect(QPoint(0, 0), desktop));
        QTest::mouseClick(backdrop->windowHandle(), Qt::LeftButton);
        QCOMPARE(backdrop->presses, 0);
        auto *dock = tool<QDockWidget>(capture, "dockWidget");
        QVERIFY(dock->isFloating() && dock->isVisible());
        dock->close(); // ends the tool
        QVERIFY(!capture.isVisible());
    });
    QCOMPARE(spy.count(), 0);
}

// Drags in three directions give the same rectangle. A cancelled save leaves the tool open for the next one.
void TestCapture::rectangleToFile()
{
    const QRect chosen(250, 200, 100, 60);
    const QString path = env.path(QStringLiteral("piece.png"));
    ScreenCapture capture(nullptr);
    const QSignalSpy spy(&capture, &ScreenCapture::callback);
    DialogDriver driver;
    driver.overlook(&capture);
    driver.answerFile({});
    driver.answerFile({});
    driver.answerFile({path});
    use(capture, [&] {
        for (const auto &[from, to] :
             {qMakePair(chosen.bottomRight(), chosen.topLeft()), qMakePair(chosen.bottomLeft(), chosen.topRight()),
              qMakePair(chosen.topLeft(), chosen.bottomRight())}) {
            QVERIFY(capture.isVisible());
            QCOMPARE(spy.count(), 0);
            press(capture, from);
            move(capture, (from + to) / 2);
            move(capture, to);
            QCOMPARE(capture.selection, chosen);
            // Clear within, framed in red, veiled outside.
            QCOMPARE(shown(capture, QPoint(300, 230)).rgb(), behind(QPoint(300, 230)));
            QCOMPARE(shown(capture, QPoint(250, 230)), QColor(Qt::red));
            QCOMPARE(shown(capture, QPoint(300, 200)), QColor(Qt::red));
            QVERIFY(distance(shown(capture, QPoint(400, 230)).rgb(), behind(QPoint(400, 230))) > 20);
            release(capture, to);
        }
        QVERIFY(!capture.isVisible());
    });
    QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(QLatin1Char(';'))));
    QCOMPARE(driver.files().at(0).title, QStringLiteral("儲存圖片"));
    QCOMPARE(driver.files().at(0).filters, QStringList(QStringLiteral("*.png")));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toString(), path);
    QVERIFY(isPiece(path, chosen));
}

// Pen, eraser and clearing; the drawing is saved along, within the rectangle.
void TestCapture::drawing()
{
    const QString path = env.path(QStringLiteral("drawn.png"));
    ScreenCapture capture(nullptr);
    DialogDriver driver;
    driver.overlook(&capture);
    const QImage before = capture.screenImage.copy();
    use(capture, [&] {
        // No button held: a dot of the pen follows the pointer over the veil.
        const QRgb bare = shown(capture, QPoint(700, 500)).rgb();
        capture.penColor = Qt::blue;
        move(capture, {700, 500});
        QCOMPARE(shown(capture, QPoint(700, 500)), QColor(Qt::blue));
        move(capture, {720, 500});
        QCOMPARE(shown(capture, QPoint(700, 500)).rgb(), bare);
        QCOMPARE(drawnAt(capture, QPoint(700, 500)).alpha(), 0);

        tool(capture, "pen_BTN")->click();
        tool<QSpinBox>(capture, "PenSize")->setValue(9);
        drag(capture, {300, 300}, {400, 300});
        QCOMPARE(drawnAt(capture, QPoint(350, 303)), QColor(Qt::blue));
        QCOMPARE(drawnAt(capture, QPoint(350, 306)).alpha(), 0);
        QCOMPARE(shown(capture, QPoint(320, 300)), QColor(Qt::blue));
        press(capture, {500, 320}); // one point
        release(capture, {500, 320});
        QCOMPARE(drawnAt(capture, QPoint(500, 320)), QColor(Qt::blue));

        tool(capture, "era_BTN")->click();
        drag(capture, {350, 280}, {350, 320});
        QCOMPARE(drawnAt(capture, QPoint(350, 300)).alpha(), 0);
        QCOMPARE(capture.screenImage, before);

        tool(capture, "cap_BTN")->click();
        QCOMPARE(drawnAt(capture, QPoint(320, 300)), QColor(Qt::blue));
        driver.answerFile({path});
        drag(capture, {310, 290}, {409, 329});
    });
    QVERIFY(driver.done());
    const QImage saved(path);
    QCOMPARE(saved.size(), QSize(100, 40) * ratio);
    QCOMPARE(saved.pixelColor(device({10, 10})), QColor(Qt::blue));
    QCOMPARE(saved.pixel(device({40, 10})), behind(QPoint(350, 300)));
    QCOMPARE(saved.pixel(device({10, 30})), behind(QPoint(320, 320)));

    const QRect kept = capture.selection;
    capture.on_clr_BTN_clicked();
    QImage empty(capture.overlayImage.size(), QImage::Format_ARGB32);
    empty.fill(0);
    empty.setDevicePixelRatio(ratio);
    QCOMPARE(capture.overlayImage, empty);
    QCOMPARE(capture.selection, kept);
    QCOMPARE(shown(capture, QPoint(320, 300)).rgb(), capture.veiledImage.pixel(device({320, 300})));
    // The painter still draws on the image that is shown and saved, though it was shared meanwhile.
    const QImage shared = capture.overlayImage;
    capture.on_clr_BTN_clicked();
    capture.overlayPainter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    capture.overlayPainter.drawPoint(10, 10);
    QVERIFY(drawnAt(capture, QPoint(10, 10)).alpha() != 0);
}

// A click without a rectangle saves the whole desktop. A suffix that no format has saves nothing, and the path is
// passed on all the same. Where the usual folder is missing the dialog starts in another one.
void TestCapture::mereClick()
{
    const QString home = QDir::homePath();
    for (const bool saved : {true, false}) {
        const QString path = env.path(saved ? QStringLiteral("whole.png") : QStringLiteral("piece.unheardof"));
        ScreenCapture capture(nullptr);
        const QSignalSpy spy(&capture, &ScreenCapture::callback);
        DialogDriver driver;
        driver.overlook(&capture);
        driver.answerFile({path});
        use(capture, [&] {
            press(capture, {300, 300});
            release(capture, {300, 300});
        });
        QVERIFY(driver.done());
        QCOMPARE(driver.files().at(0).directory, home + (saved ? "/pictures" : "/Pictures"));
        QVERIFY(capture.selection.isNull());
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0).toString(), path);
        QCOMPARE(QImage(path).size(), saved ? QGuiApplication::primaryScreen()->size() * ratio : QSize(0, 0));
        QVERIFY(QDir().rename(home + (saved ? "/pictures" : "/gone"), home + (saved ? "/gone" : "/pictures")));
    }
}

void TestCapture::tools()
{
    ScreenCapture capture(nullptr);
    DialogDriver driver;
    driver.overlook(&capture);
    auto *penSize = tool<QSpinBox>(capture, "PenSize");
    auto *slide = tool<QSlider>(capture, "size_slide");
    // The middle of the cursor, which is as large as what the tool will leave.
    const auto cursor = [&capture](int size) {
        const QImage image = capture.cursor().pixmap().toImage();
        return image.size() == QSize(size + 1, size + 1) ? image.pixelColor(size / 2, size / 2) : QColor();
    };

    QCOMPARE(capture.cursor().shape(), Qt::CrossCursor);
    tool(capture, "pen_BTN")->click();
    QCOMPARE(cursor(5), QColor(Qt::black));
    slide->setValue(20);
    QCOMPARE(penSize->value(), 20);
    QCOMPARE(cursor(20), QColor(Qt::black));
    penSize->setValue(8);
    QCOMPARE(slide->value(), 8);
    QCOMPARE(cursor(8), QColor(Qt::black));
    tool(capture, "era_BTN")->click();
    QCOMPARE(cursor(8), QColor(0, 0, 0, 0)); // a ring
    tool(capture, "cap_BTN")->click();
    penSize->setValue(5);
    QCOMPARE(capture.cursor().shape(), Qt::CrossCursor);

    // A cancelled choice leaves an invalid colour, which draws black.
    for (const QColor &answer : {QColor(10, 200, 30), QColor()}) {
        driver.answerColor(answer);
        capture.on_color_choose_clicked();
        QCOMPARE(capture.penColor, answer);
        QCOMPARE(tool(capture, "color_choose")->styleSheet(),
                 answer.isValid() ? QStringLiteral("background-color: rgb(10, 200, 30);")
                                  : QStringLiteral("background-color: rgb(0, 0, 0);"));
    }
    tool(capture, "pen_BTN")->click();
    press(capture, {300, 300});
    release(capture, {300, 300});
    QCOMPARE(drawnAt(capture, QPoint(300, 300)), QColor(Qt::black));
    QVERIFY(driver.done());
}

// The whole way: the button, a rectangle with the mouse, the file, and the picture in the editor. The window and its
// floating panel, which stood on what was captured, are not in it.
void TestCapture::fromTheWindow()
{
    const QString path = env.path(QStringLiteral("taken.png"));
    const QRect chosen(220, 200, 300, 150);
    DialogDriver driver;
    const QSize screen = QGuiApplication::primaryScreen()->size();
    if (screen.width() < 1280 || screen.height() < 720) {
        driver.answerBox(QMessageBox::Ok); // the window says so when it is built
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
    QRect meanwhile;
    driver.answerWith([&](QDialog *dialog) {
        auto *capture = qobject_cast<ScreenCapture *>(dialog);
        QVERIFY(capture != nullptr);
        meanwhile = window.geometry();
        driver.overlook(capture);
        driver.answerFile({path});
        QTimer::singleShot(0, capture, [&, capture] {
            covered = QTest::qWaitFor([&] { return pieceOf(glow::grabDesktop()) == pieceOf(capture->veiledImage); });
            drag(*capture, chosen.topLeft(), chosen.bottomRight());
            capture->close();
        });
    });
    window.ui->Pic_Capture->click();
    QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(QLatin1Char(';'))));
    QVERIFY2(covered, "the screen does not show, pixel by pixel, what the tool means to show");
    QVERIFY(isPiece(path, chosen));
    QCOMPARE(window.ui->PicDir->text(), path);
    QCOMPARE(window.picturePixmap.size(), QSize(400, 200));
    QCOMPARE(window.patternWidth, 2 * ledCount);
    QVERIFY(window.isVisible() && panel->isVisible() && panel->isFloating());
    QCOMPARE(meanwhile.x(), -before.width());
    QCOMPARE(window.geometry(), before);
    QVERIFY(QGuiApplication::quitOnLastWindowClosed());
}

QTEST_MAIN(TestCapture)
#include "test_capture.moc"
