// The generated patterns: every effect in every mode as it was looked at once, exact colours, foreign values.
#include "show/draw/effectimage.h"
#include "support/golden.h"

#include <QPainter>
#include <QTest>

using glow::effectImage;
using glow::EffectSettings;

namespace {

EffectSettings settingsOf(int row, int mode, int width, const QColor &front = QColor(200, 100, 50),
                          const QColor &back = QColor(10, 20, 30))
{
    return {row, front, back, width, mode, true, false}; // flipped as it is drawn
}

} // namespace

class TestEffects : public QObject
{
    Q_OBJECT

private slots:
    void lookAsEver()
    {
        // A row an effect, a column a mode. Each mode has a flip of its own, each effect meets three widths.
        QImage sheet(3 * 300, glow::EffectRowCount * 150, QImage::Format_RGB32);
        QPainter painter(&sheet);
        for (int row = 0; row < glow::EffectRowCount; ++row) {
            for (int mode = 0; mode < 3; ++mode) {
                const int width = 1 + (row + mode) % 3 * 9 / 2; // 1, 5, 10
                painter.drawImage(
                    300 * mode, 150 * row,
                    effectImage({row, QColor(201, 33, 120), QColor(17, 60, 101), width, mode, mode == 1, mode == 2}));
            }
        }
        QCOMPARE(unlikeGolden(sheet, "effects.png"), QString());
    }

    // What the tolerance for rounded layers would let pass.
    void exactColours()
    {
        // A mean is truncated: 0.5, 1.5 and 128.5.
        QCOMPARE(
            effectImage(settingsOf(glow::JumpEffect, 0, 5, QColor(0, 1, 2), QColor(1, 2, 255))).pixelColor(150, 75),
            QColor(0, 1, 128));
        // Equal channels of 0 are the hues 0, 119 and 238.
        const QImage bars = effectImage(settingsOf(glow::JumpEffect, 1, 5, Qt::black));
        QCOMPARE(bars.pixelColor(99, 0), QColor(255, 0, 0));
        QCOMPARE(bars.pixel(100, 0), QColor::fromHsv(119, 255, 255).rgb());
        QCOMPARE(bars.pixel(200, 0), QColor::fromHsv(238, 255, 255).rgb());
        // A tail's first strip is opaque. Width 1 has two, alpha 255 and 128: 200 * 128 / 255 + 10 * 127 / 255 is 105.4
        const QImage flash = effectImage(settingsOf(glow::FlashEffect, 0, 1));
        QCOMPARE(flash.pixelColor(61, 70), QColor(200, 100, 50));
        QCOMPARE(flash.pixelColor(63, 70), QColor(105, 60, 40));
    }

    void foreignValues()
    {
        for (const int row : {-1, 14, -2147483647}) {
            QCOMPARE(effectImage(settingsOf(row, 1, 5)), painted(300, 150, [](int, int) { return qRgb(10, 20, 30); }));
        }
        for (int row = 0; row < glow::EffectRowCount; ++row) {
            QCOMPARE(effectImage(settingsOf(row, 7, 0)), effectImage(settingsOf(row, 0, 1)));
            QCOMPARE(effectImage(settingsOf(row, 2, 1000000)), effectImage(settingsOf(row, 2, 10)));
            // Colours that a foreign settings text can bring: none at all counts as black, a translucent one stays so.
            QCOMPARE(effectImage(settingsOf(row, 2, 5, QColor(), QColor())),
                     effectImage(settingsOf(row, 2, 5, Qt::black, Qt::black)));
        }
        QCOMPARE(effectImage(settingsOf(-1, 0, 5, Qt::red, QColor(255, 0, 0, 0))).pixelColor(5, 5).alpha(), 0);
    }
};

QTEST_MAIN(TestEffects)
#include "test_effects.moc"
