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
    // A layer over what is there, where inside (the distance to the figure's edge) is positive.
    void lay(const Rgb &colour, double alpha, double inside = 1000);
    // The figure of one part: in the negative the back colour on stripes of the hues, of which ground is the index.
    void figure(int part, int ground, double alpha, double inside = 1000);
    void steps(int x);
    void meteors(double at, const std::array<std::array<double, 2>, 3> &starts, double step);
    void box(int x, int y);
    void still(int row, double x, double y);

    Rgb part(int index) const { return mode == 0 ? front : hues.at(static_cast<std::size_t>(index)); }
    int fade(int index) const { return 255 - 255 * index / strips; }

    int row;
    int mode;
    int strips;
    Rgb front;
    Rgb back;
    std::array<Rgb, 3> hues;
    Rgb now{};
    double nearest = 0;
};
