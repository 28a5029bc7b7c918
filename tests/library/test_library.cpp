// Finding lost pictures in folders, and reading the update server's answer.
#include "library/missingpictures.h"
#include "library/updatereply.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace {

void touch(const QString &path)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

} // namespace

class TestLibrary : public QObject
{
    Q_OBJECT

private slots:
    void knowsLostPictures();
    void findsPictures();
    void readsUpdateReplies_data();
    void readsUpdateReplies();
};

void TestLibrary::knowsLostPictures()
{
    const QTemporaryDir dir;
    const QString here = dir.filePath(QStringLiteral("here.png"));
    touch(here);
    const auto picture = [](const QString &path) { return QStringLiteral("0?1?%1?100|0|1").arg(path); };

    QVERIFY(!glow::isPictureLost(picture(here)));
    QVERIFY(
        !glow::isPictureLost(picture(here + QStringLiteral("|gone.png")))); // only what stands before the "|" counts
    QVERIFY(glow::isPictureLost(picture(here + QStringLiteral("x"))));
    QVERIFY(glow::isPictureLost(picture(QString())));
    for (const char *text : {"", "0", "0?1", "1?#ff0000", "2?3?gone.png|#000000|HELLO|4|2?12|0|0", "3?2?gone?0|1|0"}) {
        QVERIFY2(!glow::isPictureLost(QString::fromLatin1(text)), text);
    }

    QCOMPARE(glow::lostPictureName(picture(QStringLiteral("/old/place/a.png"))), QStringLiteral("a.png"));
    QCOMPARE(glow::lostPictureName(picture(QStringLiteral("C:\\art\\a.png"))), QStringLiteral("C:\\art\\a.png"));
    QCOMPARE(glow::lostPictureName(picture(QStringLiteral("/old/place/"))), QString());
}

void TestLibrary::findsPictures()
{
    const QTemporaryDir dir;
    const QString root = dir.path();
    touch(root + QStringLiteral("/one/two/three/data.png.bak"));
    touch(root + QStringLiteral("/one/Deep.png"));
    touch(root + QStringLiteral("/one/shot.gif/inside.txt"));
    const auto found = [&root](const char *name) { return glow::findPicture(root, QString::fromLatin1(name)); };

    QCOMPARE(found("a.png"), root + QStringLiteral("/one/two/three/data.png.bak"));
    QCOMPARE(found("Deep.png"), root + QStringLiteral("/one/Deep.png"));
    QCOMPARE(found("deep.png"), QString());
    QCOMPARE(found("shot.gif"), QString()); // a folder is no picture
    QCOMPARE(found("two/three"), QString());
    QCOMPARE(found(""), QString());
    QCOMPARE(glow::findPicture(root + QStringLiteral("/none"), QStringLiteral("a.png")), QString());

    // A relative folder still gives an absolute path.
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(root));
    const QString relative = glow::findPicture(QStringLiteral("one"), QStringLiteral("Deep"));
    QDir::setCurrent(before);
    QCOMPARE(relative, QDir(root).filePath(QStringLiteral("one/Deep.png")));
}

void TestLibrary::readsUpdateReplies_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("line");
    QTest::addColumn<double>("version");
    QTest::addColumn<QString>("note");
    QTest::newRow("nothing") << QByteArray() << QString() << 0.0 << QString();
    QTest::newRow("version alone") << QByteArray("3.104") << QStringLiteral("3.104") << 3.104 << QString();
    QTest::newRow("note and fields") << QByteArray("3.2\r\n新<b>版</b>;;more;;") << QStringLiteral("3.2\r\n") << 3.2
                                     << QStringLiteral("新<b>版</b>");
    QTest::newRow("note of two lines") << QByteArray("4\na\nb") << QStringLiteral("4\n") << 4.0
                                       << QStringLiteral("a\nb");
    QTest::newRow("empty first line") << QByteArray("\n3.2") << QStringLiteral("\n") << 0.0 << QStringLiteral("3.2");
    QTest::newRow("a page") << QByteArray("<html>\n") << QStringLiteral("<html>\n") << 0.0 << QString();
}

void TestLibrary::readsUpdateReplies()
{
    QFETCH(const QByteArray, body);
    const glow::UpdateReply reply = glow::parseUpdateReply(body);
    QTEST(reply.versionLine, "line");
    QTEST(reply.version, "version");
    QTEST(reply.note, "note");
}

QTEST_GUILESS_MAIN(TestLibrary)
#include "test_library.moc"
