// The upload button: what the window shows and allows in each state of an upload.
#include "device/devicetest.h"
#include "show/wire/propmends.h"
#include "show/wire/upload.h"

#include <QPointer>
#include <QRandomGenerator>

namespace {

const QString rest = "上傳至道具";
const QString sending = "傳輸中...";
const QString uploaded = "上傳完成";

} // namespace

class TestUploadButton : public DeviceTest
{
    Q_OBJECT

private slots:
    void uploads()
    {
        addSeconds(10);
        const Prop prop(5);
        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        QStringList messages;
        connect(ui->statusBar, &QStatusBar::messageChanged, this,
                [&](const QString &text) { messages << text + QString(" = %1").arg(ui->progressBar->value()); });
        ui->prop_track->setCurrentIndex(3);
        ui->actionUpload->trigger();
        QCOMPARE(ui->UPload_Button->text(), sending);
        QVERIFY(!ui->GLWidget->isEnabled());
        QTRY_VERIFY_WITH_TIMEOUT(window->uploadThread == nullptr, longest);
        QCOMPARE(driver.boxes().value(0).title + driver.boxes().value(0).text, "完成" + uploaded);
        QVERIFY(driver.done() && isAtRest());
        QCOMPARE(ui->progressBar->value(), 100);
        // 60262 bytes in 30 pieces, the last one from 29 * 202752 / 60262 = 97 percent; the bar follows the text.
        QCOMPARE(messages.first(), QString("COM5 輸出中 0% = 0"));
        QCOMPARE(messages.last(), QString("COM5 輸出中 100% = 97"));
        QVERIFY(messages.size() > 20);
        QCOMPARE(prop.sessions().last().track, 4);
        QCOMPARE(prop.sessions().last().received, wholeUpload());
    }

    void endsInTrouble()
    {
        QCOMPARE(upload(), QString("無可上傳圖樣請選擇正確之時間軸"));
        QVERIFY(!QFile::exists("extemp.tmp"));
        addSeconds(3);
        const QString tip = ui->Ex_Button->toolTip(); // while it is grey
        QCOMPARE(upload(), QString("<font color='white'>偵測不到裝置！</font>"));
        QVERIFY(isAtRest() && ui->Ex_Button->toolTip() != tip);
        QCOMPARE(more, glow::mendOf(glow::ScanResult::NoneOpen));
        QVERIFY(more.contains("ModemManager") && more.contains("dialout"));
        {
            const Prop prop(0, greets("Wait", 20, "ERR"));
            QCOMPARE(upload(), QString("<font color='white'>ERROR02</font>"));
            QCOMPARE(more, glow::mendOf(glow::UploadEnd::Refused));
            QVERIFY(isAtRest());
        }
        {
            // A silent end keeps the text.
            PropBehaviour behaviour;
            behaviour.vanishAfter = 10000;
            const Prop prop(0, behaviour);
            ui->Ex_Button->setEnabled(false);
            QCOMPARE(upload(false), QString("no box"));
            QCOMPARE(ui->UPload_Button->text(), sending);
            QVERIFY(!ui->GLWidget->isEnabled() && !ui->Ex_Button->isEnabled());
            QVERIFY(ui->statusBar->currentMessage().contains(glow::mendOf(glow::UploadEnd::Broken)));
        }
        const Prop prop; // and a click starts anew
        QCOMPARE(upload(), "完成" + uploaded);
        QVERIFY(isAtRest());
    }

    void cancelsAtAnyMoment()
    {
        addSeconds(30);
        QRandomGenerator random(99);
        for (int round = 0; round < 20; ++round) {
            const Prop prop(round, greets("Wait", 5));
            const WorkerThread *thread = beginUpload();
            QTest::qWait(static_cast<int>(random.bounded(100))); // the moments are the point
            QVERIFY2(cancel(thread), qPrintable(QString::number(round)));
            QVERIFY(prop.sessions().last().open); // still held: it does not open again, another prop is found
        }
        const Prop other(50);
        QCOMPARE(upload(), "完成" + uploaded);
    }

    // The thread has sent everything and its last words are on their way when the user cancels: they are not shown.
    void replyInTheMomentOfTheCancel()
    {
        addSeconds(1);
        const Prop prop;
        WorkerThread *thread = beginUpload();
        QVERIFY(thread->wait(longest));
        QVERIFY(cancel(thread));
    }

    void windowGoes()
    {
        addSeconds(30);
        const Prop prop;
        const QPointer<WorkerThread> thread = beginUpload();
        window.reset();
        QVERIFY(thread.isNull() || thread->isFinished());
    }

private:
    // A whole upload; the title and text of the box that it ends with.
    QString upload(bool withBox = true)
    {
        DialogDriver driver;
        if (withBox) {
            driver.answerBox(QMessageBox::Ok);
        }
        ui->UPload_Button->click();
        const auto isOver = [&] { return window->uploadThread == nullptr && driver.done(); };
        const bool ended = QTest::qWaitFor(isOver, longest);
        more = driver.boxes().value(driver.boxes().size() - 1).more;
        return !ended                     ? "does not end"
               : driver.boxes().isEmpty() ? "no box"
                                          : driver.boxes().last().title + driver.boxes().last().text;
    }

    // At rest, as after an upload that ended with a box.
    bool isAtRest() const
    {
        return ui->UPload_Button->text() == rest && ui->GLWidget->isEnabled() && ui->Ex_Button->isEnabled();
    }

    // Begins an upload and waits until it is on its way.
    WorkerThread *beginUpload() const
    {
        ui->progressBar->setValue(0);
        ui->UPload_Button->click();
        if (!QTest::qWaitFor([this] { return ui->progressBar->value() > 0; }, longest)) {
            QTest::qFail("nothing is sent", __FILE__, __LINE__);
        }
        return window->uploadThread;
    }

    // Cancels, and answers the box that says so; false if anything else comes, now or later.
    bool cancel(const WorkerThread *thread) const
    {
        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        ui->UPload_Button->click();
        const bool ended = const_cast<WorkerThread *>(thread)->wait(longest);
        QCoreApplication::processEvents();
        const DialogDriver::Box box = driver.boxes().value(0);
        return ended && driver.done() && box.icon == QMessageBox::Warning && box.title == "已取消上傳" &&
               box.text == box.title && window->uploadThread == nullptr && ui->progressBar->value() == 0 &&
               ui->UPload_Button->text() == rest && !ui->GLWidget->isEnabled();
    }

    QString more; // under the text of the last upload's box
};

QTEST_MAIN(TestUploadButton)
#include "test_uploadbutton.moc"
