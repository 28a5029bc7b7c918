#include "show/beats/songbeats.h"

#include "show/beats/beatfinder.h"

namespace glow {

BeatSearch findBeats(const QString &path, const std::atomic<bool> &cancelled,
                     const std::function<void(int percent)> &progress)
{
    BeatFinder finder;
    int told = -1;
    const auto take = [&](const float *samples, int count, double share) {
        finder.add(samples, count);
        const auto percent = int(share * 100);
        if (progress && share >= 0 && percent > told) {
            told = percent;
            progress(percent);
        }
    };
    BeatSearch search;
    search.song = readSong(path, take, cancelled);
    if (search.song.state == SongRead::Whole) {
        search.beats = finder.finish(cancelled);
        search.song.state = cancelled ? SongRead::Cancelled : SongRead::Whole;
    }
    return search;
}

} // namespace glow
