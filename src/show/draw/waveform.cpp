#include "show/draw/waveform.h"

#include "show/base/numbers.h"
#include "show/model/timescale.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <limits>

namespace glow {

namespace {

constexpr float none = std::numeric_limits<float>::infinity();

void extend(WaveColumns::Span &span, double y)
{
    span.low = std::min(span.low, static_cast<float>(y));
    span.high = std::max(span.high, static_cast<float>(y));
}

// Adds the straight line between two points, x in columns, to all columns that it touches.
void addSegment(QVector<WaveColumns::Span> &spans, QPointF from, QPointF to)
{
    if (from.x() > to.x()) {
        std::swap(from, to);
    }
    const double width = spans.size();
    if (!(to.x() >= 0 && from.x() < width)) {
        return;
    }
    const int first = static_cast<int>(std::max(from.x(), 0.0));
    const int last = static_cast<int>(std::min(to.x(), width - 1));
    const double run = to.x() - from.x();
    const double slope = run > 0 && std::isfinite(run) ? (to.y() - from.y()) / run : 0;
    WaveColumns::Span *span = spans.data() + first;
    if (from.x() >= 0) {
        extend(*span, from.y());
    }
    for (int column = first; column < last; ++column, ++span) {
        const double crossing = from.y() + slope * (column + 1 - from.x());
        extend(span[0], crossing);
        extend(span[1], crossing);
    }
    if (to.x() < width) {
        extend(*span, to.y());
    }
}

// What a column shows: full pixels between its first and its last row, which are covered in part.
struct Stroke
{
    int top = -1;
    int bottom = -1;
    QRgb topShade = 0;
    QRgb bottomShade = 0;
};

QRgb shadeOf(const QColor &color, float coverage)
{
    const auto alpha = static_cast<int>(std::lround(static_cast<float>(color.alpha()) * coverage));
    return qPremultiply(qRgba(color.red(), color.green(), color.blue(), alpha));
}

// The line in count columns, one pixel thick, in a view whose y axis runs from limit at row 0 over 0 at row middle.
QVector<Stroke> strokesOf(const WaveColumns::Span *spans, int count, double middle, double limit, const QColor &color)
{
    const auto zero = static_cast<float>(middle);
    const float factor = limit > 0 ? static_cast<float>(middle / limit) : 0;
    QVector<Stroke> strokes(count);
    for (Stroke &stroke : strokes) {
        const WaveColumns::Span &span = *spans++;
        if (span.low > span.high) {
            continue;
        }
        // Beyond the view by up to two rows, so that the cast is safe and no clipped end shows.
        const float top = std::clamp(zero - span.high * factor - 0.5F, -2.0F, 2 * zero + 1);
        const float bottom = std::clamp(zero - span.low * factor + 0.5F, -1.0F, 2 * zero + 2);
        stroke.top = static_cast<int>(std::floor(top));
        stroke.bottom = static_cast<int>(std::floor(bottom));
        stroke.topShade = shadeOf(color, static_cast<float>(stroke.top + 1) - top);
        stroke.bottomShade =
            stroke.bottom > stroke.top ? shadeOf(color, bottom - static_cast<float>(stroke.bottom)) : 0;
    }
    return strokes;
}

} // namespace

int wavePointRate()
{
    const float rate = wavePointsPerMs * 1000;
    return truncated(static_cast<double>(rate));
}

int wavePointsOfTime(qint64 ms)
{
    const float points = static_cast<float>(ms) * wavePointsPerMs;
    return truncated(static_cast<double>(points));
}

qint64 timeOfWavePoints(int points)
{
    return static_cast<qint64>(points) * 1000 / wavePointRate();
}

double waveHeight(qint16 sample)
{
    const double v = sample / 32767.0;
    return v >= 0 ? std::sqrt(v) : -std::sqrt(-v);
}

void appendWavePoints(QVector<QPointF> &points, double &maximum, const qint16 *samples, int count, qint64 position)
{
    if (points.isEmpty()) {
        points.append(QPointF(0.0, 1 / 32767.0));
    }
    for (int i = 0; i < count; ++i) {
        const double y = waveHeight(samples[i]);
        maximum = std::max(maximum, std::abs(y));
        const float x =
            static_cast<float>(position) * wavePointsPerMs + static_cast<float>(i) - static_cast<float>(count);
        points.append(QPointF(static_cast<double>(x), y));
    }
}

double waveAxisLimit(double maximum)
{
    return 0.8 * maximum;
}

int waveWidth(int pointCount)
{
    const float width = static_cast<float>(pointCount) / wavePointsPerMs / msPerPixel;
    return truncated(static_cast<double>(width));
}

void WaveColumns::build(const QList<QPointF> &points, double columnsPerPoint, int width)
{
    spans.fill({none, -none}, std::max(width, 0));
    if (points.isEmpty()) {
        return;
    }
    const auto placed = [columnsPerPoint](const QPointF &point) {
        return QPointF(point.x() * columnsPerPoint, point.y());
    };
    QPointF before = placed(points.first());
    for (const QPointF &point : points) {
        const QPointF here = placed(point);
        addSegment(spans, before, here);
        before = here;
    }
}

void drawWave(QPainter &painter, const QRect &exposed, const WaveColumns &columns, int height, double limit,
              const QColor &color, double scale)
{
    const int columnCount = static_cast<int>(columns.spans.size());
    const int left = std::max(static_cast<int>(std::floor(exposed.left() * scale)), 0);
    const int right = std::min(static_cast<int>(std::ceil((exposed.right() + 1) * scale)), columnCount);
    const int top = std::max(static_cast<int>(std::floor(exposed.top() * scale)), 0);
    const int bottom = static_cast<int>(std::ceil(std::min(exposed.bottom() + 1, height) * scale));
    if (left >= right || top >= bottom) {
        return;
    }

    QImage image(right - left, bottom - top, QImage::Format_ARGB32_Premultiplied);
    const QVector<Stroke> strokes =
        strokesOf(columns.spans.constData() + left, image.width(), height * scale / 2, limit, color);
    const QRgb full = qPremultiply(color.rgba());
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        const int row = top + y;
        for (const Stroke &stroke : strokes) {
            *line++ = (row > stroke.top && row < stroke.bottom ? full : 0) | (row == stroke.top ? stroke.topShade : 0) |
                      (row == stroke.bottom ? stroke.bottomShade : 0);
        }
    }
    painter.drawImage(QRectF(left / scale, top / scale, image.width() / scale, image.height() / scale), image);
}

} // namespace glow
