#include "show/image/devicedecode.h"

#include "show/image/binfile.h"
#include "show/image/deviceimage.h"

#include <QtEndian>

namespace glow {

namespace {

constexpr uchar frameEnd = 0xFE;
constexpr uchar entryEnd = 0xFF;

// No prop is near this; bytes that go on without a marker are no frame.
constexpr int mostLeds = 4000;

// Behind the list of entries, and behind the 0xFE of a loop tail.
QByteArray trailer()
{
    return QByteArrayLiteral("\0\0\0\x06"
                             "00000\0");
}

// A count in digits; that of a pattern that ends before it starts has a sign.
bool readNumber(const QByteArray &digits, int &value)
{
    bool ok = false;
    value = digits.toInt(&ok);
    return ok;
}

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
    for (const char byte : bytes) {
        take(static_cast<uchar>(byte));
    }
}

void ImageReader::take(uchar byte)
{
    const int cut = form == Form::Wire ? 2 : 0;
    headerSize += state < State::StartMarker ? 1 : 0;
    switch (state) {
    case State::Marks:
    case State::Counts:
    case State::RateEnd:
        piece.append(static_cast<char>(byte));
        takeCounts();
        break;
    case State::Rate:
        takeRate(byte);
        break;
    case State::List:
        takeList(byte);
        break;
    case State::HeaderTail:
        piece.append(static_cast<char>(byte));
        if (!trailer().startsWith(piece)) {
            fail(QStringLiteral("the header does not end as it should"));
        } else if (piece.size() == trailer().size() - cut) {
            piece.clear();
            state = State::StartMarker;
        }
        break;
    case State::StartMarker:
        if (byte == entryEnd) {
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

// The fields of fixed length before and behind the frame rate.
void ImageReader::takeCounts()
{
    if (state == State::Marks && piece.size() == 2) {
        if (piece != QByteArrayLiteral("\xFF\xFE")) {
            fail(QStringLiteral("the header does not start with its two markers"));
            return;
        }
        piece.clear();
        state = State::Counts;
    } else if (state == State::Counts && piece.size() == 6) {
        show.ledByte = static_cast<uchar>(piece.at(0));
        show.leds = show.ledByte;
        show.entryByte = static_cast<uchar>(piece.at(1));
        const auto length = qFromBigEndian<quint32>(piece.constData() + 2);
        piece.clear();
        if (length < 1 || length > 9) {
            fail(QStringLiteral("the frame rate has %1 digits").arg(length));
            return;
        }
        rateLength = static_cast<int>(length);
        state = State::Rate;
    } else if (state == State::RateEnd) {
        if (piece != QByteArrayLiteral("\xFF")) {
            fail(QStringLiteral("no marker behind the frame rate"));
            return;
        }
        piece.clear();
        state = State::List;
    }
}

void ImageReader::takeRate(uchar byte)
{
    piece.append(static_cast<char>(byte));
    if (piece.size() < rateLength) {
        return;
    }
    if (!readNumber(piece, show.rate)) {
        fail(QStringLiteral("the frame rate is no number"));
        return;
    }
    piece.clear();
    state = State::RateEnd;
}

void ImageReader::takeList(uchar byte)
{
    if (byte == 0 && piece.isEmpty()) {
        piece.append('\0');
        state = State::HeaderTail;
        if ((show.entries.size() & 0xFF) != show.entryByte) {
            show.problems << QStringLiteral("the header counts %1 entries and lists %2")
                                 .arg(show.entryByte)
                                 .arg(show.entries.size());
        }
    } else if (byte == entryEnd) {
        DecodedEntry next;
        if (!readNumber(piece, next.repeat)) {
            fail(QStringLiteral("a repeat count is no number"));
            return;
        }
        show.entries.append(next);
        piece.clear();
    } else if (piece.size() < 11) {
        piece.append(static_cast<char>(byte));
    } else {
        fail(QStringLiteral("a repeat count does not end"));
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
    const QByteArray tail = QByteArrayLiteral("\xFE") + trailer();
    piece.append(static_cast<char>(byte));
    if (!tail.startsWith(piece)) {
        show.extraBytes += piece.size();
        piece.clear();
        state = State::Ended;
    } else if (piece.size() == tail.size()) {
        show.loop = true;
        piece.clear();
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
    if (state < State::StartMarker) {
        read.problems << QStringLiteral("the header ends early");
    } else if (state == State::StartMarker) {
        read.problems << QStringLiteral("there is no frame data");
    } else if (state == State::Frames) {
        read.problems
            << QStringLiteral("the frame data ends in entry %1 of %2").arg(entry + 1).arg(show.entries.size());
    } else if (state == State::Tail) {
        read.extraBytes += piece.size();
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
