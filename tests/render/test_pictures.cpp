// From a picture file to the picture of a pattern, as values: flips, scales, gap, and files that no pattern can use.
#include "render/picturechain.h"
#include "support/pixels.h"
#include "support/samples.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QtTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using glow::PictureResult;

namespace {

// Four coloured quarters: red and green above blue and white.
QImage quarters(int width, int height)
{
    return painted(width, height, [width, height](int x, int y) {
        const bool right = x >= width / 2;
        return y < height / 2 ? (right ? green : red) : (right ? white : blue);
    });
}

PictureResult rendered(const QImage &picture, int leds, int gap = 0, bool flipH = false, bool flipV = false)
{
    return glow::renderPicture(picture, {flipH, flipV, gap, leds});
}

PictureResult loaded(const QString &path)
{
    return glow::loadPicture(path, {false, false, 0, 80});
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
    void filesOfEachFormat();
    void unusableFiles();
    void limits();

private:
    QTemporaryDir dir;
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
        const PictureResult result = rendered(quarters(c.picture.width(), c.picture.height()), c.leds);
        QCOMPARE(result.columns, c.columns);
        QCOMPARE(result.image.size(), QSize(c.width, c.width > 0 ? 200 : 0));
        QVERIFY(!result.tooBig);
    }
}

void TestPictures::reducedToLedsFirst()
{
    // Rows of one pixel, black and white in turn, ten to an LED: the prop shows grey, and so does the result.
    const QImage grey = rendered(painted(100, 400, [](int, int y) { return y % 2 == 0 ? white : black; }), 40).image;
    QCOMPARE(grey.size(), QSize(50, 200));
    for (int y = 5; y < 195; ++y) {
        QVERIFY(distance(grey.pixel(25, y), qRgb(128, 128, 128)) < 12);
    }
    // Each LED becomes a block of five by five equal pixels.
    std::mt19937 random(1);
    const QImage leds = noise(40, 40, random);
    QCOMPARE(rendered(leds, 40).image, painted(200, 200, [&leds](int x, int y) { return leds.pixel(x / 5, y / 5); }));
    // What is transparent shows black.
    const auto glass = [](int x, int) { return qRgba(255, 255, 255, x < 40 ? 0 : 128); };
    const QImage seen = rendered(painted(80, 80, glass, QImage::Format_ARGB32), 80).image;
    QCOMPARE(seen.pixel(50, 100), black);
    QCOMPARE(seen.pixel(150, 100), qRgb(128, 128, 128));
}

void TestPictures::flips()
{
    for (const bool flipH : {false, true}) {
        for (const bool flipV : {false, true}) {
            QCOMPARE(rendered(quarters(160, 160), 80, 0, flipH, flipV).image,
                     quarters(200, 200).mirrored(flipH, flipV));
        }
    }
}

void TestPictures::gapIsBlack()
{
    // 81 columns are 202.5 at 200 rows; 203 * (gap + 100) / 100 is cut.
    const QImage picture = painted(81, 80, [](int, int) { return green; });
    for (const auto &[gap, width] : {qMakePair(0, 203), qMakePair(1, 205), qMakePair(33, 269), qMakePair(100, 406)}) {
        const PictureResult result = rendered(picture, 80, gap);
        QCOMPARE(result.columns, 81);
        QCOMPARE(result.image, painted(width, 200, [](int x, int) { return x < 203 ? green : black; }));
    }
}

void TestPictures::movedGap()
{
    // The picture stays, whatever the gap was before.
    const QImage image = rendered(quarters(160, 80), 80, 50).image;
    QCOMPARE(image.width(), 600);
    QImage moved = glow::withGap(image, glow::columnsWithGap(160, 100), 80);
    QCOMPARE(moved.width(), 800);
    QCOMPARE(moved.copy(0, 0, 600, 200), image);
    QCOMPARE(moved.pixel(799, 100), black);
    moved = glow::withGap(moved, glow::columnsWithGap(160, 0), 80);
    QCOMPARE(moved, image.copy(0, 0, 400, 200));
    QCOMPARE(glow::columnsWithGap(81, 33), 107);

    const struct
    {
        int columns, leds;
        int width; // columns * 200 / leds, rounded, and never nothing but for what has no picture
    } cases[] = {{81, 80, 203}, {1, 71, 3}, {1, 160, 1}, {1, 999, 1}, {0, 80, 0}, {80, 0, 0}, {2000000000, 1, 0}};
    for (const auto &c : cases) {
        QCOMPARE(glow::withGap(image, c.columns, c.leds).width(), c.width);
    }
    QVERIFY(glow::withGap(QImage(), 10, 80).isNull());
}

void TestPictures::filesOfEachFormat()
{
    const QPair<QString, QImage::Format> files[] = {
        {QStringLiteral("圖片 1.png"), QImage::Format_RGB32}, {QStringLiteral("indexed.png"), QImage::Format_Indexed8},
        {QStringLiteral("deep.png"), QImage::Format_RGBA64},  {QStringLiteral("a.bmp"), QImage::Format_RGB32},
        {QStringLiteral("a.jpg"), QImage::Format_RGB32},      {QStringLiteral("a.gif"), QImage::Format_Invalid},
    };
    for (const auto &[name, format] : files) {
        const QString path = dir.filePath(name);
        if (format == QImage::Format_Invalid) {
            // Qt writes none: two by two pixels, a palette of the four colours, the indices 0 to 3.
            QVERIFY(put(path, QByteArray::fromHex("474946383961"
                                                  "02000200f10000"
                                                  "ff000000ff000000ffffffff"
                                                  "2c0000000002000200000203443405003b")));
        } else {
            QVERIFY(quarters(320, 320).convertToFormat(format).save(path, nullptr, 95));
        }
        const PictureResult result = loaded(path);
        QCOMPARE(result.columns, 80);
        QCOMPARE(result.image.size(), QSize(200, 200));
        for (const QPoint &at : {QPoint(10, 10), QPoint(190, 10), QPoint(10, 190), QPoint(190, 190)}) {
            const int off = distance(result.image.pixel(at), quarters(200, 200).pixel(at));
            QVERIFY2(off <= (name.endsWith(QLatin1String("jpg")) ? 12 : 0), qPrintable(name));
        }
    }
}

void TestPictures::unusableFiles()
{
    const QString path = dir.filePath(QStringLiteral("damaged.png"));
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly) && quarters(64, 64).save(&buffer, "png"));
    const QByteArray whole = buffer.data();
    const auto isEmpty = [](const PictureResult &result) {
        return result.image.isNull() && result.columns == 0 && !result.tooBig;
    };
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray("no picture at all"), whole.left(20), QByteArray(500, '\xff')}) {
        QVERIFY(put(path, bytes) && isEmpty(loaded(path)));
    }
    QVERIFY(isEmpty(loaded(dir.path())) && isEmpty(loaded(dir.filePath(QStringLiteral("none.png")))));
#ifdef Q_OS_UNIX
    const QString pipe = dir.filePath(QStringLiteral("pipe.png"));
    QVERIFY(mkfifo(QFile::encodeName(pipe).constData(), 0600) == 0);
    QVERIFY(isEmpty(loaded(pipe))); // nobody writes: not waited for
#endif
    // Damaged anywhere: whatever comes of it, it comes back.
    std::mt19937 random(5);
    for (int round = 0; round < 30; ++round) {
        QByteArray bytes = whole;
        for (int n = 0; n < 5; ++n) {
            bytes[static_cast<int>(random() % static_cast<unsigned>(bytes.size()))] = static_cast<char>(random());
        }
        QVERIFY(put(path, bytes));
        loaded(path);
    }
}

void TestPictures::limits()
{
    // 20000 by 3 would be 1333333 columns wide at 200 rows.
    const PictureResult flat = rendered(quarters(20000, 3), 80);
    QVERIFY(flat.tooBig && flat.image.isNull());
    QCOMPARE(flat.columns, 0);
    QVERIFY(rendered(quarters(3000, 10), 999).tooBig);
    // A header that claims 30000 by 30000 pixels is refused before anything is decoded.
    const QString path = dir.filePath(QStringLiteral("bomb.pgm"));
    QVERIFY(put(path, "P5 30000 30000 255\n") && loaded(path).tooBig);

    // 16000 by 50 is 64000 columns at 200 rows, beyond what a painter draws; every part of it is there.
    const QImage ribbon = painted(16000, 50, [](int x, int) { return x < 8000 ? blue : green; });
    const PictureResult result = rendered(ribbon, 80, 100);
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
