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

TextResult written(const QString &words, int sizeIndex = 9, int slide = 5, bool flipH = false, bool flipV = false)
{
    return glow::renderText({words, QFont().family(), fore, back, sizeIndex, slide, flipH, flipV});
}

// Bounds of all that is not the back colour.
QRect inked(const QImage &image)
{
    QRect bounds;
    for (int i = 0; i < image.width() * image.height(); ++i) {
        const QPoint at(i % image.width(), i / image.width());
        if (image.pixel(at) != back.rgb()) {
            bounds |= QRect(at, at);
        }
    }
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
        QCOMPARE(rendered(quarters(100, 100), 999).image.size(), QSize(200, 200));
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
             {std::tuple<int, int, int>(81, 80, 203), {1, 999, 1}, {0, 80, 0}, {80, 0, 0}, {2000000000, 1, 0}}) {
            QCOMPARE(glow::withGap(image, columns, leds).width(), width);
        }
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
        QCOMPARE(rendered(leds, 40).image,
                 painted(200, 200, [&leds](int x, int y) { return leds.pixel(x / 5, y / 5); }));
        // What is transparent shows black.
        QImage glass(80, 80, QImage::Format_ARGB32);
        glass.fill(qRgba(255, 255, 255, 128));
        QCOMPARE(rendered(glass, 80).image.pixel(150, 100), qRgb(128, 128, 128));
    }

    void flips()
    {
        const QImage plain = written(QStringLiteral("F")).image;
        for (const auto &[flipH, flipV] : {qMakePair(true, false), qMakePair(false, true), qMakePair(true, true)}) {
            QCOMPARE(rendered(quarters(160, 160), 80, 0, flipH, flipV).image,
                     quarters(200, 200).mirrored(flipH, flipV));
            QCOMPARE(written(QStringLiteral("F"), 9, 5, flipH, flipV).image, plain.mirrored(flipH, flipV));
        }
    }

    void files()
    {
        const QString jpg = dir.filePath("圖片 1.jpg");
        const QString gif = dir.filePath("a.gif"); // Qt writes none: two by two pixels, a palette, the indices 0 to 3
        QVERIFY(quarters(320, 320).save(jpg, nullptr, 100));
        QVERIFY(put(gif, QByteArray::fromHex("47494638396102000200f10000ff000000ff000000ffffffff"
                                             "2c0000000002000200000203443405003b")));
        for (const QString &path : {jpg, gif}) {
            const QImage image = loaded(path).image;
            QCOMPARE(image.size(), QSize(200, 200));
            for (const QPoint &at : {QPoint(10, 10), QPoint(190, 10), QPoint(10, 190), QPoint(190, 190)}) {
                QVERIFY2(distance(image.pixel(at), quarters(200, 200).pixel(at)) < 12, qPrintable(path));
            }
        }
        // What is no picture is none, and not too big either.
        QStringList useless{dir.filePath("damaged.jpg"), dir.filePath("empty.png"), dir.path(),
                            dir.filePath("none.png")};
        QVERIFY(put(useless.at(0), contentOf(jpg).left(20)) && put(useless.at(1)));
#ifdef Q_OS_UNIX
        useless << dir.filePath("pipe.png"); // nobody writes: not waited for
        QVERIFY(mkfifo(QFile::encodeName(useless.last()).constData(), 0600) == 0);
#endif
        for (const QString &path : useless) {
            const PictureResult result = loaded(path);
            QVERIFY2(result.image.isNull() && result.columns == 0 && !result.tooBig, qPrintable(path));
        }
    }

    void limits()
    {
        // 20000 by 3 would be 1333333 columns wide at 200 rows.
        const PictureResult flat = rendered(quarters(20000, 3), 80);
        QVERIFY(flat.tooBig && flat.image.isNull() && flat.columns == 0);
        QVERIFY(rendered(quarters(3000, 10), 999).tooBig);
        // A header that claims 30000 by 30000 pixels is refused before anything is decoded.
        const QString path = dir.filePath("bomb.pgm");
        QVERIFY(put(path, "P5 30000 30000 255\n") && loaded(path).tooBig);

        // 16000 by 50 is 64000 columns at 200 rows, beyond what a painter draws; every part of it is there.
        const PictureResult ribbon = rendered(quarters(16000, 50), 80, 100);
        QCOMPARE(ribbon.columns, 25600);
        QCOMPARE(ribbon.image.size(), QSize(128000, 200));
        for (const auto &[x, colour] :
             {qMakePair(31990, blue), qMakePair(32010, white), qMakePair(63999, white), qMakePair(64000, black)}) {
            QCOMPARE(ribbon.image.pixel(x, 199), colour);
        }
    }

    void boxesOfTexts()
    {
        QCOMPARE(glow::textBox(480, 1237, 9, 5), QSize(1287, 480)); // the text's width and 50
        QCOMPARE(glow::textBox(480, 1237, 0, 5), QSize(173, 4800)); // ten lines; 61850 / 500 = 123.7
        QCOMPARE(glow::textBox(481, 1000, 2, 7), QSize(470, 1603)); // 210000 / 500; 4810 / 3
        // 3000000 * 2000 is 6000000000, in 32 bits 1705032704; 2000000 * 2000 is -294967296.
        QCOMPARE(glow::textBox(480, 3000000, 9, 20), QSize(3410115, 480));
        QCOMPARE(glow::textBox(480, 2000000, 9, 20), QSize(-589884, 480));
        QCOMPARE(glow::textBox(480, 1000, -1, 5), QSize(150, 4800)); // no row selected

        const QPair<QSize, QSize> drawn[] = {
            {{65534, 480}, {32767, 240}},                                       // to the painter's reach
            {{16000, 4000}, {8000, 2000}},                                      // to the pixels
            {{131068, 480}, {32767, 120}},                                      // the longest
            {{132000, 480}, {}},           {{-589884, 480}, {}}, {{50, 0}, {}}, // no font
        };
        for (const auto &[box, size] : drawn) {
            QCOMPARE(glow::textImageSize(box), size);
        }
    }

    void textsInTheirBoxes()
    {
        const QImage image = written(QStringLiteral("HgH")).image;
        QCOMPARE(image.size(), QSize(advance(QStringLiteral("HgH")) + 50, metrics.height()));
        const QRect ink = inked(image);
        // The capitals' stems stand at both ends of the advance, inside the frame's small margin.
        QVERIFY(ink.left() < 80 && ink.right() > image.width() - 130 && ink.right() < image.width() - 1);
        QVERIFY(ink.height() > image.height() / 2);
        QCOMPARE(image.pixel(ink.left() + 12, image.height() / 2), fore.rgb());
        // A wider box has more space on the right and a higher one below, the text stays as it was. Its width is that
        // of the source text, tags included; the tags are not drawn.
        const QString words = QStringLiteral("<i></i>H");
        const QImage wide = written(words, 4, 15).image;
        QCOMPARE(wide.size(), QSize(advance(words) * 3 / 2 + 50, metrics.height() * 2));
        QVERIFY(inked(wide).right() < advance(QStringLiteral("H")) + 20 && inked(wide).top() < metrics.height());
        for (const char *odd :
             {"<span style='font-size:99999999pt'>A</span>", "<table width=999999999 border=99999><tr><td>",
              "<img width=99999999 height=99999999 src='none'>", "<b"}) {
            QVERIFY(!written(QString::fromLatin1(odd)).image.isNull());
        }
    }

    void longTextsStayBounded()
    {
        // Twice the painter's reach: drawn at half the size, all of it.
        const auto many = [](int count) { return written(QString(count, QLatin1Char('H'))); };
        const int width = advance(QStringLiteral("H"));
        const TextResult half = many(65000 / width);
        QVERIFY(!half.tooLong && half.image.height() < metrics.height() * 6 / 10);
        QCOMPARE(half.image.width(), 32767);
        QVERIFY(inked(half.image).right() > 32000);
        // Beyond the limit: the picture of an empty text, and said so.
        const TextResult none = many(0);
        QVERIFY(!none.tooLong && inked(none.image).isEmpty());
        QCOMPARE(none.image.size(), QSize(50, metrics.height()));
        for (const int length : {140000 / width, 32767}) {
            QVERIFY(many(length).tooLong && many(length).image == none.image);
        }
    }

private:
    int advance(const QString &words) const
    {
        return metrics.horizontalAdvance(words);
    }

    const QFontMetrics metrics{QFont(QFont().family(), 300, -1, false)};
    QTemporaryDir dir;
};

QTEST_MAIN(TestPictures)
#include "test_pictures.moc"
