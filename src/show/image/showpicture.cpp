#include "show/image/showpicture.h"

#include "show/image/devicedecode.h"
#include "show/image/deviceimage.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace glow {

namespace {

constexpr int axisHeight = 34;
constexpr int leastWidth = 480;
constexpr int tallestStrip = 480;

// The stretch of show columns that one entry covers, and where its frames lie.
struct Stretch
{
    const DecodedEntry *entry = nullptr;
    qint64 first = 0; // column of the show
    qint64 count = 0; // columns, repeats included
};

QVector<Stretch> stretches(const DecodedShow &show)
{
    QVector<Stretch> list;
    qint64 column = 0;
    for (const DecodedEntry &entry : show.entries) {
        const qint64 count = qint64(std::max(0, entry.repeat)) * entry.frameCount;
        list.append({&entry, column, count});
        column += count;
    }
    return list;
}

// x * columns / width, where the product may be too large: a damaged file can tell of any number of repeats.
qint64 firstColumn(int x, qint64 columns, int width)
{
    return columns / width * x + columns % width * x / width;
}

void drawColumn(QImage &strip, int x, const DecodedShow &show, const DecodedEntry &entry, qint64 frame, int divisor)
{
    const auto *bytes = reinterpret_cast<const uchar *>(entry.frames.constData()) + frame * show.frameBytes();
    for (int led = 0; led < show.leds; ++led, bytes += 3) {
        // The first triple belongs to the bottom row.
        strip.setPixel(x, show.leds - 1 - led, screenColour(bytes[0], bytes[1], bytes[2], divisor));
    }
}

// All columns from left to right, one pixel an LED.
QImage stripOf(const DecodedShow &show, const QVector<Stretch> &parts, qint64 columns, int width)
{
    QImage strip(width, show.leds, QImage::Format_RGB32);
    strip.fill(Qt::black);
    const int divisor = gammaDivisor(show.leds);
    int part = 0;
    for (int x = 0; x < width; ++x) {
        const qint64 column = firstColumn(x, columns, width);
        while (part + 1 < parts.size() && column >= parts.at(part).first + parts.at(part).count) {
            ++part;
        }
        const DecodedEntry &entry = *parts.at(part).entry;
        drawColumn(strip, x, show, entry, (column - parts.at(part).first) % entry.frameCount, divisor);
    }
    return strip;
}

void drawBorders(QPainter &painter, const QVector<Stretch> &parts, qint64 columns, int width, int height)
{
    painter.setPen(QPen(QColor(255, 200, 0, 160), 1, Qt::DashLine));
    for (const Stretch &stretch : parts) {
        const int x = int(double(stretch.first) / double(columns) * width);
        painter.drawLine(x, 0, x, height);
    }
}

// A step of the time axis that leaves room for its label.
double axisStep(double seconds, int width)
{
    constexpr double labelWidth = 70;
    for (const double step : {0.1, 0.2, 0.5, 1.0, 2.0, 5.0, 10.0, 30.0, 60.0, 300.0, 600.0}) {
        if (width * step / seconds >= labelWidth) {
            return step;
        }
    }
    return 600.0 * std::ceil(labelWidth * seconds / width / 600.0);
}

void drawAxis(QPainter &painter, int top, int width, double seconds)
{
    if (seconds <= 0) {
        return; // without a rate there is no time
    }
    painter.setPen(QColor(200, 200, 200));
    const double step = axisStep(seconds, width);
    const int ticks = int(seconds / step);
    for (int i = 0; i <= ticks; ++i) {
        const int x = int(i * step / seconds * width);
        painter.drawLine(x, top, x, top + 6);
        painter.drawText(x + 3, top + 20, QStringLiteral("%1 s").arg(i * step, 0, 'f', step < 1 ? 1 : 0));
    }
}

} // namespace

QRgb screenColour(uchar red, uchar green, uchar blue, int divisor)
{
    const auto back = [divisor](uchar stored) {
        return std::min(255, int(std::lround(std::sqrt(double(stored) * divisor))));
    };
    return qRgb(back(red), back(green), back(blue));
}

QImage drawShow(const DecodedShow &show)
{
    const QVector<Stretch> parts = stretches(show);
    const qint64 columns = parts.isEmpty() ? 0 : parts.last().first + parts.last().count;
    const bool hasFrames = columns > 0 && show.leds > 0;
    const int width = int(std::clamp<qint64>(columns, leastWidth, widestShowPicture));
    const int scale = hasFrames ? std::clamp(tallestStrip / show.leds, 1, 4) : 1;
    const int stripHeight = hasFrames ? show.leds * scale : 100;

    QImage picture(width, stripHeight + axisHeight, QImage::Format_RGB32);
    if (picture.isNull()) {
        return picture;
    }
    picture.fill(QColor(50, 55, 60));
    QPainter painter(&picture);
    if (!hasFrames) {
        painter.setPen(Qt::white);
        painter.drawText(picture.rect(), Qt::AlignCenter, QStringLiteral("no frames"));
        return picture;
    }
    painter.drawImage(QRect(0, 0, width, stripHeight), stripOf(show, parts, columns, width));
    drawBorders(painter, parts, columns, width, stripHeight);
    drawAxis(painter, stripHeight, width, show.rate > 0 ? double(columns) / show.rate : 0);
    return picture;
}

} // namespace glow
