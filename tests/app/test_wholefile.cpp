// Writing a file in one piece: what is there before stays whole whenever the new bytes do not arrive.
#include "app/wholefile.h"
#include "smalldisk.h"
#include "support/samples.h"

#include <QTemporaryDir>
#include <QtTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using glow::WriteResult;

class TestWholeFile : public QObject
{
    Q_OBJECT

private slots:
    void replacesOrKeepsTheOldFile()
    {
        // With a name as long as names can be no file can be made beside it, so it is written straight.
        for (const QString &name : {QString("show.gsw3"), QString(250, 'x') + ".gsw3"}) {
            for (const int room : {2000, 50000, 2000000}) {
                const QTemporaryDir dir;
                const QString path = dir.filePath(name);
                QCOMPARE(glow::writeWholeFile(path, QByteArray(room, 'f')).state, WriteResult::Written);
                QCOMPARE(contentOf(path), QByteArray(room, 'f'));
                QCOMPARE(glow::writeWholeFile(path, "short").state, WriteResult::Written);
                QCOMPARE(contentOf(path), QByteArray("short"));
#ifdef Q_OS_UNIX
                for (const QByteArray &old : {QByteArray(room - 100, 'o'), QByteArray()}) {
                    QVERIFY(old.isEmpty() ? QFile::remove(path) : put(path, old));
                    {
                        const SmallDisk disk(room);
                        const WriteResult result = glow::writeWholeFile(path, QByteArray(room + 100, 'n'));
                        QCOMPARE(result.state, WriteResult::Failed);
                        QVERIFY(!result.error.isEmpty());
                    }
                    QCOMPARE(QFile::exists(path), !old.isEmpty());
                    QVERIFY(old.isEmpty() || contentOf(path) == old);
                    // Nothing else stays beside it.
                    QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).size(), old.isEmpty() ? 0 : 1);
                }
#endif
            }
        }
    }

    void keepsLinksAndPermissions()
    {
        const QTemporaryDir dir;
        const QString target = dir.filePath("target.gsw3");
        const QString link = dir.filePath("link.gsw3");
        const auto permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
        QVERIFY(put(target, "old") && QFile::setPermissions(target, permissions) && QFile::link(target, link));
        QCOMPARE(glow::writeWholeFile(link, "new").state, WriteResult::Written);
        QVERIFY(QFileInfo(link).isSymLink());
        QCOMPARE(contentOf(target), QByteArray("new"));
        QCOMPARE(QFile::permissions(target) & ~(QFile::ReadUser | QFile::WriteUser), permissions);
    }

    void refusesWhatCannotBeOpened()
    {
        const QTemporaryDir dir;
        for (const QString &path : {dir.path(), dir.filePath("no/such/folder.gsw3"), QString()}) {
            QCOMPARE(glow::writeWholeFile(path, "x").state, WriteResult::NotOpened);
        }
        // A device is opened, and written straight.
        if (QFile::exists("/dev/full")) {
            const WriteResult result = glow::writeWholeFile("/dev/full", "x");
            QCOMPARE(result.state, WriteResult::Failed);
            QVERIFY(!result.error.isEmpty());
            QVERIFY(QFile::exists("/dev/full") && !QFileInfo("/dev/full").isFile());
        }
    }

    void readsRegularFilesOnly()
    {
        const QTemporaryDir dir;
        QByteArray bytes = "untouched";
        QStringList refused{dir.path(), dir.filePath("absent"), "/dev/zero"};
        const QString path = dir.filePath("show");
#ifdef Q_OS_UNIX
        refused << dir.filePath("pipe");
        QCOMPARE(mkfifo(QFile::encodeName(refused.last()).constData(), 0600), 0);
        // More than a byte array holds: part of a file is not the file.
        refused << dir.filePath("endless");
        QVERIFY(put(refused.last()) && QFile::resize(refused.last(), qint64(1) << 31));
#endif
        for (const QString &name : qAsConst(refused)) {
            QVERIFY2(!glow::readWholeFile(name, bytes), qPrintable(name));
            QCOMPARE(bytes, QByteArray("untouched"));
        }
        QVERIFY(put(path, QByteArray("a\0b\r\n", 5)));
        QVERIFY(glow::readWholeFile(path, bytes));
        QCOMPARE(bytes, QByteArray("a\0b\r\n", 5));
    }
};

QTEST_GUILESS_MAIN(TestWholeFile)
#include "test_wholefile.moc"
