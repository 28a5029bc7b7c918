// From a picture file to the picture of a pattern, as values: flips, scales, gap, and files that no pattern can use.
#include "render/picturechain.h"

#include <QBuffer>
#include <QFile>
#include <QPainter>
#include <QPixmap>
#include <QTemporaryDir>
#include <QtTest>

#include <random>

using glow::PictureOptions;
using glow::PictureResult;

namespace {

const QRgb red = qRgb(255, 0, 0);
const QRgb green = qRgb(0, 255, 0);
const QRgb blue = qRgb(0, 0, 255);
const QRgb white = qRgb(255, 255, 255);
const QRgb black = qRgb(0, 0, 0);

// Four coloured quarters: red and green above blue and white.
QImage quarters(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool right = x >= width / 2;
            image.setPixel(x, y, y < height / 2 ? (right ? green : red) : (right ? white : blue));
        }
    }
    return image;
}

PictureOptions atLeds(int leds, int gap = 0)
{
    PictureOptions options;
    options.leds = leds;
    options.gap = gap;
    return options;
}

} // namespace

class TestPictures : public QObject
{
    Q_OBJECT

private slots:
    void sizes_data();
    void sizes();
    void reducedToLedsFirst();
    void flips_data();
    void flips();
    void gapIsBlack_data();
    void gapIsBlack();
    void movedGapEqualsPixmapArithmetic();
    void movedGapKeepsThePicture();
    void transparentShowsBlack();
    void filesOfEachFormat_data();
    void filesOfEachFormat();
    void unusableFiles();
    void oversizedFiles();
    void longButUsable();
};

void TestPictures::sizes_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<int>("leds");
    QTest::addColumn<int>("columns"); // a part of a column counts as one
    QTest::addColumn<int>("width");   // columns * 200 / leds, rounded
    QTest::newRow("as high as the prop") << QSize(160, 80) << 80 << 160 << 400;
    QTest::newRow("square") << QSize(500, 500) << 70 << 70 << 200;
    QTest::newRow("one pixel") << QSize(1, 1) << 36 << 36 << 200;
    QTest::newRow("2.4 columns") << QSize(3, 100) << 80 << 3 << 8;
    QTest::newRow("a thread") << QSize(3, 20000) << 80 << 1 << 3;
    QTest::newRow("no LEDs") << QSize(160, 80) << 0 << 0 << 0;
    QTest::newRow("one LED") << QSize(100, 50) << 1 << 2 << 400;
    QTest::newRow("more LEDs than rows shown") << QSize(100, 100) << 999 << 999 << 200;
}

void TestPictures::sizes()
{
    QFETCH(QSize, picture);
    QFETCH(int, leds);
    QFETCH(int, columns);
    QFETCH(int, width);
    const PictureResult result = glow::renderPicture(quarters(picture.width(), picture.height()), atLeds(leds));
    QCOMPARE(result.columns, columns);
    QCOMPARE(result.image.size(), QSize(width, width > 0 ? 200 : 0));
    QVERIFY(!result.tooBig);
}

void TestPictures::reducedToLedsFirst()
{
    // Rows of one pixel, black and white in turn, ten to an LED: the prop shows grey, and so does the result.
    QImage stripes(100, 400, QImage::Format_RGB32);
    for (int y = 0; y < 400; ++y) {
        for (int x = 0; x < 100; ++x) {
            stripes.setPixel(x, y, y % 2 == 0 ? white : black);
        }
    }
    const QImage grey = glow::renderPicture(stripes, atLeds(40)).image;
    QCOMPARE(grey.size(), QSize(50, 200));
    for (int y = 5; y < 195; ++y) {
        QVERIFY(qAbs(qRed(grey.pixel(25, y)) - 128) < 12);
    }
    // Each LED becomes a block of five by five equal pixels.
    QImage noise(40, 40, QImage::Format_RGB32);
    std::mt19937 random(1);
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 40; ++x) {
            noise.setPixel(x, y, 0xff000000U | static_cast<QRgb>(random()));
        }
    }
    const QImage blocks = glow::renderPicture(noise, atLeds(40)).image;
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 200; ++x) {
            QVERIFY(blocks.pixel(x, y) == noise.pixel(x / 5, y / 5));
        }
    }
}

void TestPictures::flips_data()
{
    QTest::addColumn<bool>("flipH");
    QTest::addColumn<bool>("flipV");
    QTest::addColumn<QVector<QRgb>>("corners"); // upper left, upper right, lower left, lower right
    QTest::newRow("none") << false << false << QVector<QRgb>{red, green, blue, white};
    QTest::newRow("horizontal") << true << false << QVector<QRgb>{green, red, white, blue};
    QTest::newRow("vertical") << false << true << QVector<QRgb>{blue, white, red, green};
    QTest::newRow("both") << true << true << QVector<QRgb>{white, blue, green, red};
}

void TestPictures::flips()
{
    QFETCH(bool, flipH);
    QFETCH(bool, flipV);
    PictureOptions options = atLeds(80);
    options.flipH = flipH;
    options.flipV = flipV;
    const QImage image = glow::renderPicture(quarters(160, 160), options).image;
    const QVector<QRgb> corners{image.pixel(20, 20), image.pixel(180, 20), image.pixel(20, 180), image.pixel(180, 180)};
    QTEST(corners, "corners");
}

void TestPictures::gapIsBlack_data()
{
    QTest::addColumn<int>("gap");
    QTest::addColumn<int>("width"); // 203 * (gap + 100) / 100, cut
    QTest::newRow("none") << 0 << 203;
    QTest::newRow("1%") << 1 << 205;
    QTest::newRow("33%") << 33 << 269;
    QTest::newRow("all") << 100 << 406;
}

void TestPictures::gapIsBlack()
{
    QFETCH(int, gap);
    QFETCH(int, width);
    QImage picture(81, 80, QImage::Format_RGB32); // 81 columns are 202.5 at 200 rows
    picture.fill(green);
    const PictureResult result = glow::renderPicture(picture, atLeds(80, gap));
    QCOMPARE(result.columns, 81);
    QCOMPARE(result.image.size(), QSize(width, 200));
    QCOMPARE(result.image.pixel(202, 199), green);
    if (gap > 0) {
        QCOMPARE(result.image.pixel(203, 0), black);
        QCOMPARE(result.image.pixel(width - 1, 199), black);
    }
}

void TestPictures::movedGapEqualsPixmapArithmetic()
{
    // The size is that of a pixmap of so many columns and LEDs scaled to 200 rows.
    std::mt19937 random(7);
    QImage old(30, 200, QImage::Format_RGB32);
    old.fill(green);
    for (int round = 0; round < 400; ++round) {
        const int leds = 1 + static_cast<int>(random() % 300);
        const int columns = 1 + static_cast<int>(random() % (20 * leds));
        QPixmap black(columns, leds);
        black.fill(Qt::black);
        const QSize expected = black.scaledToHeight(200, Qt::FastTransformation).size();
        QCOMPARE(glow::withGap(old, columns, leds).size(), expected);
    }
    QCOMPARE(glow::columnsWithGap(81, 33), 107);
    QCOMPARE(glow::columnsWithGap(0, 100), 0);
    QVERIFY(glow::withGap(QImage(), 10, 80).isNull());
    QVERIFY(glow::withGap(old, 0, 80).isNull());
    QVERIFY(glow::withGap(old, 80, 0).isNull());
    QVERIFY(glow::withGap(old, 2000000000, 1).isNull());
}

void TestPictures::movedGapKeepsThePicture()
{
    const QImage image = glow::renderPicture(quarters(160, 80), atLeds(80, 50)).image;
    QCOMPARE(image.width(), 600);
    QImage moved = glow::withGap(image, glow::columnsWithGap(160, 100), 80);
    QCOMPARE(moved.width(), 800);
    QCOMPARE(moved.copy(0, 0, 600, 200), image);
    QCOMPARE(moved.pixel(799, 100), black);
    moved = glow::withGap(moved, glow::columnsWithGap(160, 0), 80);
    QCOMPARE(moved, image.copy(0, 0, 400, 200));
}

void TestPictures::transparentShowsBlack()
{
    QImage glass(80, 80, QImage::Format_ARGB32);
    glass.fill(qRgba(255, 255, 255, 0));
    for (int y = 0; y < 80; ++y) {
        for (int x = 40; x < 80; ++x) {
            glass.setPixel(x, y, qRgba(255, 255, 255, 128));
        }
    }
    const QImage image = glow::renderPicture(glass, atLeds(80)).image;
    QCOMPARE(image.pixel(50, 100), black);
    QCOMPARE(qRed(image.pixel(150, 100)), 128);
    QCOMPARE(qAlpha(image.pixel(150, 100)), 255);
}

void TestPictures::filesOfEachFormat_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<int>("imageFormat");
    QTest::addColumn<int>("tolerance");
    QTest::newRow("png") << QByteArray("png") << int(QImage::Format_RGB32) << 0;
    QTest::newRow("png, indexed") << QByteArray("png") << int(QImage::Format_Indexed8) << 0;
    QTest::newRow("png, 16 bit") << QByteArray("png") << int(QImage::Format_RGBA64) << 0;
    QTest::newRow("bmp") << QByteArray("bmp") << int(QImage::Format_RGB32) << 0;
    QTest::newRow("jpg") << QByteArray("jpg") << int(QImage::Format_RGB32) << 12;
}

void TestPictures::filesOfEachFormat()
{
    QFETCH(QByteArray, format);
    QFETCH(int, imageFormat);
    QFETCH(int, tolerance);
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("圖片 1.") + QString::fromLatin1(format));
    QVERIFY(quarters(320, 160)
                .convertToFormat(static_cast<QImage::Format>(imageFormat))
                .save(path, format.constData(), 95));
    const PictureResult result = glow::loadPicture(path, atLeds(80));
    QCOMPARE(result.columns, 160);
    QVERIFY(qAbs(qRed(result.image.pixel(100, 50)) - 255) <= tolerance);
    QVERIFY(qAbs(qBlue(result.image.pixel(100, 150)) - 255) <= tolerance);
    QVERIFY(qGreen(result.image.pixel(100, 150)) <= tolerance);
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
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        file.close();
        QVERIFY(empty(glow::loadPicture(path, atLeds(80))));
    }
    QVERIFY(empty(glow::loadPicture(dir.path(), atLeds(80))));
    QVERIFY(empty(glow::loadPicture(dir.filePath(QStringLiteral("none.png")), atLeds(80))));
    // Damaged anywhere: whatever comes of it, it comes back.
    std::mt19937 random(5);
    for (int round = 0; round < 30; ++round) {
        QByteArray bytes = whole;
        for (int n = 0; n < 5; ++n) {
            bytes[static_cast<int>(random() % static_cast<unsigned>(bytes.size()))] = static_cast<char>(random());
        }
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        file.close();
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
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("P5 30000 30000 255\n") > 0);
    file.close();
    QVERIFY(glow::loadPicture(path, atLeds(80)).tooBig);
}

void TestPictures::longButUsable()
{
    // 16000 by 50 is 64000 columns at 200 rows, beyond what a painter draws; every part of it is there.
    QImage ribbon(16000, 50, QImage::Format_RGB32);
    ribbon.fill(blue);
    for (int y = 0; y < 50; ++y) {
        for (int x = 8000; x < 16000; ++x) {
            ribbon.setPixel(x, y, green);
        }
    }
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
