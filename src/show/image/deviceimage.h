// The device image: one track as the prop's raw frame format. Plain values in, bytes out; no window, no files of its
// own.
//
// A show is a sequence of entries. An entry is a run of frames and a repeat count: the prop shows the frames in order
// and runs the whole entry that often before it goes on. A frame is one column of the picture on the spinning prop.
//
// Frame data:   0xFF, the entries, and, for a looping show, 0xFE 00 00 00 06 "00000" 00.
//   an entry    its frames with 0xFE between two of them, then 0xFF; an entry without frames is the lone 0xFF
//   a frame     ledCount triples red, green, blue, from the bottom row of the picture to its top row
//   a component c*c/divisor of 0 to 255, so 245 at most: the markers can never occur inside a frame
//
// Show header:  slot (1 to 8), 0xFF, 0xFE, ledCount (low 8 bits), number of entries (low 8 bits),
//               32-bit length and digits of the frame rate, 0xFF,
//               for each entry its repeat count in digits and 0xFF,
//               00 00 00 06 "00000" 00.
//
// All numbers of several bytes are big-endian. The arithmetic is single precision in a fixed order, with the drift
// between show time and whole frames carried from entry to entry and paid back in picture entries: what the prop plays
// depends on it to the bit.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QRgb>
#include <QVector>

#include <functional>

class QIODevice;

namespace glow {

struct PatternRecord;

// Spans of this many milliseconds and less between two patterns are lost; longer ones, and colours, are cut into blocks
// of about this length.
constexpr float blockMs = 240.0F;

// One pattern of the show.
struct ShowPattern
{
    int startMs = 0; // milliseconds of show time
    int endMs = 0;
    bool isColour = false;
    QRgb colour = 0;     // of a colour pattern
    QImage picture;      // of any other; a null picture is black
    int repeatCount = 1; // copies of the picture across the pattern; below 1 counts as 1
};

ShowPattern showPattern(const PatternRecord &record);

// Everything that the image depends on.
struct DeviceShow
{
    int ledCount = 0;              // rows of a frame; 0 or less makes frames without bytes
    float frameRate = 0.0F;        // columns per second
    int ledsShown = 0;             // value of the LED field: exactly 70 selects the brighter divisor
    int rateShown = 0;             // value of the frame rate field, written into the header
    int slot = 1;                  // track slot on the device, 1 to 8
    bool loop = true;              // the prop starts over at the end
    int startMarkMs = 0;           // show time that the lead-in is counted from
    QVector<ShowPattern> patterns; // in start-time order

    // No show is stored with more frame data than this, in bytes. A pattern of many hours that is stored in full (one
    // copy across its whole length) would fill the disk; an entry that does not fit any more is stored without frames.
    // The default is far above what a prop holds: hours of frames that all differ.
    qint64 maxFrameBytes = Q_INT64_C(4) << 30;
};

struct ImageEntry
{
    enum Kind { Blank, Colour, Picture };
    Kind kind = Blank;
    int pattern = -1;   // index into DeviceShow::patterns, -1 for a blank entry
    int repeat = 0;     // as written into the header; 0 or negative for patterns shorter than a block or ending early
    int frames = 0;     // frames of one copy; 0 or less writes none
    int copies = 1;     // copies of a narrow picture that are stored side by side
    float drift = 0.0F; // frames of show time still owed after this entry

    qint64 storedFrames() const { return frames > 0 ? static_cast<qint64>(frames) * copies : 0; }
};

struct ImageSummary
{
    QVector<ImageEntry> entries;
    qint64 frameBytes = 0; // bytes written as frame data
    bool cut = false;      // an entry was stored without its frames, see DeviceShow::maxFrameBytes
};

// 750, or 265 at exactly 70 LEDs.
int gammaDivisor(int ledsShown);

// The entries of the show with their frame and repeat counts.
QVector<ImageEntry> planImage(const DeviceShow &show);

// The show header with its track byte.
QByteArray imageHeader(const DeviceShow &show, const QVector<ImageEntry> &entries);

// Writes both parts. progress, when given, is called with a percentage (0 to 98) before each pattern and 0 at the end.
// What the devices do with the bytes is not looked at, so a full disk passes unnoticed; a device that is not open is
// left alone.
ImageSummary writeDeviceImage(const DeviceShow &show, QIODevice &frameData, QIODevice &header,
                              const std::function<void(int)> &progress = {});

} // namespace glow
