// Songs for tests: short files with a click at every whole second.
#pragma once

#include <QString>

namespace songs {

struct Song
{
    int rate = 44100;
    int channels = 2;
    int ms = 4000;
};

// Writes a RIFF file of 16-bit samples: a very soft tone, and around every whole second k above 0 a pulse of 8
// milliseconds that peaks exactly at k.
//
// The songs in fixtures/ are such files of 3400 milliseconds and one channel, encoded with
//     gst-launch-1.0 filesrc location=a.wav ! wavparse ! lamemp3enc target=bitrate bitrate=RATE ! filesink
//     location=a.mp3
// and, for the one with a table of contents, "xingmux" before the last step.
void writeWav(const QString &path, const Song &song);

} // namespace songs
