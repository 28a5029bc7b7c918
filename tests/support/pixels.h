// Small images, and how far two pixels are apart.
#pragma once

#include <QImage>

#include <algorithm>
#include <cstdlib>
#include <random>

constexpr QRgb red = qRgb(255, 0, 0);
constexpr QRgb green = qRgb(0, 255, 0);
constexpr QRgb blue = qRgb(0, 0, 255);
constexpr QRgb white = qRgb(255, 255, 255);
constexpr QRgb black = qRgb(0, 0, 0);

// An image whose pixels are a function of column and row.
template <typename Colour>
QImage painted(int width, int height, const Colour &colourAt, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(width, height, format);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.setPixel(x, y, colourAt(x, y));
        }
    }
    return image;
}

inline QImage noise(int width, int height, std::mt19937 &random)
{
    return painted(width, height, [&random](int, int) { return 0xff000000U | static_cast<QRgb>(random()); });
}

// The largest difference of a channel.
inline int distance(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b)),
                     std::abs(qAlpha(a) - qAlpha(b))});
}
