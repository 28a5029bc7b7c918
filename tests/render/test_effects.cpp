// The generated patterns: every pixel of every effect against closed formulas, exact colours, foreign values.
#include "show/draw/effectimage.h"
#include "support/pixels.h"

#include <QTest>

#include <array>
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
    return glow::effectImage(settings).mirrored(!settings.flipH, settings.flipV);
}

int channelOf(QRgb colour, int channel)
{
    return colour >> (16 - 8 * channel) & 255;
}

// What an effect shows at a point in one channel, 0 to 2, worked out from closed formulas instead of painting:
// inequalities for the figures, real numbers for the colours. In drawing coordinates, x to the right along the time
// axis, y down along the strip.
struct EffectModel
{
    // The pixel x, y. nearest becomes the distance to the nearest edge that decides it, in pixels; near an edge whose
    // course depends on the stroker, the pixel may fall to either side.
    double at(int px, int py)
    {
        now = back;
        nearest = 1000;
        const double x = px + 0.5;
        const double y = py + 0.5;
        const int bar = px / 100;
        const int band = py / 50;
        if (settings.row == 0) {
            const int strip = (px % 50 - 10) / 2;
            figure(px / 50 % 3, bar, px % 50 < 10 ? 255 : strip < strips ? fade(strip) : 0);
        } else if (settings.row == 1) {
            figure(bar, band, 255, 1.5 * (x - 100 * bar) - y);
        } else if (settings.row == 2 || settings.row == 3) {
            steps(px);
        } else if (settings.row == 4) {
            now = hue((px + py) * 1.2); // a whole turn over the width
        } else if (settings.row == 5) {
            figure(bar, bar, 255, 75 - std::fabs(y - 75) - (x - 100 * bar));
        } else if (settings.row == 6) {
            const double height = 40 * (1 - std::fabs(std::fmod(x, 150) - 75) / 75);
            figure(band, band, 255, height - (50 * (band + 1) - y));
        } else if (settings.row == 7) {
            meteors(x - y / 2, {{{0, 0}, {100, 100}, {-100, 200}}}, 5);
        } else if (settings.row == 8) {
            meteors(y - x / 2, {{{90, -60}, {40, -110}, {-10, 140}}}, -3);
        } else if (settings.row == 9) {
            box(px, py);
        } else {
            still(x, y);
        }
        return now;
    }

    // A layer over what is there, where inside (the distance to the figure's edge) is positive.
    void lay(double colour, double alpha, double inside = 1000)
    {
        nearest = std::min(nearest, std::fabs(inside));
        now = inside > 0 ? (colour * alpha + now * (255 - alpha)) / 255 : now;
    }
    // The figure of one part: in the negative the back colour on stripes of the hues, of which ground is the index.
    void figure(int index, int ground, double alpha, double inside = 1000)
    {
        now = mode == 2 ? part(ground) : now;
        lay(mode == 2 ? back : part(index), alpha, inside);
    }
    void steps(int x)
    {
        const int third = x / 100;
        if (mode != 0 || third == 0) {
            now = part(third);
        } else if (third == 1) {
            now = std::floor((front + back) / 2.0);
        }
        for (int edge = 0; settings.row == 3 && edge <= 300; edge += 100) {
            for (int i = 0; i < strips; ++i) {
                for (const int left : {edge + 3 * i, edge - 3 * i}) {
                    lay(back, x >= left && x < left + 3 ? fade(i) : 0);
                }
            }
        }
    }
    // Streaks are bands of one slanted coordinate, ten wide. Each hue has two that begin there; every pass moves them.
    void meteors(double at, const std::array<std::array<double, 2>, 3> &starts, double step)
    {
        const auto streak = [at](double from) { return std::min(at - from, from + 10 - at); };
        for (int pass = 0; pass < strips; ++pass) {
            for (int i = 0; i < 3; ++i) {
                const auto &two = starts.at(static_cast<std::size_t>(i));
                lay(part(i), fade(pass), std::max(streak(two[0] + step * pass), streak(two[1] + step * pass)));
            }
        }
    }
    void box(int x, int y)
    {
        const int kinds = mode == 0 ? 2 : 3;
        const int groups = (strips + 1) / kinds + 1;
        const int column = x / (300 / strips);
        const int line = y / (150 / strips);
        // The groups can end a block before the canvas does.
        if (column % kinds == line % kinds && std::max(column, line) + 1 < kinds * groups) {
            now = part((column + 1) % kinds);
        }
    }
    void still(double x, double y)
    {
        // A pen of width 2 * strips with square ends: the strip on both sides of the line, longer by half the width.
        const auto line = [&](double x1, double y1, double x2, double y2) {
            const double length = std::hypot(x2 - x1, y2 - y1);
            const double along = ((x - x1) * (x2 - x1) + (y - y1) * (y2 - y1)) / length;
            const double off = std::fabs((x - x1) * (y2 - y1) - (y - y1) * (x2 - x1)) / length;
            return std::min({strips - off, along + strips, length + strips - along});
        };
        lay(mode == 0 ? front : 255, 255,
            settings.row == 10   ? (300 - x - 2 * y) / std::sqrt(5.0)
            : settings.row == 11 ? line(0, 0, 300, 150)
            : settings.row == 12 ? std::max(line(0, 0, 150, 150), line(150, 150, 300, 0))
                                 : std::max(line(0, 0, 300, 150), line(0, 150, 300, 0)));
        now *= mode == 0 ? 1 : part(static_cast<int>(y / 50)) / 255;
    }

    // A saturated, bright hue, piece by piece: it falls from 255 to 0 over 60 degrees, stays there for 120, rises
    // again.
    double hue(double degrees) const
    {
        const double away = std::fabs(std::fmod(degrees, 360) - 120 * channel);
        return 255 * std::clamp(2 - std::min(away, 360 - away) / 60, 0.0, 1.0);
    }
    // A part's hue is 1.4 times a channel of the front colour without its fraction, in integers.
    double part(int index) const
    {
        const int degrees = (channelOf(settings.front.rgb(), index) + 85 * index) % 256 * 14 / 10;
        return mode == 0 ? front : hue(degrees);
    }
    int fade(int index) const { return 255 - 255 * index / strips; }

    const EffectSettings settings;
    const int channel;
    const int mode = settings.mode;
    const int strips = 2 * settings.width;
    const int front = channelOf(settings.front.rgb(), channel);
    const int back = channelOf(settings.back.rgb(), channel);
    double now = 0;
    double nearest = 0;
};

// How many pixels of an effect differ from the model; -1 if too many had to be left out.
int pixelsOff(const EffectSettings &settings)
{
    // A pixel of a filled figure is painted when its centre lies inside; the border of a stroke is up to the stroker.
    const double margin = settings.row >= glow::LineEffect ? 1.0 : 0.1;
    const QImage image = drawn(settings);
    int checked = 0;
    int off = 0;
    for (int channel = 0; channel < 3; ++channel) {
        EffectModel model{settings, channel};
        for (int i = 0; i < 300 * 150; ++i) {
            const double want = model.at(i % 300, i / 300);
            if (model.nearest >= margin) {
                ++checked;
                // Whole numbers after every translucent layer move a channel by a little over 1 at most.
                off += std::fabs(channelOf(image.pixel(i % 300, i / 300), channel) - want) > 2.0 ? 1 : 0;
            }
        }
    }
    return checked > 3 * 45000 * 9 / 10 ? off : -1;
}

} // namespace

class TestEffects : public QObject
{
    Q_OBJECT

private slots:
    void everyPixel()
    {
        for (int row = 0; row < glow::EffectRowCount; ++row) {
            for (int mode = 0; mode < 3; ++mode) {
                for (const int width : {1, 7, 10}) {
                    const QColor front = width == 7 ? QColor(Qt::black) : QColor(201, 33, 120);
                    const EffectSettings settings{row,  front,       QColor(17, 60, 101), width,
                                                  mode, width != 10, width != 7};
                    const int off = pixelsOff(settings);
                    const QString where = QStringLiteral("row %1, mode %2, width %3: %4 pixels off");
                    QVERIFY2(off == 0, qPrintable(where.arg(row).arg(mode).arg(width).arg(off)));
                }
            }
        }
    }

    // What the tolerance for rounded layers would let pass.
    void exactColours()
    {
        // A mean is truncated: 0.5, 1.5 and 128.5.
        QCOMPARE(drawn(settingsOf(glow::JumpEffect, 0, 5, QColor(0, 1, 2), QColor(1, 2, 255))).pixelColor(150, 75),
                 QColor(0, 1, 128));
        // Equal channels of 0 are the hues 0, 119 and 238.
        const QImage bars = drawn(settingsOf(glow::JumpEffect, 1, 5, Qt::black));
        QCOMPARE(bars.pixelColor(99, 0), QColor(255, 0, 0));
        QCOMPARE(bars.pixel(100, 0), QColor::fromHsv(119, 255, 255).rgb());
        QCOMPARE(bars.pixel(200, 0), QColor::fromHsv(238, 255, 255).rgb());
        // A tail's first strip is opaque. Width 1 has two, alpha 255 and 128: 200 * 128 / 255 + 10 * 127 / 255 is 105.4
        const QImage flash = drawn(settingsOf(glow::FlashEffect, 0, 1));
        QCOMPARE(flash.pixelColor(61, 70), QColor(200, 100, 50));
        QCOMPARE(flash.pixelColor(63, 70), QColor(105, 60, 40));
    }

    void foreignValues()
    {
        for (const int row : {-1, 14, -2147483647}) {
            QCOMPARE(glow::effectImage(settingsOf(row, 1, 5)),
                     painted(300, 150, [](int, int) { return qRgb(10, 20, 30); }));
        }
        for (int row = 0; row < glow::EffectRowCount; ++row) {
            QCOMPARE(drawn(settingsOf(row, 7, 0)), drawn(settingsOf(row, 0, 1)));
            QCOMPARE(drawn(settingsOf(row, 2, 1000000)), drawn(settingsOf(row, 2, 10)));
            // Colours that a foreign settings text can bring: none at all counts as black, a translucent one stays so.
            QCOMPARE(drawn(settingsOf(row, 2, 5, QColor(), QColor())),
                     drawn(settingsOf(row, 2, 5, Qt::black, Qt::black)));
            QVERIFY(!drawn(settingsOf(row, 2, 5, Qt::red, QColor(1, 2, 3, 100))).isNull());
        }
        QCOMPARE(drawn(settingsOf(-1, 0, 5, Qt::red, QColor(255, 0, 0, 0))).pixelColor(5, 5).alpha(), 0);
    }
};

QTEST_MAIN(TestEffects)
#include "test_effects.moc"
