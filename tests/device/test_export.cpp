// The device image as the window makes it: from the items of the current track and the values of its fields.
#include "device/devicetest.h"

#include "support/dialogdriver.h"
#include "timeline/timelineheaders.h"

class TestExport : public DeviceTest
{
    Q_OBJECT

private slots:
    void workedShow();
    void namesOfTheFile();
    void cancelledAndEmpty();
    void longShowStaysQuick();
};

void TestExport::workedShow()
{
    add(patternBlob("0?1?a.png?0|0|0", 1580, 800, Qt::white)); // behind the colour in time
    addColour(1000, 480);
    ui->AutoRepeat->setChecked(false);
    QVERIFY(!ui->Ex_Button->isEnabled()); // until an upload has ended
    ui->Ex_Button->setEnabled(true);
    ui->UPload_Button->setText("?");

    DialogDriver driver;
    const QString path = env->path("show.bin");
    driver.answerBox(QMessageBox::No); // the picture's file is lost; the export goes on all the same
    driver.answerFile({path});
    driver.answerBox(QMessageBox::Ok);
    ui->Ex_Button->click();
    QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(u' ')));

    const QByteArray header = QByteArray::fromHex("01FFFE0203 000000023130 FF 34FF32FF31FF 00000006 303030303000");
    const QByteArray black(6, '\0');
    const QByteArray red = QByteArray::fromHex("560000560000");
    const QByteArray white(6, '\x56');
    const QByteArray data = '\xFF' + (black + '\xFE').repeated(2) + black + '\xFF' + red + '\xFE' + red + '\xFF' +
                            (white + '\xFE').repeated(6) + white + '\xFF';
    QCOMPARE(contentOf("extemp2.tmp"), header);
    QCOMPARE(contentOf("extemp.tmp"), data);
    const QByteArray bin = contentOf(path);
    QCOMPARE(bin.size(), 10 + 28 + 260);
    QCOMPARE(bin.left(37), QByteArray::fromHex("000000020100 0000001C") + header.mid(1));
    QCOMPARE(bin.mid(38, 4 + 85), QByteArray::fromHex("00000100") + data);

    QCOMPARE(driver.files().at(0).title, QString("匯出"));
    QCOMPARE(driver.files().at(0).directory, env->path("home/Documents"));
    QCOMPARE(driver.files().at(0).filters, QStringList{"*.bin"});
    QCOMPARE(driver.boxes().last().title, QString("完成"));
    QCOMPARE(driver.boxes().last().text, QString("上傳完成"));
    QCOMPARE(window->currentFile, path);
    QVERIFY(ui->Ex_Button->isEnabled() && ui->GLWidget->isEnabled());
    QCOMPARE(ui->progressBar->value(), 100);
    QCOMPARE(ui->UPload_Button->text(), QString("上傳至道具"));

    // The start mark stands in pixels: at 76, 760 ms before the zoom, 190 ms at 2.5 ms a pixel.
    ui->prop_track->setCurrentIndex(7);
    ui->AutoRepeat->setChecked(true);
    ui->timeline_headers->startMarkX = 76;
    window->buildDeviceImage();
    QVERIFY(!ui->GLWidget->isEnabled());
    QVERIFY(contentOf("extemp2.tmp").startsWith(QByteArray::fromHex("08FFFE0202"))); // no lead-in
    QVERIFY(contentOf("extemp.tmp").endsWith(QByteArray::fromHex("FFFE00000006303030303000")));
    msPerPixel = 2.5F;
    window->buildDeviceImage();
    QVERIFY(contentOf("extemp2.tmp").contains(QByteArray::fromHex("FF33FF32FF"))); // 810 ms: 3 blocks
}

void TestExport::namesOfTheFile()
{
    addColour(0, 480);
    const QPair<const char *, const char *> rows[] = {
        {"show", "show.bin"}, {"my.binder", "my.binder"}, {"show.BIN", "show.BIN.bin"}};
    for (const auto &row : rows) {
        DialogDriver driver;
        driver.answerFile({env->path(row.first)});
        driver.answerBox(QMessageBox::Ok);
        window->on_Ex_Button_clicked();
        QVERIFY(driver.done());
        QCOMPARE(window->currentFile, env->path(row.second));
        QVERIFY(QFile::exists(window->currentFile));
        QCOMPARE(ui->statusBar->currentMessage(), "已匯出：" + window->currentFile);
    }
}

void TestExport::cancelledAndEmpty()
{
    const QString before = window->currentFile;
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    window->on_Ex_Button_clicked();
    QCOMPARE(driver.boxes().last().title, QString("無可上傳圖樣"));
    addColour(0, 480);
    driver.answerFile({});
    window->on_Ex_Button_clicked();
    QVERIFY(driver.done());
    QCOMPARE(window->currentFile, before);
    QVERIFY(!QFile::exists("extemp.tmp") && ui->GLWidget->isEnabled());

    // Files that cannot be written are told in the status line alone.
    QVERIFY(QDir().mkpath("extemp.tmp") && QDir().mkpath("extemp2.tmp"));
    driver.answerFile({env->path("show.bin")});
    driver.answerBox(QMessageBox::Ok);
    window->on_Ex_Button_clicked();
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().last().text, QString("上傳完成"));
    QVERIFY(ui->statusBar->currentMessage().startsWith("沒有匯出"));
}

void TestExport::longShowStaysQuick()
{
    // A day in one copy at full rate: the window must come back at once and the disk must not fill up.
    setLeds(80, 2100);
    add(patternBlob("0?1?a.png?0|0|0", 0, 86399999, Qt::white));
    window->buildDeviceImage();
    QCOMPARE(contentOf("extemp.tmp").left(3), QByteArray("\xFF\xFF\xFE"));
}

QTEST_MAIN(TestExport)
#include "test_export.moc"
