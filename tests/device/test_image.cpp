// The device image and the ".bin" file.
#include "show/image/binfile.h"
#include "show/image/devicedecode.h"
#include "show/image/deviceimage.h"
#include "show/image/showpicture.h"
#include "support/pixels.h"

#include <QBuffer>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QtTest>

#include <numeric>

using glow::DeviceShow;
using glow::ShowPattern;

namespace {

struct Image
{
    QByteArray data;
    QByteArray header;
    QByteArray bin;
    glow::ImageSummary summary;

    glow::DecodedShow decoded() const { return glow::decodeImage(header, data); }
};

Image imageOf(const DeviceShow &show)
{
    Image image;
    QBuffer data(&image.data);
    QBuffer header(&image.header);
    QBuffer bin(&image.bin);
    for (QBuffer *buffer : {&data, &header, &bin}) {
        buffer->open(QIODevice::ReadWrite);
    }
    image.summary = glow::writeDeviceImage(show, data, header);
    data.seek(0);
    header.seek(0);
    glow::writeBin(header, data, bin);
    return image;
}

ShowPattern pictureAt(int start, int end, int repeat, const QImage &picture)
{
    return {start, end, false, 0, picture, repeat};
}

ShowPattern colourAt(int start, int end, QRgb colour = qRgb(255, 0, 0))
{
    return {start, end, true, colour, QImage(), 1};
}

// Every pixel differs from its neighbours in both directions, so a column or row taken from the wrong place shows.
QImage gradient(int width, int height, QImage::Format format = QImage::Format_RGB32)
{
    const int clear = format == QImage::Format_ARGB32_Premultiplied ? 120 : 1;
    const auto colourAt = [clear](int x, int y) {
        return qRgba((x * 37) % 256, (y * 53) % 256, (x * 11 + y * 7) % 256, 255 - (x + y) % clear);
    };
    return painted(width, height, colourAt, QImage::Format_ARGB32).convertToFormat(format);
}

// What the prop is to get of a picture: Qt's own fast scaling, a column a frame from the bottom up, squared.
QByteArray columnsOf(const ShowPattern &pattern, int frames, const DeviceShow &show)
{
    const QImage scaled = pattern.picture.scaled(frames, show.ledCount, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    QByteArray bytes;
    for (int x = 0; x < frames; ++x) {
        for (int y = show.ledCount - 1; y >= 0; --y) {
            const QRgb colour = scaled.pixelColor(x, y).rgb();
            for (const int c : {qRed(colour), qGreen(colour), qBlue(colour)}) {
                bytes += static_cast<char>(c * c / (show.ledsShown == 70 ? 265 : 750));
            }
        }
    }
    return bytes;
}

DeviceShow tinyShow(const QVector<ShowPattern> &patterns = {})
{
    DeviceShow show;
    show.ledCount = show.ledsShown = 2;
    show.frameRate = 10.0F;
    show.rateShown = 10;
    show.loop = false;
    show.patterns = patterns;
    return show;
}

} // namespace

class TestImage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules("default.debug=false"); }

    // A track written as kind (c or p), start-end, x with the repeats and @ with the picture's size; entries as
    // repeats:frames. The pictures must be those that Qt scales.
    void entries()
    {
        const struct
        {
            const char *name;
            int leds;
            int rate;
            int mark;
            const char *track;
            const char *expected;
        } rows[] = {
            {"240 ms before are lost", 2, 1000, 0, "c240-720", "2:240"},
            {"241 are not", 2, 1000, 0, "c241-721", "1:241 2:240"},
            {"479 are one block", 2, 1000, 0, "c479-959", "1:479 2:240"},
            {"480 are two", 2, 1000, 0, "c480-960", "2:240 2:240"},
            {"240 ms from the mark", 2, 1000, 760, "c1000-1480", "2:240"},
            {"241 ms from the mark", 2, 1000, 759, "c1000-1480", "1:241 2:240"},
            {"before the mark", 2, 1000, 5000, "c1000-1480", "2:240"},
            // 20 frames of the short colour are paid back by the picture; of the gaps only that of 250 ms stays.
            {"gaps and a short colour", 2, 100, 0, "c0-200 p440-1440 c1690-2170", "0:0 1:120 1:25 2:24"},
            {"ends before it starts", 2, 100, 0, "c1000-520", "4:25 -2:24"},
            {"colours pay nothing back", 2, 100, 0, "c0-199 c199-398 c398-638", "0:0 0:0 1:24"},
            {"23.9 frames of 40 stay owed", 2, 100, 0, "c0-239 p239-4239x40", "0:0 40:10"},
            {"23.9 of 39 are paid", 2, 100, 0, "c0-239 p239-4139x39", "0:0 39:11"},
            {"20 of 40 too many stay, 40 do not", 2, 100, 0, "p0-3800x40 p3800-7600x40", "40:10 40:9"},
            // 0.01 frames are raised to 1, and the 0.99 too many taken back at once.
            {"corrected to nothing", 2, 10, 0, "p0-1 c1-481", "1:0 2:2"},
            {"narrow: nothing divides 1", 36, 10, 0, "p0-300x1", "1:3"},
            {"narrow: one prime only", 36, 10, 0, "p0-4200x14", "7:6"},
            {"narrow: 13 is tried", 36, 10, 0, "p0-3900x13", "1:39"},
            {"narrow: 17 is 9, then 3 divides", 36, 10, 0, "p0-5100x17", "3:18"},
            {"narrow: 17 is 9, wide enough", 36, 10, 0, "p0-68000x17", "9:80"},
            {"narrow: 101 is 51, then 3 divides", 120, 10, 0, "p0-10100x101", "17:6"},
            {"71 is below 72", 36, 10, 0, "p0-42600x6", "3:142"},
            {"72 is wide enough", 36, 10, 0, "p0-43200x6", "6:72"},
            {"wider and lower", 80, 1000, 0, "p0-3150@170/85", "1:3150"},
            {"the widest that Qt scales", 3, 1000, 0, "p0-32767@170/85", "1:32767"},
            {"narrower", 36, 1000, 0, "p0-333@1000/85", "1:333"},
            {"higher", 120, 1000, 0, "p0-40@40/85", "1:40"},
            {"511 times as wide", 36, 1000, 0, "p0-1533@3/85", "1:1533"},
            {"512 times, where Qt takes another road", 36, 1000, 0, "p0-1536@3/85", "1:1536"},
            {"600 times as high", 600, 1000, 0, "p0-33@20/1", "1:33"},
        };
        int slot = 0;
        for (const auto &row : rows) {
            for (const auto format :
                 {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied, QImage::Format_Grayscale8}) {
                DeviceShow show = tinyShow();
                show.ledCount = row.leds;
                show.frameRate = float(row.rate);
                show.startMarkMs = row.mark;
                show.slot = 1 + slot++ % 8;
                show.loop = format == QImage::Format_RGB32;
                for (const QString &word : QString(row.track).split(' ')) {
                    const QRegularExpression form("(\\d+)-(\\d+)(?:x(\\d+))?(?:@(\\d+)/(\\d+))?");
                    const auto part = [found = form.match(word)](int i, int otherwise) {
                        return found.captured(i).isEmpty() ? otherwise : found.captured(i).toInt();
                    };
                    show.patterns << (word.startsWith('c') ? colourAt(part(1, 0), part(2, 0))
                                                           : pictureAt(part(1, 0), part(2, 0), part(3, 1),
                                                                       gradient(part(4, 9), part(5, 85), format)));
                }
                const Image image = imageOf(show);
                for (const glow::DecodedShow &read : {image.decoded(), glow::decodeBin(image.bin)}) {
                    QString found;
                    for (int i = 0; i < read.entries.size(); ++i) {
                        const glow::DecodedEntry &entry = read.entries.at(i);
                        const glow::ImageEntry &plan = image.summary.entries.at(i);
                        found += QString("%1:%2 ").arg(entry.repeat).arg(entry.frameCount);
                        QVERIFY2(
                            plan.kind != glow::ImageEntry::Picture ||
                                entry.frames ==
                                    columnsOf(show.patterns.at(plan.pattern), plan.frames, show).repeated(plan.copies),
                            row.name);
                    }
                    QCOMPARE(row.name + found, row.name + QString(row.expected) + ' ');
                    QCOMPARE(read.problems, QStringList());
                    QVERIFY(read.slot == show.slot && read.rate == show.rateShown && read.loop == show.loop);
                }
            }
        }
        // More columns than Qt scales in one go: 40 s at 1000 columns a second are 200 for each of the picture's.
        DeviceShow show = tinyShow({pictureAt(0, 40000, 1, gradient(200, 2))});
        show.frameRate = 1000.0F;
        const QByteArray wide = imageOf(show).decoded().entries.at(0).frames;
        const QByteArray source = columnsOf(show.patterns.at(0), 200, show);
        QCOMPARE(wide.size(), 40000 * 6);
        for (int x = 0; x < 40000; ++x) {
            QCOMPARE(wide.mid(x * 6, 6), source.mid(x / 200 * 6, 6));
        }
    }

    void bytes()
    {
        DeviceShow show = tinyShow({colourAt(0, 480, qRgb(255, 100, 27)), pictureAt(480, 1480, 1, gradient(1, 1))});
        show.patterns[1].picture.fill(qRgb(255, 100, 28));
        // 255*255/750 = 86, 100*100/750 = 13, 27*27/750 = 0, 28*28/750 = 1
        QVERIFY(imageOf(show).data.startsWith(QByteArray::fromHex("FF560D00560D00FE")));
        QVERIFY(imageOf(show).data.endsWith(QByteArray::fromHex("FE560D01560D01FF")));
        show.ledsShown = 71;
        QVERIFY(imageOf(show).data.startsWith(QByteArray::fromHex("FF560D00")));
        show.ledsShown = 70; // the field decides; divisor 265: 245, 37, 2, 2
        QVERIFY(imageOf(show).data.startsWith(QByteArray::fromHex("FFF52502F52502FE")));
        QVERIFY(imageOf(show).data.endsWith(QByteArray::fromHex("FEF52502F52502FF")));

        show = tinyShow({pictureAt(0, 1000, 1, painted(1, 2, [](int, int y) { return y == 0 ? green : blue; }))});
        const QImage drawn = glow::drawShow(imageOf(show).decoded()); // four pixels a LED
        QVERIFY(qGreen(drawn.pixel(240, 1)) > 250 && qBlue(drawn.pixel(240, 6)) > 250);

        show = tinyShow();
        show.ledCount = 300; // 0x12C
        show.slot = 8;
        show.rateShown = 2100;
        for (int i = 0; i < 256; ++i) {
            show.patterns << colourAt(i * 250, i * 250 + 250);
        }
        const Image image = imageOf(show); // 256 entries count as 0
        QCOMPARE(image.header.left(14), QByteArray::fromHex("08FFFE2C00 00000004 32313030 FF"));
        QCOMPARE(image.decoded().problems, QStringList());
        QCOMPARE(image.decoded().leds, 300);
        show.patterns << colourAt(256 * 250 + 300, 256 * 250 + 600); // a blank entry and one more
        QCOMPARE(imageOf(show).header.at(4), '\2');
    }

    void foreignValues()
    {
        DeviceShow show = tinyShow({pictureAt(0, 1000, 1, gradient(3, 3))});
        const QByteArray once = imageOf(show).data;
        for (const int repeat : {0, -1, std::numeric_limits<int>::min()}) {
            show.patterns[0].repeatCount = repeat;
            QCOMPARE(imageOf(show).data, once);
        }
        show.patterns[0].repeatCount = std::numeric_limits<int>::max();
        QCOMPARE(imageOf(show).decoded().problems, QStringList());
        show.patterns[0] = pictureAt(0, 1000, 1, QImage());
        QCOMPARE(imageOf(show).data, '\xFF' + QByteArray("\0\0\0\0\0\0\xFE", 7).repeated(10).chopped(1) + '\xFF');
        show.ledCount = 0;
        QCOMPARE(imageOf(show).data, QByteArray(1, '\xFF') + QByteArray(9, '\xFE') + '\xFF');
        show.ledCount = -5;
        show.frameRate = 0.0F;
        QCOMPARE(imageOf(show).data, QByteArray(2, '\xFF'));
        QCOMPARE(imageOf(tinyShow()).data, QByteArray(1, '\xFF'));

        // Colours of nearly a day at 9999 columns a second that round half a frame per block add up to more frames of
        // drift than single precision counts one by one; the picture behind them must still come to an end.
        show.frameRate = 9999.0F;
        show.patterns.clear();
        for (int i = 0; i < 3000; ++i) {
            show.patterns << colourAt(86399999, 239) << colourAt(0, 239); // ends before it starts, then nothing stored
        }
        show.patterns << pictureAt(239, 500, 1, QImage());
        QVERIFY(glow::planImage(show).size() > 6000);
    }

    void tooMuchData()
    {
        // A day at 2100 columns a second in one copy would be 44 gigabytes.
        DeviceShow show = tinyShow({pictureAt(0, 86399999, 1, gradient(10, 85)), colourAt(86399999, 86399999 + 480)});
        show.ledCount = 80;
        show.frameRate = 2100.0F;
        const Image image = imageOf(show);
        QVERIFY(image.summary.cut && image.data.startsWith(QByteArray::fromHex("FFFF56")));
        QCOMPARE(image.decoded().problems, QStringList());
        show.patterns[0].endMs = 1000; // 2100 frames of 241 bytes, and no room for the colour behind them
        for (const int missing : {0, 1}) {
            show.maxFrameBytes = 2100 * 241 - missing;
            const Image full = imageOf(show);
            QVERIFY(full.summary.cut);
            QCOMPARE(full.decoded().entries.at(0).frameCount, missing == 0 ? 2100 : 0);
            QCOMPARE(full.decoded().entries.last().frames.isEmpty(), missing == 0);
        }
    }

    void devicesAndProgress()
    {
        const DeviceShow show = tinyShow({colourAt(0, 480), colourAt(1000, 1480), colourAt(2000, 2480)});
        QBuffer data;
        QBuffer header;
        QBuffer bin;
        QVector<int> steps;
        const auto note = [&steps](int percent) { steps << percent; };
        glow::writeDeviceImage(show, data, header, note);
        QCOMPARE(steps, QVector<int>({0, 0, 33, 66, 0}));
        QVERIFY(data.data().isEmpty() && header.data().isEmpty()); // never opened
        bin.open(QIODevice::WriteOnly);
        glow::writeBin(header, data, bin);
        QCOMPARE(bin.data(), QByteArray::fromHex("00000001 00 00000000")); // empty texts, no chunk

        steps.clear();
        QByteArray bytes(1000, 'x');
        std::iota(bytes.begin(), bytes.end(), '\0');
        data.setData(bytes);
        data.open(QIODevice::ReadOnly);
        glow::writeBin(header, data, bin, note);
        QCOMPARE(steps, QVector<int>({0, 256 * 99 / 1000, 512 * 99 / 1000, 768 * 99 / 1000}));
        // The last chunk ends in what stood there before.
        QVERIFY(bin.data().endsWith(QByteArray::fromHex("00000100") + bytes.mid(768) + bytes.mid(744, 24)));
    }

    void damagedImages()
    {
        DeviceShow show = tinyShow({colourAt(1000, 1480), pictureAt(1580, 2380, 1, gradient(9, 85))});
        show.loop = true;
        const Image image = imageOf(show);
        const auto sound = [](const QByteArray &header, const QByteArray &data) {
            return glow::decodeImage(header, data).problems.isEmpty();
        };
        // Every cut is noticed, but for the loop tail, without which the show is whole, too.
        const int whole = image.data.size() - 11;
        for (int size = 0; size < whole; ++size) {
            QVERIFY(!sound(image.header, image.data.left(size)));
        }
        QVERIFY(sound(image.header, image.data.left(whole)));
        for (int size = 0; size < image.header.size(); ++size) {
            QVERIFY(!sound(image.header.left(size), image.data));
        }
        QCOMPARE(glow::decodeImage(image.header, image.data + "xyz").extraBytes, 3);
        QVERIFY(!sound(image.header, QByteArray(image.data).remove(5, 1)));
        QVERIFY(!sound(QByteArray(image.header).replace(4, 1, "\t"), image.data));
    }
};

QTEST_MAIN(TestImage)
#include "test_image.moc"
