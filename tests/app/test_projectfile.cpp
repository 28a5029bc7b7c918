// The two project formats as values, on good files and on bad ones.
#include "app/oldproject.h"
#include "app/projectfile.h"
#include "heapwatch.h"

#include <QDataStream>
#include <QRandomGenerator>
#include <QtTest>

#include <cmath>

using glow::OldProject;
using glow::Project;

namespace {

constexpr int mutations = 20000;
constexpr int streamShare = 4; // the stream takes megabytes for each absurd length, so it reads one in so many
constexpr qint64 slack = 64 * 1024;

const QByteArray head = QByteArray::fromHex("004640A068000000000000000008006E0075006C006C");
const QByteArray separator = QByteArray::fromHex("000000044E455854");

Project projectOf(const QVector<QVector<QByteArray>> &tracks)
{
    Project project;
    project.ledCount = 70;
    project.frameRate = 2100;
    project.tracks = tracks;
    return project;
}

Project randomProject(QRandomGenerator &random)
{
    Project project;
    project.ledCount = static_cast<qint16>(random.bounded(-5, 1000));
    project.frameRate = static_cast<float>(random.bounded(9999.0));
    if (random.bounded(2) == 0) {
        project.songPath = QString(random.bounded(30), QChar(0x6B4C)) + "/song.mp3";
    }
    project.tracks.resize(random.bounded(1, 5));
    for (QVector<QByteArray> &track : project.tracks) {
        for (int i = random.bounded(6); i > 0; --i) {
            track.append(QByteArray(random.bounded(39, 400), Qt::Uninitialized));
            for (char &byte : track.last()) {
                byte = static_cast<char>(random.bounded(256));
            }
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

bool same(const Project &a, const Project &b)
{
    const bool sameRate = a.frameRate == b.frameRate || (std::isnan(a.frameRate) && std::isnan(b.frameRate));
    return a.ledCount == b.ledCount && sameRate && a.songPath == b.songPath && a.tracks == b.tracks;
}

// Reads with a watch on the memory that it takes.
void readLightly(const QByteArray &bytes, Project &project)
{
    const HeapWatch watch;
    project = glow::readProject(bytes);
#if defined(__SANITIZE_ADDRESS__)
    QVERIFY(HeapWatch::peak() > 0);
#endif
    QVERIFY2(HeapWatch::peak() <= slack + 8LL * bytes.size(), bytes.left(1000).toHex().constData());
}

// What happens to files: cut off, bytes flipped, lengths made absurd, pieces lost or doubled, stretches of one value.
QByteArray mutated(QByteArray bytes, QRandomGenerator &random)
{
    for (int i = random.bounded(1, 5); i > 0 && !bytes.isEmpty(); --i) {
        const int at = random.bounded(bytes.size());
        const char values[] = {'\0', '\xFF', '\x7F', static_cast<char>(random.bounded(256))};
        const int length = random.bounded(2) == 0 ? random.bounded(1, 5) : random.bounded(400);
        const QByteArray piece = random.bounded(3) == 0 ? bytes.mid(random.bounded(bytes.size()), length)
                                                        : QByteArray(length, values[random.bounded(4)]);
        bytes.replace(at, random.bounded(3) == 0 ? random.bounded(40) : length, random.bounded(4) == 0 ? "" : piece);
        if (random.bounded(8) == 0) {
            bytes.truncate(at);
        }
    }
    return bytes;
}

} // namespace

class TestProjectFile : public QObject
{
    Q_OBJECT

private slots:
    void writesTheKnownBytes()
    {
        const QByteArray x = QByteArray::fromHex("00000001") + 'x';
        const QByteArray odd = QByteArray::fromHex("00000003") + "NEX" + QByteArray::fromHex("00000005") + "NEXT ";
        const QVector<QPair<QVector<QVector<QByteArray>>, QByteArray>> cases{
            {{{}}, ""},
            {{{"x"}, {}, {"x"}}, x + separator + separator + x},
            {{{"x", "x"}, {}}, x + x + separator},
            {{{}, {"x"}}, separator + x},
            {{{"NEX", "NEXT "}}, odd},
        };
        for (const auto &[tracks, items] : cases) {
            QCOMPARE(glow::writeProject(projectOf(tracks)), head + items);
            QVERIFY(same(glow::readProject(head + items), projectOf(tracks)));
        }
        QVERIFY(!glow::readProject(head).hasSong() && !glow::readProject(QByteArray()).hasSong());
        QVERIFY(glow::isProjectPath("/shows/a.gsw3") && glow::isProjectPath("/old.gsw3/a.gsw"));
        QVERIFY(!glow::isProjectPath("/shows/a.gsw") && !glow::isProjectPath("/shows/a.GSW3"));
    }

    void readsWholeAndMutatedFilesAsTheStreamDoes()
    {
        QRandomGenerator random(2);
        QByteArray whole;
        for (int i = 0; i < mutations; ++i) {
            if (i % 50 == 0) {
                const Project original = randomProject(random);
                whole = glow::writeProject(original);
                QVERIFY(same(readByStream(whole), original));
                QVERIFY(same(glow::readProject(whole), original));
            }
            const QByteArray bytes = mutated(whole, random);
            Project project;
            readLightly(bytes, project);
            QVERIFY2(i % streamShare > 0 || same(project, readByStream(bytes)), bytes.toHex().constData());
            QVERIFY(same(glow::readProject(glow::writeProject(project)), project));
        }
    }

    void readsAbsurdFilesAsTheStreamDoes()
    {
        for (const QByteArray &bytes :
             {QByteArray(), QByteArray("\x01"),
              head.left(10) + QByteArray::fromHex("7FFFFFFE") + "abcd", // an endless song
              head + QByteArray::fromHex("FFFFFFFE") + "abcd",          // endless blobs
              head + QByteArray::fromHex("80000000") + "abcd",
              head + QByteArray::fromHex("000000"), // a length cut off
              QByteArray(1 << 20, '\0'), QByteArray(1 << 20, '\xFF'), head + separator.repeated(1 << 17)}) {
            Project project;
            readLightly(bytes, project);
            QVERIFY(same(project, readByStream(bytes)));
        }
    }

    void readsOldLines()
    {
        const OldProject project = glow::readOldProject("48><1100\r\n"
                                                        "00:00.000><00:05.000><0?1?C:/art/a.png?100|0|1\r\n"
                                                        "00:05.000><01:06.250><1?#ff0000\n"
                                                        "59:59.999><00:01.000><2?3?#ffffff|#000000|HELLO|4|2?12|0|0\n"
                                                        "00:00.001><00:00.002><3?2?#ff0000|#000000|5|0|10?0|1|0><more");
        QVERIFY(project.hasProp);
        QCOMPARE(project.leds, 48);
        QCOMPARE(project.rate, 1100);
        QStringList read;
        for (const glow::OldPattern &pattern : project.patterns) {
            read
                << QString("%1 %2 ").arg(pattern.start.msecsSinceStartOfDay()).arg(pattern.end.msecsSinceStartOfDay()) +
                       pattern.settings;
        }
        QCOMPARE(read, (QStringList{"0 5000 0?1?C:/art/a.png?100|0|1", "5000 66250 1?#ff0000",
                                    "3599999 1000 2?3?#ffffff|#000000|HELLO|4|2?12|0|0",
                                    "1 2 3?2?#ff0000|#000000|5|0|10?0|1|0"}));
        QVERIFY(!glow::readOldProject("48\n00:00.000><00:05.000><1?#00ff00").hasProp);
        QVERIFY(!glow::readOldProject("").hasProp);
    }

    void dropsIncompleteOldLines()
    {
        const QByteArray good = "\n00:00.000><00:05.000><1?#00ff00\n";
        for (const QByteArray &line :
             {QByteArray(), QByteArray("00:00.000><1?#ff0000"), QByteArray("00:00.000><00:01.000><"),
              QByteArray("soon><00:01.000><1?#ff0000"), QByteArray("00:00.000><00:01.000><1"),
              QByteArray("00:00.000><00:01.000><0?1?a.png"), QByteArray("00:00.000><00:01.000><0?1?a.png?100|0"),
              QByteArray("00:00.000><00:01.000><2?3?#ffffff|#000000|HELLO|4?12|0|0"),
              QByteArray("00:00.000><00:01.000><3?2?#ff0000"), QByteArray("00:00.000><00:01.000><4?1?a|b|c|d|e?0|0|0"),
              QByteArray("00:00.000><00:01.000><0?" + QByteArray(1 << 20, '?'))}) {
            const OldProject project = glow::readOldProject("48><1100\n" + line + good + line);
            QVERIFY2(project.patterns.size() == 1, line.left(80).constData());
            QCOMPARE(project.patterns.first().settings, QString("1?#00ff00"));
        }
    }

    void decodesOldText()
    {
        // With and without a mark, and what is no UTF-8: the locale's, and what that makes of it depends on the system.
        const QVector<QPair<QByteArray, QString>> texts{{"48|\xE6\x96\x87", "文"},
                                                        {"\xEF\xBB\xBF"
                                                         "48|\xE6\x96\x87",
                                                         "文"},
                                                        {"48|caf\xE9", QString::fromLocal8Bit("caf\xE9")}};
        for (const auto &[bytes, text] : texts) {
            const QByteArrayList parts = bytes.split('|');
            const OldProject project = glow::readOldProject(
                parts.at(0) + "><1100\n00:00.000><00:05.000><2?1?#ffffff|#000000|" + parts.at(1) + "|0|0?5|0|0\n");
            QCOMPARE(project.leds, 48);
            QCOMPARE(project.patterns.size(), 1);
            QCOMPARE(project.patterns.first().settings, QString("2?1?#ffffff|#000000|%1|0|0?5|0|0").arg(text));
        }
    }
};

QTEST_GUILESS_MAIN(TestProjectFile)
#include "test_projectfile.moc"
