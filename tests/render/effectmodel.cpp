#include "effectmodel.h"

#include <algorithm>
#include <cmath>

namespace {

EffectModel::Rgb rgbOf(const QColor &colour)
{
    return {double(colour.red()), double(colour.green()), double(colour.blue())};
}

// A fully saturated, fully bright hue in degrees, piece by piece: a channel falls from 255 to 0 over 60 degrees, stays
// there for 120, rises again.
EffectModel::Rgb rgbOfHue(int degrees)
{
    EffectModel::Rgb rgb{};
    const std::array<double, 3> peaks = {0, 120, 240};
    for (std::size_t i = 0; i < 3; ++i) {
        double away = std::fabs(degrees - peaks.at(i));
        away = std::min(away, 360 - away);
        rgb.at(i) = 255 * std::clamp(2 - away / 60, 0.0, 1.0);
    }
    return rgb;
}

// 1.4 times the channel without its fraction, in integers.
int hueOf(int channel, int offset)
{
    return ((channel + offset) % 256) * 14 / 10;
}

} // namespace

EffectModel::EffectModel(const glow::EffectSettings &s)
    : settings(s)
    , strips(2 * s.width)
    , front(rgbOf(s.front))
    , back(rgbOf(s.back))
    , hues{rgbOfHue(hueOf(s.front.red(), 0)), rgbOfHue(hueOf(s.front.green(), 85)),
           rgbOfHue(hueOf(s.front.blue(), 170))}
{
}

void EffectModel::lay(const Rgb &colour, double alpha, double inside)
{
    nearest = std::min(nearest, std::fabs(inside));
    if (inside > 0) {
        for (std::size_t i = 0; i < 3; ++i) {
            now.at(i) = (colour.at(i) * alpha + now.at(i) * (255 - alpha)) / 255;
        }
    }
}

void EffectModel::multiply(const Rgb &colour)
{
    for (std::size_t i = 0; i < 3; ++i) {
        now.at(i) *= colour.at(i) / 255;
    }
}

EffectModel::Rgb EffectModel::part(int index) const
{
    return settings.mode == 0 ? front : hues.at(static_cast<std::size_t>(index));
}

double EffectModel::fade(int index) const
{
    return 255 - std::floor(255.0 * index / strips);
}

EffectModel::Rgb EffectModel::at(int px, int py, double &clear)
{
    now = back;
    nearest = 1000;
    const double x = px + 0.5;
    const double y = py + 0.5;
    switch (settings.row) {
    case 0:
        flash(px);
        break;
    case 1:
        windmill(x, y);
        break;
    case 2:
        steps(px);
        break;
    case 3:
        steps(px);
        fadeEdges(px);
        break;
    case 5:
        arrow(x, y);
        break;
    case 6:
        saw(x, y);
        break;
    case 7:
        meteor(x - y / 2);
        break;
    case 8:
        slantedMeteor(y - x / 2);
        break;
    case 9:
        box(px, py);
        break;
    default:
        still(settings.row, x, y);
        break;
    }
    clear = nearest;
    return now;
}

void EffectModel::flash(int x)
{
    const int phase = x % 50;
    const int third = x / 50 % 3;
    if (settings.mode == 2) {
        now = part(x / 100);
    }
    const Rgb colour = settings.mode == 2 ? back : part(third);
    if (phase < 10) {
        lay(colour, 255, 1000);
    } else if ((phase - 10) / 2 < strips) {
        lay(colour, fade((phase - 10) / 2), 1000);
    }
}

void EffectModel::windmill(double x, double y)
{
    const int third = static_cast<int>(x / 100);
    if (settings.mode == 2) {
        now = part(static_cast<int>(y / 50));
    }
    lay(settings.mode == 2 ? back : part(third), 255, 1.5 * (x - 100 * third) - y);
}

void EffectModel::steps(int x)
{
    const int third = x / 100;
    if (settings.mode != 0) {
        now = part(third);
    } else if (third == 0) {
        now = front;
    } else if (third == 1) {
        for (std::size_t i = 0; i < 3; ++i) {
            now.at(i) = std::floor((front.at(i) + back.at(i)) / 2);
        }
    }
}

void EffectModel::fadeEdges(int x)
{
    for (int edge = 0; edge <= 300; edge += 100) {
        for (int i = 0; i < strips; ++i) {
            for (const int left : {edge + 3 * i, edge - 3 * i}) {
                if (x >= left && x < left + 3) {
                    lay(back, fade(i), 1000);
                }
            }
        }
    }
}

void EffectModel::arrow(double x, double y)
{
    const int third = static_cast<int>(x / 100);
    if (settings.mode == 2) {
        now = part(third);
    }
    lay(settings.mode == 2 ? back : part(third), 255, 75 - std::fabs(y - 75) - (x - 100 * third));
}

void EffectModel::saw(double x, double y)
{
    const int third = static_cast<int>(y / 50);
    if (settings.mode == 2) {
        now = part(third);
    }
    const double height = 40 * (1 - std::fabs(std::fmod(x, 150) - 75) / 75);
    lay(settings.mode == 2 ? back : part(third), 255, height - (50 * (third + 1) - y));
}

// Streaks are bands of u = x - y / 2, ten wide.
void EffectModel::meteor(double u)
{
    const auto streak = [u](double from) { return std::min(u - from, from + 10 - u); };
    for (int i = 0; i < strips; ++i) {
        lay(part(0), fade(i), streak(5 * i));
        lay(part(1), fade(i), streak(100 + 5 * i));
        lay(part(2), fade(i), std::max(streak(-100 + 5 * i), streak(200 + 5 * i)));
    }
}

// Streaks are bands of v = y - x / 2, ten wide.
void EffectModel::slantedMeteor(double v)
{
    const auto streak = [v](double to) { return std::min(v - to + 10, to - v); };
    for (int i = 0; i < strips; ++i) {
        lay(part(0), fade(i), std::max(streak(100 - 3 * i), streak(-50 - 3 * i)));
        lay(part(1), fade(i), std::max(streak(50 - 3 * i), streak(-100 - 3 * i)));
        lay(part(2), fade(i), std::max(streak(-3 * i), streak(150 - 3 * i)));
    }
}

void EffectModel::box(int x, int y)
{
    const int kinds = settings.mode == 0 ? 2 : 3;
    const int groups = (strips + 1) / kinds + 1;
    const int column = x / (300 / strips);
    const int row = y / (150 / strips);
    // The groups can end a block before the canvas does.
    if (column % kinds == row % kinds && std::max(column, row) + 1 < kinds * groups) {
        now = part((column + 1) % kinds);
    }
}

void EffectModel::still(int row, double x, double y)
{
    // A pen of width 2 * strips with square ends: the strip on both sides of the line, longer by half the width.
    const auto line = [&](double x1, double y1, double x2, double y2) {
        const double length = std::hypot(x2 - x1, y2 - y1);
        const double along = ((x - x1) * (x2 - x1) + (y - y1) * (y2 - y1)) / length;
        const double off = std::fabs((x - x1) * (y2 - y1) - (y - y1) * (x2 - x1)) / length;
        return std::min({strips - off, along + strips, length + strips - along});
    };
    double inside = 0;
    if (row == 10) {
        inside = (300 - x - 2 * y) / std::sqrt(5.0);
    } else if (row == 11) {
        inside = line(0, 0, 300, 150);
    } else if (row == 12) {
        inside = std::max(line(0, 0, 150, 150), line(150, 150, 300, 0));
    } else {
        inside = std::max(line(0, 0, 300, 150), line(0, 150, 300, 0));
    }
    lay(settings.mode == 0 ? front : Rgb{255, 255, 255}, 255, inside);
    if (settings.mode != 0) {
        multiply(hues.at(static_cast<std::size_t>(y / 50)));
    }
}
