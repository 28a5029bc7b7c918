// What an effect shows at a point, worked out from closed formulas instead of painting: inequalities for the figures,
// real numbers for the colours. In drawing coordinates, x to the right along the time axis, y down along the strip.
#pragma once

#include "render/effectimage.h"

#include <array>

struct EffectModel
{
    using Rgb = std::array<double, 3>;

    explicit EffectModel(const glow::EffectSettings &settings);

    // The colour of the pixel x, y. clear becomes the distance to the nearest edge that decides it, in pixels; near an
    // edge whose course depends on the stroker, the pixel may fall to either side.
    Rgb at(int x, int y, double &clear);

private:
    void lay(const Rgb &colour, double alpha, double inside);
    void multiply(const Rgb &colour);
    Rgb part(int index) const; // front, or the hue of that index
    double fade(int index) const;

    void flash(int x);
    void windmill(double x, double y);
    void steps(int x);
    void fadeEdges(int x);
    void arrow(double x, double y);
    void saw(double x, double y);
    void meteor(double u);
    void slantedMeteor(double v);
    void box(int x, int y);
    void still(int row, double x, double y);

    glow::EffectSettings settings;
    int strips;
    Rgb front;
    Rgb back;
    std::array<Rgb, 3> hues;
    Rgb now{};
    double nearest = 0;
};
