// The simulated prop as plain images: its arithmetic, what its steps draw, and the frame put together from it.
#include "show/draw/propsimulator.h"
#include "show/draw/rasterops.h"
#include "support/golden.h"

#include <QPainter>
#include <QtTest>

using glow::PropSimulator;

namespace {

// Blocks along the time, bands along the strip.
QImage blocks(int columns, int leds)
{
    constexpr QRgb colours[] = {red, green, blue, white, black};
    return painted(columns, leds, [&](int x, int y) { return colours[(x / 23 + 5 * y / leds) % 5]; });
}

// A frame on a surface with stale pixels. The clock counts as having stalled, so that always as many steps run.
QImage frameOf(PropSimulator &prop, const QSize &size, QImage::Format format = QImage::Format_RGB32)
{
    QImage surface(size, format);
    surface.fill(QColor(10, 200, 90, 120));
    QPainter painter(&surface);
    prop.stepClock = QTime::currentTime().addMSecs(5000);
    prop.paintFrame(painter, size.width(), size.height());
    painter.end();
    return std::move(surface).convertToFormat(QImage::Format_RGB32);
}

void turn(PropSimulator &prop)
{
    for (int n = 0; n < 7; ++n)
        prop.runSteps(100); // 97 steps of 9 sixteenths of a degree
}

} // namespace

class TestSimulator : public QObject
{
    Q_OBJECT

private slots:
    void columnsAndSteps()
    {
        // One a millisecond, an odd number gives up one. 33554435 lies between two floats, 33554432 and 33554436, and
        // goes to the nearer. Negative repeats count as one.
        const std::tuple<double, int, int> patterns[] = {
            {1.501, 2, 750}, {0.0035, 1, 4}, {33554.435, 1, 33554436}, {86400.0, 1, 86400000}, {0.1, -7, 100},
            {-5.0, 1, 0},    {1e300, 0, 0},  {qQNaN(), 1, 0},
        };
        for (const auto &[seconds, repeats, columns] : patterns)
            QCOMPARE(glow::previewColumns(seconds, repeats), columns);
        // 5760 sixteenths of a degree in 6000 ms, and a half: 0.96 ms + 0.5, the next whole number from there. A stall
        // is cut to 100 ms, a clock set back counts as no time.
        for (const auto &[ms, steps] : {std::pair(0, 1), {1, 2}, {16, 16}, {50, 49}, {86399999, 97}, {-5, 1}})
            QCOMPARE(glow::previewSteps(ms), steps);
    }

    // Disc, strip and a quarter of the still disc. Each pattern starts at its first column, a narrow one wraps.
    void viewsLookAsEver()
    {
        QImage sheet(720, 5 * 400, QImage::Format_RGB32);
        sheet.fill(Qt::black);
        QPainter painter(&sheet);
        for (const auto &[leds, speed] : {std::pair(1, 9), {7, -4}, {80, 9}, {180, -1}, {400, 5}}) {
            PropSimulator prop;
            prop.spinSpeed = speed;
            prop.showPicture(blocks(600, leds), qint16(leds), 0.6, 1);
            prop.runSteps(100);
            prop.runSteps(100);
            prop.showPicture(blocks(64, leds), qint16(leds), 0.128, 2);
            prop.runSteps(80);
            painter.drawImage(0, 0, prop.discImage);
            painter.drawImage(400, 0, prop.stripImage, 180, 0, 120, 400);
            prop.setSpinSpeed(0);
            painter.drawImage(520, 0, prop.discImage, 200, 0, 200, 200);
            painter.translate(0, 400);
        }
        QCOMPARE(unlikeGolden(sheet, "views.png", 200), QString());
    }

    // A frame that would look like the last one need not be painted; the steps go on all the same.
    void framesOfWhatDoesNotMoveAreLeftOut()
    {
        const auto still = [](PropSimulator &prop) {
            for (int paints = 0; paints < 50 && !prop.skipFrame(); ++paints) {
                frameOf(prop, QSize(60, 60));
                prop.frameTimeShown = prop.frameTimeAverage;
            }
            return prop.skipFrame();
        };
        const QImage oneRed = painted(64, 36, [](int, int y) { return y == 3 ? red : black; });
        PropSimulator prop;
        for (const auto &[picture, speed, isStill] : {std::tuple(oneRed, 0, true),
                                                      {oneRed, 9, false}, // the afterglow turns
                                                      {blocks(64, 36), 0, false},
                                                      {QImage(), 9, true}, // once the red has gone
                                                      {QImage(), -1, true}}) {
            prop.setSpinSpeed(speed);
            prop.showPicture(picture, 36, 0.064, 1);
            QVERIFY(!prop.skipFrame());
            QCOMPARE(still(prop), isStill);
        }
        prop.stepClock = QTime::currentTime().addMSecs(-60);
        const qint64 steps = prop.stepCount;
        QVERIFY(prop.skipFrame());
        QVERIFY(prop.stepCount >= steps + 58);
        prop.frameTimeShown = 1; // the text has to change
        frameOf(prop, QSize(60, 60));
        QVERIFY(!prop.skipFrame());
    }

    void framesLookAsEver()
    {
        QImage sheet(280, 7 * 131, QImage::Format_RGB32);
        sheet.fill(Qt::black);
        QPainter painter(&sheet);
        PropSimulator prop;
        for (const auto &[width, speed] :
             {std::pair(280, 9), {280, 5}, {280, 1}, {280, 0}, {280, -4}, {280, -9}, {151, 8}}) {
            QImage frames[2];
            for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied}) {
                prop.showPicture(blocks(64, 120), 120, 0.064, 1);
                prop.setSpinSpeed(0); // all around
                prop.setSpinSpeed(speed);
                prop.stepCount = 100000;
                frames[format == QImage::Format_RGB32] = frameOf(prop, QSize(width, 131), format);
            }
            QCOMPARE(frames[0], frames[1]);
            painter.drawImage(0, 0, frames[0]);
            painter.fillRect(0, 0, 80, 16, Qt::black); // fonts differ
            painter.translate(0, 131);
        }
        QCOMPARE(unlikeGolden(sheet, "frames.png", 100), QString());

        // The frame rate stands in the corner. Paints within the same millisecond bring the mean down to 0.
        for (const auto &[ms, text] : {std::pair<int, const char *>(30, "FPS: 33"), {0, "FPS: 1000"}}) {
            QImage label = painted(100, 50, [](int, int) { return black; });
            QPainter writer(&label);
            QFont font = writer.font();
            font.setPixelSize(12);
            writer.setFont(font);
            writer.setPen(Qt::white);
            writer.drawText(label.rect(), 0, text);
            prop.frameTimeShown = ms;
            QCOMPARE(frameOf(prop, QSize(900, 100)).copy(label.rect()), label);
        }
    }

    void aSpeedChangeKeepsTheAngle()
    {
        PropSimulator prop;
        prop.stepCount = 1000;
        prop.stepOrigin = 5;
        // 9 * 999 / 3; 3 * 2996 / -7 is -1284, and the sign goes; an old speed of 0.
        for (const auto &[speed, count] : {std::pair(3, 2997), {-7, 1284}, {0, 1284}, {5, 0}}) {
            prop.setSpinSpeed(speed);
            QCOMPARE(prop.stepCount, qint64(count));
            QCOMPARE(prop.stepOrigin, qint64(0));
        }
        prop.stepCount = qint64(1) << 40;
        prop.setSpinSpeed(9);
        QCOMPARE(prop.stepCount, 5 * ((qint64(1) << 40) - 1) / 9);
    }

    void clocksAndCountersOutOfRange()
    {
        PropSimulator prop;
        QImage surface(1, 1, QImage::Format_RGB32);
        QPainter painter(&surface);
        // The mean: (60 + t) / 2, t being what passed since the last frame.
        prop.stepClock = QTime::currentTime().addMSecs(-1000);
        prop.paintFrame(painter, 0, 0); // no surface to speak of
        QVERIFY(prop.frameTimeAverage >= 530 && prop.frameTimeAverage < 1000);
        // The clock set to the future, as over midnight, counts as a stall and no more.
        const qint64 steps = prop.stepCount;
        frameOf(prop, QSize(300, 1));
        QCOMPARE(prop.stepCount - steps, qint64(97));
        // 9 times 2^31 is 2^31 in 32 bits, and negated -2147483648: 128 sixteenths clockwise beyond whole turns, which
        // ends on the disc at 368, 224.
        prop.showPicture(painted(2, 1, [](int x, int) { return x == 0 ? red : green; }), 80, 0.002, 1);
        prop.stepCount = qint64(1) << 31;
        prop.stepOrigin = 0;
        prop.runSteps(0);
        QCOMPARE(prop.discImage.pixel(368, 222), red);
    }

    void nothingToShowIsBlack()
    {
        PropSimulator prop;
        prop.setSpinSpeed(0); // no pattern was ever set
        prop.setSpinSpeed(9);
        prop.runSteps(5);
        QCOMPARE(prop.stripImage.pixel(200, 100), black);
        prop.showPicture(QImage(), 80, 0.01, 1);
        QCOMPARE(prop.pixelAt(9, 79), black);
        // A pattern without columns or rows draws black wedges over what was there and leaves the strip alone. The prop
        // knows no transparency, so a half transparent red is its full red.
        QImage glass(2, 1, QImage::Format_ARGB32_Premultiplied);
        glass.fill(qRgba(128, 0, 0, 128));
        for (const auto &[leds, seconds] : {qMakePair(80, 0.001), qMakePair(0, 5.0)}) {
            prop.showPicture(glass, 80, 0.002, 1);
            turn(prop);
            QCOMPARE(prop.discImage.pixel(309, 330), red);
            prop.showPicture(blocks(1, 1), qint16(leds), seconds, 1);
            turn(prop);
            QCOMPARE(prop.discImage.pixel(309, 330), black);
            QCOMPARE(prop.stripImage.pixel(200, 100), red);
        }
    }

    void aDayLongPatternIsLookedUp()
    {
        PropSimulator prop;
        const QImage picture = painted(3, 2, [](int x, int y) { return x == y + 1 ? green : red; });
        prop.showPicture(picture, 80, 86400.0, 1);
        QVERIFY(prop.columns() == 86400000 && prop.rows() == 80 && prop.patternImage.isNull());
        for (const auto &[column, row, colour] :
             {std::tuple(28799999, 0, red), {28800000, 0, green}, {57599999, 39, green}, {86399999, 40, green}})
            QCOMPARE(prop.pixelAt(column, row), colour);
        prop.stepCount = 57599999; // a seek
        prop.stepOrigin = 0;
        prop.runSteps(0);
        QCOMPARE(prop.stripImage.pixel(200, 100), green);
        // The first width that has no image of its own.
        prop.showPicture(picture, 80, 32.768, 1);
        QCOMPARE(prop.pixelAt(32767, 79), green);
        // The centre of pixel 1 of 3 lies between two of 2, that of pixel 1 of 2 within the last of 3.
        QVERIFY(glow::nearestPixel(1, 2, 3) == 0 && glow::nearestPixel(1, 3, 2) == 2);
        QVERIFY(glow::scaledNearest(QImage(), QSize(10, 10)).isNull());
    }
};

QTEST_MAIN(TestSimulator)
#include "test_simulator.moc"
