// Finding lost pictures in folders, and reading the update server's answer.
#include "library/missingpictures.h"
#include "library/updatereply.h"
#include "support/samples.h"

#include <QTemporaryDir>
#include <QtTest>

class TestLibrary : public QObject
{
    Q_OBJECT

private slots:
    void knowsLostPictures();
    void findsPictures();
    void readsUpdateReplies();
};

void TestLibrary::knowsLostPictures()
{
    const QTemporaryDir dir;
    const QString here = dir.filePath("here.png");
    QVERIFY(put(here));
    const auto picture = [](const QString &path) { return QString("0?1?%1?100|0|1").arg(path); };

    QVERIFY(!glow::isPictureLost(picture(here)));
    QVERIFY(!glow::isPictureLost(picture(here + "|gone.png"))); // only what stands before the "|" counts
    QVERIFY(glow::isPictureLost(picture(here + "x")));
    QVERIFY(glow::isPictureLost(picture(QString())));
    for (const char *text : {"", "0", "0?1", "1?#ff0000", "2?3?gone.png|#000000|HELLO|4|2?12|0|0", "3?2?gone?0|1|0"}) {
        QVERIFY2(!glow::isPictureLost(text), text);
    }
    QCOMPARE(glow::lostPictureName(picture("/old/place/a.png")), QString("a.png"));
    QCOMPARE(glow::lostPictureName(picture("C:\\art\\a.png")), QString("C:\\art\\a.png"));
    QCOMPARE(glow::lostPictureName(picture("/old/place/")), QString());
}

void TestLibrary::findsPictures()
{
    const QTemporaryDir dir;
    const QString root = dir.path();
    for (const char *file : {"/one/two/three/data.png.bak", "/one/Deep.png", "/one/shot.gif/inside.txt"}) {
        QVERIFY(put(root + file));
    }
    QCOMPARE(glow::findPicture(root, "a.png"), root + "/one/two/three/data.png.bak");
    // Case counts, a folder is no picture, and only the name is looked at; an empty one is found nowhere.
    for (const char *name : {"deep.png", "shot.gif", "two/three", ""}) {
        QCOMPARE(glow::findPicture(root, name), QString());
    }
    QCOMPARE(glow::findPicture(root + "/none", "a.png"), QString());

    // A relative folder still gives an absolute path.
    const QString relative = QDir::current().relativeFilePath(root + "/one");
    QCOMPARE(glow::findPicture(relative, "Deep"), root + "/one/Deep.png");
}

void TestLibrary::readsUpdateReplies()
{
    const struct
    {
        const char *body;
        QString line;
        double version;
        QString note;
    } rows[] = {{"", "", 0, ""},
                {"3.104", "3.104", 3.104, ""},
                {"3.2\r\n新<b>版</b>&amp;好;;more;;", "3.2\r\n", 3.2, "新<b>版</b>&amp;好"},
                {"4\na\nb", "4\n", 4, "a\nb"},
                {"\n3.2", "\n", 0, "3.2"},
                {"<html>\n", "<html>\n", 0, ""}};
    for (const auto &row : rows) {
        const glow::UpdateReply reply = glow::parseUpdateReply(row.body);
        QCOMPARE(reply.versionLine, row.line);
        QCOMPARE(reply.version, row.version);
        QCOMPARE(reply.note, row.note);
    }
}

QTEST_GUILESS_MAIN(TestLibrary)
#include "test_library.moc"
