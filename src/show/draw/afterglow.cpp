#include "show/draw/afterglow.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace glow {

namespace {

constexpr double fullTurn = 65536.0;
constexpr int tableBits = 12;
constexpr int tableSize = 1 << tableBits;

// Opacity along the circle, counted counter-clockwise from the bar.
std::array<quint32, tableSize> opacities(int speed)
{
    constexpr double atBar = 250.0;
    const double reach = std::clamp(std::abs(speed), 1, 10) / 10.0;
    std::array<quint32, tableSize> table{};
    for (int i = 0; i < tableSize; ++i) {
        const double place = (i + 0.5) / tableSize;
        const double behind = speed > 0 ? place : 1.0 - place;
        table.at(i) = static_cast<quint32>(std::lround(std::max(0.0, atBar * (1.0 - behind / reach))));
    }
    return table;
}

// All four channels times opacity / 255, rounded; two channels at once.
QRgb faded(QRgb pixel, quint32 opacity)
{
    constexpr quint32 evenChannels = 0x00ff00ff;
    constexpr quint32 half = 0x00800080;
    quint32 even = (pixel & evenChannels) * opacity;
    even = ((even + ((even >> 8) & evenChannels) + half) >> 8) & evenChannels;
    quint32 odd = ((pixel >> 8) & evenChannels) * opacity;
    odd = (odd + ((odd >> 8) & evenChannels) + half) & ~evenChannels;
    return even | odd;
}

} // namespace

void Afterglow::buildAngles(const QSize &size, const QPointF &centre)
{
    if (size == anglesSize && centre == anglesCentre) {
        return;
    }
    anglesSize = size;
    anglesCentre = centre;
    angles.resize(size.width() * size.height());
    constexpr double turns = 1.0 / (2.0 * M_PI);
    auto *angle = angles.begin();
    for (int y = 0; y < size.height(); ++y) {
        const double dy = y + 0.5 - centre.y();
        for (int x = 0; x < size.width(); ++x) {
            const double dx = x + 0.5 - centre.x();
            *angle++ = static_cast<quint16>(std::lround(std::atan2(dy, dx) * turns * fullTurn));
        }
    }
}

void Afterglow::apply(QImage &picture, const QPointF &centre, qint64 degrees, int speed)
{
    buildAngles(picture.size(), centre);
    const std::array<quint32, tableSize> table = opacities(speed);
    const auto bar = static_cast<quint16>(std::lround(static_cast<double>(degrees % 360) / 360.0 * fullTurn));
    const quint16 *angle = angles.constBegin();
    for (int y = 0; y < picture.height(); ++y) {
        auto *pixel = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (const QRgb *end = pixel + picture.width(); pixel != end; ++pixel, ++angle) {
            const auto behind = static_cast<quint16>(0U - *angle - bar);
            *pixel = faded(*pixel, table[behind >> (16 - tableBits)]);
        }
    }
}

} // namespace glow
