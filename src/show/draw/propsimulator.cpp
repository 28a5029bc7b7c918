#include "show/draw/propsimulator.h"

#include "show/base/numbers.h"
#include "show/model/showtime.h"

#include <QDebug>
#include <QPainter>
#include <QPen>
#include <QRect>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace glow {

namespace {

// The views' geometry, in pixels of the images.
constexpr int imageSize = 400;
constexpr int discLeft = 20;
constexpr int discDiameter = 360;
constexpr int stripLeft = 190;
constexpr double stripLength = 320.0; // all LEDs together

// A full turn, in the painter's sixteenths of a degree; it takes 6000 ms at speed 1.
constexpr int fullTurn = 5760;
constexpr int wedge = 10; // wider than the largest step of 9, so the wedges leave no gaps
constexpr int longestStall = 100;

const QColor black(0, 0, 0, 255);

QImage blackImage()
{
    QImage image(imageSize, imageSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(black);
    return image;
}

void drawWedge(QPainter &painter, const QRadialGradient &gradient, int angle)
{
    painter.setBrush(gradient);
    painter.drawPie(discLeft, discLeft, discDiameter, discDiameter, angle, wedge);
}

// The columns that the unsmoothed scaling of an image picks: asked of the scaling itself, which rounds in its own way.
QVector<int> nearestColumns(int side)
{
    QImage numbered(imageSize, imageSize, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < imageSize; ++y) {
        for (int x = 0; x < imageSize; ++x) {
            numbered.setPixel(x, y, 0xff000000U | static_cast<QRgb>(x));
        }
    }
    const QImage scaled = numbered.scaledToHeight(side, Qt::FastTransformation);
    QVector<int> columns(side);
    for (int x = 0; x < side; ++x) {
        columns[x] = static_cast<int>(scaled.pixel(x, 0) & 0xffffU);
    }
    return columns;
}

// The product is a 32-bit one that wraps, negated the same way.
int wedgeAngle(int spinSpeed, qint64 step)
{
    const quint32 product = static_cast<quint32>(spinSpeed) * static_cast<quint32>(step);
    return static_cast<int>(0U - product);
}

// The frame rate text's number. Paints within the same millisecond bring the mean down to 0.
int framesPerSecond(int frameTime)
{
    return 1000 / std::max(frameTime, 1);
}

const QRgb *rowOf(const QImage &image, int row)
{
    return reinterpret_cast<const QRgb *>(image.constScanLine(row));
}

// Each row one colour, of an image of 32 bits a pixel: it is the same as itself moved by a pixel.
bool areColumnsAlike(const QImage &image)
{
    for (int row = 0; row < image.height(); ++row) {
        const QRgb *pixels = rowOf(image, row);
        if (image.width() > 1 && std::memcmp(pixels, pixels + 1, sizeof(QRgb) * size_t(image.width() - 1)) != 0) {
            return false;
        }
    }
    return true;
}

bool isBlack(const QImage &image)
{
    for (int row = 0; row < image.height(); ++row) {
        const QRgb *pixels = rowOf(image, row);
        if (!std::all_of(pixels, pixels + image.width(), [](QRgb pixel) { return (pixel & RGB_MASK) == 0; })) {
            return false;
        }
    }
    return true;
}

} // namespace

int previewColumns(double seconds, int repeats)
{
    // Far above 24 hours; beyond it lie only values from damaged files.
    constexpr double mostColumns = 2.0e9;
    const double perRepeat = seconds * 1000.0 / std::max(repeats, 1);
    if (!(perRepeat > 0.0 && perRepeat < mostColumns)) {
        return 0;
    }
    const int columns = truncated(static_cast<double>(static_cast<float>(perRepeat)) + 0.5);
    return columns - columns % 2;
}

int previewSteps(int elapsedMs)
{
    const int dt = std::clamp(elapsedMs, 0, longestStall);
    const double limit = dt == 0 ? 0.5 : fullTurn / (6000.0 / dt) + 0.5;
    int steps = 0;
    while (steps < limit) {
        ++steps;
    }
    return steps;
}

PropSimulator::PropSimulator()
{
    discImage = blackImage();
    stripImage = blackImage();
    resetImages();
}

void PropSimulator::showPicture(const QImage &picture, qint16 leds, double seconds, int repeats)
{
    patternLeds = leds;
    patternRepeats = repeats;
    columnCount = previewColumns(seconds, repeats);
    patternImage = QImage();
    widePicture = QImage();
    wideRows = 0;
    if (columnCount > 0 && leds > 0) {
        QImage source = picture;
        if (source.isNull()) {
            source = QImage(leds, leds, QImage::Format_RGB32);
            source.fill(black);
        }
        if (columnCount <= widestImage && source.width() <= widestImage && source.height() <= widestImage) {
            patternImage = source.scaled(columnCount, leds, Qt::IgnoreAspectRatio, Qt::FastTransformation)
                               .convertToFormat(QImage::Format_RGB32);
        } else {
            widePicture = source.convertToFormat(QImage::Format_RGB32);
            wideRows = leds;
        }
    }
    setColumnPace(1, 1);
    lookAtPattern();
    stepOrigin = stepCount;
    stepClock = QTime::currentTime();
}

void PropSimulator::setColumnPace(qint64 columns, qint64 steps)
{
    paceColumns = columns;
    paceSteps = steps;
}

void PropSimulator::lookAtPattern()
{
    const QImage &pattern = widePicture.isNull() ? patternImage : widePicture;
    isSteady = areColumnsAlike(pattern);
    isDark = isSteady && isBlack(pattern);
    isStill = false;
}

// While the bar turns, the afterglow turns with it over whatever is not black.
bool PropSimulator::isNothingMoving() const
{
    return isSteady && (spinSpeed == 0 || (isDark && isBlack(discImage)));
}

bool PropSimulator::skipFrame()
{
    constexpr int skippedMs = 50; // well below the longest stall that counts in full
    if (isStill && elapsedMs() >= skippedMs) {
        stepCount += previewSteps(restartClock());
    }
    return isStill;
}

QRgb PropSimulator::pixelAt(qint64 column, int row) const
{
    if (!patternImage.isNull()) {
        return reinterpret_cast<const QRgb *>(patternImage.constScanLine(row))[column];
    }
    const qint64 x = nearestPixel(column, widePicture.width(), columnCount);
    const qint64 y = nearestPixel(row, widePicture.height(), wideRows);
    return reinterpret_cast<const QRgb *>(widePicture.constScanLine(static_cast<int>(y)))[x];
}

int PropSimulator::columns() const
{
    return widePicture.isNull() ? patternImage.width() : columnCount;
}

int PropSimulator::rows() const
{
    return widePicture.isNull() ? patternImage.height() : wideRows;
}

qint64 PropSimulator::columnAt(qint64 step) const
{
    const qint64 width = columns();
    if (width == 0) {
        return 0;
    }
    const qint64 column = (step - stepOrigin) * paceColumns / paceSteps % width;
    return column < 0 ? column + width : column;
}

QRadialGradient PropSimulator::discGradient(qint64 column) const
{
    const int h = rows();
    // Row 0 lies on the rim, each further row 1/180 of the radius further in. The gradient's centre is its position 0,
    // so rows beyond 180 have no place on the disc.
    const int shown = std::min(h, discDiameter / 2 + 1);
    QGradientStops stops;
    stops.reserve(shown + 2);
    if (shown <= discDiameter / 2) {
        stops.append({0.0, black});
    }
    if (h > 0 && h < discDiameter / 2) {
        stops.append({(360 - 2 * h) / 360.0, black});
    }
    for (int row = shown - 1; row >= 0; --row) {
        stops.append({(360 - 2 * row) / 360.0, QColor(pixelAt(column, row))});
    }
    if (h == 0) {
        stops.append({1.0, black});
    }
    QRadialGradient gradient(QPointF(200, 200), 180);
    gradient.setStops(stops);
    return gradient;
}

void PropSimulator::drawStripBody(QPainter &painter) const
{
    const int h = rows();
    if (h == 0) {
        return; // no LEDs, no bar
    }
    const auto s = static_cast<float>(stripLength / h);
    painter.setPen(QPen(QColor(150, 150, 150, 255), 2.0));
    painter.setBrush(Qt::NoBrush);
    const int w = static_cast<int>(s * 5.0);
    painter.drawRect(stripLeft, 20, w, 370);
    painter.drawRect(stripLeft, 356, w, 15);
}

void PropSimulator::drawStripColumn(QPainter &painter, qint64 column) const
{
    const int h = rows();
    if (h == 0) {
        return;
    }
    const auto s = static_cast<float>(stripLength / h);
    const int x = static_cast<int>(s * 2.5 + stripLeft);
    QPen pen;
    pen.setWidthF(s * 2.5);
    for (int row = 0; row < h; ++row) {
        const float top = static_cast<float>(row) * s;
        pen.setColor(QColor(pixelAt(column, row)));
        painter.setPen(pen);
        painter.drawLine(x, static_cast<int>(top + 30.0F), x, static_cast<int>(top + 33.0F));
    }
}

void PropSimulator::runSteps(int elapsedMs)
{
    advance(previewSteps(elapsedMs));
}

void PropSimulator::advance(int steps)
{
    if (steps <= 0) {
        return;
    }
    if (spinSpeed != 0) {
        QPainter painter(&discImage);
        painter.setPen(Qt::NoPen);
        for (int n = 0; n < steps; ++n) {
            drawWedge(painter, discGradient(columnAt(stepCount + n)), wedgeAngle(spinSpeed, stepCount + n));
        }
    }
    // The strip shows one instant: each step's opaque lines cover those of the step before, so the last step's do.
    QPainter painter(&stripImage);
    drawStripBody(painter);
    drawStripColumn(painter, columnAt(stepCount + steps - 1));
    stepCount += steps;
}

void PropSimulator::setSpinSpeed(int speed)
{
    if (speed != 0) {
        // Keeps the angle, which is the product of speed and count.
        stepCount = spinSpeed * (stepCount - 1) / speed;
    }
    if (stepCount < 0) {
        stepCount = -stepCount;
    }
    spinSpeed = speed;
    isStill = false;
    if (speed == 0) {
        qDebug() << "draw static";
        QPainter painter(&discImage);
        painter.setPen(Qt::NoPen);
        const int width = columns();
        for (int i = 0; i < fullTurn / wedge; ++i) {
            drawWedge(painter, discGradient(width == 0 ? 0 : i % width), -wedge * i);
        }
    }
    stepOrigin = 0;
    stepClock = QTime::currentTime();
}

void PropSimulator::resetImages()
{
    discImage.fill(black);
    stripImage.fill(black);
    isStill = false;
    stepOrigin = 0;
    stepClock = QTime::currentTime();
}

PropSimulator::Views PropSimulator::viewsIn(int w, int h) const
{
    Views views;
    views.side = static_cast<int>(h * 0.9);
    views.discLeft = (w - 2 * views.side) / 2;
    views.stripLeft = w / 2;
    views.top = (h - views.side) / 2;
    const int half = w / 2;
    const int middle = h / 2;
    views.centre = QPointF(half - h * 0.45 - views.discLeft, middle - views.top);
    views.degrees = 1 - ((stepCount * 10 - 10) * spinSpeed) / 160;
    return views;
}

// Disc and strip side by side around the middle of the frame, each as high as most of it.
void PropSimulator::composeViews(QPainter &painter, int w, int h)
{
    const Views views = viewsIn(w, h);
    if (views.side <= 0) {
        return;
    }
    QImage disc = discImage.scaledToHeight(views.side, Qt::FastTransformation);
    const QImage strip = stripImage.scaledToHeight(views.side, Qt::FastTransformation);
    if (spinSpeed != 0) {
        afterglow.apply(disc, views.centre, views.degrees, spinSpeed);
    }
    painter.drawImage(views.discLeft, views.top, disc);
    if (spinSpeed != 0) {
        painter.setCompositionMode(QPainter::CompositionMode_DestinationAtop);
    }
    painter.drawImage(views.stripLeft, views.top, strip);
}

void PropSimulator::composeFrame(QPainter &painter, int w, int h)
{
    composeViews(painter, w, h);
    QFont font = painter.font();
    font.setPixelSize(12);
    painter.setFont(font);
    painter.setPen(QColor(255, 255, 255, 255));
    painter.drawText(QRect(0, 0, 100, 50), 0,
                     QStringLiteral("FPS: ") + QString::number(framesPerSecond(frameTimeShown)));
}

// Milliseconds since the clock was started.
int PropSimulator::elapsedMs() const
{
    const int elapsed = stepClock.msecsTo(QTime::currentTime());
    return elapsed < 0 ? elapsed + msPerDay : elapsed; // past midnight, or the system's clock was set back
}

void PropSimulator::drawViews(QImage &picture, const QRect &cell)
{
    const Views views = viewsIn(cell.width(), cell.height());
    if (views.side <= 0) {
        return;
    }
    if (nearest.size() != views.side) {
        nearest = nearestColumns(views.side);
    }
    if (spinSpeed != 0) {
        afterglow.prepare(QSize(views.side, views.side), views.centre, views.degrees, spinSpeed);
    }
    // Outside of the disc's circle and to the left of the strip's bar nothing is ever drawn. What lies beyond the
    // cell's edges is cut off.
    constexpr double reach = discDiameter / 2 + 2;
    const double scale = static_cast<double>(views.side) / imageSize;
    const int stripFrom = static_cast<int>((stripLeft - 2) * scale);
    const int stripTo = std::min(views.side, cell.width() - views.stripLeft);
    for (int y = 0; y < views.side; ++y) {
        const int row = nearest.at(y);
        QRgb *line = reinterpret_cast<QRgb *>(picture.scanLine(cell.top() + views.top + y)) + cell.left();
        const auto *strip = reinterpret_cast<const QRgb *>(stripImage.constScanLine(row));
        for (int x = stripFrom; x < stripTo; ++x) {
            line[views.stripLeft + x] = strip[nearest.at(x)];
        }
        const double away = row - imageSize / 2;
        if (std::fabs(away) >= reach) {
            continue;
        }
        const double half = std::sqrt(reach * reach - away * away);
        const int from = std::max(-views.discLeft, static_cast<int>((imageSize / 2 - half) * scale));
        const int to = std::min(views.side, static_cast<int>((imageSize / 2 + half) * scale) + 1);
        const auto *disc = reinterpret_cast<const QRgb *>(discImage.constScanLine(row));
        QRgb *place = line + views.discLeft;
        for (int x = from; x < to; ++x) {
            place[x] = disc[nearest.at(x)];
        }
        if (spinSpeed != 0) {
            afterglow.fadeRow(y, place, from, to);
            std::for_each(place + from, std::max(place + from, place + to), [](QRgb &pixel) { pixel |= 0xff000000U; });
        }
    }
}

int PropSimulator::restartClock()
{
    const int elapsed = elapsedMs();
    stepClock = stepClock.addMSecs(elapsed);
    return elapsed;
}

void PropSimulator::paintFrame(QPainter &painter, int w, int h)
{
    const int elapsed = restartClock();
    runSteps(elapsed);
    if (w > 0 && h > 0) {
        // The afterglow's composition mode asks for a transparent surface, and what a widget's surface holds before a
        // paint differs between systems; so the frame is composed beside it.
        const qreal ratio = painter.device()->devicePixelRatioF();
        const QSize size = QSize(w, h) * ratio;
        if (frameImage.size() != size) {
            frameImage = QImage(size, QImage::Format_ARGB32_Premultiplied);
        }
        frameImage.reinterpretAsFormat(QImage::Format_ARGB32_Premultiplied);
        frameImage.setDevicePixelRatio(ratio);
        frameImage.fill(Qt::transparent);
        {
            QPainter composer(&frameImage);
            composer.setFont(painter.font());
            composeFrame(composer, w, h);
        }
        frameImage = onBlack(std::move(frameImage));
        painter.drawImage(0, 0, frameImage);
    }
    frameTimeAverage = (frameTimeAverage + elapsed) / 2;
    isStill = isNothingMoving() && framesPerSecond(frameTimeShown) == framesPerSecond(frameTimeAverage);
}

} // namespace glow
