// The analysis of the Queen Mary DSP library, as its authors run it: an onset curve from the complex spectral
// difference, the most likely course of the tempo over it, and the beats that follow both.
#include "show/beats/beatfinder.h"

#include "show/model/showtime.h"

#include <dsp/onsets/DetectionFunction.h>
#include <dsp/tempotracking/DownBeat.h>
#include <dsp/tempotracking/TempoTrackV2.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace glow {

namespace {

constexpr int step = 512;
constexpr int frame = 1024;

// The windows of the tempo analysis are six seconds long; shorter songs give it nothing to compare.
constexpr size_t leastFrames = 10 * beatSampleRate / step;

// The curve's first values compare with nothing before them and stand out for that alone.
constexpr size_t firstFrame = 2;

// For the bars: the song at 44100 / 16 samples a second.
constexpr int decimation = 16;

// A bar counts as told if the change at its first beats stands out from that of all beats by this many standard
// errors.
constexpr double leastContrast = 4.0;

constexpr int noBar = 0;

DFConfig curveConfig()
{
    DFConfig config{};
    config.stepSize = step;
    config.frameLength = frame;
    config.DFType = DF_COMPLEXSD;
    config.dbRise = 3;
    config.adaptiveWhitening = false;
    config.whiteningRelaxCoeff = -1;
    config.whiteningFloor = -1;
    return config;
}

// Beats a minute: over the intervals that are much like the middle one, so that neither a break nor the grid of the
// analysis counts.
double tempoOf(const std::vector<double> &seconds)
{
    std::vector<double> intervals;
    for (size_t i = 1; i < seconds.size(); ++i) {
        intervals.push_back(seconds[i] - seconds[i - 1]);
    }
    if (intervals.empty()) {
        return 0;
    }
    const auto middle = intervals.begin() + std::ptrdiff_t(intervals.size() / 2);
    std::nth_element(intervals.begin(), middle, intervals.end());
    const double median = *middle;
    double sum = 0;
    int count = 0;
    for (const double interval : intervals) {
        if (std::abs(interval - median) < median / 10) {
            sum += interval;
            ++count;
        }
    }
    return sum > 0 ? 60 * count / sum : 0;
}

struct Meter
{
    int beats = noBar; // a bar's
    int first = 0;     // the place of the first bar's first beat
    double contrast = 0;
};

// How far the strongest of a bar's beats stands out if it has so many; changes[i] is the change of sound at beat i + 1.
Meter meterOf(const std::vector<double> &changes, int beats)
{
    const auto count = int(changes.size());
    double sum = 0;
    double squares = 0;
    for (const double change : changes) {
        sum += change;
        squares += change * change;
    }
    const double mean = sum / count;
    const double deviation = std::sqrt(std::max(squares / count - mean * mean, 0.0));
    Meter best;
    for (int first = 0; first < beats; ++first) {
        double firsts = 0;
        int bars = 0;
        for (int beat = first; beat <= count; beat += beats) {
            if (beat > 0) {
                firsts += changes[size_t(beat - 1)];
                ++bars;
            }
        }
        const double contrast = bars > 0 && deviation > 0 ? (firsts / bars - mean) / deviation * std::sqrt(bars) : 0;
        if (contrast > best.contrast) {
            best = {beats, first, contrast};
        }
    }
    return best;
}

} // namespace

struct BeatFinder::Analysis
{
    DetectionFunction function{curveConfig()};
    DownBeat bars{float(beatSampleRate), decimation, step};
    std::vector<float> waiting;   // samples that no frame began with yet
    std::vector<double> curve;    // one value a step
    std::vector<double> oneFrame; // for the function, which reads doubles

    void takeFrame(const float *samples)
    {
        oneFrame.assign(samples, samples + frame);
        const double value = function.processTimeDomain(oneFrame.data());
        curve.push_back(std::isfinite(value) ? value : 0);
        bars.pushAudioBlock(samples);
    }

    // The places of the beats in steps, as the library counts them.
    std::vector<double> placesOfBeats(const std::atomic<bool> &cancelled)
    {
        while (!curve.empty() && curve.back() <= 0) {
            curve.pop_back(); // silence at the end
        }
        if (curve.size() < leastFrames) {
            return {};
        }
        const std::vector<double> heard(curve.begin() + firstFrame, curve.end());
        std::vector<double> periods(heard.size(), 0.0);
        std::vector<double> tempi;
        std::vector<double> beats;
        TempoTrackV2 tracker(beatSampleRate, step);
        tracker.calculateBeatPeriod(heard, periods, tempi);
        if (!cancelled) {
            tracker.calculateBeats(heard, periods, beats);
        }
        return beats;
    }

    QVector<int> placesOfBars(const std::vector<double> &beats)
    {
        size_t length = 0;
        const float *audio = bars.getBufferedAudio(length);
        std::vector<int> ignored; // it takes the number of a bar's beats for granted
        bars.findDownBeats(audio, length, beats, ignored);
        std::vector<double> changes;
        bars.getBeatSD(changes);
        const Meter three = meterOf(changes, 3);
        const Meter four = meterOf(changes, 4);
        const Meter &meter = three.contrast > four.contrast ? three : four;
        QVector<int> places;
        if (meter.contrast >= leastContrast) {
            for (int place = meter.first; place < int(beats.size()); place += meter.beats) {
                places << place;
            }
        }
        return places;
    }
};

bool beatsAvailable()
{
    return true;
}

BeatFinder::BeatFinder()
    : analysis(std::make_unique<Analysis>())
{
}

BeatFinder::~BeatFinder() = default;

void BeatFinder::add(const float *samples, int count)
{
    std::vector<float> &waiting = analysis->waiting;
    waiting.insert(waiting.end(), samples, samples + std::max(count, 0));
    size_t taken = 0;
    for (; taken + frame <= waiting.size(); taken += step) {
        analysis->takeFrame(waiting.data() + taken);
    }
    waiting.erase(waiting.begin(), waiting.begin() + std::ptrdiff_t(taken));
}

Beats BeatFinder::finish(const std::atomic<bool> &cancelled)
{
    Beats found;
    if (cancelled) {
        return found;
    }
    const std::vector<double> places = analysis->placesOfBeats(cancelled);
    std::vector<double> ofSong;
    std::vector<double> seconds;
    for (const double place : places) {
        const double second = (place + firstFrame) * step / beatSampleRate;
        const double ms = std::round(second * 1000);
        const bool ascends = found.times.isEmpty() || ms > found.times.last();
        if (ascends && ms >= 0 && ms <= msPerDay) {
            found.times << int(ms);
            seconds.push_back(second);
            ofSong.push_back(place + firstFrame);
        }
    }
    if (cancelled || ofSong.size() < 2) {
        return {};
    }
    found.tempo = tempoOf(seconds);
    found.bars = analysis->placesOfBars(ofSong);
    return found;
}

} // namespace glow
