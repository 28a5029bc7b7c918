// The two project formats as values, on good files and on bad ones.
#include "app/oldproject.h"
#include "app/projectfile.h"
#include "heapwatch.h"

#include <QBuffer>
#include <QDataStream>
#include <QRandomGenerator>
#include <QtTest>

#include <cmath>
#include <cstring>

using glow::OldProject;
using glow::Project;

namespace {

Project oneTrack(const QVector<QByteArray> &blobs)
{
    Project project;
    project.ledCount = 70;
    project.frameRate = 2100;
    project.tracks = {blobs};
    return project;
}

QByteArray randomBytes(QRandomGenerator &random, int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (char &byte : bytes) {
        byte = static_cast<char>(random.bounded(256));
    }
    return bytes;
}

Project randomProject(QRandomGenerator &random)
{
    Project project;
    project.ledCount = static_cast<qint16>(random.bounded(-5, 1000));
    project.frameRate = static_cast<float>(random.bounded(9999.0));
    if (random.bounded(2) == 0) {
        project.songPath = QString(random.bounded(30), QChar(0x6B4C)) + QStringLiteral("/song.mp3");
    }
    project.tracks.resize(random.bounded(1, 5));
    for (QVector<QByteArray> &track : project.tracks) {
        for (int i = random.bounded(6); i > 0; --i) {
            track.append(randomBytes(random, random.bounded(39, 400)));
        }
    }
    return project;
}

// The reading rules once more, by the stream that defines them.
Project readByStream(const QByteArray &bytes)
{
    QDataStream stream(bytes);
    Project project;
    stream >> project.ledCount >> project.frameRate >> project.songPath;
    project.tracks.resize(1);
    while (!stream.atEnd()) {
        QByteArray item;
        stream >> item;
        if (item == "NEXT") {
            project.tracks.resize(project.tracks.size() + 1);
        } else {
            project.tracks.last().append(item);
        }
    }
    return project;
}

quint32 bitsOf(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

bool sameRate(float a, float b)
{
    return bitsOf(a) == bitsOf(b) || (std::isnan(a) && std::isnan(b));
}

bool same(const Project &a, const Project &b)
{
    return a.ledCount == b.ledCount && sameRate(a.frameRate, b.frameRate) && a.songPath == b.songPath &&
           a.tracks == b.tracks;
}

// What happens to files: cut off, bytes flipped, lengths made absurd, pieces doubled, overwritten with one value.
QByteArray mutated(QByteArray bytes, QRandomGenerator &random)
{
    for (int i = random.bounded(1, 5); i > 0 && !bytes.isEmpty(); --i) {
        const int at = random.bounded(bytes.size());
        switch (random.bounded(6)) {
        case 0:
            bytes.truncate(at);
            break;
        case 1:
            bytes[at] = static_cast<char>(random.bounded(256));
            break;
        case 2:
            bytes.replace(at, 4, QByteArray(4, static_cast<char>(random.bounded(2) == 0 ? 0xFF : 0x7F)));
            break;
        case 3:
            bytes.insert(at, bytes.mid(random.bounded(bytes.size()), random.bounded(200)));
            break;
        case 4:
            bytes.remove(at, random.bounded(20));
            break;
        default:
            bytes.replace(at, 40,
                          QByteArray(random.bounded(400), static_cast<char>(random.bounded(2) == 0 ? 0 : 0xFF)));
            break;
        }
    }
    return bytes;
}

constexpr int mutations = 20000;
constexpr int oldMutations = 5000; // reading times is slow
constexpr int streamShare = 4;     // the stream takes megabytes for each absurd length, so it reads one in so many
constexpr qint64 slack = 64 * 1024;

} // namespace

class TestProjectFile : public QObject
{
    Q_OBJECT

private slots:
    void writesTheKnownBytes();
    void separatesTracks_data();
    void separatesTracks();
    void roundTripsRandomShows();
    void readsMutatedFilesAsTheStreamDoes();
    void takesLittleMemory_data();
    void takesLittleMemory();
    void tellsTheFormatByName_data();
    void tellsTheFormatByName();
    void readsOldLines();
    void dropsIncompleteOldLines_data();
    void dropsIncompleteOldLines();
    void decodesOldText_data();
    void decodesOldText();
    void readsMutatedOldFiles();
};

void TestProjectFile::writesTheKnownBytes()
{
    const QByteArray head = QByteArray::fromHex("0046"
                                                "40A0680000000000"
                                                "00000008006E0075006C006C");
    QCOMPARE(glow::writeProject(oneTrack({})), head);
    QCOMPARE(head.size(), 22);

    Project project = oneTrack({});
    project.tracks.append(QVector<QByteArray>{"blob"});
    QCOMPARE(glow::writeProject(project),
             head + QByteArray::fromHex("000000044E455854") + QByteArray::fromHex("00000004") + "blob");

    const Project read = glow::readProject(head);
    QCOMPARE(read.ledCount, qint16(70));
    QCOMPARE(read.frameRate, 2100.0F);
    QVERIFY(!read.hasSong());
    QCOMPARE(read.tracks, QVector<QVector<QByteArray>>(1));
}

void TestProjectFile::separatesTracks_data()
{
    QTest::addColumn<QVector<QByteArrayList>>("tracks");
    QTest::addColumn<QByteArrayList>("items");
    QTest::newRow("empty track in the middle")
        << QVector<QByteArrayList>{{"aaaaa"}, {}, {"b"}} << QByteArrayList{"aaaaa", "NEXT", "NEXT", "b"};
    QTest::newRow("empty track at the end")
        << QVector<QByteArrayList>{{"a", "b"}, {}} << QByteArrayList{"a", "b", "NEXT"};
    QTest::newRow("empty track at the start") << QVector<QByteArrayList>{{}, {"a"}} << QByteArrayList{"NEXT", "a"};
    QTest::newRow("nearly a separator") << QVector<QByteArrayList>{{"NEXT ", "next", "NEX"}}
                                        << QByteArrayList{"NEXT ", "next", "NEX"};
}

void TestProjectFile::separatesTracks()
{
    QFETCH(const QVector<QByteArrayList>, tracks);
    QFETCH(const QByteArrayList, items);
    Project project = oneTrack({});
    project.tracks.clear();
    for (const QByteArrayList &track : tracks) {
        project.tracks.append(track.toVector());
    }
    const QByteArray bytes = glow::writeProject(project);

    QDataStream stream(bytes);
    stream.skipRawData(22);
    QByteArrayList found;
    while (!stream.atEnd()) {
        QByteArray item;
        stream >> item;
        found.append(item);
    }
    QCOMPARE(found, items);
    QCOMPARE(glow::readProject(bytes).tracks, project.tracks);
}

void TestProjectFile::roundTripsRandomShows()
{
    QRandomGenerator random(1);
    for (int i = 0; i < 500; ++i) {
        const Project project = randomProject(random);
        const QByteArray bytes = glow::writeProject(project);
        QVERIFY(same(glow::readProject(bytes), project));
        QVERIFY(same(readByStream(bytes), project));
    }
}

void TestProjectFile::readsMutatedFilesAsTheStreamDoes()
{
    QRandomGenerator random(2);
    QByteArray original;
    for (int i = 0; i < mutations; ++i) {
        if (i % 50 == 0) {
            original = glow::writeProject(randomProject(random));
        }
        const QByteArray bytes = mutated(original, random);
        Project project;
        {
            const HeapWatch watch;
            project = glow::readProject(bytes);
            QVERIFY2(HeapWatch::peak() <= slack + 8LL * bytes.size(), bytes.toHex().constData());
        }
        if (i % streamShare == 0) {
            QVERIFY2(same(project, readByStream(bytes)), bytes.toHex().constData());
        }
        QVERIFY(same(glow::readProject(glow::writeProject(project)), project));
    }
}

void TestProjectFile::takesLittleMemory_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray head = glow::writeProject(oneTrack({}));
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("one byte") << QByteArray("\x01");
    QTest::newRow("endless song") << head.left(10) + QByteArray::fromHex("7FFFFFFE") + "abcd";
    QTest::newRow("endless blob") << head + QByteArray::fromHex("FFFFFFFE") + "abcd";
    QTest::newRow("blob of 2 GB") << head + QByteArray::fromHex("80000000") + "abcd";
    QTest::newRow("length cut off") << head + QByteArray::fromHex("000000");
    QTest::newRow("a megabyte of zeros") << QByteArray(1 << 20, '\0');
    QTest::newRow("a megabyte of ones") << QByteArray(1 << 20, '\xFF');
    QTest::newRow("nothing but tracks") << head + QByteArray::fromHex("000000044E455854").repeated(1 << 17);
}

void TestProjectFile::takesLittleMemory()
{
    QFETCH(const QByteArray, bytes);
    Project project;
    {
        const HeapWatch watch;
        project = glow::readProject(bytes);
#if defined(__SANITIZE_ADDRESS__)
        QVERIFY(HeapWatch::peak() > 0);
#endif
        QVERIFY2(HeapWatch::peak() <= slack + 8LL * bytes.size(), qPrintable(QString::number(HeapWatch::peak())));
    }
    QVERIFY(same(project, readByStream(bytes)));
}

void TestProjectFile::tellsTheFormatByName_data()
{
    QTest::addColumn<bool>("binary");
    QTest::newRow("/shows/a.gsw3") << true;
    QTest::newRow("/shows/a.gsw") << false;
    QTest::newRow("/shows/a.GSW3") << false;
    QTest::newRow("/old.gsw3/a.gsw") << true;
    QTest::newRow("") << false;
}

void TestProjectFile::tellsTheFormatByName()
{
    QFETCH(const bool, binary);
    QCOMPARE(glow::isProjectPath(QString::fromLatin1(QTest::currentDataTag())), binary);
}

void TestProjectFile::readsOldLines()
{
    const OldProject project = glow::readOldProject("48><1100\r\n"
                                                    "00:00.000><00:05.000><0?1?C:/art/a.png?100|0|1\r\n"
                                                    "00:05.000><01:06.250><1?#ff0000\n"
                                                    "59:59.999><00:01.000><2?3?#ffffff|#000000|HELLO|4|2?12|0|0\n"
                                                    "00:00.001><00:00.002><3?2?#ff0000|#000000|5|0|10?0|1|0");
    QVERIFY(project.hasProp);
    QCOMPARE(project.leds, 48);
    QCOMPARE(project.rate, 1100);
    QCOMPARE(project.patterns.size(), 4);
    QCOMPARE(project.patterns.at(0).settings, QStringLiteral("0?1?C:/art/a.png?100|0|1"));
    QCOMPARE(project.patterns.at(1).start, QTime(0, 0, 5));
    QCOMPARE(project.patterns.at(1).end, QTime(0, 1, 6, 250));
    QCOMPARE(project.patterns.at(1).settings, QStringLiteral("1?#ff0000"));
    QCOMPARE(project.patterns.at(2).start, QTime(0, 59, 59, 999));
    QCOMPARE(project.patterns.at(3).settings, QStringLiteral("3?2?#ff0000|#000000|5|0|10?0|1|0"));
}

void TestProjectFile::dropsIncompleteOldLines_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no end") << QByteArray("00:00.000><1?#ff0000");
    QTest::newRow("no settings") << QByteArray("00:00.000><00:01.000><");
    QTest::newRow("unreadable time") << QByteArray("soon><00:01.000><1?#ff0000");
    QTest::newRow("colour without a name") << QByteArray("00:00.000><00:01.000><1");
    QTest::newRow("picture without flags") << QByteArray("00:00.000><00:01.000><0?1?a.png");
    QTest::newRow("picture with two flags") << QByteArray("00:00.000><00:01.000><0?1?a.png?100|0");
    QTest::newRow("text without a size") << QByteArray("00:00.000><00:01.000><2?3?#ffffff|#000000|HELLO|4?12|0|0");
    QTest::newRow("effect without groups") << QByteArray("00:00.000><00:01.000><3?2?#ff0000");
    QTest::newRow("unknown kind") << QByteArray("00:00.000><00:01.000><4?1?a|b|c|d|e?0|0|0");
    QTest::newRow("endless") << "00:00.000><00:01.000><0?" + QByteArray(1 << 20, '?');
}

void TestProjectFile::dropsIncompleteOldLines()
{
    QFETCH(const QByteArray, line);
    const OldProject project = glow::readOldProject("48><1100\n" + line + "\n00:00.000><00:05.000><1?#00ff00\n" + line);
    QCOMPARE(project.patterns.size(), 1);
    QCOMPARE(project.patterns.first().settings, QStringLiteral("1?#00ff00"));
    QVERIFY(!glow::readOldProject(line + "\n00:00.000><00:05.000><1?#00ff00").hasProp || line.contains("><"));
}

void TestProjectFile::decodesOldText_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");
    const QString chinese = QStringLiteral("文字");
    QTest::newRow("UTF-8") << QByteArray() << chinese.toUtf8() << chinese;
    QTest::newRow("UTF-8 with a mark") << QByteArray("\xEF\xBB\xBF") << chinese.toUtf8() << chinese;
    // No UTF-8; what the locale makes of it depends on the system.
    QTest::newRow("locale") << QByteArray() << QByteArray("caf\xE9") << QString::fromLocal8Bit("caf\xE9");
}

void TestProjectFile::decodesOldText()
{
    QFETCH(const QByteArray, head);
    QFETCH(const QByteArray, text);
    QFETCH(const QString, expected);
    const OldProject project =
        glow::readOldProject(head + "48><1100\n00:00.000><00:05.000><2?1?#ffffff|#000000|" + text + "|0|0?5|0|0\n");
    QVERIFY(project.hasProp);
    QCOMPARE(project.leds, 48);
    QCOMPARE(project.patterns.size(), 1);
    QCOMPARE(project.patterns.first().settings, QStringLiteral("2?1?#ffffff|#000000|%1|0|0?5|0|0").arg(expected));
}

void TestProjectFile::readsMutatedOldFiles()
{
    QRandomGenerator random(3);
    const QByteArray original = "48><1100\r\n"
                                "00:00.000><00:05.000><0?1?C:/art/a.png?100|0|1\r\n"
                                "00:05.000><00:06.000><1?#ff0000\r\n"
                                "00:06.000><00:07.000><2?3?#ffffff|#000000|\xE6\x96\x87|4|2?12|0|0\r\n"
                                "00:07.000><00:08.000><3?2?#ff0000|#000000|5|0|10?0|1|0\r\n";
    int kept = 0;
    for (int i = 0; i < oldMutations; ++i) {
        const QByteArray bytes = mutated(original, random);
        const HeapWatch watch;
        const OldProject project = glow::readOldProject(bytes);
        QVERIFY(HeapWatch::peak() <= slack + 64LL * bytes.size());
        QVERIFY(project.patterns.size() <= bytes.count('\n') + 1);
        kept += project.patterns.size();
    }
    // Most mutations leave most lines whole.
    QVERIFY(kept > oldMutations);
}

QTEST_GUILESS_MAIN(TestProjectFile)
#include "test_projectfile.moc"
