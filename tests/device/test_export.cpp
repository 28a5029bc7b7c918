// The device image as the window makes it: from the items of the current track and the values of its fields.
#include "device/devicewindow.h"

#include "support/dialogdriver.h"
#include "timeline/timelineheaders.h"

class TestExport : public QObject
{
    Q_OBJECT

private slots:
    void workedShow();
    void namesOfTheFile_data();
    void namesOfTheFile();
    void cancelledAndEmpty();
    void longShowStaysQuick();
};

void TestExport::workedShow()
{
    DeviceWindow on;
    on.add(glow::PicturePattern, 1580, 2380, Qt::white); // behind the colour in time
    on.add(glow::ColourPattern, 1000, 1480, Qt::red);
    on.ui->AutoRepeat->setChecked(false);
    QVERIFY(!on.ui->Ex_Button->isEnabled()); // until an upload has ended
    on.ui->Ex_Button->setEnabled(true);
    on.ui->UPload_Button->setText(QStringLiteral("?"));

    DialogDriver driver;
    const QString path = on.env.path(QStringLiteral("show.bin"));
    driver.answerBox(QMessageBox::No); // the picture's file is lost; the export goes on all the same
    driver.answerFile({path});
    driver.answerBox(QMessageBox::Ok);
    on.ui->Ex_Button->click();
    QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(u' ')));

    const QByteArray header = QByteArray::fromHex("01FFFE0203 000000023130 FF 34FF32FF31FF 00000006 303030303000");
    const QByteArray black(6, '\0');
    const QByteArray red = QByteArray::fromHex("560000560000");
    const QByteArray white(6, '\x56');
    const QByteArray data = '\xFF' + (black + '\xFE').repeated(2) + black + '\xFF' + red + '\xFE' + red + '\xFF' +
                            (white + '\xFE').repeated(6) + white + '\xFF';
    QCOMPARE(fileBytes(QStringLiteral("extemp2.tmp")), header);
    QCOMPARE(fileBytes(QStringLiteral("extemp.tmp")), data);
    const QByteArray bin = fileBytes(path);
    QCOMPARE(bin.size(), 10 + 28 + 260);
    QCOMPARE(bin.left(37), QByteArray::fromHex("000000020100 0000001C") + header.mid(1));
    QCOMPARE(bin.mid(38, 4 + 85), QByteArray::fromHex("00000100") + data);

    QCOMPARE(driver.files().at(0).title, QStringLiteral("匯出"));
    QCOMPARE(driver.files().at(0).directory, on.env.path(QStringLiteral("home/Documents")));
    QCOMPARE(driver.files().at(0).filters, QStringList{QStringLiteral("*.bin")});
    QCOMPARE(driver.boxes().last().title, QStringLiteral("完成"));
    QCOMPARE(driver.boxes().last().text, QStringLiteral("上傳完成"));
    QCOMPARE(on.window->currentFile, path);
    QVERIFY(on.ui->Ex_Button->isEnabled() && on.ui->GLWidget->isEnabled());
    QCOMPARE(on.ui->progressBar->value(), 100);
    QCOMPARE(on.ui->UPload_Button->text(), QStringLiteral("上傳至道具"));

    // The start mark stands in pixels: at 76, 760 ms before the zoom, 190 ms at 2.5 ms a pixel.
    on.ui->prop_track->setCurrentIndex(7);
    on.ui->AutoRepeat->setChecked(true);
    on.ui->timeline_headers->startMarkX = 76;
    on.window->buildDeviceImage();
    QVERIFY(!on.ui->GLWidget->isEnabled());
    QVERIFY(fileBytes(QStringLiteral("extemp2.tmp")).startsWith(QByteArray::fromHex("08FFFE0202"))); // no lead-in
    QVERIFY(fileBytes(QStringLiteral("extemp.tmp")).endsWith(QByteArray::fromHex("FFFE00000006303030303000")));
    msPerPixel = 2.5F;
    on.window->buildDeviceImage();
    QVERIFY(fileBytes(QStringLiteral("extemp2.tmp")).contains(QByteArray::fromHex("FF33FF32FF"))); // 810 ms: 3 blocks
    msPerPixel = 10.0F;
}

void TestExport::namesOfTheFile_data()
{
    QTest::addColumn<QString>("asked");
    QTest::addColumn<QString>("written");
    QTest::newRow("bare") << QStringLiteral("show") << QStringLiteral("show.bin");
    QTest::newRow("inside") << QStringLiteral("my.binder") << QStringLiteral("my.binder");
    QTest::newRow("capitals") << QStringLiteral("show.BIN") << QStringLiteral("show.BIN.bin");
}

void TestExport::namesOfTheFile()
{
    QFETCH(QString, asked);
    QFETCH(QString, written);
    DeviceWindow on;
    on.add(glow::ColourPattern, 0, 480, Qt::red);
    DialogDriver driver;
    driver.answerFile({on.env.path(asked)});
    driver.answerBox(QMessageBox::Ok);
    on.window->on_Ex_Button_clicked();
    QVERIFY(driver.done());
    QCOMPARE(on.window->currentFile, on.env.path(written));
    QVERIFY(QFile::exists(on.env.path(written)));
}

void TestExport::cancelledAndEmpty()
{
    DeviceWindow on;
    const QString before = on.window->currentFile;
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    on.window->on_Ex_Button_clicked();
    QCOMPARE(driver.boxes().last().title, QStringLiteral("無可上傳圖樣"));
    on.add(glow::ColourPattern, 0, 480, Qt::red);
    driver.answerFile({});
    on.window->on_Ex_Button_clicked();
    QVERIFY(driver.done());
    QCOMPARE(on.window->currentFile, before);
    QVERIFY(!QFile::exists(QStringLiteral("extemp.tmp")) && on.ui->GLWidget->isEnabled());

    // Files that cannot be written are not reported here.
    QVERIFY(QDir().mkpath(QStringLiteral("extemp.tmp")) && QDir().mkpath(QStringLiteral("extemp2.tmp")));
    driver.answerFile({on.env.path(QStringLiteral("show.bin"))});
    driver.answerBox(QMessageBox::Ok);
    on.window->on_Ex_Button_clicked();
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().last().text, QStringLiteral("上傳完成"));
}

void TestExport::longShowStaysQuick()
{
    // A day in one copy at full rate: the window must come back at once and the disk must not fill up.
    DeviceWindow on(80, 2100);
    on.add(glow::PicturePattern, 0, 86399999, Qt::white);
    on.window->buildDeviceImage();
    QCOMPARE(fileBytes(QStringLiteral("extemp.tmp")).left(3), QByteArray("\xFF\xFF\xFE"));
}

QTEST_MAIN(TestExport)
#include "test_export.moc"
