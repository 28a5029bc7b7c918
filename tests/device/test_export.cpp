// The device image as the window makes it: from the items of the current track and the values of its fields.
#include "device/devicetest.h"

class TestExport : public DeviceTest
{
    Q_OBJECT

private slots:
    void workedShow()
    {
        add(patternBlob("0?1?a.png?0|0|0", 1580, 800, Qt::white)); // behind the colour in time
        addColour(1000, 480);
        ui->AutoRepeat->setChecked(false);
        QVERIFY(!ui->Ex_Button->isEnabled()); // until an upload has ended
        ui->Ex_Button->setEnabled(true);
        ui->UPload_Button->setText("?");

        const QString path = env->path("show.bin");
        DialogDriver driver;
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
        QCOMPARE(contentOf(path), QByteArray::fromHex("000000020100 0000001C") + header.mid(1) + '\0' +
                                      QByteArray::fromHex("00000100") + data.leftJustified(256, '\0'));

        QCOMPARE(driver.files().at(0).title, QString("匯出"));
        QCOMPARE(driver.files().at(0).directory, env->path("home/Documents"));
        QCOMPARE(driver.files().at(0).filters, QStringList{"*.bin"});
        QCOMPARE(driver.boxes().last().title + driver.boxes().last().text, QString("完成上傳完成"));
        QCOMPARE(window->currentFile, path);
        QVERIFY(ui->Ex_Button->isEnabled() && ui->GLWidget->isEnabled());
        QCOMPARE(ui->progressBar->value(), 100);
        QCOMPARE(ui->UPload_Button->text(), QString("上傳至道具"));
    }

    // It stands in pixels: at 76, 760 ms before the zoom, 190 ms at 2.5 ms a pixel.
    void startMark()
    {
        addColour(1000, 480);
        ui->prop_track->setCurrentIndex(7);
        ui->timeline_headers->startMarkX = 76;
        window->buildDeviceImage();
        QVERIFY(!ui->GLWidget->isEnabled());
        QVERIFY(contentOf("extemp2.tmp").startsWith(QByteArray::fromHex("08FFFE0201"))); // no lead-in
        QVERIFY(contentOf("extemp.tmp").endsWith(QByteArray::fromHex("FFFE00000006303030303000")));
        msPerPixel = 2.5F;
        window->buildDeviceImage();
        QVERIFY(contentOf("extemp2.tmp").contains(QByteArray::fromHex("FF33FF32FF"))); // 810 ms: 3 blocks
    }

    void namesOfTheFile()
    {
        addColour(0, 480);
        const QPair<const char *, const char *> rows[] = {
            {"show", "show.bin"}, {"my.binder", "my.binder"}, {"show.BIN", "show.BIN.bin"}};
        for (const auto &row : rows) {
            QCOMPARE(exportTo(env->path(row.first)), QString("完成上傳完成"));
            QCOMPARE(window->currentFile, env->path(row.second));
            QVERIFY(QFile::exists(window->currentFile));
        }
        const QString before = window->currentFile;
        QVERIFY(QFile::remove("extemp.tmp"));
        QCOMPARE(exportTo({}), QString()); // cancelled
        QCOMPARE(window->currentFile, before);
        QVERIFY(!QFile::exists("extemp.tmp") && ui->GLWidget->isEnabled());
        // Files that cannot be written are not reported here.
        QVERIFY(QFile::remove("extemp2.tmp") && QDir().mkpath("extemp.tmp") && QDir().mkpath("extemp2.tmp"));
        QCOMPARE(exportTo(env->path("unwritten.bin")), QString("完成上傳完成"));

        window->currentTimeline->deleteTimelineItem(window->currentTimeline->items.first());
        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        window->on_Ex_Button_clicked();
        QCOMPARE(driver.boxes().value(0).title, QString("無可上傳圖樣"));
    }

private:
    // Exports to that path, or cancels; title and text of the box that follows.
    QString exportTo(const QString &path) const
    {
        DialogDriver driver;
        driver.answerFile(path.isEmpty() ? QStringList() : QStringList(path));
        if (!path.isEmpty()) {
            driver.answerBox(QMessageBox::Ok);
        }
        window->on_Ex_Button_clicked();
        const DialogDriver::Box box = driver.boxes().value(0);
        return driver.done() ? box.title + box.text : driver.unexpected.join(' ');
    }
};

QTEST_MAIN(TestExport)
#include "test_export.moc"
