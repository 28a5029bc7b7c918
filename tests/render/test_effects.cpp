// The generated patterns: every pixel of every effect against closed formulas, exact colours, foreign values.
#include "effectmodel.h"
#include "render/effectimage.h"
#include "support/pixels.h"

#include <QTest>

#include <cmath>

using glow::EffectSettings;

namespace {

EffectSettings settingsOf(int row, int mode, int width, const QColor &front = QColor(200, 100, 50),
                          const QColor &back = QColor(10, 20, 30))
{
    return {row, front, back, width, mode, false, false};
}

// The picture in drawing coordinates: every effect comes out mirrored horizontally.
QImage drawn(const EffectSettings &settings)
{
    return glow::effectImage(settings).mirrored(true, false);
}

double distance(QRgb got, const EffectModel::Rgb &want)
{
    return std::max(
        {std::fabs(qRed(got) - want[0]), std::fabs(qGreen(got) - want[1]), std::fabs(qBlue(got) - want[2])});
}

} // namespace

class TestEffects : public QObject
{
    Q_OBJECT

private slots:
    void exactColours();
    void everyPixel_data();
    void everyPixel();
    void rainbow();
    void flips();
    void foreignValues();
};

// What the tolerance for rounded layers would let pass.
void TestEffects::exactColours()
{
    // A mean is truncated: 0.5, 1.5 and 128.5.
    QCOMPARE(drawn(settingsOf(glow::JumpEffect, 0, 5, QColor(0, 1, 2), QColor(1, 2, 255))).pixelColor(150, 75),
             QColor(0, 1, 128));
    // Equal channels of 0 are the hues 0, 119 and 238.
    const QImage bars = drawn(settingsOf(glow::JumpEffect, 1, 5, Qt::black));
    QCOMPARE(bars.pixelColor(99, 0), QColor(255, 0, 0));
    QCOMPARE(bars.pixelColor(100, 0).rgb(), QColor::fromHsv(119, 255, 255).rgb());
    QCOMPARE(bars.pixelColor(200, 0).rgb(), QColor::fromHsv(238, 255, 255).rgb());
    // A tail's first strip is opaque. Width 1 has two, alpha 255 and 128: 200 * 128 / 255 + 10 * 127 / 255 = 105.4 ...
    const QImage flash = drawn(settingsOf(glow::FlashEffect, 0, 1));
    QCOMPARE(flash.pixelColor(61, 70), QColor(200, 100, 50));
    QCOMPARE(flash.pixelColor(63, 70), QColor(105, 60, 40));
}

void TestEffects::everyPixel_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("width");
    for (int row = 0; row < glow::EffectRowCount; ++row) {
        for (int mode = 0; row != glow::RainbowEffect && mode < 3; ++mode) {
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
        for (int i = 0; i < 300 * 150; ++i) {
            const int x = i % 300;
            const int y = i / 300;
            double clear = 0;
            const EffectModel::Rgb want = model.at(x, y, clear);
            if (clear < margin) {
                continue;
            }
            ++checked;
            // Whole numbers after every translucent layer move a channel by a little over 1 at most.
            if (distance(image.pixel(x, y), want) > 2.0) {
                QFAIL(qPrintable(QStringLiteral("%1, %2: %3").arg(x).arg(y).arg(image.pixelColor(x, y).name())));
            }
        }
    }
    QVERIFY2(checked > 2 * 45000 * 9 / 10, "too many pixels were left out");
}

void TestEffects::rainbow()
{
    // Every pixel has a hue of its own. 300 is a whole turn.
    const QImage slow = painted(300, 150, [](int x, int y) {
        const double h = (x + y) / 300.0;
        return QColor::fromHsvF(h > 1.0 ? h - 1.0 : h, 1.0, 1.0, 1.0).rgb();
    });
    QCOMPARE(drawn(settingsOf(glow::RainbowEffect, 0, 5)), slow);
    QCOMPARE(drawn(settingsOf(glow::RainbowEffect, 2, 9, Qt::black, Qt::green)), slow);
    QCOMPARE(slow.pixelColor(60, 40), QColor(0, 255, 0));
    QCOMPARE(slow.pixelColor(299, 1), QColor(255, 0, 0));
}

void TestEffects::flips()
{
    EffectSettings settings = settingsOf(glow::TriangleEffect, 0, 5);
    const QImage plain = drawn(settings);
    QVERIFY(plain != plain.mirrored(true, false) && plain != plain.mirrored(false, true));
    for (const bool flipH : {false, true}) {
        for (const bool flipV : {false, true}) {
            settings.flipH = flipH;
            settings.flipV = flipV;
            QCOMPARE(glow::effectImage(settings), plain.mirrored(!flipH, flipV));
        }
    }
}

void TestEffects::foreignValues()
{
    const QImage plain = painted(300, 150, [](int, int) { return qRgb(10, 20, 30); });
    for (const int row : {-1, 14, 99, -2147483647}) {
        QCOMPARE(glow::effectImage(settingsOf(row, 1, 5)), plain);
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
