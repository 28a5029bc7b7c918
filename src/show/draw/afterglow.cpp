#include "show/draw/afterglow.h"

#include <algorithm>
#include <cmath>

namespace glow {

namespace {

constexpr double fullTurn = 65536.0;
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

void Afterglow::buildOpacities(int speed)
{
    if (speed == tableSpeed) {
        return;
    }
    tableSpeed = speed;
    constexpr double atBar = 250.0;
    const double reach = std::clamp(std::abs(speed), 1, 10) / 10.0;
    for (std::size_t i = 0; i < opacities.size(); ++i) {
        const double place = (static_cast<double>(i) + 0.5) / static_cast<double>(opacities.size());
        const double behind = speed > 0 ? place : 1.0 - place;
        opacities.at(i) = static_cast<quint32>(std::lround(std::max(0.0, atBar * (1.0 - behind / reach))));
    }
}

void Afterglow::prepare(const QSize &size, const QPointF &centre, qint64 degrees, int speed)
{
    buildAngles(size, centre);
    buildOpacities(speed);
    bar = static_cast<quint16>(std::lround(static_cast<double>(degrees % 360) / 360.0 * fullTurn));
}

void Afterglow::fadeRow(int y, QRgb *row, int from, int to) const
{
    const quint16 *angle = angles.constData() + static_cast<qptrdiff>(y) * anglesSize.width() + from;
    for (QRgb *pixel = row + from, *end = row + to; pixel < end; ++pixel, ++angle) {
        const auto behind = static_cast<quint16>(0U - *angle - bar);
        *pixel = faded(*pixel, opacities[behind >> (16 - tableBits)]);
    }
}

void Afterglow::apply(QImage &picture, const QPointF &centre, qint64 degrees, int speed)
{
    prepare(picture.size(), centre, degrees, speed);
    for (int y = 0; y < picture.height(); ++y) {
        fadeRow(y, reinterpret_cast<QRgb *>(picture.scanLine(y)), 0, picture.width());
    }
}

} // namespace glow
