// Hears the beats in a song's samples.
#pragma once

#include "show/model/beats.h"

#include <atomic>
#include <memory>

namespace glow {

// False where the program was built without the library that hears beats; then none are found.
bool beatsAvailable();

// Samples a second that the analysis is made for.
constexpr int beatSampleRate = 44100;

// A running analysis. It belongs to one thread at a time, any; several can run beside each other.
class BeatFinder
{
public:
    BeatFinder();
    ~BeatFinder();
    BeatFinder(const BeatFinder &) = delete;
    BeatFinder &operator=(const BeatFinder &) = delete;

    // The next samples of the song: one channel, beatSampleRate, -1 to 1. Most of the work is done here, and evenly:
    // who wants to stop early calls no more.
    void add(const float *samples, int count);

    // The beats of all samples, to be asked for once. Less than ten seconds of song, silence, or a true flag
    // (looked at between the steps) have none.
    Beats finish(const std::atomic<bool> &cancelled);

private:
    struct Analysis;
    std::unique_ptr<Analysis> analysis;
};

} // namespace glow
