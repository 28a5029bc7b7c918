// Shows for films, and the preview driven by hand: step by step from the beginning of a pattern, as a clock would.
#pragma once

#include "show/draw/propsimulator.h"
#include "show/film/filmplan.h"
#include "support/pixels.h"

#include <QImage>
#include <QSize>
#include <QVector>

#include <random>

inline int patternUnder(const QVector<glow::PropPattern> &patterns, int ms)
{
    int found = -1;
    for (int i = 0; i < patterns.size(); ++i) {
        found = patterns.at(i).startMs <= ms && ms < patterns.at(i).endMs ? i : found;
    }
    return found;
}

inline QImage previewAt(const QVector<glow::PropPattern> &patterns, int leds, int ms, const QSize &size)
{
    // A turn earlier nothing is left of the past.
    int begin = std::max(0, ms - 700);
    while (begin > 0 && patternUnder(patterns, begin) == patternUnder(patterns, begin - 1)) {
        --begin;
    }
    glow::PropSimulator prop;
    prop.stepCount = begin;
    int shown = -2;
    for (int step = begin; step <= ms; ++step) {
        const int found = patternUnder(patterns, step);
        if (found != shown) {
            const glow::PropPattern pattern = patterns.value(found, {0, 2, QImage(), 1});
            prop.showPicture(pattern.picture, qint16(leds), (pattern.endMs - pattern.startMs) / 1000.0,
                             pattern.repeats);
            shown = found;
        }
        prop.advance(1);
    }
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::black);
    prop.drawViews(picture, picture.rect());
    return picture;
}

// Patterns and gaps of random lengths whose repetitions are whole, even milliseconds, as a column each wants them.
inline QVector<glow::PropPattern> randomTrack(std::mt19937 &random, int endMs)
{
    QVector<glow::PropPattern> patterns;
    for (int ms = int(random() % 500); ms < endMs;) {
        const int repeats = 1 + int(random() % 4);
        const int length = std::min(repeats * 2 * (20 + int(random() % 300)), (endMs - ms) / repeats / 2 * repeats * 2);
        if (length == 0) {
            break;
        }
        // Broad bands, which a film's coarser colours can tell.
        const QColor one = QColor::fromHsv(int(random() % 360), 255, 255);
        const QColor other = QColor::fromHsv(int(random() % 360), 120, 120);
        const int band = 10 + int(random() % 30);
        patterns.append(
            {ms, ms + length,
             painted(170, 85, [&](int x, int y) { return (x / band + y / 30) % 2 == 0 ? one.rgb() : other.rgb(); }),
             repeats});
        ms += length + (random() % 2 == 0 ? 0 : int(random() % 900));
    }
    return patterns;
}

// The mean of all channels' differences, 0 to 255.
inline double apart(const QImage &one, const QImage &other)
{
    qint64 sum = 0;
    for (int y = 0; y < one.height(); ++y) {
        const auto *a = reinterpret_cast<const QRgb *>(one.constScanLine(y));
        const auto *b = reinterpret_cast<const QRgb *>(other.constScanLine(y));
        for (int x = 0; x < one.width(); ++x) {
            sum += std::abs(qRed(a[x]) - qRed(b[x])) + std::abs(qGreen(a[x]) - qGreen(b[x])) +
                   std::abs(qBlue(a[x]) - qBlue(b[x]));
        }
    }
    return double(sum) / (3.0 * one.width() * one.height());
}
