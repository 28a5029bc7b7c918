// The simulated prop as plain images: its arithmetic, what each step draws, and the frame put together from it.
#include "preview/afterglow.h"
#include "preview/propsimulator.h"
#include "preview/rasterops.h"

#include <QConicalGradient>
#include <QPainter>
#include <QtTest>

#include <cmath>
#include <limits>
#include <random>

using glow::PropSimulator;

namespace {

const QRgb red = qRgb(255, 0, 0);
const QRgb green = qRgb(0, 255, 0);
const QRgb blue = qRgb(0, 0, 255);
const QRgb white = qRgb(255, 255, 255);
const QRgb black = qRgb(0, 0, 0);

// A picture of the given columns, one row high.
QImage columnsOf(const QVector<QRgb> &colors)
{
    QImage image(colors.size(), 1, QImage::Format_RGB32);
    for (int x = 0; x < colors.size(); ++x) {
        image.setPixel(x, 0, colors.at(x));
    }
    return image;
}

// The pixel of the disc at an angle (degrees, clockwise from three o'clock) and a radius.
QRgb onDisc(const PropSimulator &prop, double clockwise, double radius)
{
    const double a = clockwise * M_PI / 180.0;
    return prop.discImage.pixel(static_cast<int>(200 + radius * std::cos(a)),
                                static_cast<int>(200 + radius * std::sin(a)));
}

// Opacity of the afterglow's mask at each pixel, as the painter's own conical gradient gives it.
QImage painterMask(const QSize &size, const QPointF &centre, double degrees, int speed)
{
    QImage mask(size, QImage::Format_ARGB32_Premultiplied);
    mask.fill(white);
    QConicalGradient gradient(centre, degrees);
    gradient.setColorAt(speed > 0 ? 0.0 : 1.0, QColor(0, 0, 0, 250));
    gradient.setColorAt(speed > 0 ? speed / 10.0 : speed / 10.0 + 1.0, QColor(0, 0, 0, 0));
    gradient.setColorAt(speed > 0 ? 1.0 : 0.0, QColor(0, 0, 0, 0));
    QPainter painter(&mask);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationAtop);
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRect(mask.rect());
    return mask;
}

// So many steps, in as few paints as may be.
void run(PropSimulator &prop, int steps)
{
    const qint64 end = prop.stepCount + steps;
    while (prop.stepCount + 97 <= end) {
        prop.runSteps(100);
    }
    while (prop.stepCount < end) {
        prop.runSteps(0);
    }
}

} // namespace

class TestSimulator : public QObject
{
    Q_OBJECT

private slots:
    void columnsOfAPattern_data();
    void columnsOfAPattern();
    void stepsOfAPaint_data();
    void stepsOfAPaint();
    void columnsFollowTheSteps();
    void aNewPatternStartsAtItsFirstColumn();
    void rowsStandOnTheStrip();
    void rowsLieFromTheRimInwards();
    void rowsBeyondTheCentreStayOff();
    void speedGivesAngleAndDirection_data();
    void speedGivesAngleAndDirection();
    void speedChangeKeepsTheAngle();
    void stillPictureLaysColumnsAround();
    void nothingToShowIsBlack();
    void countersBeyondTheirRange();
    void aDayLongPatternIsLookedUp();
    void nearestPixelAgreesWithQt();
    void scalingBeyondThePainter();
    void transparencyIsIgnored();
    void afterglowEqualsThePaintersGradient();
    void frameStandsOnBlack_data();
    void frameStandsOnBlack();
    void frameRateText();
};

void TestSimulator::columnsOfAPattern_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<int>("repeats");
    QTest::addColumn<int>("columns");
    QTest::newRow("one a millisecond") << 0.1 << 1 << 100;
    QTest::newRow("odd gives up one") << 1.501 << 2 << 750;
    QTest::newRow("half rounds up") << 0.0035 << 1 << 4;
    QTest::newRow("one is odd") << 0.001 << 1 << 0;
    QTest::newRow("below one and a half") << 0.0149 << 10 << 0;
    // 33554435 lies between two floats, 33554432 and 33554436, and goes to the nearer.
    QTest::newRow("single precision") << 33554.435 << 1 << 33554436;
    QTest::newRow("a day") << 86400.0 << 1 << 86400000;
    QTest::newRow("no repeats count as one") << 0.1 << 0 << 100;
    QTest::newRow("negative repeats too") << 0.1 << -7 << 100;
    QTest::newRow("no time") << 0.0 << 1 << 0;
    QTest::newRow("negative time") << -5.0 << 1 << 0;
    QTest::newRow("beyond measure") << 1e300 << 1 << 0;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 1 << 0;
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 1 << 0;
}

void TestSimulator::columnsOfAPattern()
{
    QFETCH(double, seconds);
    QFETCH(int, repeats);
    QTEST(glow::previewColumns(seconds, repeats), "columns");
}

void TestSimulator::stepsOfAPaint_data()
{
    QTest::addColumn<int>("ms");
    QTest::addColumn<int>("steps");
    QTest::newRow("a paint always advances") << 0 << 1;
    QTest::newRow("1.46") << 1 << 2;
    QTest::newRow("10.1") << 10 << 11;
    QTest::newRow("15.86") << 16 << 16;
    QTest::newRow("48.5") << 50 << 49;
    QTest::newRow("96.5") << 100 << 97;
    QTest::newRow("a stall is cut") << 86399999 << 97;
    QTest::newRow("a clock set back") << -5 << 1;
}

void TestSimulator::stepsOfAPaint()
{
    QFETCH(int, ms);
    QFETCH(int, steps);
    QCOMPARE(glow::previewSteps(ms), steps);
    PropSimulator prop;
    prop.runSteps(ms);
    QCOMPARE(prop.stepCount, qint64(steps));
}

void TestSimulator::columnsFollowTheSteps()
{
    // Four columns, one LED: the strip shows one column a step, and begins again after the fourth.
    PropSimulator prop;
    prop.showPicture(columnsOf({red, green, blue, white}), 80, 0.004, 1);
    QCOMPARE(prop.columnCount, 4);
    for (const QRgb expected : {red, green, blue, white, red, green}) {
        run(prop, 1);
        QCOMPARE(prop.stripImage.pixel(200, 100), expected);
    }
    // A long paint ends on the column of its last step: 97 steps from column 2 on end on column (2 + 96) % 4.
    prop.runSteps(100);
    QCOMPARE(prop.stripImage.pixel(200, 100), blue);
}

void TestSimulator::aNewPatternStartsAtItsFirstColumn()
{
    PropSimulator prop;
    prop.showPicture(columnsOf({red, red, red, red}), 80, 0.004, 1);
    run(prop, 7);
    prop.showPicture(columnsOf({green, blue}), 80, 0.006, 3);
    QCOMPARE(prop.stepOrigin, qint64(7));
    QCOMPARE(prop.patternRepeats, 3);
    QCOMPARE(int(prop.patternLeds), 80);
    run(prop, 1);
    QCOMPARE(prop.stripImage.pixel(200, 100), green);
    run(prop, 1);
    QCOMPARE(prop.stripImage.pixel(200, 100), blue);
    // What a seek does: the counters are set from outside, column (n - origin) % 2 comes next.
    prop.stepCount = 1000001;
    prop.stepOrigin = 0;
    run(prop, 1);
    QCOMPARE(prop.stripImage.pixel(200, 100), blue);
    prop.resetImages();
    QCOMPARE(prop.stepOrigin, qint64(0));
    QCOMPARE(prop.stripImage.pixel(200, 100), black);
    QCOMPARE(prop.discImage.pixel(350, 200), black);
}

void TestSimulator::rowsStandOnTheStrip()
{
    // 80 LEDs are 4 pixels apart; a square end of a 10 pixel line reaches 5 pixels up from 4r + 30, and the next row
    // covers what lies 4 pixels further on.
    QImage picture(2, 80, QImage::Format_RGB32);
    for (int row = 0; row < 80; ++row) {
        picture.setPixel(0, row, qRgb(row, 255 - row, 7));
        picture.setPixel(1, row, black);
    }
    PropSimulator prop;
    prop.showPicture(picture, 80, 0.002, 1);
    QCOMPARE(prop.patternImage.size(), QSize(2, 80));
    run(prop, 1);
    for (int row = 0; row < 80; ++row) {
        QCOMPARE(prop.stripImage.pixel(200, 4 * row + 26), qRgb(row, 255 - row, 7));
    }
    QCOMPARE(prop.stripImage.pixel(196, 100), prop.stripImage.pixel(203, 100));
    const QRgb body = qRgb(150, 150, 150);
    QCOMPARE(prop.stripImage.pixel(189, 200), body);  // left side
    QCOMPARE(prop.stripImage.pixel(209, 200), body);  // right side, 5 times 4 further on
    QCOMPARE(prop.stripImage.pixel(200, 389), body);  // end
    QCOMPARE(prop.stripImage.pixel(200, 370), body);  // the grip's end
    QCOMPARE(prop.stripImage.pixel(215, 200), black); // beside it
    QCOMPARE(prop.stripImage.pixel(200, 380), black);
}

void TestSimulator::rowsLieFromTheRimInwards()
{
    // 90 LEDs, the outer half red, the inner blue: row r lies at radius 180 - r, so the light ends at 91.
    QImage picture(2, 90, QImage::Format_RGB32);
    picture.fill(blue);
    for (int row = 0; row < 45; ++row) {
        picture.setPixel(0, row, red);
        picture.setPixel(1, row, red);
    }
    PropSimulator prop;
    prop.showPicture(picture, 90, 5.0, 2500);
    QCOMPARE(prop.columnCount, 2);
    run(prop, 10);
    QCOMPARE(onDisc(prop, 3.0, 175), red);
    QCOMPARE(onDisc(prop, 3.0, 140), red);
    QCOMPARE(onDisc(prop, 3.0, 130), blue);
    QCOMPARE(onDisc(prop, 3.0, 95), blue);
    QCOMPARE(onDisc(prop, 3.0, 85), black);
    QCOMPARE(onDisc(prop, 3.0, 5), black);
    QCOMPARE(onDisc(prop, 3.0, 185), black);
}

void TestSimulator::rowsBeyondTheCentreStayOff()
{
    // 250 LEDs: the disc has room for 181, and no gradient warns about the others.
    QImage picture(2, 250, QImage::Format_RGB32);
    picture.fill(green);
    PropSimulator prop;
    prop.showPicture(picture, 250, 0.002, 1);
    run(prop, 10);
    QCOMPARE(onDisc(prop, 3.0, 175), green);
    QCOMPARE(onDisc(prop, 3.0, 20), green);
    QCOMPARE(prop.stripImage.pixel(193, 349), green);
}

void TestSimulator::speedGivesAngleAndDirection_data()
{
    QTest::addColumn<int>("speed");
    QTest::addColumn<int>("steps");
    QTest::addColumn<double>("reached"); // degrees clockwise
    QTest::newRow("9: a quarter in 160 steps") << 9 << 160 << 90.0;
    QTest::newRow("-9: the other way") << -9 << 160 << -90.0;
    QTest::newRow("1: a quarter in 1440 steps") << 1 << 1440 << 90.0;
    QTest::newRow("-4") << -4 << 200 << -50.0;
}

void TestSimulator::speedGivesAngleAndDirection()
{
    QFETCH(int, speed);
    QFETCH(int, steps);
    QFETCH(double, reached);
    PropSimulator prop;
    prop.spinSpeed = speed;
    prop.showPicture(columnsOf({red, red}), 80, 0.002, 1);
    run(prop, steps);
    const double sign = speed > 0 ? 1.0 : -1.0;
    for (double a = 2.0; a < std::abs(reached) - 2.0; a += 1.0) {
        QCOMPARE(onDisc(prop, sign * a, 170), red); // no gaps
    }
    QCOMPARE(onDisc(prop, reached + sign * 2.0, 170), black);
    QCOMPARE(onDisc(prop, -sign * 3.0, 170), black);
    // The next wedge, 10/16 of a degree wide, is where the bar is.
    prop.showPicture(columnsOf({green, green}), 80, 0.002, 1);
    run(prop, 1);
    QCOMPARE(onDisc(prop, reached - 0.3, 178), green);
}

void TestSimulator::speedChangeKeepsTheAngle()
{
    PropSimulator prop;
    prop.stepCount = 1000;
    prop.stepOrigin = 5;
    prop.setSpinSpeed(3);
    QCOMPARE(prop.stepCount, qint64(2997)); // 9 * 999 / 3
    QCOMPARE(prop.stepOrigin, qint64(0));
    prop.setSpinSpeed(-7);
    QCOMPARE(prop.stepCount, qint64(1284)); // 3 * 2996 / -7 is -1284, the sign goes
    prop.setSpinSpeed(0);
    QCOMPARE(prop.stepCount, qint64(1284));
    prop.setSpinSpeed(5);
    QCOMPARE(prop.stepCount, qint64(0)); // the old speed was 0
    QCOMPARE(prop.spinSpeed, 5);
    prop.stepCount = qint64(1) << 40;
    prop.setSpinSpeed(9);
    QCOMPARE(prop.stepCount, 5 * ((qint64(1) << 40) - 1) / 9);
}

void TestSimulator::stillPictureLaysColumnsAround()
{
    // 576 columns: each wedge has its own. Column i is drawn from -10 i to -10 i + 10 sixteenths of a degree.
    QVector<QRgb> colors;
    for (int i = 0; i < 576; ++i) {
        colors << qRgb(i % 256, i / 256 * 100, 50);
    }
    PropSimulator prop;
    prop.showPicture(columnsOf(colors), 80, 0.576, 1);
    prop.setSpinSpeed(0);
    for (const int i : {1, 100, 288, 431, 575}) {
        QCOMPARE(onDisc(prop, (10 * i - 5) / 16.0, 179), colors.at(i));
    }
    // While still, steps move the strip and leave the disc alone.
    const QImage before = prop.discImage;
    run(prop, 300);
    QCOMPARE(prop.discImage, before);
    QCOMPARE(prop.stripImage.pixel(200, 100), colors.at(299));
    // A narrower pattern wraps around.
    prop.showPicture(columnsOf({red, green, blue, white}), 80, 0.004, 1);
    prop.setSpinSpeed(0);
    QCOMPARE(onDisc(prop, (10 * 402 - 5) / 16.0, 179), blue);
}

void TestSimulator::nothingToShowIsBlack()
{
    PropSimulator prop;
    run(prop, 5); // no pattern was ever set
    QCOMPARE(prop.stripImage.pixel(200, 100), black);
    prop.setSpinSpeed(0);
    prop.setSpinSpeed(9);

    prop.showPicture(QImage(), 80, 0.01, 1);
    QCOMPARE(prop.patternImage.size(), QSize(10, 80));
    QCOMPARE(prop.patternImage.pixel(9, 79), black);

    // A pattern without columns draws black wedges over what was there and leaves the strip alone.
    prop.showPicture(columnsOf({red, red}), 80, 0.002, 1);
    run(prop, 640);
    QCOMPARE(onDisc(prop, 50, 170), red);
    for (const auto &[leds, seconds] : {std::pair<int, double>(80, 0.001), std::pair<int, double>(0, 5.0)}) {
        prop.showPicture(columnsOf({green}), static_cast<qint16>(leds), seconds, 1);
        QVERIFY(prop.patternImage.isNull());
        run(prop, 641);
        QCOMPARE(onDisc(prop, 50, 170), black);
        QCOMPARE(prop.stripImage.pixel(200, 100), red);
        prop.setSpinSpeed(0);
        prop.setSpinSpeed(9);
    }
}

void TestSimulator::countersBeyondTheirRange()
{
    PropSimulator prop;
    prop.showPicture(columnsOf({red, green}), 80, 0.002, 1);
    for (const qint64 count : {qint64(1) << 31, (qint64(1) << 33) - 3, qint64(-5), qint64(1) << 55}) {
        prop.stepCount = count;
        prop.stepOrigin = count > 0 ? 0 : 100;
        run(prop, 20);
        QImage frame(300, 200, QImage::Format_RGB32);
        QPainter painter(&frame);
        prop.paintFrame(painter, 300, 200);
    }
    // 9 times 2^31 is 2^31 in 32 bits, and negated -2147483648: 128 sixteenths clockwise beyond whole turns.
    prop.resetImages();
    prop.stepCount = qint64(1) << 31;
    run(prop, 1);
    QCOMPARE(onDisc(prop, 128 / 16.0 - 0.3, 170), red);
}

void TestSimulator::aDayLongPatternIsLookedUp()
{
    QImage picture(3, 2, QImage::Format_RGB32);
    picture.fill(red);
    picture.setPixel(1, 0, green);
    picture.setPixel(2, 1, blue);
    PropSimulator prop;
    prop.showPicture(picture, 80, 86400.0, 1);
    QCOMPARE(prop.columnCount, 86400000);
    QCOMPARE(prop.columns(), 86400000);
    QCOMPARE(prop.rows(), 80);
    QVERIFY(prop.patternImage.isNull());
    QCOMPARE(prop.pixelAt(28799999, 0), red);
    QCOMPARE(prop.pixelAt(28800000, 0), green);
    QCOMPARE(prop.pixelAt(57599999, 39), green);
    QCOMPARE(prop.pixelAt(57599999, 40), red);
    QCOMPARE(prop.pixelAt(86399999, 40), blue);
    prop.stepCount = 57599999; // a seek to two thirds
    prop.stepOrigin = 0;
    run(prop, 1);
    QCOMPARE(prop.stripImage.pixel(200, 100), green);
    run(prop, 1);
    QCOMPARE(prop.stripImage.pixel(200, 100), red);
    // The last width that has an image of its own, and the first that has none.
    prop.showPicture(picture, 80, 32.766, 1);
    QCOMPARE(prop.patternImage.width(), 32766);
    prop.showPicture(picture, 80, 32.768, 1);
    QCOMPARE(prop.columns(), 32768);
    QCOMPARE(prop.pixelAt(32767, 79), blue);
}

void TestSimulator::nearestPixelAgreesWithQt()
{
    // Against QImage::scaled over thousands of random sizes: never more than the one source pixel that its 16-bit
    // fractions can lose, and the same wherever the ratio has no remainder there.
    std::mt19937 random(20);
    int exact = 0;
    for (int round = 0; round < 3000; ++round) {
        int from = 1 + static_cast<int>(random() % 1500);
        int to = 1 + static_cast<int>(random() % 3000);
        if (round % 4 == 0) {
            to = from * (1 << (random() % 4));
        }
        QImage source(from, 1, QImage::Format_RGB32);
        for (int x = 0; x < from; ++x) {
            source.setPixel(x, 0, 0xff000000U | static_cast<QRgb>(x));
        }
        const QImage scaled = source.scaled(to, 1, Qt::IgnoreAspectRatio, Qt::FastTransformation);
        const bool clean = from * 65536 % to == 0;
        exact += clean ? 1 : 0;
        for (int x = 0; x < to; ++x) {
            const auto theirs = static_cast<qint64>(scaled.pixel(x, 0) & 0xffffffU);
            const qint64 behind = glow::nearestPixel(x, from, to) - theirs;
            if (clean ? behind != 0 : behind != 0 && behind != 1) {
                QFAIL(qPrintable(QStringLiteral("%1 to %2 at %3: %4 behind").arg(from).arg(to).arg(x).arg(behind)));
            }
        }
    }
    QVERIFY(exact > 500);
}

void TestSimulator::scalingBeyondThePainter()
{
    QVERIFY(glow::scaledNearest(QImage(), QSize(10, 10)).isNull());
    QVERIFY(glow::scaledNearest(columnsOf({red}), QSize(0, 10)).isNull());
    const QImage wide = glow::scaledNearest(columnsOf({red, green, blue, white}), QSize(80000, 3));
    QCOMPARE(wide.size(), QSize(80000, 3));
    QCOMPARE(wide.pixel(19999, 2), red);
    QCOMPARE(wide.pixel(20000, 0), green);
    QCOMPARE(wide.pixel(79999, 1), white);
    const QImage narrow = glow::scaledNearest(wide, QSize(4, 1));
    QCOMPARE(narrow.pixel(0, 0), red);
    QCOMPARE(narrow.pixel(3, 0), white);

    QImage glass(2, 1, QImage::Format_ARGB32);
    glass.setPixel(0, 0, qRgba(255, 0, 0, 0));
    glass.setPixel(1, 0, qRgba(255, 255, 255, 51));
    const QImage laid = glow::onBlack(glass);
    QCOMPARE(laid.pixel(0, 0), black);
    QCOMPARE(laid.pixel(1, 0), qRgb(51, 51, 51));
}

void TestSimulator::transparencyIsIgnored()
{
    // The prop knows no transparency, so a half transparent red is its full red, and nothing of an earlier pattern
    // shines through.
    PropSimulator prop;
    prop.showPicture(columnsOf({white, white}), 80, 0.002, 1);
    run(prop, 1);
    QImage glass(2, 1, QImage::Format_ARGB32);
    glass.fill(qRgba(200, 0, 0, 128));
    prop.showPicture(glass, 80, 0.002, 1);
    run(prop, 1);
    QVERIFY(std::abs(qRed(prop.stripImage.pixel(200, 100)) - 200) <= 1);
    QCOMPARE(qGreen(prop.stripImage.pixel(200, 100)), 0);
}

void TestSimulator::afterglowEqualsThePaintersGradient()
{
    const QSize size(151, 151);
    const QPointF centre(75.2, 74.5);
    glow::Afterglow afterglow;
    for (const int speed : {9, 5, 1, -1, -6, -9}) {
        // The painter's gradient has 1024 colours around the circle.
        const int step = 2 + 3 / std::abs(speed);
        for (const int degrees : {0, 17, 90, 200, -33, 359, -1000000 * 360 + 45}) {
            QImage mine(size, QImage::Format_ARGB32_Premultiplied);
            mine.fill(white);
            afterglow.apply(mine, centre, degrees, speed);
            const QImage theirs = painterMask(size, centre, degrees % 360, speed);
            int off = 0;
            for (int y = 0; y < size.height(); ++y) {
                for (int x = 0; x < size.width(); ++x) {
                    const QRgb a = mine.pixel(x, y);
                    const QRgb b = theirs.pixel(x, y);
                    const bool near = std::abs(qAlpha(a) - qAlpha(b)) <= step && std::abs(qRed(a) - qRed(b)) <= step;
                    off += near ? 0 : 1;
                }
            }
            // The edge at the bar jumps by 250; a pixel on it can fall to either side.
            QVERIFY2(off <= 160,
                     qPrintable(QStringLiteral("speed %1, %2 degrees: %3").arg(speed).arg(degrees).arg(off)));
        }
    }
}

void TestSimulator::frameStandsOnBlack_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("speed");
    QTest::addColumn<QSize>("size");
    const QVector<QImage::Format> formats{QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied};
    for (const QImage::Format format : formats) {
        const char *surface = format == QImage::Format_RGB32 ? "without alpha" : "with alpha";
        for (const int speed : {9, 0, -4}) {
            for (const QSize &size : {QSize(900, 400), QSize(421, 233), QSize(200, 200), QSize(150, 401)}) {
                QTest::addRow("%s, speed %d, %d by %d", surface, speed, size.width(), size.height())
                    << static_cast<int>(format) << speed << size;
            }
        }
    }
}

void TestSimulator::frameStandsOnBlack()
{
    QFETCH(int, format);
    QFETCH(int, speed);
    QFETCH(QSize, size);
    PropSimulator prop;
    prop.spinSpeed = 9;
    prop.showPicture(columnsOf({red, red}), 80, 0.002, 1);
    run(prop, 640); // all around
    if (speed != 9) {
        prop.setSpinSpeed(speed);
    }
    QImage surface(size, static_cast<QImage::Format>(format));
    surface.fill(QColor(10, 200, 90, 120)); // stale pixels
    {
        QPainter painter(&surface);
        prop.paintFrame(painter, size.width(), size.height());
    }
    const int w = size.width();
    const int h = size.height();
    const double radius = h * 0.9 * 180 / 400;
    const QPointF centre(w / 2 - h * 0.45, h / 2.0);
    int litOutside = 0;
    int strange = 0;
    int lit = 0;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const QRgb pixel = surface.pixel(x, y);
            const bool text = x < 100 && y < 20;
            const bool disc = std::hypot(x - centre.x(), y - centre.y()) < radius + 3;
            const bool strip = x >= w / 2 + h * 0.9 * 180 / 400 && x <= w / 2 + h * 0.9 * 220 / 400;
            strange += qAlpha(pixel) != 255 ? 1 : 0;
            if (disc && !text && !strip) {
                strange += qGreen(pixel) != 0 || qBlue(pixel) != 0 ? 1 : 0;
                lit += qRed(pixel) > 100 ? 1 : 0;
            } else if (!disc && !text && !strip && pixel != black) {
                ++litOutside;
            }
        }
    }
    QCOMPARE(litOutside, 0);
    QCOMPARE(strange, 0);
    // The strip stands in its place in full light whatever the mode: its column 200 of 400, its row 100.
    const int top = (h - static_cast<int>(h * 0.9)) / 2;
    const QPoint strip(w / 2 + static_cast<int>(h * 0.9 * 0.5), top + static_cast<int>(h * 0.9 * 0.25));
    if (surface.rect().contains(strip)) {
        QCOMPARE(surface.pixel(strip), red);
    }
    if (w >= 2 * h * 0.9) {
        // Ring of 80 LEDs, from radius 101 to 180; the glow above 100 of 255 reaches over (250 - 100) / 250 of the
        // speed's tenths. The still picture glows all around.
        const double ring = M_PI * (std::pow(radius, 2) - std::pow(radius * 101 / 180, 2));
        const double share = speed == 0 ? 1.0 : 0.6 * std::abs(speed) / 10.0;
        QVERIFY2(std::abs(lit / ring - share) < 0.04, qPrintable(QString::number(lit / ring)));
    }
}

void TestSimulator::frameRateText()
{
    PropSimulator prop;
    prop.setSpinSpeed(0);
    QImage surface(700, 300, QImage::Format_RGB32);
    const auto textPixels = [&]() {
        QPainter painter(&surface);
        prop.paintFrame(painter, 700, 300);
        painter.end();
        return surface.copy(0, 0, 100, 30);
    };
    const auto expected = [](const QString &text) {
        QImage image(100, 30, QImage::Format_RGB32);
        image.fill(black);
        QPainter painter(&image);
        QFont font = painter.font();
        font.setPixelSize(12);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(QRect(0, 0, 100, 50), 0, text);
        painter.end();
        return image;
    };
    prop.frameTimeShown = 30;
    QCOMPARE(textPixels(), expected(QStringLiteral("FPS: 33")));
    prop.frameTimeShown = 0;
    QCOMPARE(textPixels(), expected(QStringLiteral("FPS: 1000")));
    // The mean: (60 + t) / 2, t being what passed since the last frame.
    prop.frameTimeAverage = 60;
    prop.stepClock = QTime::currentTime().addMSecs(-40);
    textPixels();
    QVERIFY(prop.frameTimeAverage >= 50 && prop.frameTimeAverage < 70);
    // The clock set to the future, as over midnight, counts as a stall and no more.
    const qint64 steps = prop.stepCount;
    prop.stepClock = QTime::currentTime().addMSecs(5000);
    textPixels();
    QCOMPARE(prop.stepCount - steps, qint64(97));
    // No surface to speak of.
    QPainter painter(&surface);
    prop.paintFrame(painter, 0, 0);
    prop.paintFrame(painter, 700, 1);
}

QTEST_MAIN(TestSimulator)
#include "test_simulator.moc"
