// The device image and the ".bin" file.
#include "device/imagemodel.h"

#include "show/image/binfile.h"
#include "show/image/devicedecode.h"
#include "show/image/deviceimage.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QtTest>

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
    data.open(QIODevice::WriteOnly);
    header.open(QIODevice::WriteOnly);
    image.summary = glow::writeDeviceImage(show, data, header);
    data.close();
    header.close();
    QBuffer bin(&image.bin);
    bin.open(QIODevice::WriteOnly);
    data.open(QIODevice::ReadOnly);
    header.open(QIODevice::ReadOnly);
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
    QImage picture(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int alpha = format == QImage::Format_ARGB32_Premultiplied ? 255 - (x + y) % 120 : 255;
            picture.setPixel(x, y, qRgba((x * 37) % 256, (y * 53) % 256, (x * 11 + y * 7) % 256, alpha));
        }
    }
    return picture.convertToFormat(format);
}

DeviceShow tinyShow(const QVector<ShowPattern> &patterns = {})
{
    DeviceShow show;
    show.ledCount = 2;
    show.frameRate = 10.0F;
    show.ledsShown = 2;
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
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false")); }
    void entries();
    void brightness();
    void headerFields();
    void foreignValues();
    void driftBeyondPrecision();
    void scaledLikeQt();
    void tooMuchData();
    void devicesAndProgress();
    void randomShows();
    void damagedImages();
};

// A track written as kind (c or p), start-end and x with the repeats; entries as repeats:frames.
void TestImage::entries()
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
    };
    for (const auto &row : rows) {
        DeviceShow show = tinyShow();
        show.ledCount = row.leds;
        show.frameRate = float(row.rate);
        show.startMarkMs = row.mark;
        for (const QString &word : QString::fromLatin1(row.track).split(u' ')) {
            const QStringList parts = word.mid(1).split(QRegularExpression(QStringLiteral("[-x]")));
            const int start = parts.at(0).toInt();
            const int end = parts.at(1).toInt();
            show.patterns << (word.startsWith(u'c')
                                  ? colourAt(start, end)
                                  : pictureAt(start, end, parts.value(2, "1").toInt(), gradient(9, 85)));
        }
        QString found = QString::fromLatin1(row.name) + u':';
        for (const glow::DecodedEntry &entry : imageOf(show).decoded().entries) {
            found += QStringLiteral(" %1:%2").arg(entry.repeat).arg(entry.frameCount);
        }
        QCOMPARE(found, QStringLiteral("%1: %2").arg(row.name, row.expected));
    }
}

void TestImage::brightness()
{
    QImage picture(1, 1, QImage::Format_RGB32);
    picture.fill(qRgb(255, 100, 28));
    DeviceShow show = tinyShow({colourAt(0, 480, qRgb(255, 100, 27)), pictureAt(480, 1480, 1, picture)});
    // 255*255/750 = 86, 100*100/750 = 13, 27*27/750 = 0, 28*28/750 = 1
    QVERIFY(imageOf(show).data.startsWith(QByteArray::fromHex("FF560D00560D00FE")));
    QVERIFY(imageOf(show).data.endsWith(QByteArray::fromHex("FE560D01560D01FF")));
    show.ledCount = 70; // the field decides, not the number of LEDs
    QVERIFY(imageOf(show).data.startsWith(QByteArray::fromHex("FF560D00")));
    show.ledCount = 2;
    show.ledsShown = 70; // divisor 265: 245, 37, 2, 2
    QVERIFY(imageOf(show).data.startsWith(QByteArray::fromHex("FFF52502F52502FE")));
    QVERIFY(imageOf(show).data.endsWith(QByteArray::fromHex("FEF52502F52502FF")));
}

void TestImage::headerFields()
{
    DeviceShow show = tinyShow();
    show.ledCount = 300; // 0x12C
    show.slot = 8;
    show.rateShown = 2100;
    for (int i = 0; i < 256; ++i) {
        show.patterns << colourAt(i * 250, i * 250 + 250);
    }
    const Image image = imageOf(show);
    QCOMPARE(image.header.left(14), QByteArray::fromHex("08FFFE2C00 00000004 32313030 FF")); // 256 entries count as 0
    QCOMPARE(image.data, modelOf(show).data);
    QCOMPARE(image.decoded().entries.size(), 256);
    QCOMPARE(image.decoded().leds, 300);
    show.patterns << colourAt(256 * 250 + 300, 256 * 250 + 600); // a blank entry and one more
    QCOMPARE(imageOf(show).header.at(4), '\2');
}

void TestImage::foreignValues()
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
}

void TestImage::driftBeyondPrecision()
{
    // Colours of nearly a day at 9999 columns a second that round half a frame per block add up to more frames of drift
    // than single precision counts one by one; the picture behind them must still come to an end.
    DeviceShow show = tinyShow();
    show.ledCount = 0; // the counts matter here, not the bytes
    show.frameRate = 9999.0F;
    for (int i = 0; i < 3000; ++i) {
        show.patterns << colourAt(86399999, 239) << colourAt(0, 239); // ends before it starts, then nothing stored
    }
    show.patterns << pictureAt(239, 500, 1, QImage());
    QElapsedTimer clock;
    clock.start();
    QVERIFY(glow::planImage(show).size() > 6000);
    QVERIFY2(clock.elapsed() < 30000, "the correction should give up where it has no effect");
}

void TestImage::scaledLikeQt()
{
    const QPair<QSize, QSize> sizes[] = {
        {{170, 85}, {3150, 80}},  {{1000, 85}, {333, 36}}, {{170, 85}, {32767, 3}}, // the widest that Qt scales
        {{40, 36}, {40, 36}},     {{40, 85}, {40, 120}},   {{3, 85}, {3 * 511, 36}},
        {{3, 85}, {3 * 512, 36}}, // where Qt takes another road
        {{7, 85}, {4901, 36}},    {{20, 1}, {33, 600}},    {{1, 1}, {1000, 999}}};
    for (const auto &size : sizes) {
        for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied, QImage::Format_ARGB32,
                                  QImage::Format_Grayscale8}) {
            const QImage picture = gradient(size.first.width(), size.first.height(), format);
            DeviceShow show = tinyShow({pictureAt(0, size.second.width(), 1, picture)});
            show.ledCount = size.second.height();
            show.frameRate = 1000.0F;
            const Image image = imageOf(show);
            QCOMPARE(image.decoded().entries.at(0).frameCount, size.second.width());
            QCOMPARE(image.data, modelOf(show).data);
        }
    }
}

void TestImage::tooMuchData()
{
    // More columns than Qt scales in one go: 40 s at 1000 columns a second are 200 for each of the picture's.
    DeviceShow show = tinyShow({pictureAt(0, 40000, 1, gradient(200, 2))});
    show.frameRate = 1000.0F;
    const glow::DecodedEntry wide = imageOf(show).decoded().entries.at(0);
    show.patterns[0].endMs = 200;
    const QByteArray source = imageOf(show).decoded().entries.at(0).frames;
    QCOMPARE(wide.frameCount, 40000);
    for (int x = 0; x < wide.frameCount; ++x) {
        QCOMPARE(wide.frames.mid(x * 6, 6), source.mid(x / 200 * 6, 6));
    }

    // A day at 2100 columns a second in one copy would be 44 gigabytes.
    show.ledCount = 80;
    show.frameRate = 2100.0F;
    show.patterns = {pictureAt(0, 86399999, 1, gradient(10, 85)), colourAt(86399999, 86399999 + 480)};
    const Image image = imageOf(show);
    QVERIFY(image.summary.cut);
    QVERIFY(image.data.startsWith(QByteArray::fromHex("FFFF56")));
    QCOMPARE(image.decoded().problems, QStringList());
    show.patterns[0].endMs = 1000; // 2100 frames of 241 bytes, and no room for the colour behind them
    show.maxFrameBytes = 2100 * 241;
    QCOMPARE(imageOf(show).decoded().entries.at(0).frameCount, 2100);
    QVERIFY(imageOf(show).summary.cut);
    --show.maxFrameBytes;
    QVERIFY(imageOf(show).decoded().entries.at(0).frames.isEmpty());
    QVERIFY(!imageOf(show).decoded().entries.last().frames.isEmpty());
}

void TestImage::devicesAndProgress()
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
    data.setData(QByteArray(1000, 'x'));
    data.open(QIODevice::ReadOnly);
    glow::writeBin(header, data, bin, note);
    QCOMPARE(steps, QVector<int>({0, 256 * 99 / 1000, 512 * 99 / 1000, 768 * 99 / 1000}));
}

void TestImage::randomShows()
{
    QRandomGenerator random(20260101);
    const auto upTo = [&random](int limit) { return static_cast<int>(random.bounded(limit + 1)); };
    const QVector<QImage::Format> formats = {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied,
                                             QImage::Format_ARGB32, QImage::Format_Indexed8};
    for (int round = 0; round < 300; ++round) {
        DeviceShow show;
        show.ledCount = 1 + upTo(round % 10 == 0 ? 119 : 40);
        show.ledsShown = round % 5 == 0 ? 70 : show.ledCount;
        show.frameRate = static_cast<float>(10 + upTo(390));
        show.rateShown = static_cast<int>(show.frameRate);
        show.slot = 1 + upTo(7);
        show.loop = upTo(1) == 1;
        show.startMarkMs = upTo(1) * upTo(3000);
        int at = upTo(2000);
        for (int i = upTo(11); i >= 0; --i) {
            const int end = at + 1 + upTo(4000);
            if (upTo(2) == 0) {
                show.patterns << colourAt(at, end, qRgb(upTo(255), upTo(255), upTo(255)));
            } else {
                show.patterns << pictureAt(at, end, 1 + upTo(upTo(60)),
                                           gradient(1 + upTo(200), 85, formats.at(upTo(formats.size() - 1))));
            }
            at = end + upTo(1) * upTo(1000);
        }
        const Image image = imageOf(show);
        const ImageModel model = modelOf(show);
        QVERIFY2(image.header == model.header && image.data == model.data, qPrintable(QString::number(round)));
        QCOMPARE(image.bin, binOf(model));
        for (const glow::DecodedShow &read : {image.decoded(), glow::decodeBin(image.bin)}) {
            QCOMPARE(read.problems, QStringList());
            QCOMPARE(read.slot, show.slot);
            QCOMPARE(read.rate, show.rateShown);
            QCOMPARE(read.loop, show.loop);
            QCOMPARE(read.entries.size(), model.entries.size());
            for (int i = 0; i < model.entries.size(); ++i) {
                QCOMPARE(read.entries.at(i).repeat, model.entries.at(i).first);
                QCOMPARE(read.entries.at(i).frameCount, model.entries.at(i).second.size());
                QCOMPARE(read.entries.at(i).frames, model.entries.at(i).second.join());
            }
        }
    }
}

void TestImage::damagedImages()
{
    DeviceShow show = tinyShow({colourAt(1000, 1480), pictureAt(1580, 2380, 1, gradient(9, 85))});
    show.loop = true;
    const Image image = imageOf(show);
    const auto faults = [](const QByteArray &header, const QByteArray &data) {
        return glow::decodeImage(header, data).problems.size();
    };
    // Every cut is noticed, but for the loop tail, without which the show is whole, too.
    const int whole = image.data.size() - 11;
    for (int size = 0; size < whole; ++size) {
        QVERIFY(faults(image.header, image.data.left(size)) > 0);
    }
    QCOMPARE(faults(image.header, image.data.left(whole)), 0);
    for (int size = 0; size < image.header.size(); ++size) {
        QVERIFY(faults(image.header.left(size), image.data) > 0);
    }
    QCOMPARE(glow::decodeImage(image.header, image.data + "xyz").extraBytes, 3);
    QVERIFY(faults(image.header, QByteArray(image.data).remove(5, 1)) > 0);
    QVERIFY(faults(QByteArray(image.header).replace(4, 1, "\t"), image.data) > 0);

    QRandomGenerator random(7); // random damage is survived
    for (int round = 0; round < 2000; ++round) {
        QByteArray bin = image.bin;
        for (int i = static_cast<int>(random.bounded(6)); i >= 0; --i) {
            bin[static_cast<int>(random.bounded(bin.size()))] = static_cast<char>(random.bounded(256));
        }
        bin.truncate(static_cast<int>(random.bounded(bin.size() + 1)));
        glow::decodeBin(bin);
    }
}

QTEST_GUILESS_MAIN(TestImage)
#include "test_image.moc"
