#include "show/image/deviceimage.h"

#include "show/base/numbers.h"
#include "show/image/format.h"
#include "show/image/imagecolumns.h"
#include "show/model/patternrecord.h"

#include <QDataStream>
#include <QDebug>
#include <QIODevice>

#include <array>
#include <cfloat>
#include <limits>

namespace glow {

namespace {

// What the prop plays depends on sums of single precision to the bit.
static_assert(FLT_EVAL_METHOD == 0, "the compiler must not compute floats with more bits than they have");

// exact / divisor rounded to whole frames. No divisor at all, and quotients beyond the range of int, yield the most
// negative integer, which stands for "no frame".
int roundedFrames(float exact, float divisor)
{
    if (divisor == 0.0F) {
        return std::numeric_limits<int>::min();
    }
    return truncated(static_cast<double>(exact / divisor) + 0.5);
}

float asFloat(qint64 value)
{
    return static_cast<float>(value);
}

// What exact (frames times 1000) exceeds a number of whole frames by.
float excess(float exact, qint64 wholeFrames)
{
    return exact / 1000.0F - asFloat(wholeFrames);
}

class Planner
{
public:
    explicit Planner(const DeviceShow &show)
        : show(show)
    {
    }

    // A span cut into blocks: lead-in, gaps and colours.
    void addBlocks(ImageEntry::Kind kind, int pattern, float ms)
    {
        ImageEntry entry;
        entry.kind = kind;
        entry.pattern = pattern;
        entry.repeat = truncated(static_cast<double>(ms / blockMs));
        const float exact = ms * show.frameRate;
        entry.frames = roundedFrames(exact, asFloat(entry.repeat * Q_INT64_C(1000)));
        drift += excess(exact, static_cast<qint64>(entry.frames) * entry.repeat);
        entry.drift = drift;
        entries.append(entry);
    }

    void addPicture(int pattern, float ms, int repeatCount)
    {
        ImageEntry entry;
        entry.kind = ImageEntry::Picture;
        entry.pattern = pattern;
        entry.repeat = qMax(repeatCount, 1);
        const qint64 unit = entry.repeat;
        const float exact = ms * show.frameRate;
        entry.frames = qMax(roundedFrames(exact, asFloat(unit * 1000)), 1);
        const float left = excess(exact, entry.frames * unit);
        drift += left;
        qDebug() << pattern << "left" << left << "total" << drift;
        payBack(entry.frames, entry.repeat);
        qDebug() << "after correct"
                 << "total" << drift;
        entry.drift = drift;
        widen(entry);
        entries.append(entry);
    }

    QVector<ImageEntry> entries;

private:
    // One column more or less is worth as many frames as there are copies. A drift so large that single precision
    // cannot subtract that many any more is left standing.
    void payBack(int &frames, int unit)
    {
        const auto step = static_cast<float>(unit);
        const double high = unit * 0.6;
        while (static_cast<double>(drift) >= high) {
            const float next = drift - step;
            if (next == drift || frames == std::numeric_limits<int>::max()) {
                break;
            }
            ++frames;
            drift = next;
        }
        const double low = unit * -0.6;
        while (low >= static_cast<double>(drift)) {
            const float next = drift + step;
            if (next == drift || frames == std::numeric_limits<int>::min()) {
                break;
            }
            --frames;
            drift = next;
        }
    }

    // A run narrower than two columns per LED is widened by moving repeats into the stored data.
    void widen(ImageEntry &entry) const
    {
        const int enough = 2 * show.ledCount;
        if (entry.frames >= enough) {
            return;
        }
        constexpr std::array<int, 6> primes = {2, 3, 5, 7, 11, 13};
        do {
            for (const int prime : primes) {
                if (entry.repeat % prime == 0) {
                    entry.repeat /= prime;
                    entry.copies *= prime;
                    return;
                }
            }
            if (entry.repeat <= 13) {
                return;
            }
            entry.repeat = entry.repeat / 2 + 1; // odd here, so the total grows by a copy
            // Without frames the loop runs on until the repeats are used up; no count of copies overflows by it.
            entry.copies = entry.frames > 0 ? entry.copies * 2 : 1;
        } while (static_cast<qint64>(entry.copies) * entry.frames < enough);
    }

    const DeviceShow &show;
    float drift = 0.0F;
};

// Gathers small pieces and hands them on in large ones.
class BlockWriter
{
public:
    explicit BlockWriter(QIODevice &device)
        : device(device)
    {
        block.reserve(blockBytes);
    }

    void append(const char *bytes, int size)
    {
        if (block.size() + size > blockBytes) {
            flush();
        }
        block.append(bytes, size);
    }

    void append(uchar marker)
    {
        const auto byte = static_cast<char>(marker);
        append(&byte, 1);
    }

    void append(const QByteArray &bytes) { append(bytes.constData(), bytes.size()); }

    void flush()
    {
        if (device.isWritable()) {
            device.write(block);
        }
        total += block.size();
        block.resize(0); // keeps the capacity
    }

    qint64 total = 0; // valid after a flush

private:
    static constexpr int blockBytes = 1 << 18;
    QIODevice &device;
    QByteArray block;
};

class FrameWriter
{
public:
    FrameWriter(const DeviceShow &show, QIODevice &device)
        : out(device)
        , show(show)
        , leds(qMax(show.ledCount, 0))
        , budget(show.maxFrameBytes)
    {
        const int divisor = gammaDivisor(show.ledsShown);
        for (int c = 0; c < 256; ++c) {
            brightness[static_cast<size_t>(c)] = static_cast<uchar>(c * c / divisor);
        }
    }

    void write(const ImageEntry &entry)
    {
        const qint64 bytes = entry.storedFrames() * (Q_INT64_C(3) * leds + 1);
        if (bytes > budget) {
            cut = true;
        } else if (bytes > 0) {
            budget -= bytes;
            if (entry.kind == ImageEntry::Picture) {
                writePicture(entry);
            } else {
                writeSolid(entry);
            }
        }
        out.append(entryEnd);
    }

    BlockWriter out;
    bool cut = false;

private:
    void writeSolid(const ImageEntry &entry)
    {
        const QRgb colour = entry.kind == ImageEntry::Colour ? show.patterns.at(entry.pattern).colour : 0;
        QByteArray frame;
        for (int led = 0; led < leds; ++led) {
            appendTriple(frame, colour);
        }
        for (int i = 0; i < entry.frames; ++i) {
            out.append(frame);
            if (i + 1 < entry.frames) {
                out.append(frameEnd);
            }
        }
    }

    void writePicture(const ImageEntry &entry)
    {
        ImageColumns columns(show.patterns.at(entry.pattern).picture, entry.frames, leds, brightness);
        for (int copy = 0; copy < entry.copies; ++copy) {
            for (int x = 0; x < entry.frames; ++x) {
                out.append(columns.column(x));
                if (copy + 1 < entry.copies || x + 1 < entry.frames) {
                    out.append(frameEnd);
                }
            }
        }
    }

    void appendTriple(QByteArray &frame, QRgb colour) const
    {
        for (const int component : {qRed(colour), qGreen(colour), qBlue(colour)}) {
            frame.append(static_cast<char>(brightness[static_cast<size_t>(component)]));
        }
    }

    const DeviceShow &show;
    int leds;
    qint64 budget;
    BrightnessTable brightness = {};
};

void writeRaw(QDataStream &stream, const QByteArray &bytes)
{
    stream.writeRawData(bytes.constData(), bytes.size());
}

} // namespace

ShowPattern showPattern(const PatternRecord &record)
{
    ShowPattern pattern;
    pattern.startMs = msOf(record.startTime);
    pattern.endMs = msOf(record.endTime);
    pattern.isColour = record.patternKind == ColourPattern;
    pattern.colour = record.solidColor.rgb();
    if (!pattern.isColour) {
        pattern.picture = record.thumbnail.toImage();
    }
    pattern.repeatCount = record.repeatCount;
    return pattern;
}

int gammaDivisor(int ledsShown)
{
    return ledsShown == 70 ? 265 : 750;
}

QVector<ImageEntry> planImage(const DeviceShow &show)
{
    Planner planner(show);
    for (int i = 0; i < show.patterns.size(); ++i) {
        const ShowPattern &pattern = show.patterns.at(i);
        const int previousEnd = i == 0 ? show.startMarkMs : show.patterns.at(i - 1).endMs;
        const float gap = asFloat(static_cast<qint64>(pattern.startMs) - previousEnd);
        if (gap > blockMs) {
            planner.addBlocks(ImageEntry::Blank, -1, gap);
        }
        const float length = asFloat(static_cast<qint64>(pattern.endMs) - pattern.startMs);
        if (pattern.isColour) {
            planner.addBlocks(ImageEntry::Colour, i, length);
        } else {
            planner.addPicture(i, length, pattern.repeatCount);
        }
    }
    return planner.entries;
}

QByteArray imageHeader(const DeviceShow &show, const QVector<ImageEntry> &entries)
{
    QByteArray header;
    QDataStream stream(&header, QIODevice::WriteOnly);
    stream << static_cast<quint8>(show.slot);
    writeRaw(stream, headerMarks());
    stream << static_cast<quint8>(show.ledCount) << static_cast<quint8>(entries.size())
           << QByteArray::number(show.rateShown) << entryEnd;
    for (const ImageEntry &entry : entries) {
        writeRaw(stream, QByteArray::number(entry.repeat));
        stream << entryEnd;
    }
    writeRaw(stream, imageTrailer());
    return header;
}

ImageSummary writeDeviceImage(const DeviceShow &show, QIODevice &frameData, QIODevice &header,
                              const std::function<void(int)> &progress)
{
    const auto report = [&progress](qint64 percent) {
        if (progress) {
            progress(static_cast<int>(percent));
        }
    };
    ImageSummary summary;
    report(0);
    summary.entries = planImage(show);
    FrameWriter writer(show, frameData);
    writer.out.append(dataMark);
    for (const ImageEntry &entry : qAsConst(summary.entries)) {
        if (entry.pattern >= 0) {
            report(Q_INT64_C(99) * entry.pattern / show.patterns.size());
        }
        writer.write(entry);
    }
    report(0);
    if (header.isWritable()) {
        header.write(imageHeader(show, summary.entries));
    }
    if (show.loop) {
        writer.out.append(loopTail());
    }
    writer.out.flush();
    summary.frameBytes = writer.out.total;
    summary.cut = writer.cut;
    return summary;
}

} // namespace glow
