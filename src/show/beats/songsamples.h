// A song's samples, decoded as the analysis of its beats takes them.
#pragma once

#include <QString>

#include <atomic>
#include <functional>

namespace glow {

struct SongRead
{
    enum State {
        Whole,     // to its end
        Cancelled, // the flag became true
        Failed     // error says why
    };
    State state = Whole;
    QString error; // in the words of the media back end
};

// Samples of one channel, beatSampleRate, -1 to 1, and where in the song they end: 0 to 1, or below 0 while its length
// is not known. They are gone after the call.
using TakeSamples = std::function<void(const float *samples, int count, double share)>;

// Decodes the whole song and hands over its samples in order. Blocks: it runs an event loop in the calling thread, so
// the GUI thread is no place for it; a QThread needs no loop of its own. It needs the application object. The flag may
// be set by any thread and ends it within some hundredths of a second.
SongRead readSong(const QString &path, const TakeSamples &take, const std::atomic<bool> &cancelled);

} // namespace glow
