#include "show/draw/effectrows.h"

#include "show/draw/effectcolours.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygon>

#include <array>
#include <initializer_list>

namespace glow {

namespace {

constexpr int W = effectCanvasWidth;
constexpr int H = effectCanvasHeight;

void addOutline(QPainterPath &path, const QPolygon &points)
{
    path.addPolygon(points);
    path.closeSubpath();
}

QPainterPath outlines(std::initializer_list<QPolygon> figures)
{
    QPainterPath path;
    for (const QPolygon &figure : figures) {
        addOutline(path, figure);
    }
    return path;
}

// Six flashes with tails, one every 50 pixels. The negative flashes the back colour over the three hues.
void drawFlash(QPainter &painter, const EffectColours &colours)
{
    const bool negative = colours.mode == NegativeMode;
    if (negative) {
        fillBars(painter, colours);
    }
    for (int flash = 0; flash < 6; ++flash) {
        const int x = 50 * flash;
        painter.fillRect(x, 0, 10, H, negative ? colours.back : colours.part(flash % 3));
        for (int i = 0; i < colours.strips; ++i) {
            const int alpha = colours.fade(i);
            painter.fillRect(x + 10 + 2 * i, 0, 2, H,
                             negative ? colours.backAt(alpha) : colours.part(flash % 3, alpha));
        }
    }
}

// One figure three times, each in its part's colour; the negative cuts the three out of stripes.
struct RepeatedFigure
{
    QVector<QPoint> outline;
    QPoint step;
    void (*ground)(QPainter &, const EffectColours &);
};

void drawRepeated(QPainter &painter, const EffectColours &colours, const RepeatedFigure &figure)
{
    const bool negative = colours.mode == NegativeMode;
    if (negative) {
        figure.ground(painter, colours);
    }
    const QPolygon outline(figure.outline);
    for (int i = 0; i < 3; ++i) {
        painter.fillPath(outlines({outline.translated(figure.step * i)}), negative ? colours.back : colours.part(i));
    }
}

void drawWindmill(QPainter &painter, const EffectColours &colours)
{
    drawRepeated(painter, colours, {{{0, 0}, {100, 0}, {100, 150}}, {100, 0}, fillBands});
}

void drawArrow(QPainter &painter, const EffectColours &colours)
{
    drawRepeated(painter, colours, {{{0, 0}, {0, 150}, {75, 75}}, {100, 0}, fillBars});
}

void drawSaw(QPainter &painter, const EffectColours &colours)
{
    drawRepeated(painter, colours, {{{0, 50}, {300, 50}, {225, 10}, {150, 50}, {75, 10}}, {0, 50}, fillBands});
}

// Three hard steps: the hues, or front, the mean of front and back, back.
void drawJump(QPainter &painter, const EffectColours &colours)
{
    if (colours.threeHues()) {
        fillBars(painter, colours);
        return;
    }
    const auto mean = [](int back, int front) { return static_cast<int>(static_cast<float>(back + front) * 0.5F); };
    const QColor &front = colours.front;
    const QColor &back = colours.back;
    painter.fillRect(0, 0, 100, H, front);
    painter.fillRect(
        100, 0, 100, H,
        QColor(mean(back.red(), front.red()), mean(back.green(), front.green()), mean(back.blue(), front.blue()), 255));
}

// The same steps with soft edges of the back colour. Both arms of an edge begin on the same strip, which is therefore
// painted twice.
void drawFade(QPainter &painter, const EffectColours &colours)
{
    drawJump(painter, colours);
    for (int x = 0; x <= W; x += 100) {
        for (int i = 0; i < colours.strips; ++i) {
            const QColor edge = colours.backAt(colours.fade(i));
            painter.fillRect(x + 3 * i, 0, 3, H, edge);
            painter.fillRect(x - 3 * i, 0, 3, H, edge);
        }
    }
}

// The diagonal ramp of all hues. The hue depends on x + y alone, so one line of colours, laid a pixel further with
// every row, gives the same pixels as painting them one by one.
void drawRainbow(QPainter &painter, const EffectColours & /*colours*/)
{
    QImage ramp(W + H - 1, 1, QImage::Format_RGB32);
    QPainter pixels(&ramp);
    for (int sum = 0; sum < ramp.width(); ++sum) {
        double hue = sum / 300.0;
        if (hue > 1.0) {
            hue -= 1.0;
        }
        pixels.fillRect(sum, 0, 1, 1, QColor::fromHsvF(hue, 1.0, 1.0, 1.0));
    }
    pixels.end();
    for (int y = 0; y < H; ++y) {
        painter.drawImage(QPoint(0, y), ramp, QRect(y, 0, W, 1));
    }
}

// Streaks with tails: every pass is fainter and lies further on, over the passes before it.
void drawMeteors(QPainter &painter, const EffectColours &colours, std::array<QPainterPath, 3> (*streaks)(int pass))
{
    for (int pass = 0; pass < colours.strips; ++pass) {
        const std::array<QPainterPath, 3> paths = streaks(pass);
        for (int i = 0; i < 3; ++i) {
            painter.fillPath(paths.at(static_cast<std::size_t>(i)), colours.part(i, colours.fade(pass)));
        }
    }
}

QPolygon streakAt(int x)
{
    return QVector<QPoint>{{x, 0}, {x + 10, 0}, {x + 85, H}, {x + 75, H}};
}

// Three streaks a period of 300; the third one stands on both edges.
std::array<QPainterPath, 3> steepStreaks(int pass)
{
    const int a = -15 + 5 * pass;
    return {outlines({streakAt(a + 15)}), outlines({streakAt(a + 115)}),
            outlines({streakAt(a - 85), streakAt(a + 215)})};
}

void drawMeteor(QPainter &painter, const EffectColours &colours)
{
    drawMeteors(painter, colours, steepStreaks);
}

// Streaks across the whole canvas, each with the piece that it continues with past the right edge.
std::array<QPainterPath, 3> slantedStreaks(int pass)
{
    const int up = 3 * pass;
    const int on = 6 * pass;
    using P = QVector<QPoint>;
    return {outlines({P{{0, 100 - up}, {100 + on, 150}, {120 + on, 150}, {0, 90 - up}},
                      P{{100, -up}, {300 + on, 100}, {300 + on, 90}, {120, -up}}}),
            outlines({P{{0, 50 - up}, {200 + on, 150}, {220 + on, 150}, {0, 40 - up}},
                      P{{200, -up}, {300 + on, 50}, {300 + on, 40}, {220, -up}}}),
            outlines({P{{0, -up}, {300 + on, 150}, {320 + on, 150}, {0, -10 - up}},
                      P{{0, 150 - up}, {on, 150}, {20 + on, 150}, {0, 140 - up}}})};
}

void drawSlantedMeteor(QPainter &painter, const EffectColours &colours)
{
    drawMeteors(painter, colours, slantedStreaks);
}

// A checkerboard, or a staircase of the three hues. The blocks run past the canvas; where they do not divide it evenly,
// the last ones are cut.
void drawBox(QPainter &painter, const EffectColours &colours)
{
    const int bw = W / colours.strips;
    const int bh = H / colours.strips;
    const int kinds = colours.threeHues() ? 3 : 2;
    const int count = (colours.strips + 1) / kinds + 1;
    for (int j = 0; j < count; ++j) {
        for (int k = 0; k < count; ++k) {
            const int x = kinds * bw * j;
            const int y = kinds * bh * k;
            for (int i = 0; i < kinds; ++i) {
                painter.fillRect(x + (i - 1) * bw, y + (i - 1) * bh, bw, bh, colours.part(i));
            }
        }
    }
}

// A still figure. With three hues it is drawn white and everything is tinted by the bands, the back colour too.
void drawStill(QPainter &painter, const EffectColours &colours, void (*figure)(QPainter &, const QColor &))
{
    QPen pen = painter.pen();
    pen.setColor(colours.threeHues() ? QColor(Qt::white) : colours.front);
    pen.setWidth(2 * colours.strips);
    painter.setPen(pen);
    figure(painter, pen.color());
    if (colours.threeHues()) {
        painter.setCompositionMode(QPainter::CompositionMode_Multiply);
        fillBands(painter, colours);
    }
}

void drawTriangle(QPainter &painter, const EffectColours &colours)
{
    drawStill(painter, colours, [](QPainter &p, const QColor &ink) {
        p.fillPath(outlines({QVector<QPoint>{{0, 0}, {300, 0}, {0, 150}}}), ink);
    });
}

void drawLine(QPainter &painter, const EffectColours &colours)
{
    drawStill(painter, colours, [](QPainter &p, const QColor &) { p.drawLine(0, 0, 300, 150); });
}

void drawWedge(QPainter &painter, const EffectColours &colours)
{
    drawStill(painter, colours, [](QPainter &p, const QColor &) {
        p.drawLine(0, 0, 150, 150);
        p.drawLine(150, 150, 300, 0);
    });
}

void drawCross(QPainter &painter, const EffectColours &colours)
{
    drawStill(painter, colours, [](QPainter &p, const QColor &) {
        p.drawLine(0, 0, 300, 150);
        p.drawLine(0, 150, 300, 0);
    });
}

} // namespace

void drawEffectRow(int row, QPainter &painter, const EffectColours &colours)
{
    using Draw = void (*)(QPainter &, const EffectColours &);
    constexpr std::array<Draw, EffectRowCount> rows = {
        drawFlash,  drawWindmill,      drawJump, drawFade,     drawRainbow, drawArrow, drawSaw,
        drawMeteor, drawSlantedMeteor, drawBox,  drawTriangle, drawLine,    drawWedge, drawCross};
    if (row >= 0 && row < EffectRowCount) {
        rows.at(static_cast<std::size_t>(row))(painter, colours);
    }
}

} // namespace glow
