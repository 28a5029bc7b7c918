// The pattern record, its blob and its settings text, the two repeat rules and the catalogue of props.
#include "app/gadgetcatalogue.h"
#include "app/patternrecord.h"
#include "app/repeatrules.h"
#include "app/settingstext.h"

#include <QBuffer>
#include <QtEndian>
#include <QtTest>

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
    record.settingsText = "1?#0a";
    return record;
}

} // namespace

class TestRecord : public QObject
{
    Q_OBJECT

private slots:
    void blobHasTheStatedBytes()
    {
        const QByteArray blob = glow::writePattern(sample());
        QVERIFY(blob.startsWith(QByteArray::fromHex("00000001") + "\x89PNG\r\n\x1a\n"));
        const int png = blob.indexOf("IEND") + 8;                           // the chunk's name and its checksum
        QCOMPARE(blob.mid(png).toHex(), QByteArray("000003ea0000ea65"       // 1002 and 60005 ms
                                                   "01ffff0a0a14141e1e0000" // each channel's byte doubled
                                                   "00000007000000010000000c"
                                                   "0000000a0031003f002300300061"));
        const glow::PatternRecord back = glow::readPattern(blob);
        QCOMPARE(back.thumbnail.size(), QSize(3, 85));
        QCOMPARE(back.thumbnail.toImage().pixelColor(1, 1), QColor(Qt::blue));
        QCOMPARE(glow::writePattern(back), blob);

        const QByteArray least = glow::writePattern(glow::PatternRecord());
        QCOMPARE(least.size(), 39);
        QVERIFY(least.startsWith(QByteArray::fromHex("00000000ffffffffffffffff00")));
        QVERIFY(least.endsWith(QByteArray::fromHex("000000000000000000000000ffffffff")));
        QVERIFY(glow::readPattern(least).settingsText.isNull());
    }

    void foreignBytesAreMetCalmly()
    {
        const QByteArray whole = glow::writePattern(sample());
        for (int length = 0; length < whole.size(); ++length) {
            const glow::PatternRecord record = glow::readPattern(whole.left(length));
            QVERIFY(record.settingsText.isEmpty());
            QVERIFY(record.repeatCount == 7 || record.repeatCount == 0);
            QVERIFY(length > 40 || (record.thumbnail.isNull() && record.speedValue == 0));
        }
        QByteArray huge = whole;
        const int header = huge.indexOf("IHDR") + 4;
        qToBigEndian<quint32>(60000, huge.data() + header);
        qToBigEndian<quint32>(60000, huge.data() + header + 4);
        QVERIFY(glow::readPattern(huge).thumbnail.isNull());
    }

    void settingsComposeAndSplit()
    {
        const QString path = "C:/art/a.png";
        const QString picture = "0?1?C:/art/a.png?100|0|1";
        const QString text = "2?3?#ffffff|#000000|HELLO|4|2?12|0|0";
        const QString effect = "3?2?#ff0000|#000000|5|0|10?0|1|0";
        QCOMPARE(glow::composePicture(1, path, 100, false, true), picture);
        QCOMPARE(glow::composeColour(Qt::red), QString("1?#ff0000"));
        QCOMPARE(glow::composeText(3, Qt::white, Qt::black, "HELLO", 4, 2, 12, false, false), text);
        QCOMPARE(glow::composeEffect(2, Qt::red, Qt::black, 5, 0, 10, true, false), effect);

        const glow::SettingsText split = glow::parseSettings(picture);
        QCOMPARE(split.picturePath(), path);
        QCOMPARE(split.flagNumber(0), 100);
        QVERIFY(!split.flag(1) && split.flag(2) && !split.flag(3));
        QCOMPARE(glow::parseSettings(text).values.join(' '), QString("#ffffff #000000 HELLO 4 2"));
        QVERIFY(glow::parseSettings(effect).kind() == 3 && glow::parseSettings(effect).loop() == 2);
        QCOMPARE(glow::withPicturePath(picture, "/n.png"), QString("0?1?/n.png?100|0|1"));

        QVERIFY(glow::isOutdatedSettings(QString()) && glow::isOutdatedSettings("0?1?a.png?3"));
        QVERIFY(!glow::isOutdatedSettings("1?#ff0000") && !glow::isOutdatedSettings("0?1?a?0|0|0"));
        QVERIFY(!glow::parseSettings(QString()).isPicture());
        QVERIFY(!glow::parseSettings("1?#ff0000").hasGroups());
        QCOMPARE(glow::parseSettings("2?3?a|b||4|2").value(4), QString("2")); // an empty text
        QCOMPARE(glow::withPicturePath("0?1", path), QString("0?1"));
    }

    void repeatsFollowTheirTwoRules()
    {
        struct Case
        {
            double seconds;
            int speed;
            int width;
            float rate;
            int suggested;
            int placed;
        };
        for (const Case &c : {Case{5.0, 10, 500, 1100.0F, 10, 10},
                              {5.0, 10, 500, 1500.0F, 10, 10}, // not yet a high rate
                              {5.0, 10, 500, 2100.0F, 15, 20},
                              {2.45, 10, 700, 1100.0F, 4, 4}, // 3.5 rounds up
                              {0.1, 2, 5000, 1100.0F, 1, 1},
                              {0.0, 10, 500, 2100.0F, 1, 1},
                              {-0.7, 10, 500, 2100.0F, 1, 1},
                              {5.0, 10, 0, 2100.0F, 1, 1},
                              // Single precision lifts what double precision would leave below one half: the sum
                              // 313.49999999999994 + 0.5, the quotient 73457.497.
                              {25.08, 12, 144, 2100.0F, 314, 418},
                              {877.409, 18, 43, 2100.0F, 55093, 73458}}) {
            QCOMPARE(glow::suggestedRepeat(c.seconds, c.speed, c.width, c.rate), c.suggested);
            QCOMPARE(glow::placedRepeat(qRound(c.seconds * 1000), c.speed, c.width, c.rate), c.placed);
        }
    }

    void catalogueMatchesBothNumbers()
    {
        const QVector<glow::Gadget> known = glow::builtInGadgets();
        QCOMPARE(known.size(), 5);
        QCOMPARE(glow::findGadget(known, 48, 1100.0F), 1);
        QCOMPARE(glow::findGadget(known, 48, 1200.0F), -1);
        QCOMPARE(glow::findGadget(known, 80, 2100.0F), 3);

        QBuffer text;
        text.setData("36,1333,One\r\nbroken\r\n48,1100,Two\n");
        QVERIFY(text.open(QIODevice::ReadOnly));
        const QVector<glow::Gadget> read = glow::readGadgets(text);
        QCOMPARE(read.size(), 2);
        QCOMPARE(read.at(1).name, QString("Two"));
    }
};

QTEST_MAIN(TestRecord)
#include "test_record.moc"
