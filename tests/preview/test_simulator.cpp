// The simulated prop as plain images: its arithmetic, what each step draws, and the frame put together from it.
#include "show/draw/propsimulator.h"
#include "show/draw/rasterops.h"
#include "support/pixels.h"

#include <QPainter>
#include <QtTest>

#include <cmath>

using glow::PropSimulator;

namespace {

// Any pixel of the strip's LEDs, where a column has one colour.
QRgb onStrip(const PropSimulator &prop)
{
    return prop.stripImage.pixel(200, 100);
}

// The prop told plainly: every step draws the bar and its wedge, all of it, with nothing left out.
struct PlainProp
{
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
        const int column = static_cast<int>((count - origin) % pattern.width());
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

    int speed;
    QImage disc;
    QImage strip;
    QImage pattern{};
    qint64 count = 0;
    qint64 origin = 0;
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
    // The window shows it on black.
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    painter.fillRect(frame.rect(), Qt::black);
    painter.end();
    return frame;
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

void run(PropSimulator &prop, int steps)
{
    for (int n = 0; n < steps; ++n) {
        prop.runSteps(0);
    }
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
        for (const auto &[seconds, repeats, columns] : patterns) {
            QCOMPARE(glow::previewColumns(seconds, repeats), columns);
        }
        // 5760 sixteenths of a degree in 6000 ms, and a half: 0.96 ms + 0.5, the next whole number from there. A stall
        // is cut to 100 ms, a clock set back counts as no time.
        for (const auto &[ms, steps] : {qMakePair(0, 1), qMakePair(1, 2), qMakePair(16, 16), qMakePair(50, 49),
                                        qMakePair(86399999, 97), qMakePair(-5, 1)}) {
            QCOMPARE(glow::previewSteps(ms), steps);
        }
    }

    // Random patterns, speeds and pauses against the plain telling, to the last pixel. Each pattern starts at its first
    // column; as a still picture a narrow one wraps, a wide one is cut.
    void everyStepIsDrawn()
    {
        std::mt19937 random(11);
        for (const int leds : {1, 7, 80, 120, 179, 180, 181, 400}) {
            for (const int speed : {9, 1, -4, 0}) {
                PropSimulator prop;
                prop.spinSpeed = speed;
                PlainProp plain{speed, prop.discImage, prop.stripImage};
                for (int paint = 0; paint < 4; ++paint) {
                    if (paint % 2 == 0) {
                        const int columns = 2 * (1 + static_cast<int>(random() % (leds == 80 ? 600 : 40)));
                        plain.pattern = noise(columns, leds, random);
                        plain.origin = plain.count;
                        prop.showPicture(plain.pattern, static_cast<qint16>(leds), columns / 1000.0, 1);
                    }
                    prop.runSteps(static_cast<int>(random() % 40));
                    while (plain.count < prop.stepCount) {
                        plain.step();
                    }
                    QVERIFY2(prop.stripImage == plain.strip && prop.discImage == plain.disc,
                             qPrintable(QStringLiteral("%1 LEDs, speed %2").arg(leds).arg(speed)));
                }
                QTest::ignoreMessage(QtDebugMsg, "draw static");
                prop.setSpinSpeed(0);
                for (int i = 0; i < 576; ++i) {
                    plain.wedge(i % plain.pattern.width(), -10 * i);
                }
                QCOMPARE(prop.discImage, plain.disc);
            }
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

    void clocksAndCountersOutOfRange()
    {
        PropSimulator prop;
        QImage surface(300, 200, QImage::Format_RGB32);
        QPainter painter(&surface);
        // The mean: (60 + t) / 2, t being what passed since the last frame.
        prop.stepClock = QTime::currentTime().addMSecs(-1000);
        prop.paintFrame(painter, 0, 0); // no surface to speak of
        QVERIFY(prop.frameTimeAverage >= 530 && prop.frameTimeAverage < 1000);
        // The clock set to the future, as over midnight, counts as a stall and no more.
        const qint64 steps = prop.stepCount;
        prop.stepClock = QTime::currentTime().addMSecs(5000);
        prop.paintFrame(painter, 300, 1);
        QCOMPARE(prop.stepCount - steps, qint64(97));

        // 9 times 2^31 is 2^31 in 32 bits, and negated -2147483648: 128 sixteenths clockwise beyond whole turns, which
        // ends on the disc at 368, 224.
        prop.showPicture(painted(2, 1, [](int x, int) { return x == 0 ? red : green; }), 80, 0.002, 1);
        prop.stepCount = qint64(1) << 31;
        prop.stepOrigin = 0;
        run(prop, 1);
        QCOMPARE(prop.discImage.pixel(368, 222), red);
        for (const qint64 count : {(qint64(1) << 33) - 3, qint64(-5), qint64(1) << 55}) {
            prop.stepCount = count;
            prop.stepOrigin = count > 0 ? 0 : 100;
            prop.paintFrame(painter, 300, 200);
        }
    }

    void nothingToShowIsBlack()
    {
        PropSimulator prop;
        run(prop, 5); // no pattern was ever set
        QCOMPARE(onStrip(prop), black);
        prop.setSpinSpeed(0);
        prop.setSpinSpeed(9);
        prop.showPicture(QImage(), 80, 0.01, 1);
        QCOMPARE(prop.pixelAt(9, 79), black);

        // A pattern without columns or rows draws black wedges over what was there and leaves the strip alone. The prop
        // knows no transparency, so a half transparent red is its full red.
        QImage glass(2, 1, QImage::Format_ARGB32_Premultiplied);
        glass.fill(qRgba(128, 0, 0, 128));
        prop.showPicture(glass, 80, 0.002, 1);
        run(prop, 640);
        QCOMPARE(prop.discImage.pixel(309, 330), red);
        const QImage dot = painted(1, 1, [](int, int) { return green; });
        for (const auto &[leds, seconds] : {qMakePair(80, 0.001), qMakePair(0, 5.0)}) {
            prop.showPicture(dot, static_cast<qint16>(leds), seconds, 1);
            run(prop, 641);
            QCOMPARE(prop.discImage.pixel(309, 330), black);
            QCOMPARE(onStrip(prop), red);
            prop.setSpinSpeed(0);
            prop.setSpinSpeed(9);
        }
    }

    void aDayLongPatternIsLookedUp()
    {
        PropSimulator prop;
        const QImage picture = painted(3, 2, [](int x, int y) { return x == y + 1 ? green : red; });
        prop.showPicture(picture, 80, 86400.0, 1);
        QCOMPARE(QSize(prop.columns(), prop.rows()), QSize(86400000, 80));
        QVERIFY(prop.patternImage.isNull());
        QCOMPARE(prop.pixelAt(28799999, 0), red);
        QCOMPARE(prop.pixelAt(28800000, 0), green);
        QCOMPARE(prop.pixelAt(57599999, 39), green);
        QCOMPARE(prop.pixelAt(86399999, 40), green);
        prop.stepCount = 57599999; // a seek
        prop.stepOrigin = 0;
        run(prop, 1);
        QCOMPARE(onStrip(prop), green);
        // The first width that has no image of its own.
        prop.showPicture(picture, 80, 32.768, 1);
        QCOMPARE(prop.pixelAt(32767, 79), green);
        // The centre of pixel 1 of 3 lies between two of 2, that of pixel 1 of 2 within the last of 3.
        QCOMPARE(glow::nearestPixel(1, 2, 3), qint64(0));
        QCOMPARE(glow::nearestPixel(1, 3, 2), qint64(2));
        QVERIFY(glow::scaledNearest(QImage(), QSize(10, 10)).isNull());
    }

    // Whatever the surface and the stale pixels on it.
    void aFrameAsThePainterDrawsIt()
    {
        std::mt19937 random(5);
        PropSimulator prop;
        prop.showPicture(noise(64, 120, random), 120, 0.064, 1);
        run(prop, 640); // all around
        for (const QSize &size : {QSize(900, 400), QSize(421, 233), QSize(150, 401)}) {
            for (const int speed : {9, 5, 1, 0, -4, -9}) {
                prop.setSpinSpeed(speed);
                for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied}) {
                    prop.stepCount += 12345;
                    prop.frameTimeShown = speed > 0 ? 30 : 0; // paints within the same millisecond
                    QImage surface(size, format);
                    surface.fill(QColor(10, 200, 90, 120));
                    QPainter painter(&surface);
                    prop.paintFrame(painter, size.width(), size.height());
                    painter.end();
                    // The gradient has 1024 colours around the circle; its edge at the bar jumps by 250, and a pixel
                    // on it can fall to either side.
                    const int off = pixelsOff(surface, plainFrame(prop, size), 2 + 3 / std::max(1, std::abs(speed)));
                    QVERIFY2(off <= (speed == 0 ? 0 : size.height()), qPrintable(QString::number(off)));
                }
            }
        }
    }
};

QTEST_MAIN(TestSimulator)
#include "test_simulator.moc"
