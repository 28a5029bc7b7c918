#include "show/film/yuvframe.h"

namespace glow {

namespace {

// BT.709 in 256ths; each row of colour weights comes to nothing for greys.
constexpr quint16 redLuma = 47;
constexpr quint16 greenLuma = 157;
constexpr quint16 blueLuma = 16;
constexpr quint16 lumaBase = (16 << 8) + 128;

// 16 bits hold every sum, so that compilers can treat eight pixels at once.
void lumaRow(const QRgb *pixel, uchar *luma, int width)
{
    for (int x = 0; x < width; ++x) {
        const QRgb p = pixel[x];
        const auto red = static_cast<quint16>((p >> 16) & 255U);
        const auto green = static_cast<quint16>((p >> 8) & 255U);
        const auto blue = static_cast<quint16>(p & 255U);
        const auto sum = static_cast<quint16>(redLuma * red + greenLuma * green + blueLuma * blue + lumaBase);
        luma[x] = static_cast<uchar>(sum >> 8);
    }
}

// Two rows become one of each colour plane; the sums of four pixels are divided by 4 and by 256 at once.
void colourRows(const QRgb *upper, const QRgb *lower, uchar *blueness, uchar *redness, int width)
{
    constexpr int base = (128 << 10) + 512;
    for (int x = 0; x < width / 2; ++x) {
        const QRgb four[] = {upper[2 * x], upper[2 * x + 1], lower[2 * x], lower[2 * x + 1]};
        // Red and blue in one number, 16 bits apart: the sums of four keep clear of each other.
        QRgb redAndBlue = 0;
        QRgb greens = 0;
        for (const QRgb p : four) {
            redAndBlue += p & 0xff00ffU;
            greens += (p >> 8) & 255U;
        }
        const int red = static_cast<int>(redAndBlue >> 16);
        const int blue = static_cast<int>(redAndBlue & 0xffffU);
        const int green = static_cast<int>(greens);
        blueness[x] = static_cast<uchar>((base - 26 * red - 86 * green + 112 * blue) >> 10);
        redness[x] = static_cast<uchar>((base + 112 * red - 102 * green - 10 * blue) >> 10);
    }
}

} // namespace

void toYuv420(const QImage &picture, QByteArray &planes)
{
    const int width = picture.width();
    const int height = picture.height();
    const int luma = width * height;
    planes.resize(luma + luma / 2);
    auto *bytes = reinterpret_cast<uchar *>(planes.data());
    uchar *blueness = bytes + luma;
    uchar *redness = blueness + luma / 4;
    for (int y = 0; y + 1 < height; y += 2) {
        const auto *upper = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        const auto *lower = reinterpret_cast<const QRgb *>(picture.constScanLine(y + 1));
        lumaRow(upper, bytes + static_cast<qptrdiff>(y) * width, width);
        lumaRow(lower, bytes + static_cast<qptrdiff>(y + 1) * width, width);
        const qptrdiff at = static_cast<qptrdiff>(y / 2) * (width / 2);
        colourRows(upper, lower, blueness + at, redness + at, width);
    }
}

} // namespace glow
