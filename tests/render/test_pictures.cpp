// From a picture file to the picture of a pattern, as values: flips, scales, gap, and files that no pattern can use.
#include "render/picturechain.h"

#include <QBuffer>
#include <QFile>
#include <QPixmap>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <random>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using glow::PictureOptions;
using glow::PictureResult;

namespace {

const QRgb red = qRgb(255, 0, 0);
const QRgb green = qRgb(0, 255, 0);
const QRgb blue = qRgb(0, 0, 255);
const QRgb white = qRgb(255, 255, 255);
const QRgb black = qRgb(0, 0, 0);

QImage painted(int width, int height, const std::function<QRgb(int, int)> &colourAt)
{
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.setPixel(x, y, colourAt(x, y));
        }
    }
    return image;
}

// Four coloured quarters: red and green above blue and white.
QImage quarters(int width, int height)
{
    return painted(width, height, [width, height](int x, int y) {
        const bool right = x >= width / 2;
        return y < height / 2 ? (right ? green : red) : (right ? white : blue);
    });
}

PictureOptions atLeds(int leds, int gap = 0, bool flipH = false, bool flipV = false)
{
    return {flipH, flipV, gap, leds};
}

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

class TestPictures : public QObject
{
    Q_OBJECT

private slots:
    void sizes();
    void reducedToLedsFirst();
    void flips();
    void gapIsBlack();
    void movedGap();
    void filesOfEachFormat_data();
    void filesOfEachFormat();
    void unusableFiles();
    void oversizedFiles();
    void longButUsable();
};

void TestPictures::sizes()
{
    const struct
    {
        QSize picture;
        int leds;
        int columns; // a part of a column counts as one
        int width;   // columns * 200 / leds, rounded
    } cases[] = {
        {{160, 80}, 80, 160, 400}, {{500, 500}, 70, 70, 200}, {{1, 1}, 36, 36, 200},  {{3, 100}, 80, 3, 8},
        {{3, 20000}, 80, 1, 3},    {{160, 80}, 0, 0, 0},      {{100, 50}, 1, 2, 400}, {{100, 100}, 999, 999, 200},
    };
    for (const auto &c : cases) {
        const PictureResult result =
            glow::renderPicture(quarters(c.picture.width(), c.picture.height()), atLeds(c.leds));
        QCOMPARE(result.columns, c.columns);
        QCOMPARE(result.image.size(), QSize(c.width, c.width > 0 ? 200 : 0));
        QVERIFY(!result.tooBig);
    }
}

void TestPictures::reducedToLedsFirst()
{
    // Rows of one pixel, black and white in turn, ten to an LED: the prop shows grey, and so does the result.
    const QImage stripes = painted(100, 400, [](int, int y) { return y % 2 == 0 ? white : black; });
    const QImage grey = glow::renderPicture(stripes, atLeds(40)).image;
    QCOMPARE(grey.size(), QSize(50, 200));
    for (int y = 5; y < 195; ++y) {
        QVERIFY(qAbs(qRed(grey.pixel(25, y)) - 128) < 12);
    }
    // Each LED becomes a block of five by five equal pixels.
    std::mt19937 random(1);
    const QImage noise = painted(40, 40, [&random](int, int) { return 0xff000000U | static_cast<QRgb>(random()); });
    QCOMPARE(glow::renderPicture(noise, atLeds(40)).image, painted(200, 200, [&noise](int x, int y) {
                                                               return noise.pixel(x / 5, y / 5);
                                                           }).convertToFormat(QImage::Format_RGB32));
    // What is transparent shows black.
    const QImage glass = painted(80, 80, [](int x, int) { return qRgba(255, 255, 255, x < 40 ? 0 : 128); });
    const QImage seen = glow::renderPicture(glass, atLeds(80)).image;
    QCOMPARE(seen.pixel(50, 100), black);
    QCOMPARE(seen.pixel(150, 100), qRgb(128, 128, 128));
}

void TestPictures::flips()
{
    const struct
    {
        bool flipH, flipV;
        QVector<QRgb> corners; // upper left, upper right, lower left, lower right
    } cases[] = {
        {false, false, {red, green, blue, white}},
        {true, false, {green, red, white, blue}},
        {false, true, {blue, white, red, green}},
        {true, true, {white, blue, green, red}},
    };
    for (const auto &c : cases) {
        const QImage image = glow::renderPicture(quarters(160, 160), atLeds(80, 0, c.flipH, c.flipV)).image;
        QCOMPARE(
            (QVector<QRgb>{image.pixel(20, 20), image.pixel(180, 20), image.pixel(20, 180), image.pixel(180, 180)}),
            c.corners);
    }
}

void TestPictures::gapIsBlack()
{
    // 81 columns are 202.5 at 200 rows; 203 * (gap + 100) / 100 is cut.
    const QImage picture = painted(81, 80, [](int, int) { return green; });
    for (const auto &[gap, width] : {qMakePair(0, 203), qMakePair(1, 205), qMakePair(33, 269), qMakePair(100, 406)}) {
        const PictureResult result = glow::renderPicture(picture, atLeds(80, gap));
        QCOMPARE(result.columns, 81);
        QCOMPARE(result.image, painted(width, 200, [](int x, int) {
                                   return x < 203 ? green : black;
                               }).convertToFormat(QImage::Format_RGB32));
    }
}

void TestPictures::movedGap()
{
    // The picture stays, whatever the gap was before.
    const QImage image = glow::renderPicture(quarters(160, 80), atLeds(80, 50)).image;
    QCOMPARE(image.width(), 600);
    QImage moved = glow::withGap(image, glow::columnsWithGap(160, 100), 80);
    QCOMPARE(moved.width(), 800);
    QCOMPARE(moved.copy(0, 0, 600, 200), image);
    QCOMPARE(moved.pixel(799, 100), black);
    moved = glow::withGap(moved, glow::columnsWithGap(160, 0), 80);
    QCOMPARE(moved, image.copy(0, 0, 400, 200));

    // Columns * 200 / leds, rounded: 202.5, 2.8, 1.25; and never nothing.
    QCOMPARE(glow::withGap(image, 81, 80).width(), 203);
    QCOMPARE(glow::withGap(image, 1, 71).width(), 3);
    QCOMPARE(glow::withGap(image, 1, 160).width(), 1);
    QCOMPARE(glow::withGap(image, 1, 999).width(), 1);
    QCOMPARE(glow::columnsWithGap(81, 33), 107);
    QVERIFY(glow::withGap(QImage(), 10, 80).isNull());
    QVERIFY(glow::withGap(image, 0, 80).isNull());
    QVERIFY(glow::withGap(image, 80, 0).isNull());
    QVERIFY(glow::withGap(image, 2000000000, 1).isNull());
}

void TestPictures::filesOfEachFormat_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<int>("imageFormat");
    QTest::addColumn<int>("tolerance");
    QTest::newRow("png") << "png" << int(QImage::Format_RGB32) << 0;
    QTest::newRow("png, indexed") << "png" << int(QImage::Format_Indexed8) << 0;
    QTest::newRow("png, 16 bit") << "png" << int(QImage::Format_RGBA64) << 0;
    QTest::newRow("bmp") << "bmp" << int(QImage::Format_RGB32) << 0;
    QTest::newRow("jpg") << "jpg" << int(QImage::Format_RGB32) << 12;
    QTest::newRow("gif") << "gif" << int(QImage::Format_Invalid) << 0;
}

void TestPictures::filesOfEachFormat()
{
    QFETCH(QString, suffix);
    QFETCH(int, imageFormat);
    QFETCH(int, tolerance);
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("圖片 1.") + suffix);
    if (suffix == QLatin1String("gif")) {
        // Qt writes none: two by two pixels, a palette of the four colours, the indices 0 to 3.
        QVERIFY(write(path, QByteArray::fromHex("474946383961"
                                                "02000200f10000"
                                                "ff000000ff000000ffffffff"
                                                "2c0000000002000200000203443405003b")));
    } else {
        QVERIFY(quarters(320, 320).convertToFormat(QImage::Format(imageFormat)).save(path, nullptr, 95));
    }
    const PictureResult result = glow::loadPicture(path, atLeds(80));
    QCOMPARE(result.columns, 80);
    for (const auto &[point, colour] : {qMakePair(QPoint(10, 10), red), qMakePair(QPoint(190, 10), green),
                                        qMakePair(QPoint(10, 190), blue), qMakePair(QPoint(190, 190), white)}) {
        const QRgb got = result.image.pixel(point);
        QVERIFY(qAbs(qRed(got) - qRed(colour)) <= tolerance && qAbs(qGreen(got) - qGreen(colour)) <= tolerance &&
                qAbs(qBlue(got) - qBlue(colour)) <= tolerance);
    }
}

void TestPictures::unusableFiles()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.png"));
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly) && quarters(64, 64).save(&buffer, "png"));
    const QByteArray whole = buffer.data();
    const auto empty = [](const PictureResult &result) {
        return result.image.isNull() && result.columns == 0 && !result.tooBig;
    };
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray("no picture at all"), whole.left(20), QByteArray(500, '\xff')}) {
        QVERIFY(write(path, bytes));
        QVERIFY(empty(glow::loadPicture(path, atLeds(80))));
    }
    QVERIFY(empty(glow::loadPicture(dir.path(), atLeds(80))));
#ifdef Q_OS_UNIX
    const QString pipe = dir.filePath(QStringLiteral("pipe.png"));
    QVERIFY(mkfifo(QFile::encodeName(pipe).constData(), 0600) == 0);
    QVERIFY(empty(glow::loadPicture(pipe, atLeds(80)))); // nobody writes: not waited for
#endif
    QVERIFY(empty(glow::loadPicture(dir.filePath(QStringLiteral("none.png")), atLeds(80))));
    // Damaged anywhere: whatever comes of it, it comes back.
    std::mt19937 random(5);
    for (int round = 0; round < 30; ++round) {
        QByteArray bytes = whole;
        for (int n = 0; n < 5; ++n) {
            bytes[static_cast<int>(random() % static_cast<unsigned>(bytes.size()))] = static_cast<char>(random());
        }
        QVERIFY(write(path, bytes));
        glow::loadPicture(path, atLeds(80));
    }
}

void TestPictures::oversizedFiles()
{
    // 20000 by 3 would be 1333333 columns wide at 200 rows.
    const PictureResult flat = glow::renderPicture(quarters(20000, 3), atLeds(80));
    QVERIFY(flat.tooBig && flat.image.isNull());
    QCOMPARE(flat.columns, 0);
    QVERIFY(glow::renderPicture(quarters(3000, 10), atLeds(999)).tooBig);

    // A header that claims 30000 by 30000 pixels is refused before anything is decoded.
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("bomb.pgm"));
    QVERIFY(write(path, "P5 30000 30000 255\n"));
    QVERIFY(glow::loadPicture(path, atLeds(80)).tooBig);
}

void TestPictures::longButUsable()
{
    // 16000 by 50 is 64000 columns at 200 rows, beyond what a painter draws; every part of it is there.
    const QImage ribbon = painted(16000, 50, [](int x, int) { return x < 8000 ? blue : green; });
    const PictureResult result = glow::renderPicture(ribbon, atLeds(80, 100));
    QCOMPARE(result.columns, 25600);
    QCOMPARE(result.image.size(), QSize(128000, 200));
    QCOMPARE(result.image.pixel(31990, 199), blue);
    QCOMPARE(result.image.pixel(32010, 0), green);
    QCOMPARE(result.image.pixel(63999, 100), green);
    QCOMPARE(result.image.pixel(64000, 100), black);
    QCOMPARE(glow::withGap(result.image, result.columns, 80), result.image.copy(0, 0, 64000, 200));
}

QTEST_MAIN(TestPictures)
#include "test_pictures.moc"
