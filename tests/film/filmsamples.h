// Shows for films, and the preview driven by hand: step by step from the beginning of the show, as its clock would.
#pragma once

#include "show/draw/propsimulator.h"
#include "show/film/filmplan.h"
#include "support/pixels.h"

#include <QMap>

// The preview's pictures at those times, by time.
inline QMap<int, QImage> previews(const QVector<glow::PropPattern> &patterns, const QVector<int> &times,
                                  const QSize &size, int leds = 80)
{
    QMap<int, QImage> pictures;
    glow::PropSimulator prop;
    int shown = -2;
    for (int ms = 0; ms <= *std::max_element(times.begin(), times.end()); ++ms) {
        int found = -1;
        for (int i = 0; i < patterns.size(); ++i) {
            found = patterns.at(i).startMs <= ms && ms < patterns.at(i).endMs ? i : found;
        }
        if (found != shown) {
            const glow::PropPattern pattern = patterns.value(found, {0, 2, QImage(), 1});
            prop.showPicture(pattern.picture, qint16(leds), (pattern.endMs - pattern.startMs) / 1000.0,
                             pattern.repeats);
            shown = found;
        }
        prop.advance(1);
        if (times.contains(ms)) {
            pictures[ms] = QImage(size, QImage::Format_RGB32);
            pictures[ms].fill(Qt::black);
            prop.drawViews(pictures[ms], pictures[ms].rect());
        }
    }
    return pictures;
}

// Patterns and gaps of random lengths whose repetitions are whole, even milliseconds, as a column each wants them.
inline QVector<glow::PropPattern> randomTrack(std::mt19937 &random, int endMs)
{
    QVector<glow::PropPattern> patterns;
    for (int ms = int(random() % 300); ms < endMs; ms += int(random() % 2 * (random() % 900))) {
        const int repeats = 1 + int(random() % 4);
        const int length = repeats * 2 * (20 + int(random() % 150));
        // Broad bands, which a film's coarser colours can tell.
        const QRgb one = QColor::fromHsv(int(random() % 360), 255, 255).rgb();
        const QRgb other = QColor::fromHsv(int(random() % 360), 120, 120).rgb();
        const int band = 10 + int(random() % 30);
        const auto bands = [=](int x, int y) { return (x / band + y / 30) % 2 == 0 ? one : other; };
        patterns.append({ms, ms + length, painted(170, 85, bands), repeats});
        ms += length;
    }
    return patterns;
}

inline glow::FilmPlan smallPlan(int toMs = 2000)
{
    std::mt19937 random(7);
    glow::FilmPlan plan;
    plan.leds = 80;
    plan.size = {320, 180};
    plan.rate = 25;
    plan.toMs = toMs;
    plan.tracks = {{1, randomTrack(random, 2000)}};
    return plan;
}
