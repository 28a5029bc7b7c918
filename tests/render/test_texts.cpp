// Texts as pictures: the box's arithmetic, what is drawn into it, and texts of absurd length.
#include "render/textimage.h"

#include <QFontMetrics>
#include <QtTest>

using glow::TextResult;

namespace {

const QColor back(0, 40, 90);
const QColor fore(250, 200, 10);

TextResult rendered(const QString &words, int sizeIndex = 9, int slide = 5, bool flipH = false, bool flipV = false)
{
    return glow::renderText({words, QFont().family(), fore, back, sizeIndex, slide, flipH, flipV});
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
    void sizes();
    void boxAndText();
    void flips();
    void richTextIsReadAsSuch();
    void longTextsStayBounded();

private:
    int advance(const QString &words) const { return metrics.horizontalAdvance(words); }

    const QFontMetrics metrics{QFont(QFont().family(), 300, -1, false)};
};

void TestTexts::sizes()
{
    const struct
    {
        int lineHeight, textWidth, sizeIndex, slide;
        QSize size;
    } cases[] = {
        {480, 1237, 9, 5, {1287, 480}}, // the text's width and 50
        {480, 0, 9, 5, {50, 480}},
        {480, 1237, 0, 5, {173, 4800}}, // ten lines; 61850 / 500 = 123.7
        {481, 1000, 2, 7, {470, 1603}}, // 210000 / 500; 4810 / 3
        {480, 1000, 9, 20, {4050, 480}},
        // 3000000 * 2000 is 6000000000, in 32 bits 1705032704; 2000000 * 2000 is -294967296.
        {480, 3000000, 9, 20, {3410115, 480}},
        {480, 2000000, 9, 20, {-589884, 480}},
        {480, 1000, -1, 5, {150, 4800}}, // no row selected
    };
    for (const auto &c : cases) {
        QCOMPARE(glow::textBox(c.lineHeight, c.textWidth, c.sizeIndex, c.slide), c.size);
    }
    const QPair<QSize, QSize> drawn[] = {
        {{30000, 480}, {30000, 480}},
        {{65534, 480}, {32767, 240}},  // to the painter's reach
        {{16000, 4000}, {8000, 2000}}, // to the pixels
        {{131068, 480}, {32767, 120}}, // the longest
        {{132000, 480}, {}},
        {{-589884, 480}, {}}, // wrapped
        {{50, 0}, {}},        // no font
    };
    for (const auto &[box, size] : drawn) {
        QCOMPARE(glow::textImageSize(box), size);
    }
}

void TestTexts::boxAndText()
{
    const TextResult empty = rendered(QString());
    QCOMPARE(empty.image.size(), QSize(50, metrics.height()));
    QVERIFY(inked(empty.image).isEmpty() && !empty.tooLong);

    const QString words = QStringLiteral("HgH");
    const QImage image = rendered(words).image;
    QCOMPARE(image.size(), QSize(advance(words) + 50, metrics.height()));
    const QRect ink = inked(image);
    // The capitals' stems stand at both ends of the advance, inside the frame's small margin.
    QVERIFY(ink.left() < 80 && ink.right() > image.width() - 130 && ink.right() < image.width() - 1);
    QVERIFY(ink.height() > image.height() / 2);
    // The fore colour itself, not only blends of the edges.
    int solid = 0;
    for (int x = 0; x < image.width(); ++x) {
        solid += image.pixel(x, ink.center().y()) == fore.rgb() ? 1 : 0;
    }
    QVERIFY(solid > 100);

    const QImage small = rendered(QString(16, QLatin1Char('I')), 0, 20).image;
    QCOMPARE(small.height(), metrics.height() * 10);
    const QRect top = inked(small);
    QVERIFY(!top.isEmpty() && top.top() < small.height() / 10);
    // A wider box has more space on the right, the text stays as it was.
    const QString two = QStringLiteral("HH");
    const QImage wide = rendered(two, 9, 15).image;
    QCOMPARE(wide.width(), 3 * advance(two) + 50);
    QVERIFY(inked(wide).right() < advance(two) + 10);
}

void TestTexts::flips()
{
    const QImage plain = rendered(QStringLiteral("F")).image;
    QVERIFY(plain != plain.mirrored(true, false) && plain != plain.mirrored(false, true));
    for (const bool flipH : {false, true}) {
        for (const bool flipV : {false, true}) {
            QCOMPARE(rendered(QStringLiteral("F"), 9, 5, flipH, flipV).image, plain.mirrored(flipH, flipV));
        }
    }
}

void TestTexts::richTextIsReadAsSuch()
{
    // The box is as wide as the source text, tags included; the tags are not drawn.
    const QString words = QStringLiteral("<i></i>H");
    const QImage image = rendered(words).image;
    QCOMPARE(image.width(), advance(words) + 50);
    QVERIFY(inked(image).right() < advance(QStringLiteral("H")) + 20);
    for (const char *odd :
         {"<span style='font-size:99999999pt'>A</span>", "<table width=999999999 border=99999><tr><td>",
          "<img width=99999999 height=99999999 src='none'>", "<b"}) {
        QVERIFY(!rendered(QString::fromLatin1(odd)).image.isNull());
    }
}

void TestTexts::longTextsStayBounded()
{
    const int width = advance(QStringLiteral("H"));
    // Twice the painter's reach: drawn at half the size, all of it.
    TextResult result = rendered(QString(65000 / width, QLatin1Char('H')));
    QVERIFY(!result.tooLong);
    QCOMPARE(result.image.width(), 32767);
    QVERIFY(result.image.height() < metrics.height() * 6 / 10);
    QVERIFY(inked(result.image).right() > 32000);
    // Beyond the limit: the picture of an empty text, and said so.
    for (const int length : {140000 / width, 32767}) {
        result = rendered(QString(length, QLatin1Char('H')));
        QVERIFY(result.tooLong);
        QCOMPARE(result.image, rendered(QString()).image);
    }
    // Wraps here and there; bounded anyway.
    for (const int slide : {1, 7, 20}) {
        const QSize size = rendered(QString(32767, QChar(0x6587)), 9, slide).image.size();
        QVERIFY(size.width() <= 32767 && size.height() <= 16000);
    }
}

QTEST_MAIN(TestTexts)
#include "test_texts.moc"
