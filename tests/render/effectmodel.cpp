#include "effectmodel.h"

#include <algorithm>
#include <cmath>

namespace {

EffectModel::Rgb rgbOf(const QColor &colour)
{
    return {double(colour.red()), double(colour.green()), double(colour.blue())};
}

// A channel as a saturated, bright hue. 1.4 times the channel without its fraction, in integers; then piece by piece:
// an rgb channel falls from 255 to 0 over 60 degrees, stays there for 120, rises again.
EffectModel::Rgb hueOf(int channel, int offset)
{
    const int degrees = ((channel + offset) % 256) * 14 / 10;
    const auto at = [degrees](double peak) {
        const double away = std::fabs(degrees - peak);
        return 255 * std::clamp(2 - std::min(away, 360 - away) / 60, 0.0, 1.0);
    };
    return {at(0), at(120), at(240)};
}

} // namespace

EffectModel::EffectModel(const glow::EffectSettings &s)
    : row(s.row)
    , mode(s.mode)
    , strips(2 * s.width)
    , front(rgbOf(s.front))
    , back(rgbOf(s.back))
    , hues{hueOf(s.front.red(), 0), hueOf(s.front.green(), 85), hueOf(s.front.blue(), 170)}
{
}

void EffectModel::lay(const Rgb &colour, double alpha, double inside)
{
    nearest = std::min(nearest, std::fabs(inside));
    for (std::size_t i = 0; inside > 0 && i < 3; ++i) {
        now.at(i) = (colour.at(i) * alpha + now.at(i) * (255 - alpha)) / 255;
    }
}

void EffectModel::figure(int index, int ground, double alpha, double inside)
{
    if (mode == 2) {
        now = part(ground);
    }
    lay(mode == 2 ? back : part(index), alpha, inside);
}

EffectModel::Rgb EffectModel::at(int px, int py, double &clear)
{
    now = back;
    nearest = 1000;
    const double x = px + 0.5;
    const double y = py + 0.5;
    const int bar = px / 100;
    const int band = py / 50;
    if (row == 0) {
        const int strip = (px % 50 - 10) / 2;
        figure(px / 50 % 3, bar, px % 50 < 10 ? 255 : strip < strips ? fade(strip) : 0);
    } else if (row == 1) {
        figure(bar, band, 255, 1.5 * (x - 100 * bar) - y);
    } else if (row == 2 || row == 3) {
        steps(px);
    } else if (row == 5) {
        figure(bar, bar, 255, 75 - std::fabs(y - 75) - (x - 100 * bar));
    } else if (row == 6) {
        const double height = 40 * (1 - std::fabs(std::fmod(x, 150) - 75) / 75);
        figure(band, band, 255, height - (50 * (band + 1) - y));
    } else if (row == 7) {
        meteors(x - y / 2, {{{0, 0}, {100, 100}, {-100, 200}}}, 5);
    } else if (row == 8) {
        meteors(y - x / 2, {{{90, -60}, {40, -110}, {-10, 140}}}, -3);
    } else if (row == 9) {
        box(px, py);
    } else {
        still(row, x, y);
    }
    clear = nearest;
    return now;
}

void EffectModel::steps(int x)
{
    const int third = x / 100;
    if (mode != 0 || third == 0) {
        now = part(third);
    } else if (third == 1) {
        for (std::size_t i = 0; i < 3; ++i) {
            now.at(i) = std::floor((front.at(i) + back.at(i)) / 2);
        }
    }
    for (int edge = 0; row == 3 && edge <= 300; edge += 100) {
        for (int i = 0; i < strips; ++i) {
            for (const int left : {edge + 3 * i, edge - 3 * i}) {
                if (x >= left && x < left + 3) {
                    lay(back, fade(i));
                }
            }
        }
    }
}

// Streaks are bands of one slanted coordinate, ten wide. Each hue has two that begin there, and every pass moves them.
void EffectModel::meteors(double at, const std::array<std::array<double, 2>, 3> &starts, double step)
{
    const auto streak = [at](double from) { return std::min(at - from, from + 10 - at); };
    for (int pass = 0; pass < strips; ++pass) {
        for (int i = 0; i < 3; ++i) {
            const auto &two = starts.at(static_cast<std::size_t>(i));
            lay(part(i), fade(pass), std::max(streak(two[0] + step * pass), streak(two[1] + step * pass)));
        }
    }
}

void EffectModel::box(int x, int y)
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

void EffectModel::still(int which, double x, double y)
{
    // A pen of width 2 * strips with square ends: the strip on both sides of the line, longer by half the width.
    const auto line = [&](double x1, double y1, double x2, double y2) {
        const double length = std::hypot(x2 - x1, y2 - y1);
        const double along = ((x - x1) * (x2 - x1) + (y - y1) * (y2 - y1)) / length;
        const double off = std::fabs((x - x1) * (y2 - y1) - (y - y1) * (x2 - x1)) / length;
        return std::min({strips - off, along + strips, length + strips - along});
    };
    const double inside = which == 10   ? (300 - x - 2 * y) / std::sqrt(5.0)
                          : which == 11 ? line(0, 0, 300, 150)
                          : which == 12 ? std::max(line(0, 0, 150, 150), line(150, 150, 300, 0))
                                        : std::max(line(0, 0, 300, 150), line(0, 150, 300, 0));
    lay(mode == 0 ? front : Rgb{255, 255, 255}, 255, inside);
    for (std::size_t i = 0; mode != 0 && i < 3; ++i) {
        now.at(i) *= hues.at(static_cast<std::size_t>(y / 50)).at(i) / 255;
    }
}
