// A device image read back: what the prop makes of the bytes (for the formats see deviceimage.h and binfile.h).
#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVector>

namespace glow {

struct DecodedEntry
{
    int repeat = 0;     // how often the prop runs the entry
    int frameCount = 0; // stored frames
    QByteArray frames;  // frameCount frames of DecodedShow::frameBytes() bytes each, without the markers
};

struct DecodedShow
{
    int slot = 0;      // track slot, 1 to 8; 0 when it was not told
    int ledByte = 0;   // low 8 bits of the LED count
    int entryByte = 0; // low 8 bits of the number of entries
    int rate = 0;      // columns per second
    bool loop = false; // the prop starts over at the end
    int leds = 0;      // LEDs of a frame, counted in the first frame; ledByte when there is no frame
    QVector<DecodedEntry> entries;
    qint64 extraBytes = 0; // bytes behind the end of the show
    QStringList problems;  // what is wrong with the bytes, in English; empty for a sound image

    int frameBytes() const { return 3 * leds; }
    // What one run of the show takes, in frames.
    qint64 playedFrames() const;
};

// Reads an image piece by piece as it arrives: the header behind the track byte, then at once the frame data. A byte
// that does not belong where it stands is noted as a problem and ends the reading; whatever follows counts as extra.
class ImageReader
{
public:
    // The wire leaves out the last two bytes of the header.
    enum class Form { Files, Wire };

    explicit ImageReader(Form form = Form::Files);

    void feed(const QByteArray &bytes);

    bool headerDone() const { return state != State::Header && state != State::Failed; }
    // Bytes that belong to the header, as far as it has come.
    qint64 headerBytes() const { return headerSize; }
    // All entries are there. A loop tail may still follow; only the end of the data shows that it does not.
    bool complete() const { return state == State::Tail || state == State::Ended; }
    bool failed() const { return state == State::Failed; }

    // What has been read. Notes as problems what is still missing.
    DecodedShow result() const;

private:
    enum class State { Header, StartMark, Frames, Tail, Ended, Failed };

    int takeHeader(const QByteArray &bytes);
    void take(uchar byte);
    void takeFrame(uchar byte);
    void takeTail(uchar byte);
    void endFrame();
    void fail(const QString &problem);

    Form form;
    State state = State::Header;
    QByteArray header; // until it has ended
    qint64 headerSize = 0;
    int entry = 0;         // entry being read
    int frame = 0;         // bytes of the frame being read
    bool measured = false; // show.leds is that of a frame
    QByteArray tail;       // of the loop tail, as far as it has come
    DecodedShow show;
};

// Both files of a device image.
DecodedShow decodeImage(const QByteArray &header, const QByteArray &frameData);

// A ".bin" file.
DecodedShow decodeBin(const QByteArray &file);

} // namespace glow
