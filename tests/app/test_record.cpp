// The pattern record, its blob and its settings text, and the two repeat rules.
#include "app/gadgetcatalogue.h"
#include "app/patternrecord.h"
#include "app/repeatrules.h"
#include "app/settingstext.h"

#include <QBuffer>
#include <QImage>
#include <QRandomGenerator>
#include <QtEndian>
#include <QtTest>

class TestRecord : public QObject
{
    Q_OBJECT

private slots:
    void blobHasTheStatedBytes();
    void shortestBlobIsThirtyNineBytes();
    void everyTruncationReadsAsNulls();
    void randomBytesAreMetCalmly();
    void hugeThumbnailHeaderIsRefused();
    void shorterTextLeavesTheOldTail();
    void settingsComposeAsWritten();
    void settingsSplitByPosition();
    void outdatedTextsAreRecognised();
    void suggestionFollowsTheEditorsRule();
    void placedCountFollowsItsOwnRule();
    void catalogueMatchesBothNumbers();
};

namespace {

glow::PatternRecord sample()
{
    glow::PatternRecord record;
    record.thumbnail = QPixmap(3, 85);
    record.thumbnail.fill(Qt::blue);
    record.startTime = QTime(0, 0, 1, 2);
    record.endTime = QTime(0, 1, 0, 5);
    record.solidColor = QColor(10, 20, 30);
    record.repeatCount = 7;
    record.patternKind = 1;
    record.speedValue = 12;
    record.settingsText = QStringLiteral("1?#0a141e");
    return record;
}

quint32 number(const QByteArray &bytes, int offset)
{
    return qFromBigEndian<quint32>(bytes.constData() + offset);
}

} // namespace

void TestRecord::blobHasTheStatedBytes()
{
    const QByteArray blob = glow::writePattern(sample());
    QCOMPARE(number(blob, 0), 1U);
    QCOMPARE(blob.mid(4, 8), QByteArray("\x89PNG\r\n\x1a\n"));
    const int png = blob.indexOf("IEND") + 8; // the chunk's name and its checksum
    QCOMPARE(number(blob, png), 1002U);
    QCOMPARE(number(blob, png + 4), 60005U);
    // Spec, then alpha, red, green, blue, pad as 16-bit values (each byte doubled).
    QCOMPARE(blob.mid(png + 8, 11).toHex(), QByteArray("01ffff0a0a14141e1e0000"));
    QCOMPARE(number(blob, png + 19), 7U);
    QCOMPARE(number(blob, png + 23), 1U);
    QCOMPARE(number(blob, png + 27), 12U);
    QCOMPARE(number(blob, png + 31), 18U);
    QCOMPARE(blob.mid(png + 35, 4), QByteArray("\0001\0?", 4));
    QCOMPARE(blob.size(), png + 35 + 18);

    const glow::PatternRecord back = glow::readPattern(blob);
    QCOMPARE(back.thumbnail.size(), QSize(3, 85));
    QCOMPARE(back.thumbnail.toImage().pixelColor(1, 1), QColor(Qt::blue));
    QCOMPARE(back.endTime, QTime(0, 1, 0, 5));
    QCOMPARE(back.settingsText, QStringLiteral("1?#0a141e"));
}

void TestRecord::shortestBlobIsThirtyNineBytes()
{
    const QByteArray blob = glow::writePattern(glow::PatternRecord());
    QCOMPARE(blob.size(), 39);
    QCOMPARE(number(blob, 0), 0U);
    QCOMPARE(number(blob, 4), 0xFFFFFFFFU);
    QCOMPARE(number(blob, 35), 0xFFFFFFFFU);
    QVERIFY(glow::readPattern(blob).settingsText.isNull());
}

void TestRecord::everyTruncationReadsAsNulls()
{
    const QByteArray blob = glow::writePattern(sample());
    for (int length = 0; length < blob.size(); ++length) {
        const glow::PatternRecord record = glow::readPattern(blob.left(length));
        QVERIFY(record.settingsText.isEmpty());
        QVERIFY(record.repeatCount == 7 || record.repeatCount == 0);
    }
}

void TestRecord::randomBytesAreMetCalmly()
{
    QRandomGenerator random(20261);
    const QByteArray whole = glow::writePattern(sample());
    for (int round = 0; round < 3000; ++round) {
        QByteArray bytes = whole;
        const int changes = 1 + int(random.bounded(8U));
        for (int i = 0; i < changes; ++i) {
            bytes[int(random.bounded(quint32(bytes.size())))] = char(random.bounded(256U));
        }
        const glow::PatternRecord record = glow::readPattern(bytes);
        QVERIFY(qint64(record.thumbnail.width()) * record.thumbnail.height() <= 51000000);
    }
}

void TestRecord::hugeThumbnailHeaderIsRefused()
{
    QByteArray blob = glow::writePattern(sample());
    const int header = blob.indexOf("IHDR") + 4;
    qToBigEndian<quint32>(60000, blob.data() + header);
    qToBigEndian<quint32>(60000, blob.data() + header + 4);
    const glow::PatternRecord record = glow::readPattern(blob);
    QVERIFY(record.thumbnail.isNull());
}

void TestRecord::shorterTextLeavesTheOldTail()
{
    glow::PatternRecord record = sample();
    QByteArray blob = glow::writePattern(record);
    const int before = blob.size();
    record.settingsText = QStringLiteral("1?#0");
    glow::overwritePattern(blob, record);
    QCOMPARE(blob.size(), before);
    QCOMPARE(glow::readPattern(blob).settingsText, QStringLiteral("1?#0"));
}

void TestRecord::settingsComposeAsWritten()
{
    QCOMPARE(glow::composePicture(1, QStringLiteral("C:/art/a.png"), 100, false, true),
             QStringLiteral("0?1?C:/art/a.png?100|0|1"));
    QCOMPARE(glow::composeColour(QColor(255, 0, 0)), QStringLiteral("1?#ff0000"));
    QCOMPARE(glow::composeText(3, Qt::white, Qt::black, QStringLiteral("HELLO"), 4, 2, 12, false, false),
             QStringLiteral("2?3?#ffffff|#000000|HELLO|4|2?12|0|0"));
    QCOMPARE(glow::composeEffect(2, QColor(255, 0, 0), Qt::black, 5, 0, 10, true, false),
             QStringLiteral("3?2?#ff0000|#000000|5|0|10?0|1|0"));
    QCOMPARE(glow::withoutSeparators(QStringLiteral("a|b?")), QStringLiteral("a\u2502b\uFF1F"));
}

void TestRecord::settingsSplitByPosition()
{
    const glow::SettingsText picture = glow::parseSettings(QStringLiteral("0?1?C:/art/a.png?40|0|1"));
    QCOMPARE(picture.kind(), 0);
    QVERIFY(picture.isPicture());
    QCOMPARE(picture.picturePath(), QStringLiteral("C:/art/a.png"));
    QCOMPARE(picture.flagNumber(0), 40);
    QVERIFY(!picture.flag(1));
    QVERIFY(picture.flag(2));

    const glow::SettingsText colour = glow::parseSettings(QStringLiteral("1?#ff0000"));
    QVERIFY(!colour.hasGroups());
    QVERIFY(!colour.isPicture());
    QCOMPARE(colour.fields.value(1), QStringLiteral("#ff0000"));

    const glow::SettingsText text = glow::parseSettings(QStringLiteral("2?3?#ffffff|#000000||4|2?12|0|0"));
    QCOMPARE(text.value(2), QString());
    QCOMPARE(text.value(4), QStringLiteral("2"));

    QVERIFY(!glow::parseSettings(QString()).isPicture());
    QCOMPARE(glow::withPicturePath(QStringLiteral("0?1?old?40|0|1"), QStringLiteral("/n.png")),
             QStringLiteral("0?1?/n.png?40|0|1"));
    QCOMPARE(glow::withPicturePath(QStringLiteral("0?1"), QStringLiteral("/n.png")), QStringLiteral("0?1"));
}

void TestRecord::outdatedTextsAreRecognised()
{
    QVERIFY(glow::isOutdatedSettings(QString()));
    QVERIFY(glow::isOutdatedSettings(QStringLiteral("0?1?a.png?3")));
    QVERIFY(!glow::isOutdatedSettings(QStringLiteral("1?#ff0000")));
    QVERIFY(!glow::isOutdatedSettings(QStringLiteral("0?1?a?0|0|0")));
}

void TestRecord::suggestionFollowsTheEditorsRule()
{
    // 5 s of a picture of 500 columns at speed 10: 5 * 10 * 1000 / 5000 = 10, at a high rate 15.
    QCOMPARE(glow::suggestedRepeat(5.0, 10, 500, 1100.0F), 10);
    QCOMPARE(glow::suggestedRepeat(5.0, 10, 500, 2100.0F), 15);
    QCOMPARE(glow::suggestedRepeat(5.0, 10, 500, 1500.0F), 10);
    QCOMPARE(glow::suggestedRepeat(0.1, 2, 5000, 1100.0F), 1);
    QCOMPARE(glow::suggestedRepeat(5.0, 10, 0, 1100.0F), 1);
    QCOMPARE(glow::suggestedRepeat(2.45, 10, 700, 1100.0F), 4); // 3.5 rounds up
}

void TestRecord::placedCountFollowsItsOwnRule()
{
    QCOMPARE(glow::placedRepeat(5000, 10, 500, 1100.0F), 10);
    QCOMPARE(glow::placedRepeat(5000, 10, 500, 2100.0F), 20);
    QCOMPARE(glow::placedRepeat(5000, 10, 500, 1500.0F), 10);
    QCOMPARE(glow::placedRepeat(0, 10, 500, 2100.0F), 1);
    QCOMPARE(glow::placedRepeat(-700, 10, 500, 2100.0F), 1);
    QCOMPARE(glow::placedRepeat(5000, 10, 0, 2100.0F), 1);
}

void TestRecord::catalogueMatchesBothNumbers()
{
    const QVector<glow::Gadget> rows = glow::builtInGadgets();
    QCOMPARE(rows.size(), 5);
    QCOMPARE(rows.at(2).leds, 70);
    QCOMPARE(rows.at(2).rate, 2100);
    QCOMPARE(rows.at(4).name, QStringLiteral("Brevon Max-120LED"));
    QCOMPARE(glow::findGadget(rows, 48, 1100.0F), 1);
    QCOMPARE(glow::findGadget(rows, 48, 1200.0F), -1);

    QBuffer text;
    text.setData("36,1333,One\r\nbroken\r\n48,1100,Two\n");
    QVERIFY(text.open(QIODevice::ReadOnly));
    const QVector<glow::Gadget> read = glow::readGadgets(text);
    QCOMPARE(read.size(), 2);
    QCOMPARE(read.at(0).name, QStringLiteral("One"));
}

QTEST_MAIN(TestRecord)
#include "test_record.moc"
