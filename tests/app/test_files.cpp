// What the program writes, as values: the pattern record, both project formats, whole files; on good bytes and on bad
// ones. And the rules of repeats and props.
#include "show/base/wholefile.h"
#include "show/model/gadgetcatalogue.h"
#include "show/model/oldproject.h"
#include "show/model/patternrecord.h"
#include "show/model/projectfile.h"
#include "show/model/repeatrules.h"
#include "show/model/settingstext.h"
#include "smalldisk.h"
#include "support/samples.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using glow::Project;
using glow::WriteResult;

namespace {

const QByteArray head = QByteArray::fromHex("004640A068000000000000000008006E0075006C006C");
const QByteArray separator = QByteArray::fromHex("000000044E455854");

} // namespace

class TestFiles : public QObject
{
    Q_OBJECT

private slots:
    void blobHasTheStatedBytes()
    {
        const QByteArray blob = patternBlob("1?#0a", 1002, 59003, QColor(10, 20, 30), 7, 12);
        QVERIFY(blob.startsWith(QByteArray::fromHex("00000001") + "\x89PNG\r\n\x1a\n"));
        const int png = blob.indexOf("IEND") + 8;                           // the chunk's name and its checksum
        QCOMPARE(blob.mid(png).toHex(), QByteArray("000003ea0000ea65"       // 1002 and 60005 ms
                                                   "01ffff0a0a14141e1e0000" // each channel's byte doubled
                                                   "00000007000000010000000c"
                                                   "0000000a0031003f002300300061"));
        const glow::PatternRecord back = glow::readPattern(blob);
        QCOMPARE(back.thumbnail.size(), QSize(40, 85));
        QCOMPARE(back.thumbnail.toImage().pixelColor(1, 1), QColor(10, 20, 30));
        QCOMPARE(glow::writePattern(back), blob);

        const QByteArray least = glow::writePattern(glow::PatternRecord());
        QCOMPARE(least.toHex(), QByteArray("00000000ffffffffffffffff00ffff0000000000000000"
                                           "000000000000000000000000ffffffff"));
        QVERIFY(glow::readPattern(least).settingsText.isNull());

        // A foreign picture that claims more than there can be.
        QByteArray huge = blob;
        const int header = huge.indexOf("IHDR") + 4;
        qToBigEndian<quint32>(60000, huge.data() + header);
        qToBigEndian<quint32>(60000, huge.data() + header + 4);
        QVERIFY(glow::readPattern(huge).thumbnail.isNull());

        glow::PatternRecord longText = back;
        longText.thumbnail = back.thumbnail.scaled(32767, 85);
        QCOMPARE(glow::readPattern(glow::writePattern(longText)).thumbnail.width(), 32767);
    }

    void repeatsFollowTheirTwoRules()
    {
        using Case = std::tuple<double, int, int, float, int, int>;
        for (const auto &[seconds, speed, width, rate, suggested, placed] :
             {Case{5.0, 10, 500, 1100.0F, 10, 10},
              {5.0, 10, 500, 1500.0F, 10, 10}, // not yet a high rate
              {5.0, 10, 500, 2100.0F, 15, 20},
              {2.45, 10, 700, 1100.0F, 4, 4}, // 3.5 rounds up
              {-0.7, 10, 500, 2100.0F, 1, 1},
              {5.0, 10, 0, 2100.0F, 1, 1},
              // Single precision lifts what double precision would leave below one half: the sum
              // 313.49999999999994 + 0.5, the quotient 73457.497.
              {25.08, 12, 144, 2100.0F, 314, 418},
              {877.409, 18, 43, 2100.0F, 55093, 73458}}) {
            QCOMPARE(glow::suggestedRepeat(seconds, speed, width, rate), suggested);
            QCOMPARE(glow::placedRepeat(qRound(seconds * 1000), speed, width, rate), placed);
        }
    }

    void catalogueSkipsBrokenRows()
    {
        QBuffer text;
        text.setData("36,1333,One\r\nbroken\r\n48,1100,Two\n");
        QVERIFY(text.open(QIODevice::ReadOnly));
        QCOMPARE(glow::findGadget(glow::readGadgets(text), 48, 1100.0F), 1);
    }

    void projectsHaveTheKnownBytes()
    {
        const QByteArray x = QByteArray::fromHex("00000001") + 'x';
        const QByteArray odd = QByteArray::fromHex("00000003") + "NEX" + QByteArray::fromHex("00000005") + "NEXT ";
        const QVector<QPair<QVector<QVector<QByteArray>>, QByteArray>> cases{
            {{{}}, ""},
            {{{"x"}, {}, {"x"}}, x + separator + separator + x},
            {{{"x", "x"}, {}}, x + x + separator},
            {{{}, {"NEX", "NEXT "}}, separator + odd},
        };
        for (const auto &[tracks, items] : cases) {
            QCOMPARE(glow::writeProject(Project{70, 2100.0F, "null", tracks}), head + items);
            const Project back = glow::readProject(head + items);
            QVERIFY(back.ledCount == 70 && back.frameRate == 2100.0F && back.songPath == "null");
            QCOMPARE(back.tracks, tracks);
        }
        // Cut off or foreign: what is not there whole is empty, and a track is there in any case.
        QVERIFY(!glow::readProject(head).hasSong() && !glow::readProject(head.left(16)).hasSong());
        QCOMPARE(glow::readProject(head.left(10) + QByteArray::fromHex("00000003") + x).songPath, QString()); // odd
        QCOMPARE(glow::readProject(head.left(10) + QByteArray::fromHex("00000003") + x).tracks.first().first(),
                 QByteArray("x"));
        for (const char *end : {"00", "0000000278", "fffffffe78", "ffffffff"}) {
            QCOMPARE(glow::readProject(head + x + QByteArray::fromHex(end)).tracks,
                     (decltype(Project::tracks){{"x", ""}}));
        }
        const Project none = glow::readProject(QByteArray());
        QVERIFY(none.ledCount == 0 && none.frameRate == 0 && none.tracks.size() == 1 && !none.hasSong());
        QVERIFY(glow::isProjectPath("/old.gsw3/a.gsw") && !glow::isProjectPath("/shows/a.GSW3"));
    }

    void oldLinesAreWholeOrDropped()
    {
        const QByteArray good = "\n59:59.999><00:05.250><1?#00ff00><more\n";
        QByteArrayList bad{"", "00:00.000><1?#ff0000", "soon><00:01.000><1?#ff0000"};
        for (const QByteArray &settings : {QByteArray(), QByteArray("1"), QByteArray("0?1?a.png?100|0"),
                                           QByteArray("3?2?#ff0000"), QByteArray("2?3?#ffffff|#000000|HELLO|4?12|0|0"),
                                           QByteArray("4?1?a|b|c|d|e?0|0|0"), "0?" + QByteArray(1 << 20, '?')}) {
            bad << "00:00.000><00:01.000><" + settings;
        }
        for (const QByteArray &line : qAsConst(bad)) {
            const glow::OldProject project = glow::readOldProject("48><1100\n" + line + good + line);
            QVERIFY2(project.patterns.size() == 1, line.left(80).constData());
            const glow::OldPattern &pattern = project.patterns.first();
            QVERIFY(pattern.start == QTime(0, 59, 59, 999) && pattern.end == QTime(0, 0, 5, 250));
            QCOMPARE(glow::composeSettings(pattern.settings, 1), QString("1?#00ff00"));
            QVERIFY(!pattern.repeats.has_value());
        }
        QVERIFY(!glow::readOldProject("48" + good).hasProp && !glow::readOldProject("").hasProp);

        // Text with and without a mark, and what is no UTF-8: the locale's, which depends on the system.
        using Text = std::tuple<QByteArray, QByteArray, QString>;
        for (const auto &[mark, bytes, text] : {Text{"", "\xE6\x96\x87", "文"},
                                                {"\xEF\xBB\xBF", "\xE6\x96\x87", "文"},
                                                {"", "caf\xE9", QString::fromLocal8Bit("caf\xE9")}}) {
            const glow::OldProject project = glow::readOldProject(
                mark + "48><1100\n00:00.000><00:05.000><2?1?#ffffff|#000000|" + bytes + "|0|0?5|0|0\n");
            QCOMPARE(project.leds, 48);
            QCOMPARE(glow::composeSettings(project.patterns.value(0).settings, *project.patterns.value(0).repeats),
                     QString("2?1?#ffffff|#000000|%1|0|0?5|0|0").arg(text));
        }
    }

    void failedWriteKeepsTheOldFile()
    {
        // With a name as long as names can be no file can be made beside it, so it is written straight.
        for (const QString &name : {QString("show.gsw3"), QString(250, 'x') + ".gsw3"}) {
            const int room = 50000;
            const QTemporaryDir dir;
            const QString path = dir.filePath(name);
            for (const QByteArray &bytes : {QByteArray(room, 'f'), QByteArray("short")}) {
                QCOMPARE(glow::writeWholeFile(path, bytes).state, WriteResult::Written);
                QCOMPARE(contentOf(path), bytes);
            }
            for (const int old : {room - 100, 0}) {
                QVERIFY(old == 0 ? QFile::remove(path) : put(path, QByteArray(old, 'o')));
                if (SmallDisk::works) {
                    const SmallDisk disk(room);
                    const WriteResult result = glow::writeWholeFile(path, QByteArray(room + 100, 'n'));
                    QVERIFY(result.state == WriteResult::Failed && !result.error.isEmpty());
                }
                QVERIFY(old == 0 ? !QFile::exists(path) : contentOf(path) == QByteArray(old, 'o'));
                // Nothing else stays beside it.
                QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).size(), old == 0 ? 0 : 1);
            }
        }
    }

    // Written straight, where no other file may be made: what stood there is put back when the disk is full.
    void fullDiskKeepsAFileInALockedFolder()
    {
        const QTemporaryDir dir;
        const QString path = dir.filePath("show.gsw3");
        QVERIFY(put(path, QByteArray(49900, 'o')));
        const LockedFolder folder(dir.path(), path);
        QVERIFY(folder.isReady);
        if (SmallDisk::works && LockedFolder::works) {
            const SmallDisk disk(50000);
            QCOMPARE(glow::writeWholeFile(path, QByteArray(50100, 'n')).state, WriteResult::Failed);
            QCOMPARE(contentOf(path), QByteArray(49900, 'o'));
        }
        QCOMPARE(glow::writeWholeFile(path, "short").state, WriteResult::Written);
        QCOMPARE(contentOf(path), QByteArray("short"));
    }

    void writingKeepsLinksAndRefusesWhatIsNoFile()
    {
        const QTemporaryDir dir;
        const QString target = dir.filePath("target.gsw3");
        const QString link = dir.filePath("link.gsw3");
        const auto permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
        QVERIFY(put(target, "old") && QFile::setPermissions(target, permissions) && QFile::link(target, link));
        QCOMPARE(glow::writeWholeFile(link, "new").state, WriteResult::Written);
        QVERIFY(QFileInfo(link).isSymLink() && contentOf(target) == "new");
        QCOMPARE(QFile::permissions(target) & ~(QFile::ReadUser | QFile::WriteUser), permissions);
        for (const QString &path : {dir.path(), dir.filePath("no/such/folder.gsw3"), QString()}) {
            QCOMPARE(glow::writeWholeFile(path, "x").state, WriteResult::NotOpened);
        }
        // A device is opened, and written straight.
        if (QFile::exists("/dev/full")) {
            const WriteResult result = glow::writeWholeFile("/dev/full", "x");
            QVERIFY(result.state == WriteResult::Failed && !result.error.isEmpty() && QFile::exists("/dev/full"));
        }
    }

    void onlyRegularFilesAreRead()
    {
        const QTemporaryDir dir;
        QStringList refused{dir.path(), dir.filePath("absent"), "/dev/zero"};
#ifdef Q_OS_UNIX
        refused << dir.filePath("pipe");
        QCOMPARE(mkfifo(QFile::encodeName(refused.last()).constData(), 0600), 0);
        // More than a byte array holds: part of a file is not the file.
        refused << dir.filePath("endless");
        QVERIFY(put(refused.last()) && QFile::resize(refused.last(), qint64(1) << 31));
#endif
#ifdef Q_OS_LINUX
        refused << "/proc/self/mem"; // can be opened, and reading fails
#endif
        for (const QString &name : qAsConst(refused)) {
            QVERIFY2(!glow::readWholeFile(name).has_value(), qPrintable(name));
        }
    }
};

QTEST_MAIN(TestFiles)
#include "test_files.moc"
