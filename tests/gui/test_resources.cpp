// What is compiled into the program: pictures, style sheet, prop catalogue and the English translation.
#include "forms/style.h"
#include "resources/resources.h"
#include "support/samples.h"

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

    void picturesLoad()
    {
        const QString lines = "play pause stop song spaces capture pen eraser delete update NEW load zoomout zoomin";
        for (const QString &name : lines.split(' ')) {
            // These stand on a dark surface: a dark or an opaque one would be a mistake of the renderer.
            const QImage icon = QImage(":/icon/" + name + ".png").convertToFormat(QImage::Format_ARGB32);
            QVERIFY2(!icon.isNull() && qAlpha(icon.pixel(0, 0)) == 0, qPrintable(name));
            int drawn = 0;
            for (int i = 0; i < icon.width() * icon.height(); ++i) {
                const QRgb pixel = icon.pixel(i % icon.width(), i / icon.width());
                drawn += qAlpha(pixel) > 200 ? 1 : 0;
                QVERIFY2(qAlpha(pixel) <= 200 || qGray(pixel) > 140, qPrintable(name));
            }
            QVERIFY2(drawn * 50 > icon.width() * icon.height(), qPrintable(name));
        }
        const QString effects = "flash wipe jump fade rainbow arrow arrow2 line1 line2 brick";
        QStringList others{"pic/pic/LOGO3.png", "pic/pic/store_banner.png"};
        for (const QString &name : effects.split(' '))
            others << "icon/" + name + ".bmp";
        for (int i = 1; i <= 4; ++i)
            others << QString("icon/static (%1).jpg").arg(i);
        for (const QString &name : others)
            QVERIFY2(!QImage(":/" + name).isNull(), qPrintable(name));
        // Task bars and title bars ask for different sizes; one that is missing would be scaled from another.
        const QList<QSize> sizes = QIcon(":/appicon.ico").availableSizes();
        for (const int edge : {16, 24, 32, 48, 64, 256})
            QVERIFY2(sizes.contains(QSize(edge, edge)), qPrintable(QString::number(edge)));
    }

    void styleSheetParsesAndFindsItsPictures()
    {
        const QRegularExpression url("url\\(([^)]*)\\)");
        int found = 0;
        for (auto it = url.globalMatch(glow::styleSheet()); it.hasNext(); ++found) {
            const QString path = it.next().captured(1);
            QVERIFY2(!QImage(path).isNull(), qPrintable(path));
        }
        QVERIFY(found > 10);
        // One unreadable rule makes Qt drop the sheet; then the label would keep the palette's colour.
        QWidget window;
        QMessageBox box(&window);
        glow::applyStyle(&window);
        box.setText("text");
        box.ensurePolished();
        auto *label = box.findChild<QLabel *>("qt_msgbox_label");
        QVERIFY(label);
        label->ensurePolished();
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(255, 255, 255));
        QCOMPARE(box.palette().color(QPalette::Window), QColor(50, 55, 60));
    }

    void propCatalogueKeepsItsLineEnds()
    {
        const QByteArray catalogue = contentOf(":/presets/gadgets.txt");
        QCOMPARE(catalogue.count("LED\r\n"), 5);
        QCOMPARE(catalogue.count('\n'), 5);
    }

    void englishHasTheRightContexts()
    {
        const QVector<QVector<const char *>> messages{
            {"MainWindow", "檔案", "File"},
            {"WorkerThread", "偵測不到裝置！", "No device detect!"}, // upload
            {"MainWindow", "偵測不到裝置！", "No device detected!"}, // wipe
            {"setup", "偵測不到裝置！", ""},                         // terminal
            {"about", "有更新 ", "New version "},
            {"about", "是否更新？<br>", "Update? <br>"},
            {"about", "開新檔案", "New"},
            {"MainWindow", "開新檔案", ""},
            {"TimelineItem", "開始時間: ", "start time: "},
            {"Timeline", "結束時間: ", "end time: "},
            {"ScreenCapture", "儲存圖片", "Save"},
            {"MainWindow", "音樂播放/暫停", "Music paly/pause"}, // wording kept as it is
            {"MainWindow", "<font color='white'>未儲存部分將會流失，確定讀取舊檔?</font>",
             "<font color='white'>Search loss picture?</font>"},
            {"MainWindow", "靜態1", ""},
            {"MainWindow", "轉檔中...", ""},
        };
        QTranslator translator;
        QVERIFY(translator.load(":/language/language/english.qm"));
        for (const QVector<const char *> &message : messages)
            QCOMPARE(translator.translate(message.at(0), message.at(1)), QString(message.at(2)));
    }
};

QTEST_MAIN(TestResources)
#include "test_resources.moc"
