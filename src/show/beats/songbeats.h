// The beats of a song file, all in one call.
#pragma once

#include "show/beats/songsamples.h"
#include "show/model/beats.h"

namespace glow {

struct BeatSearch
{
    SongRead song; // how reading it ended
    Beats beats;   // none unless it was read to its end
};

// Decodes and analyses the song; some seconds of work, so a matter for a worker thread (see readSong). progress is told
// of every whole percent, in the calling thread, and may be empty.
BeatSearch findBeats(const QString &path, const std::atomic<bool> &cancelled,
                     const std::function<void(int percent)> &progress = {});

} // namespace glow
