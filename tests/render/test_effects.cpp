// The generated patterns: hand-figured pixels, and every pixel of every effect against closed formulas.
#include "effectmodel.h"
#include "render/effectimage.h"

#include <QPainter>
#include <QTest>

#include <cmath>

using glow::EffectSettings;

namespace {

EffectSettings settingsOf(int row, int mode, int width, const QColor &front = QColor(200, 100, 50),
                          const QColor &back = QColor(10, 20, 30))
{
    EffectSettings settings;
    settings.row = row;
    settings.mode = mode;
    settings.width = width;
    settings.front = front;
    settings.back = back;
    return settings;
}

// The picture in drawing coordinates: every effect comes out mirrored horizontally.
QImage drawn(const EffectSettings &settings)
{
    return glow::effectImage(settings).mirrored(true, false);
}

int countOf(const QImage &image, const QColor &colour)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += image.pixel(x, y) == colour.rgb() ? 1 : 0;
        }
    }
    return count;
}

} // namespace

class TestEffects : public QObject
{
    Q_OBJECT

private slots:
    void handFiguredPixels_data();
    void handFiguredPixels();
    void everyPixel_data();
    void everyPixel();
    void rainbow();
    void blockCounts();
    void whatMakesNoDifference();
    void flips();
    void foreignValues();
};

// Front 200, 100, 50 on back 10, 20, 30. As hues: 200 * 1.4 = 280; (100 + 85) * 1.4 = 259; (50 + 170) * 1.4 = 308.
// 280 degrees lie 40 past blue: red 255 * 40 / 60 = 170. 259: red 255 * 19 / 60 = 80.75. 308: 8 past magenta, so blue
// is 255 * 52 / 60 = 221.
void TestEffects::handFiguredPixels_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("width");
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<QColor>("colour");

    const QColor front(200, 100, 50);
    const QColor back(10, 20, 30);
    const QColor h0(170, 0, 255);
    const QColor h1(81, 0, 255);
    const QColor h2(255, 0, 221);
    const auto add = [](const char *what, int row, int mode, int width, const QPoint &point, const QColor &colour) {
        QTest::newRow(what) << row << mode << width << point << colour;
    };

    add("flash, tail begins opaque", 0, 0, 5, {11, 0}, front);
    // The second strip has alpha 255 - 25 = 230: 200 * 230 / 255 + 10 * 25 / 255 = 181.4, and so on.
    add("flash, second strip", 0, 0, 5, {12, 70}, QColor(181, 92, 48));
    // The tenth has 255 - 229 = 26: 29.4, 28.2, 32.0.
    add("flash, last strip", 0, 0, 5, {29, 70}, QColor(29, 28, 32));
    // Width 1 has two strips, alpha 255 and 128: 105.4, 60.2, 40.0.
    add("flash, width 1", 0, 0, 1, {63, 70}, QColor(105, 60, 40));
    // Width 10: the twentieth strip has alpha 13 and ends where the next flash begins: 19.7, 24.1, 31.0.
    add("flash, width 10", 0, 0, 10, {149, 70}, QColor(20, 24, 31));
    add("flash, hues, fifth", 0, 1, 5, {205, 3}, h1);
    add("flash, negative, body", 0, 2, 5, {255, 3}, back);
    // The fifth strip's alpha is 255 - 127 = 128 when W is 8 (4 * 255 / 8 = 127.5): back and hue half each.
    add("flash, negative, tail", 0, 2, 4, {168, 3}, QColor(45, 10, 142));

    add("windmill, inside", 1, 0, 5, {90, 100}, front);
    add("windmill, hues", 1, 1, 5, {290, 20}, h2);
    add("windmill, negative ground is bands", 1, 2, 5, {210, 75}, h1);
    add("windmill, negative blade", 1, 2, 5, {280, 20}, back);

    add("jump, mean", 2, 0, 5, {100, 0}, QColor(105, 60, 40));
    add("jump, hues", 2, 2, 5, {299, 149}, h2);

    add("fade, hard centre of an edge", 3, 0, 5, {100, 75}, back);
    add("fade, the first two strips of the right arm", 3, 1, 1, {204, 75}, QColor(132, 10, 125));
    // The left arm's second strip: at W = 2 it covers 97 to 99 with alpha 128 over the front.
    add("fade, left arm", 3, 0, 1, {98, 75}, QColor(105, 60, 40));

    add("arrow, near the tip", 5, 0, 5, {72, 75}, front);
    add("arrow, negative ground is bars", 5, 2, 5, {190, 20}, h1);
    add("arrow, negative head", 5, 2, 5, {110, 75}, back);

    add("saw, tooth", 6, 0, 5, {75, 14}, front);
    add("saw, hues", 6, 1, 5, {225, 145}, h2);
    add("saw, negative ground is bands", 6, 2, 5, {150, 70}, h1);

    add("meteor, streak at the top", 7, 0, 5, {3, 0}, front);
    // The third streak comes back at the left with its tail: there lie the passes of alpha 153 and 128.
    add("meteor, third streak wraps", 7, 1, 5, {2, 149}, QColor(206, 4, 183));
    add("meteor, second", 7, 2, 5, {103, 0}, h1);
    // Past the streak, on the second pass alone: alpha 128.
    add("meteor, tail", 7, 0, 1, {12, 0}, QColor(105, 60, 40));

    add("slanted meteor, its other piece", 8, 1, 1, {298, 95}, h0);
    add("slanted meteor, third in the corner", 8, 1, 5, {0, 148}, h2);
    // The second pass lies 3 higher: from 87 to 97 at x = 0, alone above 90.
    add("slanted meteor, tail", 8, 0, 1, {0, 88}, QColor(105, 60, 40));

    // Width 7: blocks of 300 / 14 = 21 by 150 / 14 = 10.
    add("box, diagonal", 9, 0, 7, {21, 10}, front);
    add("box, in the uneven rest", 9, 0, 7, {299, 140}, front);
    add("box, staircase starts with the second hue", 9, 1, 5, {29, 14}, h1);
    add("box, staircase ends", 9, 2, 5, {60, 30}, h0);

    add("triangle, inside", 10, 0, 5, {148, 74}, front);
    add("triangle, tinted figure", 10, 1, 5, {10, 60}, h1);
    // The back colour times the hue: 10 * 255 / 255, 0, 30 * 221 / 255 = 26.
    add("triangle, tinted ground", 10, 2, 5, {290, 120}, QColor(10, 0, 26));
    // Width 5 is a pen of 20: it reaches ten to each side, 11.18 measured down.
    add("line, inside", 11, 0, 5, {150, 84}, front);
    add("line, outside", 11, 0, 5, {150, 88}, back);
    add("wedge, right arm", 12, 0, 5, {225, 75}, front);
    add("cross, falling line", 13, 0, 5, {60, 30}, front);
    add("cross, tinted ground", 13, 2, 5, {150, 5}, QColor(7, 0, 30));
}

void TestEffects::handFiguredPixels()
{
    QFETCH(int, row);
    QFETCH(int, mode);
    QFETCH(int, width);
    QFETCH(QPoint, point);
    QFETCH(QColor, colour);

    const QColor got = drawn(settingsOf(row, mode, width)).pixelColor(point);
    const QByteArray text = got.name().toLatin1() + " instead of " + colour.name().toLatin1();
    QVERIFY2(std::abs(got.red() - colour.red()) <= 1 && std::abs(got.green() - colour.green()) <= 1 &&
                 std::abs(got.blue() - colour.blue()) <= 1,
             text.constData());
}

void TestEffects::everyPixel_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("width");
    for (int row = 0; row < glow::EffectRowCount; ++row) {
        if (row == glow::RainbowEffect) {
            continue;
        }
        for (int mode = 0; mode < 3; ++mode) {
            for (const int width : {1, 7, 10}) {
                QTest::addRow("row %d, mode %d, width %d", row, mode, width) << row << mode << width;
            }
        }
    }
}

void TestEffects::everyPixel()
{
    QFETCH(int, row);
    QFETCH(int, mode);
    QFETCH(int, width);

    // A pixel of a filled figure is painted when its centre lies inside; the border of a stroke is up to the stroker.
    const double margin = row >= glow::LineEffect ? 1.0 : 0.1;
    int checked = 0;
    for (const QColor &front : {QColor(0, 0, 0), QColor(201, 33, 120)}) {
        const EffectSettings settings = settingsOf(row, mode, width, front, QColor(17, 60, 101));
        EffectModel model(settings);
        const QImage image = drawn(settings);
        for (int y = 0; y < 150; ++y) {
            for (int x = 0; x < 300; ++x) {
                double clear = 0;
                const EffectModel::Rgb want = model.at(x, y, clear);
                if (clear < margin) {
                    continue;
                }
                ++checked;
                const QRgb got = image.pixel(x, y);
                const double off = std::max({std::fabs(qRed(got) - want[0]), std::fabs(qGreen(got) - want[1]),
                                             std::fabs(qBlue(got) - want[2])});
                // Whole numbers after every translucent layer move a channel by a little over 1 at most.
                if (off > 2.0) {
                    QFAIL(qPrintable(QStringLiteral("%1, %2: %3 instead of %4 %5 %6")
                                         .arg(x)
                                         .arg(y)
                                         .arg(QColor(got).name())
                                         .arg(want[0])
                                         .arg(want[1])
                                         .arg(want[2])));
                }
            }
        }
    }
    QVERIFY2(checked > 2 * 45000 * 9 / 10, "too many pixels were left out");
}

void TestEffects::rainbow()
{
    const QImage image = drawn(settingsOf(glow::RainbowEffect, 0, 5));
    QCOMPARE(image.pixelColor(0, 0), QColor(255, 0, 0));
    QCOMPARE(image.pixelColor(50, 0), QColor(255, 255, 0));
    QCOMPARE(image.pixelColor(60, 40), QColor(0, 255, 0));
    QCOMPARE(image.pixelColor(100, 50), QColor(0, 255, 255));
    QCOMPARE(image.pixelColor(200, 0), QColor(0, 0, 255));
    QCOMPARE(image.pixelColor(299, 1), QColor(255, 0, 0)); // 300 is a whole turn
    QCOMPARE(image.pixelColor(299, 51), QColor(255, 255, 0));

    // What it is fast instead of: one rectangle a pixel.
    QImage slow(300, 150, QImage::Format_RGB32);
    QPainter painter(&slow);
    for (int x = 0; x < 300; ++x) {
        for (int y = 0; y < 150; ++y) {
            double h = (x + y) / 300.0;
            if (h > 1.0) {
                h = h - 1.0;
            }
            painter.fillRect(x, y, 1, 1, QColor::fromHsvF(h, 1.0, 1.0, 1.0));
        }
    }
    painter.end();
    QCOMPARE(image, slow);

    for (const int mode : {1, 2}) {
        QCOMPARE(drawn(settingsOf(glow::RainbowEffect, mode, 9, Qt::black, Qt::green)), slow);
    }
}

void TestEffects::blockCounts()
{
    const QColor front(200, 100, 50);
    // Ten blocks by ten of 30 by 15: half of them.
    QCOMPARE(countOf(drawn(settingsOf(glow::BoxEffect, 0, 5)), front), 50 * 30 * 15);
    // Blocks of 21 by 10. Even columns: seven whole ones and the rest of 6, in 8 even rows; 7 odd columns in 7 odd
    // rows.
    QCOMPARE(countOf(drawn(settingsOf(glow::BoxEffect, 0, 7)), front), (7 * 21 + 6) * 80 + 7 * 21 * 70);
    // Two blocks by two.
    QCOMPARE(countOf(drawn(settingsOf(glow::BoxEffect, 0, 1)), front), 2 * 150 * 75);
    // A mean is truncated: 0.5, 1.5 and 128.5.
    QCOMPARE(drawn(settingsOf(glow::JumpEffect, 0, 5, QColor(0, 1, 2), QColor(1, 2, 255))).pixelColor(150, 75),
             QColor(0, 1, 128));
    // Equal channels of 0 are the hues 0, 119 and 238.
    const QImage bars = drawn(settingsOf(glow::JumpEffect, 1, 5, Qt::black));
    QCOMPARE(countOf(bars, QColor(255, 0, 0)), 100 * 150);
    QCOMPARE(countOf(bars, QColor::fromHsv(119, 255, 255)), 100 * 150);
    QCOMPARE(countOf(bars, QColor::fromHsv(238, 255, 255)), 100 * 150);
}

void TestEffects::whatMakesNoDifference()
{
    for (const int row : {glow::JumpEffect, glow::FadeEffect, glow::MeteorEffect, glow::SlantedMeteorEffect,
                          glow::BoxEffect, glow::TriangleEffect, glow::CrossEffect}) {
        QCOMPARE(drawn(settingsOf(row, 1, 3)), drawn(settingsOf(row, 2, 3)));
    }
    for (const int row : {glow::FlashEffect, glow::WindmillEffect, glow::ArrowEffect, glow::SawEffect}) {
        QVERIFY(drawn(settingsOf(row, 1, 3)) != drawn(settingsOf(row, 2, 3)));
    }
    for (int mode = 0; mode < 3; ++mode) {
        for (const int row :
             {glow::WindmillEffect, glow::JumpEffect, glow::ArrowEffect, glow::SawEffect, glow::TriangleEffect}) {
            QCOMPARE(drawn(settingsOf(row, mode, 1)), drawn(settingsOf(row, mode, 10)));
        }
        for (const int row : {glow::FlashEffect, glow::FadeEffect, glow::MeteorEffect, glow::SlantedMeteorEffect,
                              glow::BoxEffect, glow::LineEffect, glow::WedgeEffect, glow::CrossEffect}) {
            QVERIFY(drawn(settingsOf(row, mode, 1)) != drawn(settingsOf(row, mode, 10)));
        }
    }
}

void TestEffects::flips()
{
    // The triangle reaches the left and the upper edge where it is drawn; mirrored, the right and the upper one.
    EffectSettings settings = settingsOf(glow::TriangleEffect, 0, 5);
    const auto reached = [&settings] {
        const QImage image = glow::effectImage(settings);
        QString text;
        for (const QPoint &edge : {QPoint(20, 75), QPoint(279, 75), QPoint(150, 10), QPoint(150, 139)}) {
            text += image.pixelColor(edge) == settings.front ? QLatin1Char('#') : QLatin1Char('.');
        }
        return text;
    };
    const QSize size(300, 150);
    QCOMPARE(glow::effectImage(settings).size(), size);
    QCOMPARE(reached(), QStringLiteral(".##."));
    settings.flipV = true;
    QCOMPARE(reached(), QStringLiteral(".#.#"));
    settings.flipH = true;
    QCOMPARE(reached(), QStringLiteral("#..#"));
    settings.flipV = false;
    QCOMPARE(reached(), QStringLiteral("#.#."));
}

void TestEffects::foreignValues()
{
    for (const int row : {-1, 14, 99, -2147483647}) {
        QCOMPARE(countOf(glow::effectImage(settingsOf(row, 1, 5)), QColor(10, 20, 30)), 45000);
    }
    for (int row = 0; row < glow::EffectRowCount; ++row) {
        QCOMPARE(drawn(settingsOf(row, 7, 5)), drawn(settingsOf(row, 0, 5)));
        QCOMPARE(drawn(settingsOf(row, 0, 0)), drawn(settingsOf(row, 0, 1)));
        QCOMPARE(drawn(settingsOf(row, 2, 1000000)), drawn(settingsOf(row, 2, 10)));
        // Colours that a foreign settings text can bring: none at all counts as black, a translucent one stays so.
        QCOMPARE(drawn(settingsOf(row, 2, 5, QColor(), QColor())), drawn(settingsOf(row, 2, 5, Qt::black, Qt::black)));
        QVERIFY(!drawn(settingsOf(row, 2, 5, Qt::red, QColor(1, 2, 3, 100))).isNull());
    }
    QCOMPARE(drawn(settingsOf(-1, 0, 5, Qt::red, QColor(255, 0, 0, 0))).pixelColor(5, 5).alpha(), 0);
}

QTEST_MAIN(TestEffects)
#include "test_effects.moc"
