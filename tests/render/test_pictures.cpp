// Pictures and texts as pictures of patterns, as values: flips, scales, gap, the text's box, and what no pattern can
// use.
#include "render/textimage.h"
#include "show/draw/picturechain.h"
#include "support/pixels.h"
#include "support/samples.h"

#include <QFontMetrics>
#include <QTemporaryDir>
#include <QtTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using glow::PictureResult;
using glow::TextResult;

namespace {

const QColor back(0, 40, 90);
const QColor fore(250, 200, 10);

// Four coloured quarters: red and green above blue and white.
QImage quarters(int width, int height)
{
    constexpr QRgb colours[] = {red, green, blue, white};
    return painted(width, height, [&](int x, int y) { return colours[(y >= height / 2) * 2 + (x >= width / 2)]; });
}

// Bounds of all that is not the back colour.
QRect inked(const QImage &image)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) != back.rgb())
                bounds |= QRect(x, y, 1, 1);
    return bounds;
}

} // namespace

class TestPictures : public QObject
{
    Q_OBJECT

private slots:
    void sizesAndGap()
    {
        // 81 columns are 202.5 at 200 rows; 203 * (gap + 100) / 100 is cut. The gap is black.
        const QImage picture = painted(81, 80, [](int, int) { return green; });
        for (const auto &[gap, width] : {qMakePair(0, 203), qMakePair(1, 205), qMakePair(33, 269)}) {
            const PictureResult result = rendered(picture, 80, gap);
            QCOMPARE(result.columns, 81);
            QCOMPARE(result.image, painted(width, 200, [](int x, int) { return x < 203 ? green : black; }));
        }
        QCOMPARE(rendered(quarters(3, 20000), 80).columns, 1); // a part of a column counts as one
        QVERIFY(rendered(picture, 0).image.isNull());

        // Moved, the gap leaves the picture as it was. The width is columns * 200 / leds, rounded, and never nothing
        // but for what has no picture.
        const QImage image = rendered(quarters(160, 80), 80, 50).image;
        const QImage moved = glow::withGap(image, glow::columnsWithGap(160, 100), 80);
        QCOMPARE(moved.width(), 800);
        QCOMPARE(moved.copy(0, 0, 600, 200), image);
        QCOMPARE(glow::withGap(moved, glow::columnsWithGap(160, 0), 80), quarters(400, 200));
        QCOMPARE(glow::columnsWithGap(81, 33), 107);
        for (const auto &[columns, leds, width] :
             {std::tuple(81, 80, 203), {1, 999, 1}, {0, 80, 0}, {80, 0, 0}, {2000000000, 1, 0}})
            QCOMPARE(glow::withGap(image, columns, leds).width(), width);
        QVERIFY(glow::withGap(QImage(), 10, 80).isNull());
    }

    void reducedToLedsFirst()
    {
        // Rows of one pixel, black and white in turn, ten to an LED: the prop shows grey, and so does the result.
        const QImage rows = painted(100, 400, [](int, int y) { return y % 2 == 0 ? white : black; });
        QVERIFY(distance(rendered(rows, 40).image.pixel(25, 100), qRgb(128, 128, 128)) < 12);
        // Each LED becomes a block of five by five equal pixels.
        std::mt19937 random(1);
        const QImage leds = noise(40, 40, random);
        const auto block = [&leds](int x, int y) { return leds.pixel(x / 5, y / 5); };
        QCOMPARE(rendered(leds, 40).image, painted(200, 200, block));
        // What is transparent shows black.
        QImage glass(80, 80, QImage::Format_ARGB32);
        glass.fill(qRgba(255, 255, 255, 128));
        QCOMPARE(rendered(glass, 80).image.pixel(150, 100), qRgb(128, 128, 128));

        const QImage plain = written(QStringLiteral("F")).image;
        for (const auto &[flipH, flipV] : {qMakePair(true, false), qMakePair(false, true), qMakePair(true, true)}) {
            QCOMPARE(rendered(quarters(160, 160), 80, 0, flipH, flipV).image,
                     quarters(200, 200).mirrored(flipH, flipV));
            QCOMPARE(written(QStringLiteral("F"), 9, 5, flipH, flipV).image, plain.mirrored(flipH, flipV));
        }
    }

    void files()
    {
        const auto at = [this](const char *name) { return dir.filePath(name); };
        const auto loaded = [&at](const char *name) { return glow::loadPicture(at(name), {false, false, 0, 80}); };
        // Qt writes no GIF: two by two pixels, a palette, the indices 0 to 3.
        QVERIFY(quarters(320, 320).save(at("圖片 1.jpg"), nullptr, 100));
        QVERIFY(put(at("a.gif"), QByteArray::fromHex("47494638396102000200f10000ff000000ff000000ffffffff"
                                                     "2c0000000002000200000203443405003b")));
        for (const char *name : {"圖片 1.jpg", "a.gif"}) {
            const QImage image = loaded(name).image;
            QCOMPARE(image.size(), QSize(200, 200));
            for (const QPoint &corner : {QPoint(10, 10), QPoint(190, 10), QPoint(10, 190), QPoint(190, 190)})
                QVERIFY2(distance(image.pixel(corner), quarters(200, 200).pixel(corner)) < 12, name);
        }
        // What is no picture is none, and not too big either. A pipe into which nobody writes is not waited for.
        QVERIFY(put(at("damaged.jpg"), contentOf(at("圖片 1.jpg")).left(20)) && put(at("empty.png")));
#ifdef Q_OS_UNIX
        QVERIFY(mkfifo(QFile::encodeName(at("pipe.png")).constData(), 0600) == 0);
#endif
        for (const char *name : {"damaged.jpg", "empty.png", ".", "none.png", "pipe.png"}) {
            const PictureResult result = loaded(name);
            QVERIFY2(result.image.isNull() && result.columns == 0 && !result.tooBig, name);
        }
        // 20000 by 3 would be 1333333 columns wide at 200 rows. A header that claims 30000 by 30000 pixels is refused
        // before anything is decoded.
        QVERIFY(put(at("bomb.pgm"), "P5 30000 30000 255\n"));
        for (const PictureResult &result :
             {rendered(quarters(20000, 3), 80), rendered(quarters(3000, 10), 999), loaded("bomb.pgm")})
            QVERIFY(result.tooBig && result.image.isNull() && result.columns == 0);
        // 16000 by 50 is 64000 columns at 200 rows, beyond what a painter draws; every part of it is there.
        const PictureResult ribbon = rendered(quarters(16000, 50), 80, 100);
        QVERIFY(ribbon.columns == 25600 && ribbon.image.width() == 128000);
        for (const auto &[x, colour] : {std::pair(31990, blue), {32010, white}, {63999, white}, {64000, black}})
            QCOMPARE(ribbon.image.pixel(x, 199), colour);
    }

    void texts()
    {
        const std::pair<QSize, QSize> boxes[] = {
            {glow::textBox(480, 1237, 9, 5), {1287, 480}}, // the text's width and 50
            {glow::textBox(480, 1237, 0, 5), {173, 4800}}, // ten lines; 61850 / 500 = 123.7
            {glow::textBox(481, 1000, 2, 7), {470, 1603}}, // 210000 / 500; 4810 / 3
            // 3000000 * 2000 is 6000000000, in 32 bits 1705032704; 2000000 * 2000 is -294967296.
            {glow::textBox(480, 3000000, 9, 20), {3410115, 480}},
            {glow::textBox(480, 2000000, 9, 20), {-589884, 480}},
            {glow::textBox(480, 1000, -1, 5), {150, 4800}}, // no row selected
            // To the painter's reach; to the pixels; the longest and a longer one; no font.
            {glow::textImageSize({65534, 480}), {32767, 240}},
            {glow::textImageSize({16000, 4000}), {8000, 2000}},
            {glow::textImageSize({131068, 480}), {32767, 120}},
            {glow::textImageSize({132000, 480}), {}},
            {glow::textImageSize({-589884, 480}), {}},
            {glow::textImageSize({50, 0}), {}},
        };
        for (const auto &[box, size] : boxes)
            QCOMPARE(box, size);

        const QFontMetrics metrics(QFont(QFont().family(), 300, -1, false));
        const auto advance = [&metrics](const QString &words) { return metrics.horizontalAdvance(words); };
        const QImage image = written("HgH").image;
        QCOMPARE(image.size(), QSize(advance("HgH") + 50, metrics.height()));
        // The capitals' stems stand at both ends of the advance, inside the frame's small margin.
        const QRect ink = inked(image);
        QVERIFY(ink.left() < 80 && ink.right() > image.width() - 130 && ink.right() < image.width() - 1);
        QVERIFY(ink.height() > image.height() / 2);
        QCOMPARE(image.pixel(ink.left() + 12, image.height() / 2), fore.rgb());
        // A wider box has more space on the right and a higher one below, the text stays as it was. Its width is that
        // of the source text, tags included; the tags are not drawn.
        const QImage wide = written("<i></i>H", 4, 15).image;
        QCOMPARE(wide.size(), QSize(advance("<i></i>H") * 3 / 2 + 50, metrics.height() * 2));
        QVERIFY(inked(wide).right() < advance("H") + 20 && inked(wide).top() < metrics.height());
        for (const char *odd : {"<span style='font-size:99999999pt'>A</span>", "<b",
                                "<table width=999999999 border=99999><tr><td>", "<img width=99999999 src='none'>"})
            QVERIFY(!written(odd).image.isNull());

        // Twice the painter's reach: drawn at half the size, all of it.
        const auto many = [](int count) { return written(QString(count, QLatin1Char('H'))); };
        const QImage half = many(65000 / advance("H")).image;
        QVERIFY(half.width() == 32767 && half.height() < metrics.height() * 6 / 10);
        QVERIFY(inked(half.copy(32000, 0, 767, half.height())).isValid());
        // Beyond the limit: the picture of an empty text, and said so.
        const TextResult none = many(0);
        QVERIFY(!none.tooLong && inked(none.image).isEmpty());
        QCOMPARE(none.image.size(), QSize(50, metrics.height()));
        for (const int length : {140000 / advance("H"), 32767})
            QVERIFY(many(length).tooLong && many(length).image == none.image);
    }

private:
    static PictureResult rendered(const QImage &picture, int leds, int gap = 0, bool flipH = false, bool flipV = false)
    {
        return glow::renderPicture(picture, {flipH, flipV, gap, leds});
    }
    static TextResult written(const QString &words, int size = 9, int slide = 5, bool flipH = false, bool flipV = false)
    {
        return glow::renderText({words, QFont().family(), fore, back, size, slide, flipH, flipV});
    }

    QTemporaryDir dir;
};

QTEST_MAIN(TestPictures)
#include "test_pictures.moc"
