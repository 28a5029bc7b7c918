// The simulated prop as plain images: its arithmetic, what each step draws, and the frame put together from it.
#include "preview/propsimulator.h"
#include "preview/rasterops.h"
#include "support/pixels.h"

#include <QPainter>
#include <QtTest>

#include <cmath>

using glow::PropSimulator;

namespace {

// A picture of the given columns, one row high.
QImage columnsOf(const QVector<QRgb> &colors)
{
    return painted(colors.size(), 1, [&colors](int x, int) { return colors.at(x); });
}

// The pixel of the disc at an angle (degrees, clockwise from three o'clock) and a radius.
QRgb onDisc(const PropSimulator &prop, double clockwise, double radius)
{
    const double a = clockwise * M_PI / 180.0;
    return prop.discImage.pixel(static_cast<int>(200 + radius * std::cos(a)),
                                static_cast<int>(200 + radius * std::sin(a)));
}

// Any pixel of the strip's LEDs, where a column has one colour.
QRgb onStrip(const PropSimulator &prop)
{
    return prop.stripImage.pixel(200, 100);
}

// The prop told plainly: every step draws the bar and its wedge, all of it, with nothing left out.
struct PlainProp
{
    PlainProp()
    {
        disc.fill(Qt::black);
        strip.fill(Qt::black);
    }
    void wedge(int column, int angle)
    {
        const int h = pattern.height();
        QRadialGradient gradient(200, 200, 180);
        gradient.setColorAt(0.0, Qt::black);
        gradient.setColorAt(1.0, Qt::black);
        if (2 * h <= 360) {
            gradient.setColorAt((360 - 2 * h) / 360.0, Qt::black);
        }
        for (int row = 0; row < h && 2 * row <= 360; ++row) {
            gradient.setColorAt((360 - 2 * row) / 360.0, pattern.pixelColor(column, row));
        }
        QPainter painter(&disc);
        painter.setPen(QColor(0, 0, 0, 0));
        painter.setBrush(gradient);
        painter.drawPie(20, 20, 360, 360, angle, 10);
    }
    void step()
    {
        const int column = static_cast<int>(count % pattern.width());
        const float s = 320.0F / static_cast<float>(pattern.height());
        QPainter painter(&strip);
        painter.setPen(QPen(QColor(150, 150, 150), 2.0));
        painter.drawRect(190, 20, static_cast<int>(s * 5.0), 370);
        painter.drawRect(190, 356, static_cast<int>(s * 5.0), 15);
        for (int row = 0; row < pattern.height(); ++row) {
            painter.setPen(QPen(pattern.pixelColor(column, row), s * 2.5));
            const int x = static_cast<int>(s * 2.5 + 190.0);
            const float y = static_cast<float>(row) * s;
            painter.drawLine(x, static_cast<int>(y + 30.0F), x, static_cast<int>(y + 33.0F));
        }
        if (speed != 0) {
            wedge(column, -static_cast<int>(speed * count));
        }
        ++count;
    }

    QImage pattern;
    QImage disc{400, 400, QImage::Format_ARGB32_Premultiplied};
    QImage strip{400, 400, QImage::Format_ARGB32_Premultiplied};
    int speed = 9;
    qint64 count = 0;
};

// A frame told plainly, in the painter's own gradients and composition modes.
QImage plainFrame(const PropSimulator &prop, const QSize &size)
{
    const int w = size.width();
    const int h = size.height();
    QImage frame(size, QImage::Format_ARGB32_Premultiplied);
    frame.fill(Qt::transparent);
    QPainter painter(&frame);
    const QImage disc = prop.discImage.scaledToHeight(static_cast<int>(h * 0.9), Qt::FastTransformation);
    const QImage strip = prop.stripImage.scaledToHeight(static_cast<int>(h * 0.9), Qt::FastTransformation);
    painter.drawImage((w - 2 * disc.width()) / 2, (h - disc.height()) / 2, disc);
    const int speed = prop.spinSpeed;
    if (speed != 0) {
        const qint64 degrees = 1 - ((prop.stepCount * 10 - 10) * speed) / 160;
        const QPoint middle(w / 2, h / 2);
        QConicalGradient glow(middle.x() - h * 0.45, middle.y(), static_cast<double>(degrees % 360));
        glow.setColorAt(speed > 0 ? 0.0 : 1.0, QColor(0, 0, 0, 250));
        glow.setColorAt(speed > 0 ? speed / 10.0 : speed / 10.0 + 1.0, QColor(0, 0, 0, 0));
        glow.setColorAt(speed > 0 ? 1.0 : 0.0, QColor(0, 0, 0, 0));
        painter.setCompositionMode(QPainter::CompositionMode_DestinationAtop);
        painter.setPen(QColor(0, 0, 0, 0));
        painter.setBrush(glow);
        painter.drawRect(static_cast<int>(middle.x() - h * 0.9), static_cast<int>(h * 0.1 * 0.5), disc.width(),
                         disc.height());
    }
    painter.drawImage(w / 2, (h - strip.height()) / 2, strip);
    QFont font = painter.font();
    font.setPixelSize(12);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QRect(0, 0, 100, 50), 0,
                     QStringLiteral("FPS: %1").arg(prop.frameTimeShown > 0 ? 1000 / prop.frameTimeShown : 1000));
    painter.end();
    QImage opaque(size, QImage::Format_RGB32);
    opaque.fill(Qt::black);
    QPainter(&opaque).drawImage(0, 0, frame);
    return opaque;
}

// How many pixels differ by more than so much in a channel.
int pixelsOff(const QImage &one, const QImage &other, int step)
{
    int off = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            off += distance(one.pixel(x, y), other.pixel(x, y)) > step ? 1 : 0;
        }
    }
    return off;
}

// So many steps, in as few paints as may be.
void run(PropSimulator &prop, int steps)
{
    const qint64 end = prop.stepCount + steps;
    while (prop.stepCount < end) {
        prop.runSteps(prop.stepCount + 97 <= end ? 100 : 0);
    }
}

} // namespace

class TestSimulator : public QObject
{
    Q_OBJECT

private slots:
    void columnsOfAPattern()
    {
        const struct
        {
            double seconds;
            int repeats, columns;
        } cases[] = {
            // One a millisecond, an odd number gives up one. 33554435 lies between two floats, 33554432 and 33554436,
            // and goes to the nearer. No repeats and negative ones count as one.
            {0.1, 1, 100},          {1.501, 2, 750},
            {0.0035, 1, 4},         {0.001, 1, 0},
            {0.0149, 10, 0},        {33554.435, 1, 33554436},
            {86400.0, 1, 86400000}, {0.1, 0, 100},
            {0.1, -7, 100},         {0.0, 1, 0},
            {-5.0, 1, 0},           {1e300, 1, 0},
            {qInf(), 1, 0},         {qQNaN(), 1, 0},
        };
        for (const auto &c : cases) {
            QVERIFY2(glow::previewColumns(c.seconds, c.repeats) == c.columns, qPrintable(QString::number(c.seconds)));
        }
    }

    void stepsOfAPaint()
    {
        // 5760 sixteenths of a degree in 6000 ms, and a half: 0.96 ms + 0.5, the next whole number from there. A stall
        // is cut to 100 ms, a clock set back counts as no time.
        for (const auto &[ms, steps] :
             {qMakePair(0, 1), qMakePair(1, 2), qMakePair(10, 11), qMakePair(16, 16), qMakePair(50, 49),
              qMakePair(100, 97), qMakePair(86399999, 97), qMakePair(-5, 1)}) {
            PropSimulator prop;
            prop.runSteps(ms);
            QCOMPARE(prop.stepCount, qint64(steps));
        }
    }

    // Random patterns, speeds and pauses against the plain telling, to the last pixel.
    void everyStepIsDrawn()
    {
        std::mt19937 random(11);
        for (const int leds : {1, 7, 36, 80, 120, 179, 180, 181, 250, 400}) {
            for (const int speed : {9, 1, -4, 0}) {
                const int columns = 2 * (1 + static_cast<int>(random() % 40));
                const QImage picture = noise(columns, leds, random);
                PropSimulator prop;
                prop.spinSpeed = speed;
                prop.showPicture(picture, static_cast<qint16>(leds), columns / 1000.0, 1);
                PlainProp plain;
                plain.pattern = picture;
                plain.speed = speed;
                for (int paint = 0; paint < 4; ++paint) {
                    prop.runSteps(static_cast<int>(random() % 40));
                    while (plain.count < prop.stepCount) {
                        plain.step();
                    }
                    const QString where = QStringLiteral("%1 LEDs, speed %2").arg(leds).arg(speed);
                    QVERIFY2(prop.stripImage == plain.strip, qPrintable(where));
                    QVERIFY2(prop.discImage == plain.disc, qPrintable(where));
                }
            }
        }
    }

    void theStillPictureIsDrawnAtOnce()
    {
        std::mt19937 random(12);
        for (const int columns : {4, 576, 1200}) { // a narrow pattern wraps, a wide one is cut
            PropSimulator prop;
            PlainProp plain;
            plain.pattern = noise(columns, 70, random);
            prop.showPicture(plain.pattern, 70, columns / 1000.0, 1);
            QTest::ignoreMessage(QtDebugMsg, "draw static");
            prop.setSpinSpeed(0);
            for (int i = 0; i < 576; ++i) {
                plain.wedge(i % columns, -10 * i);
            }
            QCOMPARE(prop.discImage, plain.disc);
            run(prop, 5); // while still, steps move the strip and leave the disc alone
            QCOMPARE(prop.discImage, plain.disc);
            QCOMPARE(onStrip(prop), plain.pattern.pixel(4 % columns, 16));
        }
    }

    void aSpeedChangeKeepsTheAngle()
    {
        PropSimulator prop;
        const auto countAt = [&prop](int speed) {
            prop.setSpinSpeed(speed);
            return prop.stepCount;
        };
        prop.stepCount = 1000;
        prop.stepOrigin = 5;
        QCOMPARE(countAt(3), qint64(2997)); // 9 * 999 / 3
        QCOMPARE(prop.stepOrigin, qint64(0));
        QCOMPARE(countAt(-7), qint64(1284)); // 3 * 2996 / -7 is -1284, the sign goes
        QCOMPARE(countAt(0), qint64(1284));
        QCOMPARE(countAt(5), qint64(0)); // the old speed was 0
        prop.stepCount = qint64(1) << 40;
        QCOMPARE(countAt(9), 5 * ((qint64(1) << 40) - 1) / 9);
    }

    void aNewPatternStartsAtItsFirstColumn()
    {
        PropSimulator prop;
        prop.showPicture(columnsOf({red, red, red, red}), 80, 0.004, 1);
        run(prop, 7);
        prop.showPicture(columnsOf({green, blue}), 80, 0.006, 3);
        QCOMPARE(prop.stepOrigin, qint64(7));
        QCOMPARE(prop.columnCount, 2);
        for (const QRgb expected : {green, blue, green}) {
            run(prop, 1);
            QCOMPARE(onStrip(prop), expected);
        }
        // What a seek does: the counters are set from outside, column (n - origin) % 2 comes next.
        prop.stepCount = 1000001;
        prop.stepOrigin = 0;
        run(prop, 1);
        QCOMPARE(onStrip(prop), blue);
        prop.resetImages();
        QCOMPARE(prop.stepOrigin, qint64(0));
        QCOMPARE(onStrip(prop), black);
        QCOMPARE(prop.discImage.pixel(350, 200), black);
    }

    void nothingToShowIsBlack()
    {
        PropSimulator prop;
        run(prop, 5); // no pattern was ever set
        QCOMPARE(onStrip(prop), black);
        prop.setSpinSpeed(0);
        prop.setSpinSpeed(9);
        prop.showPicture(QImage(), 80, 0.01, 1);
        QCOMPARE(prop.patternImage.size(), QSize(10, 80));
        QCOMPARE(prop.patternImage.pixel(9, 79), black);

        // A pattern without columns or rows draws black wedges over what was there and leaves the strip alone.
        prop.showPicture(columnsOf({red, red}), 80, 0.002, 1);
        run(prop, 640);
        QCOMPARE(onDisc(prop, 50, 170), red);
        for (const auto &[leds, seconds] : {std::pair<int, double>(80, 0.001), std::pair<int, double>(0, 5.0)}) {
            prop.showPicture(columnsOf({green}), static_cast<qint16>(leds), seconds, 1);
            QVERIFY(prop.patternImage.isNull());
            run(prop, 641);
            QCOMPARE(onDisc(prop, 50, 170), black);
            QCOMPARE(onStrip(prop), red);
            prop.setSpinSpeed(0);
            prop.setSpinSpeed(9);
        }
    }

    void transparencyIsIgnored()
    {
        // The prop knows no transparency, so a half transparent red is its full red.
        PropSimulator prop;
        prop.showPicture(columnsOf({white, white}), 80, 0.002, 1);
        run(prop, 1);
        QImage glass(2, 1, QImage::Format_ARGB32);
        glass.fill(qRgba(200, 0, 0, 128));
        prop.showPicture(glass.convertToFormat(QImage::Format_ARGB32_Premultiplied), 80, 0.002, 1);
        run(prop, 1);
        QVERIFY(std::abs(qRed(onStrip(prop)) - 200) <= 1);
        QCOMPARE(qGreen(onStrip(prop)), 0);
        QCOMPARE(qAlpha(prop.pixelAt(0, 0)), 255);
    }

    void countersBeyondTheirRange()
    {
        PropSimulator prop;
        prop.showPicture(columnsOf({red, green}), 80, 0.002, 1);
        QImage frame(300, 200, QImage::Format_RGB32);
        for (const qint64 count : {qint64(1) << 31, (qint64(1) << 33) - 3, qint64(-5), qint64(1) << 55}) {
            prop.stepCount = count;
            prop.stepOrigin = count > 0 ? 0 : 100;
            run(prop, 20);
            QPainter painter(&frame);
            prop.paintFrame(painter, 300, 200);
        }
        // 9 times 2^31 is 2^31 in 32 bits, and negated -2147483648: 128 sixteenths clockwise beyond whole turns.
        prop.resetImages();
        prop.stepCount = qint64(1) << 31;
        run(prop, 1);
        QCOMPARE(onDisc(prop, 128 / 16.0 - 0.3, 170), red);
    }

    void aDayLongPatternIsLookedUp()
    {
        const QVector<QRgb> colors{red, green, red, red, red, blue};
        const QImage picture = painted(3, 2, [&colors](int x, int y) { return colors.at(3 * y + x); });
        PropSimulator prop;
        prop.showPicture(picture, 80, 86400.0, 1);
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
        QCOMPARE(onStrip(prop), green);
        run(prop, 1);
        QCOMPARE(onStrip(prop), red);
        // The last width that has an image of its own, and the first that has none.
        prop.showPicture(picture, 80, 32.766, 1);
        QCOMPARE(prop.patternImage.width(), 32766);
        prop.showPicture(picture, 80, 32.768, 1);
        QCOMPARE(prop.pixelAt(32767, 79), blue);
    }

    void nearestPixelAgreesWithQt()
    {
        // Never more than the one source pixel that the 16-bit fractions of QImage::scaled can lose, and the same
        // wherever the ratio has no remainder there.
        std::mt19937 random(20);
        for (int round = 0; round < 2000; ++round) {
            const int from = 1 + static_cast<int>(random() % 1500);
            const int to = round % 4 == 0 ? from << (random() % 4) : 1 + static_cast<int>(random() % 3000);
            const QImage source = painted(from, 1, [](int x, int) { return 0xff000000U | static_cast<QRgb>(x); });
            const QImage scaled = source.scaled(to, 1, Qt::IgnoreAspectRatio, Qt::FastTransformation);
            const bool clean = from * 65536 % to == 0;
            for (int x = 0; x < to; ++x) {
                const qint64 behind = glow::nearestPixel(x, from, to) - qint64(scaled.pixel(x, 0) & 0xffffffU);
                if (behind != 0 && (clean || behind != 1)) {
                    QFAIL(qPrintable(QStringLiteral("%1 to %2 at %3: %4 behind").arg(from).arg(to).arg(x).arg(behind)));
                }
            }
        }
    }

    void scalingBeyondThePainter()
    {
        QVERIFY(glow::scaledNearest(QImage(), QSize(10, 10)).isNull());
        QVERIFY(glow::scaledNearest(columnsOf({red}), QSize(0, 10)).isNull());
        const QVector<QRgb> colors{red, green, blue, white};
        const QImage wide = glow::scaledNearest(columnsOf(colors), QSize(80000, 3));
        QCOMPARE(wide.convertToFormat(QImage::Format_RGB32),
                 painted(80000, 3, [&colors](int x, int) { return colors.at(x / 20000); }));
        QCOMPARE(glow::scaledNearest(wide, QSize(4, 1)).convertToFormat(QImage::Format_RGB32), columnsOf(colors));
    }

    void aFrameAsThePainterDrawsIt()
    {
        std::mt19937 random(5);
        PropSimulator prop;
        prop.showPicture(noise(64, 120, random), 120, 0.064, 1);
        run(prop, 640); // all around
        prop.frameTimeShown = 30;
        for (const QSize &size : {QSize(900, 400), QSize(421, 233), QSize(200, 200), QSize(150, 401)}) {
            for (const int speed : {9, 5, 1, 0, -4, -9}) {
                prop.setSpinSpeed(speed);
                for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied}) {
                    prop.stepCount += 12345;
                    QImage surface(size, format);
                    surface.fill(QColor(10, 200, 90, 120)); // stale pixels
                    {
                        QPainter painter(&surface);
                        prop.paintFrame(painter, size.width(), size.height());
                    }
                    // The gradient has 1024 colours around the circle; its edge at the bar jumps by 250, and a pixel
                    // on it can fall to either side.
                    const int off = pixelsOff(surface, plainFrame(prop, size), 2 + 3 / std::max(1, std::abs(speed)));
                    QVERIFY2(off <= (speed == 0 ? 0 : size.height()), qPrintable(QString::number(off)));
                }
            }
        }
    }

    void frameTimes()
    {
        PropSimulator prop;
        prop.setSpinSpeed(0);
        QImage surface(700, 300, QImage::Format_RGB32);
        QPainter painter(&surface);
        prop.frameTimeShown = 0; // paints within the same millisecond
        prop.paintFrame(painter, 700, 300);
        QCOMPARE(pixelsOff(surface, plainFrame(prop, surface.size()), 0), 0);
        // The mean: (60 + t) / 2, t being what passed since the last frame.
        prop.frameTimeAverage = 60;
        prop.stepClock = QTime::currentTime().addMSecs(-1000);
        prop.paintFrame(painter, 700, 300);
        QVERIFY(prop.frameTimeAverage >= 530 && prop.frameTimeAverage < 1000);
        // The clock set to the future, as over midnight, counts as a stall and no more.
        const qint64 steps = prop.stepCount;
        prop.stepClock = QTime::currentTime().addMSecs(5000);
        prop.paintFrame(painter, 700, 300);
        QCOMPARE(prop.stepCount - steps, qint64(97));
        // No surface to speak of.
        prop.paintFrame(painter, 0, 0);
        prop.paintFrame(painter, 700, 1);
    }
};

QTEST_MAIN(TestSimulator)
#include "test_simulator.moc"
