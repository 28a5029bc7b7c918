// Texts as pictures: the box's arithmetic, what is drawn into it, and texts of absurd length.
#include "render/textimage.h"

#include <QFontMetrics>
#include <QtTest>

using glow::TextOptions;
using glow::TextResult;

namespace {

const QColor back(0, 40, 90);
const QColor fore(250, 200, 10);

TextOptions text(const QString &words)
{
    TextOptions options;
    options.text = words;
    options.family = QFont().family();
    options.fore = fore;
    options.back = back;
    return options;
}

QFontMetrics metrics()
{
    return QFontMetrics(QFont(QFont().family(), 300, -1, false));
}

// Bounds of all that is not the back colour.
QRect inked(const QImage &image)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != back.rgb()) {
                bounds |= QRect(x, y, 1, 1);
            }
        }
    }
    return bounds;
}

} // namespace

class TestTexts : public QObject
{
    Q_OBJECT

private slots:
    void box_data();
    void box();
    void drawnSize_data();
    void drawnSize();
    void emptyTextIsABackground();
    void oneLineFillsTheBox();
    void smallestSizeFillsATenth();
    void slideWidensTheBox();
    void flips();
    void richTextIsReadAsSuch();
    void longTextsStayBounded();
};

void TestTexts::box_data()
{
    QTest::addColumn<int>("lineHeight");
    QTest::addColumn<int>("textWidth");
    QTest::addColumn<int>("sizeIndex");
    QTest::addColumn<int>("slide");
    QTest::addColumn<QSize>("size");
    QTest::newRow("default: the text's width and 50") << 480 << 1237 << 9 << 5 << QSize(1287, 480);
    QTest::newRow("empty") << 480 << 0 << 9 << 5 << QSize(50, 480);
    QTest::newRow("ten lines") << 480 << 1237 << 0 << 5 << QSize(173, 4800);         // 61850 / 500 = 123.7
    QTest::newRow("three and a third") << 481 << 1000 << 2 << 7 << QSize(470, 1603); // 210000 / 500; 4810 / 3
    QTest::newRow("widest") << 480 << 1000 << 9 << 20 << QSize(4050, 480);
    QTest::newRow("narrowest") << 480 << 1000 << 9 << 1 << QSize(250, 480);
    // 3000000 * 2000 is 6000000000, in 32 bits 1705032704; 2000000 * 2000 is -294967296.
    QTest::newRow("wraps") << 480 << 3000000 << 9 << 20 << QSize(3410115, 480);
    QTest::newRow("wraps to less than nothing") << 480 << 2000000 << 9 << 20 << QSize(-589884, 480);
    QTest::newRow("no row selected") << 480 << 1000 << -1 << 5 << QSize(150, 4800);
}

void TestTexts::box()
{
    QFETCH(int, lineHeight);
    QFETCH(int, textWidth);
    QFETCH(int, sizeIndex);
    QFETCH(int, slide);
    QTEST(glow::textBox(lineHeight, textWidth, sizeIndex, slide), "size");
}

void TestTexts::drawnSize_data()
{
    QTest::addColumn<QSize>("box");
    QTest::addColumn<QSize>("size");
    QTest::newRow("as it is") << QSize(30000, 480) << QSize(30000, 480);
    QTest::newRow("to the painter's reach") << QSize(65534, 480) << QSize(32767, 240);
    QTest::newRow("to the pixels") << QSize(16000, 4000) << QSize(8000, 2000);
    QTest::newRow("the longest") << QSize(131068, 480) << QSize(32767, 120);
    QTest::newRow("too long") << QSize(132000, 480) << QSize();
    QTest::newRow("wrapped") << QSize(-589884, 480) << QSize();
    QTest::newRow("no font") << QSize(50, 0) << QSize();
}

void TestTexts::drawnSize()
{
    QFETCH(QSize, box);
    QTEST(glow::textImageSize(box), "size");
}

void TestTexts::emptyTextIsABackground()
{
    const TextResult result = glow::renderText(text(QString()));
    QCOMPARE(result.image.size(), QSize(50, metrics().height()));
    QVERIFY(inked(result.image).isEmpty());
    QVERIFY(!result.tooLong);
}

void TestTexts::oneLineFillsTheBox()
{
    const QString words = QStringLiteral("HgH");
    const QImage image = glow::renderText(text(words)).image;
    QCOMPARE(image.size(), QSize(metrics().horizontalAdvance(words) + 50, metrics().height()));
    const QRect ink = inked(image);
    // The capitals' stems stand at both ends of the advance, inside the frame's small margin.
    QVERIFY(ink.left() < 80 && ink.right() > image.width() - 130);
    QVERIFY(ink.height() > image.height() / 2);
    QCOMPARE(image.pixel(image.width() - 1, image.height() / 2), back.rgb());
    int solid = 0;
    for (int x = 0; x < image.width(); ++x) {
        solid += image.pixel(x, ink.center().y()) == fore.rgb() ? 1 : 0;
    }
    QVERIFY(solid > 100); // the fore colour itself, not only blends of the edges
}

void TestTexts::smallestSizeFillsATenth()
{
    TextOptions options = text(QStringLiteral("IIIIIIIIIIIIIIII"));
    options.sizeIndex = 0;
    options.slide = 20;
    const QImage image = glow::renderText(options).image;
    QCOMPARE(image.height(), metrics().height() * 10);
    const QRect ink = inked(image);
    QVERIFY(!ink.isEmpty() && ink.top() < image.height() / 10);
}

void TestTexts::slideWidensTheBox()
{
    TextOptions options = text(QStringLiteral("HH"));
    const int advance = metrics().horizontalAdvance(options.text);
    options.slide = 15;
    const QImage image = glow::renderText(options).image;
    QCOMPARE(image.width(), 3 * advance + 50);
    QVERIFY(inked(image).right() < advance + 10); // more space on the right, the text as it was
}

void TestTexts::flips()
{
    TextOptions options = text(QStringLiteral("F"));
    const QImage plain = glow::renderText(options).image;
    QVERIFY(plain != plain.mirrored(true, false) && plain != plain.mirrored(false, true));
    options.flipH = true;
    QCOMPARE(glow::renderText(options).image, plain.mirrored(true, false));
    options.flipV = true;
    QCOMPARE(glow::renderText(options).image, plain.mirrored(true, true));
    options.flipH = false;
    QCOMPARE(glow::renderText(options).image, plain.mirrored(false, true));
}

void TestTexts::richTextIsReadAsSuch()
{
    // The box is as wide as the source text, tags included; the tags are not drawn.
    const QString words = QStringLiteral("<i></i>H");
    const QImage image = glow::renderText(text(words)).image;
    QCOMPARE(image.width(), metrics().horizontalAdvance(words) + 50);
    QVERIFY(inked(image).right() < metrics().horizontalAdvance(QLatin1Char('H')) + 20);
    for (const char *odd :
         {"<span style='font-size:99999999pt'>A</span>", "<table width=999999999 border=99999><tr><td>",
          "<img width=99999999 height=99999999 src='none'>", "<b"}) {
        QVERIFY(!glow::renderText(text(QString::fromLatin1(odd))).image.isNull());
    }
}

void TestTexts::longTextsStayBounded()
{
    const int advance = metrics().horizontalAdvance(QLatin1Char('H'));
    // Twice the painter's reach: drawn at half the size, all of it.
    const QString twice(65000 / advance, QLatin1Char('H'));
    TextResult result = glow::renderText(text(twice));
    QVERIFY(!result.tooLong);
    QCOMPARE(result.image.width(), 32767);
    QVERIFY(result.image.height() < metrics().height() * 6 / 10);
    QVERIFY(inked(result.image).right() > 32000);
    // Beyond the limit: the picture of an empty text, and said so.
    for (const int length : {140000 / advance, 32767}) {
        result = glow::renderText(text(QString(length, QLatin1Char('H'))));
        QVERIFY(result.tooLong);
        QCOMPARE(result.image.size(), QSize(50, metrics().height()));
        QVERIFY(inked(result.image).isEmpty());
    }
    TextOptions options = text(QString(32767, QChar(0x6587)));
    for (const int slide : {1, 7, 20}) {
        options.slide = slide;
        result = glow::renderText(options); // wraps here and there; bounded anyway
        QVERIFY(result.image.width() <= 32767 && result.image.height() <= 16000);
    }
}

QTEST_MAIN(TestTexts)
#include "test_texts.moc"
