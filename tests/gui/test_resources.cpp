// What is compiled into the program: pictures, style sheet, prop catalogue and the English translation.
#include "forms/style.h"
#include "resources/resources.h"

#include <QFile>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QMessageBox>
#include <QRegularExpression>
#include <QTranslator>
#include <QtTest>

class TestResources : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { glow::initResources(); }
    void picturesLoad();
    void iconsAreLightOnNothing();
    void styleSheetParsesAndFindsItsPictures();
    void propCatalogueKeepsItsLineEnds();
    void englishHasTheRightContexts_data();
    void englishHasTheRightContexts();
};

void TestResources::picturesLoad()
{
    const QStringList names{"play.png",       "pause.png",      "stop.png",      "song.png",    "spaces.png",
                            "capture.png",    "pen.png",        "eraser.png",    "delete.png",  "update.png",
                            "NEW.png",        "load.png",       "zoomin.png",    "zoomout.png", "flash.bmp",
                            "wipe.bmp",       "jump.bmp",       "fade.bmp",      "rainbow.bmp", "arrow.bmp",
                            "arrow2.bmp",     "line1.bmp",      "line2.bmp",     "brick.bmp",   "static (1).jpg",
                            "static (2).jpg", "static (3).jpg", "static (4).jpg"};
    for (const QString &name : names)
        QVERIFY2(!QImage(":/icon/" + name).isNull(), qPrintable(name));
    for (const QString &name : {QStringLiteral("store_banner.png"), QStringLiteral("LOGO3.png")})
        QVERIFY2(!QImage(":/pic/pic/" + name).isNull(), qPrintable(name));
    // Task bars and title bars ask for different sizes; one that is missing would be scaled from another.
    const QList<QSize> sizes = QIcon(QStringLiteral(":/appicon.ico")).availableSizes();
    for (const int edge : {16, 24, 32, 48, 64, 256})
        QVERIFY2(sizes.contains(QSize(edge, edge)), qPrintable(QString::number(edge)));
}

// The icons stand on a dark surface: a dark or an opaque one would be a mistake of the renderer.
void TestResources::iconsAreLightOnNothing()
{
    for (const QString &name : {QStringLiteral("play"), QStringLiteral("pen"), QStringLiteral("load"),
                                QStringLiteral("zoomin"), QStringLiteral("delete")}) {
        const QImage icon = QImage(":/icon/" + name + ".png").convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(qAlpha(icon.pixel(0, 0)), 0);
        int drawn = 0;
        for (int y = 0; y < icon.height(); ++y) {
            for (int x = 0; x < icon.width(); ++x) {
                if (qAlpha(icon.pixel(x, y)) > 200) {
                    ++drawn;
                    QVERIFY2(qGray(icon.pixel(x, y)) > 140, qPrintable(name));
                }
            }
        }
        QVERIFY2(drawn * 50 > icon.width() * icon.height(), qPrintable(name));
    }
}

void TestResources::styleSheetParsesAndFindsItsPictures()
{
    const QString sheet = glow::styleSheet();
    const QRegularExpression url(QStringLiteral("url\\(([^)]*)\\)"));
    int found = 0;
    for (QRegularExpressionMatchIterator it = url.globalMatch(sheet); it.hasNext(); ++found) {
        const QString path = it.next().captured(1);
        QVERIFY2(!QImage(path).isNull(), qPrintable(path));
    }
    QVERIFY(found > 10);
    // One unreadable rule makes Qt drop the sheet; then the label would keep the palette's colour.
    QWidget window;
    QMessageBox box(&window);
    glow::applyStyle(&window);
    box.setText(QStringLiteral("text"));
    box.ensurePolished();
    QLabel *label = box.findChild<QLabel *>(QStringLiteral("qt_msgbox_label"));
    QVERIFY(label);
    label->ensurePolished();
    QCOMPARE(label->palette().color(QPalette::WindowText), QColor(255, 255, 255));
    QCOMPARE(box.palette().color(QPalette::Window), QColor(50, 55, 60));
}

void TestResources::propCatalogueKeepsItsLineEnds()
{
    QFile file(QStringLiteral(":/presets/gadgets.txt"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("36,1333,Brevon Alto-36LED\r\n48,1100,Brevon Alto-48LED\r\n"
                                        "70,2100,Brevon Max-70LED\r\n80,2100,Brevon Max-80LED\r\n"
                                        "120,1800,Brevon Max-120LED\r\n"));
}

void TestResources::englishHasTheRightContexts_data()
{
    QTest::addColumn<QString>("context");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("english");
    const auto row = [](const char *name, const char *context, const char *source, const char *english) {
        QTest::newRow(name) << context << QString::fromUtf8(source) << QString::fromUtf8(english);
    };
    row("menu", "MainWindow", "檔案", "File");
    row("same text, upload", "WorkerThread", "偵測不到裝置！", "No device detect!");
    row("same text, wipe", "MainWindow", "偵測不到裝置！", "No device detected!");
    row("same text, terminal", "setup", "偵測不到裝置！", "");
    row("trailing blank", "about", "有更新 ", "New version ");
    row("markup", "about", "是否更新？<br>", "Update? <br>");
    row("trailing blank too", "TimelineItem", "開始時間: ", "start time: ");
    row("wording kept as it is", "MainWindow", "<font color='white'>未儲存部分將會流失，確定讀取舊檔?</font>",
        "<font color='white'>Search loss picture?</font>");
    row("left in Chinese", "MainWindow", "靜態1", "");
    row("left in Chinese too", "MainWindow", "轉檔中...", "");
}

void TestResources::englishHasTheRightContexts()
{
    QFETCH(QString, context);
    QFETCH(QString, source);
    QFETCH(QString, english);
    QTranslator translator;
    QVERIFY(translator.load(QStringLiteral(":/language/language/english.qm")));
    QCOMPARE(translator.translate(context.toLatin1(), source.toUtf8()), english);
}

QTEST_MAIN(TestResources)
#include "test_resources.moc"
