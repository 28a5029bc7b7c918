// What is compiled into the program: pictures, style sheet and the English translation.
#include "forms/style.h"
#include "resources/resources.h"

#include <QDir>
#include <QIcon>
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

    void iconsAreLightOnNothing()
    {
        const QDir icons(":/icon", "*.png");
        QVERIFY(icons.count() > 10);
        for (const QString &name : icons.entryList()) {
            // These stand on a dark surface: a dark or an opaque one would be a mistake of the renderer.
            const QImage icon = QImage(icons.filePath(name)).convertToFormat(QImage::Format_ARGB32);
            QVERIFY2(!icon.isNull() && qAlpha(icon.pixel(0, 0)) == 0, qPrintable(name));
            int drawn = 0;
            for (int i = 0; i < icon.width() * icon.height(); ++i) {
                const QRgb pixel = icon.pixel(i % icon.width(), i / icon.width());
                drawn += qAlpha(pixel) > 200 ? 1 : 0;
                QVERIFY2(qAlpha(pixel) <= 200 || qGray(pixel) > 140, qPrintable(name));
            }
            QVERIFY2(drawn * 50 > icon.width() * icon.height(), qPrintable(name));
        }
        // Task bars and title bars ask for different sizes; one that is missing would be scaled from another.
        const QList<QSize> sizes = QIcon(":/appicon.ico").availableSizes();
        for (const int edge : {16, 24, 32, 48, 64, 256})
            QVERIFY2(sizes.contains(QSize(edge, edge)), qPrintable(QString::number(edge)));
    }

    void styleSheetParsesAndFindsItsPictures()
    {
        const QRegularExpression url("url\\(([^)]*)\\)");
        for (auto it = url.globalMatch(glow::styleSheet()); it.hasNext();) {
            const QString path = it.next().captured(1);
            QVERIFY2(!QImage(path).isNull(), qPrintable(path));
        }
        // One unreadable rule makes Qt drop the sheet; then the label would keep the palette's colour.
        QWidget window;
        QMessageBox box(&window);
        glow::applyStyle(&window);
        box.setText("text");
        auto *label = box.findChild<QLabel *>("qt_msgbox_label");
        QVERIFY(label);
        label->ensurePolished();
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(255, 255, 255));
    }

    void englishHasTheRightContexts()
    {
        const QVector<QVector<const char *>> messages{
            {"WorkerThread", "偵測不到裝置！", "No device detect!"}, // upload
            {"MainWindow", "偵測不到裝置！", "No device detected!"}, // wipe
            {"setup", "偵測不到裝置！", ""},                         // terminal
            {"about", "有更新 ", "New version "},
            {"about", "開新檔案", "New"},
            {"MainWindow", "開新檔案", ""},
            {"MainWindow", "音樂播放/暫停", "Music paly/pause"}, // wording kept as it is
            {"MainWindow", "<font color='white'>未儲存部分將會流失，確定讀取舊檔?</font>",
             "<font color='white'>Search loss picture?</font>"},
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
