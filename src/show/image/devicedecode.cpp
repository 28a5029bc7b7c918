#include "show/image/devicedecode.h"

#include "show/image/binfile.h"
#include "show/image/format.h"

#include <QtEndian>

#include <optional>

namespace glow {

namespace {

// No prop is near this; bytes that go on without a marker are no frame.
constexpr int mostLeds = 4000;

// A count in digits; that of a pattern that ends before it starts has a sign.
constexpr int longestNumber = 11;

std::optional<int> numberOf(const QByteArray &digits)
{
    bool ok = false;
    const int number = digits.toInt(&ok);
    return ok ? std::make_optional(number) : std::nullopt;
}

// The header behind the track byte, read from its start as far as there are bytes of it.
class HeaderParser
{
public:
    HeaderParser(const QByteArray &bytes, ImageReader::Form form)
        : bytes(bytes)
        , end(form == ImageReader::Form::Wire ? imageTrailer().chopped(wireCut) : imageTrailer())
    {
    }

    // True if the whole header is there and sound. Otherwise it is broken, or there is more to come.
    bool parse() { return takeMarks() && takeCounts() && takeRate() && takeEntries() && takeTrailer(); }

    bool broken = false;
    int at = 0;       // bytes that belong to it, the one that broke it included
    DecodedShow show; // its fields, and what is wrong with it

private:
    // So many bytes, if they are all there.
    std::optional<QByteArray> take(int count)
    {
        const int from = at;
        at = qMin(at + count, bytes.size());
        return at - from == count ? std::make_optional(bytes.mid(from, count)) : std::nullopt;
    }

    bool fail(const QString &problem)
    {
        show.problems << problem;
        broken = true;
        return false;
    }

    bool takeMarks()
    {
        const std::optional<QByteArray> marks = take(headerMarks().size());
        return marks &&
               (*marks == headerMarks() || fail(QStringLiteral("the header does not start with its two markers")));
    }

    bool takeCounts()
    {
        const std::optional<QByteArray> counts = take(6);
        if (!counts) {
            return false;
        }
        show.ledByte = static_cast<uchar>(counts->at(0));
        show.leds = show.ledByte;
        show.entryByte = static_cast<uchar>(counts->at(1));
        const auto length = qFromBigEndian<quint32>(counts->constData() + 2);
        rateLength = length >= 1 && length <= 9 ? static_cast<int>(length) : 0;
        return rateLength > 0 || fail(QStringLiteral("the frame rate has %1 digits").arg(length));
    }

    bool takeRate()
    {
        const std::optional<QByteArray> digits = take(rateLength);
        if (!digits) {
            return false;
        }
        const std::optional<int> rate = numberOf(*digits);
        show.rate = rate.value_or(0);
        if (!rate) {
            return fail(QStringLiteral("the frame rate is no number"));
        }
        const std::optional<QByteArray> mark = take(1);
        return mark &&
               (static_cast<uchar>(mark->at(0)) == entryEnd || fail(QStringLiteral("no marker behind the frame rate")));
    }

    // The repeat counts, up to the trailer, which begins with a zero.
    bool takeEntries()
    {
        while (at < bytes.size() && bytes.at(at) != 0) {
            const int mark = bytes.indexOf(static_cast<char>(entryEnd), at);
            const int length = (mark < 0 ? bytes.size() : mark) - at;
            if (length > longestNumber) {
                at += longestNumber + 1;
                return fail(QStringLiteral("a repeat count does not end"));
            }
            const std::optional<QByteArray> digits = take(length);
            if (mark < 0) {
                return false;
            }
            ++at;
            const std::optional<int> repeat = numberOf(*digits);
            if (!repeat) {
                return fail(QStringLiteral("a repeat count is no number"));
            }
            show.entries.append({*repeat, 0, {}});
        }
        if (at < bytes.size() && (show.entries.size() & 0xFF) != show.entryByte) {
            show.problems << QStringLiteral("the header counts %1 entries and lists %2")
                                 .arg(show.entryByte)
                                 .arg(show.entries.size());
        }
        return at < bytes.size();
    }

    bool takeTrailer()
    {
        for (const char byte : end) {
            const std::optional<QByteArray> next = take(1);
            if (!next) {
                return false;
            }
            if (next->at(0) != byte) {
                return fail(QStringLiteral("the header does not end as it should"));
            }
        }
        return true;
    }

    const QByteArray &bytes;
    const QByteArray end;
    int rateLength = 0;
};

} // namespace

qint64 DecodedShow::playedFrames() const
{
    qint64 sum = 0;
    for (const DecodedEntry &entry : entries) {
        sum += static_cast<qint64>(entry.frameCount) * qMax(entry.repeat, 0);
    }
    return sum;
}

ImageReader::ImageReader(Form form)
    : form(form)
{
}

void ImageReader::feed(const QByteArray &bytes)
{
    int at = state == State::Header ? takeHeader(bytes) : 0;
    for (; at < bytes.size(); ++at) {
        take(static_cast<uchar>(bytes.at(at)));
    }
}

// How many of the bytes belong to the header.
int ImageReader::takeHeader(const QByteArray &bytes)
{
    const int before = header.size();
    header += bytes;
    HeaderParser parser(header, form);
    if (parser.parse()) {
        state = State::StartMark;
    } else if (parser.broken) {
        state = State::Failed;
    }
    if (state != State::Header) {
        header.clear();
    }
    show = parser.show;
    headerSize = parser.at;
    return parser.at - before;
}

void ImageReader::take(uchar byte)
{
    switch (state) {
    case State::Header:
        break; // ends with the bytes that were fed
    case State::StartMark:
        if (byte == dataMark) {
            state = show.entries.isEmpty() ? State::Tail : State::Frames;
        } else {
            fail(QStringLiteral("the frame data has no start marker"));
        }
        break;
    case State::Frames:
        takeFrame(byte);
        break;
    case State::Tail:
        takeTail(byte);
        break;
    case State::Ended:
    case State::Failed:
        ++show.extraBytes;
        break;
    }
}

void ImageReader::takeFrame(uchar byte)
{
    if (byte != frameEnd && byte != entryEnd) {
        if (frame == 3 * mostLeds) {
            fail(QStringLiteral("entry %1, frame %2 does not end")
                     .arg(entry + 1)
                     .arg(show.entries.at(entry).frameCount + 1));
            return;
        }
        show.entries[entry].frames.append(static_cast<char>(byte));
        ++frame;
        return;
    }
    // The marker at the end of an entry ends its last frame too, unless the entry has none.
    if (byte == frameEnd || frame > 0 || show.entries.at(entry).frameCount > 0) {
        endFrame();
    }
    if (byte == entryEnd && state == State::Frames) {
        ++entry;
        if (entry == show.entries.size()) {
            state = State::Tail;
        }
    }
}

void ImageReader::endFrame()
{
    if (!measured) {
        measured = true;
        show.leds = frame / 3;
        if ((show.leds & 0xFF) != show.ledByte) {
            show.problems
                << QStringLiteral("the header tells %1 LEDs, the frames have %2").arg(show.ledByte).arg(show.leds);
        }
    }
    if (frame != show.frameBytes()) {
        fail(QStringLiteral("entry %1, frame %2 has %3 bytes instead of %4")
                 .arg(entry + 1)
                 .arg(show.entries.at(entry).frameCount + 1)
                 .arg(frame)
                 .arg(show.frameBytes()));
        return;
    }
    ++show.entries[entry].frameCount;
    frame = 0;
}

void ImageReader::takeTail(uchar byte)
{
    const QByteArray whole = loopTail();
    tail.append(static_cast<char>(byte));
    if (!whole.startsWith(tail)) {
        show.extraBytes += tail.size();
        tail.clear();
        state = State::Ended;
    } else if (tail.size() == whole.size()) {
        show.loop = true;
        tail.clear();
        state = State::Ended;
    }
}

void ImageReader::fail(const QString &problem)
{
    show.problems << problem;
    state = State::Failed;
}

DecodedShow ImageReader::result() const
{
    DecodedShow read = show;
    if (state == State::Header) {
        read.problems << QStringLiteral("the header ends early");
    } else if (state == State::StartMark) {
        read.problems << QStringLiteral("there is no frame data");
    } else if (state == State::Frames) {
        read.problems
            << QStringLiteral("the frame data ends in entry %1 of %2").arg(entry + 1).arg(show.entries.size());
    } else if (state == State::Tail) {
        read.extraBytes += tail.size();
    }
    return read;
}

DecodedShow decodeImage(const QByteArray &header, const QByteArray &frameData)
{
    ImageReader reader(ImageReader::Form::Files);
    reader.feed(header.mid(1));
    if (reader.headerDone()) {
        reader.feed(frameData);
    }
    DecodedShow show = reader.result();
    show.slot = header.isEmpty() ? 0 : static_cast<uchar>(header.at(0));
    return show;
}

DecodedShow decodeBin(const QByteArray &file)
{
    DecodedShow show;
    const auto broken = [&show](const QString &problem) {
        show.problems << problem;
        return show;
    };
    constexpr int trackBlock = 6;
    constexpr int lengthBytes = 4;
    if (file.size() < trackBlock + lengthBytes || !file.startsWith(QByteArrayLiteral("\0\0\0\x02"))) {
        return broken(QStringLiteral("this is no .bin file"));
    }
    const auto headerSize = qFromBigEndian<quint32>(file.constData() + trackBlock);
    const qint64 chunks = static_cast<qint64>(trackBlock) + lengthBytes + headerSize;
    if (headerSize < 1 || chunks > file.size()) {
        return broken(QStringLiteral("the header goes beyond the end of the file"));
    }
    // The header without its filler byte, with the track byte back in front.
    const QByteArray header =
        file.mid(lengthBytes, 1) + file.mid(trackBlock + lengthBytes, static_cast<int>(headerSize) - 1);

    QByteArray frameData;
    bool whole = true;
    for (qint64 at = chunks; at < file.size(); at += lengthBytes + binChunkBytes) {
        const QByteArray chunk = file.mid(static_cast<int>(at), lengthBytes + binChunkBytes);
        whole = chunk.size() == lengthBytes + binChunkBytes &&
                qFromBigEndian<quint32>(chunk.constData()) == static_cast<quint32>(binChunkBytes);
        if (!whole) {
            break;
        }
        frameData.append(chunk.constData() + lengthBytes, binChunkBytes);
    }
    show = decodeImage(header, frameData);
    if (!whole) {
        show.problems << QStringLiteral("a chunk of the frame data is broken");
    }
    if (show.extraBytes >= binChunkBytes) {
        show.problems << QStringLiteral("there is more behind the end of the show");
    }
    return show;
}

} // namespace glow
