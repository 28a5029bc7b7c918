#include "show/model/patternrecord.h"

#include "show/model/repeatrules.h"

#include <QDataStream>
#include <QImageReader>

namespace glow {

namespace {

// No pattern's thumbnail comes near this: 85 rows of 600000 columns. A header that claims more is damaged.
constexpr qint64 largestThumbnail = 51000000;

QPixmap readThumbnail(QDataStream &stream)
{
    qint32 marker = 0;
    stream >> marker;
    if (marker == 0 || stream.status() != QDataStream::Ok) {
        return {};
    }
    // The stream's own operator decodes whatever size a header claims; looking at the size first keeps the decoder from
    // asking for memory that no pattern needs.
    QIODevice *device = stream.device();
    const qint64 start = device->pos();
    {
        QImageReader probe(device, "png");
        const QSize size = probe.size();
        if (qint64(size.width()) * size.height() > largestThumbnail) {
            stream.setStatus(QDataStream::ReadCorruptData);
            return {};
        }
    }
    device->seek(start);
    QImageReader reader(device, "png");
    const QImage image = reader.read();
    if (image.isNull()) {
        stream.setStatus(QDataStream::ReadPastEnd);
        return {};
    }
    return QPixmap::fromImage(image);
}

// The colour's 11 bytes begin with a number that Qt takes as a colour model unseen. A number that is none makes the
// colour invalid.
QColor readColour(QDataStream &stream)
{
    char model = 0;
    if (stream.device()->peek(&model, 1) == 1 && static_cast<uchar>(model) > QColor::ExtendedRgb) {
        stream.skipRawData(11);
        return {};
    }
    QColor colour;
    stream >> colour;
    return colour;
}

} // namespace

int durationMs(const PatternRecord &record)
{
    // Untrusted bytes can hold times whose difference is beyond an int.
    return static_cast<int>(static_cast<uint>(msOf(record.endTime)) - static_cast<uint>(msOf(record.startTime)));
}

void retime(PatternRecord &record, const QTime &start, const QTime &end, int leds, float rate)
{
    record.startTime = start;
    record.endTime = end;
    if (record.speedValue != 0) {
        record.repeatCount =
            placedRepeat(durationMs(record), record.speedValue, columnsAtHeight(record.thumbnail, leds), rate);
    }
}

Span spanOf(const PatternRecord &record)
{
    return {msOf(record.startTime), msOf(record.endTime)};
}

void applySpan(PatternRecord &record, Span place, int leds, float rate)
{
    const auto bound = [](const QTime &present, int ms) {
        return msOf(present) == ms ? present : QTime::fromMSecsSinceStartOfDay(ms);
    };
    retime(record, bound(record.startTime, place.start), bound(record.endTime, place.end), leds, rate);
}

PatternRecord readPattern(const QByteArray &blob)
{
    PatternRecord record;
    QDataStream stream(blob);
    record.thumbnail = readThumbnail(stream);
    stream >> record.startTime >> record.endTime;
    record.solidColor = readColour(stream);
    stream >> record.repeatCount >> record.patternKind >> record.speedValue >> record.settingsText;
    return record;
}

int overwritePattern(QByteArray &blob, const PatternRecord &record, int keptThumbnail)
{
    QDataStream stream(&blob, QIODevice::WriteOnly);
    if (keptThumbnail > 0) {
        stream.device()->seek(keptThumbnail);
    } else {
        stream << record.thumbnail;
    }
    const auto thumbnailEnd = static_cast<int>(stream.device()->pos());
    stream << record.startTime << record.endTime << record.solidColor << record.repeatCount << record.patternKind
           << record.speedValue << record.settingsText;
    return thumbnailEnd;
}

bool sameBlob(const QByteArray &a, const QByteArray &b)
{
    return a.constData() == b.constData() ? a.size() == b.size() : a == b;
}

QByteArray writePattern(const PatternRecord &record)
{
    QByteArray blob;
    overwritePattern(blob, record);
    return blob;
}

} // namespace glow
