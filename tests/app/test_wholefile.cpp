// Writing a file in one piece: what is there before stays whole whenever the new bytes do not arrive.
#include "app/wholefile.h"
#include "smalldisk.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using glow::WriteResult;

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

void put(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

} // namespace

class TestWholeFile : public QObject
{
    Q_OBJECT

private slots:
    void init() { QVERIFY((dir = std::make_unique<QTemporaryDir>())->isValid()); }
    void writesAndReplaces_data();
    void writesAndReplaces();
    void keepsTheOldFileOnAFullDisk_data();
    void keepsTheOldFileOnAFullDisk();
    void keepsLinksAndPermissions();
    void refusesWhatCannotBeOpened();
    void writesStraightIntoDevices();
    void readsRegularFilesOnly();

private:
    std::unique_ptr<QTemporaryDir> dir;
};

namespace {

// With a name as long as names can be no file can be made beside it, so it is written straight.
void addNames()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("room");
    for (const int room : {2000, 50000, 2000000}) {
        QTest::addRow("beside, room for %d", room) << QStringLiteral("show.gsw3") << room;
        QTest::addRow("straight, room for %d", room) << QString(250, u'x') + QStringLiteral(".gsw3") << room;
    }
}

} // namespace

void TestWholeFile::writesAndReplaces_data()
{
    addNames();
}

void TestWholeFile::writesAndReplaces()
{
    QFETCH(const QString, name);
    const QString path = dir->filePath(name);
    QFETCH(const int, room);
    const QByteArray first(room, 'f');
    QCOMPARE(glow::writeWholeFile(path, first).state, WriteResult::Written);
    QCOMPARE(contentOf(path), first);
    QCOMPARE(glow::writeWholeFile(path, "short").state, WriteResult::Written);
    QCOMPARE(contentOf(path), QByteArray("short"));
    QCOMPARE(QDir(dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList(name));
}

void TestWholeFile::keepsTheOldFileOnAFullDisk_data()
{
    addNames();
}

void TestWholeFile::keepsTheOldFileOnAFullDisk()
{
#ifdef Q_OS_UNIX
    QFETCH(const QString, name);
    QFETCH(const int, room);
    const QString path = dir->filePath(name);
    const QByteArray big(room + 100, 'n');
    {
        const SmallDisk disk(room);
        const WriteResult fresh = glow::writeWholeFile(path, big);
        QCOMPARE(fresh.state, WriteResult::Failed);
        QVERIFY(!fresh.error.isEmpty());
    }
    QVERIFY(!QFile::exists(path));

    const QByteArray old(room - 100, 'o');
    put(path, old);
    {
        const SmallDisk disk(room);
        const WriteResult again = glow::writeWholeFile(path, big);
        QCOMPARE(again.state, WriteResult::Failed);
        QVERIFY(!again.error.isEmpty());
    }
    QCOMPARE(contentOf(path), old);
    QCOMPARE(QDir(dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList(name));
#else
    QSKIP("needs a limit on file sizes");
#endif
}

void TestWholeFile::keepsLinksAndPermissions()
{
    const QString target = dir->filePath(QStringLiteral("target.gsw3"));
    const QString link = dir->filePath(QStringLiteral("link.gsw3"));
    put(target, "old");
    const auto permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    QVERIFY(QFile::setPermissions(target, permissions));
    QVERIFY(QFile::link(target, link));
    QCOMPARE(glow::writeWholeFile(link, "new").state, WriteResult::Written);
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(contentOf(target), QByteArray("new"));
    QCOMPARE(QFile::permissions(target) & ~(QFile::ReadUser | QFile::WriteUser), permissions);
}

void TestWholeFile::refusesWhatCannotBeOpened()
{
    QCOMPARE(glow::writeWholeFile(dir->path(), "x").state, WriteResult::NotOpened);
    QCOMPARE(glow::writeWholeFile(dir->filePath(QStringLiteral("no/such/folder.gsw3")), "x").state,
             WriteResult::NotOpened);
    QCOMPARE(glow::writeWholeFile(QString(), "x").state, WriteResult::NotOpened);
}

void TestWholeFile::writesStraightIntoDevices()
{
    const QString full = QStringLiteral("/dev/full");
    if (!QFile::exists(full)) {
        QSKIP("no such device here");
    }
    const WriteResult result = glow::writeWholeFile(full, "x");
    QCOMPARE(result.state, WriteResult::Failed);
    QVERIFY(!result.error.isEmpty());
    QVERIFY(QFile::exists(full));
    QVERIFY(!QFileInfo(full).isFile());
}

void TestWholeFile::readsRegularFilesOnly()
{
    QByteArray bytes = "untouched";
    QVERIFY(!glow::readWholeFile(dir->path(), bytes));
    QVERIFY(!glow::readWholeFile(dir->filePath(QStringLiteral("absent")), bytes));
#ifdef Q_OS_UNIX
    const QString pipe = dir->filePath(QStringLiteral("pipe"));
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QVERIFY(!glow::readWholeFile(pipe, bytes));
    QVERIFY(!glow::readWholeFile(QStringLiteral("/dev/zero"), bytes));
#endif
    QCOMPARE(bytes, QByteArray("untouched"));
    const QString path = dir->filePath(QStringLiteral("show"));
    put(path, QByteArray("a\0b\r\n", 5));
    QVERIFY(glow::readWholeFile(path, bytes));
    QCOMPARE(bytes, QByteArray("a\0b\r\n", 5));
}

QTEST_GUILESS_MAIN(TestWholeFile)
#include "test_wholefile.moc"
