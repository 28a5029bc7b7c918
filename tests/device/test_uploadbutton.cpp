// The upload button: what the window shows and allows in each state of an upload.
#include "device/devicewindow.h"
#include "device/workerthread.h"
#include "prop/simulatedprop.h"
#include "support/dialogdriver.h"

#include <QRandomGenerator>

class TestUploadButton : public QObject
{
    Q_OBJECT

private slots:
    void uploads();
    void emptyTrack();
    void noPort();
    void refused();
    void silentEndKeepsTheText();
    void cancels();
    void cancelsAtRandom();

private:
    static void addShow(DeviceWindow &on, int seconds)
    {
        for (int i = 0; i < seconds; ++i) {
            on.add(glow::ColourPattern, i * 1000, i * 1000 + 1000, QColor(255, i, 0));
        }
    }
    static constexpr int longest = 30000; // milliseconds, for an upload on a busy machine
    const QString rest = QStringLiteral("上傳至道具");
    const QString sending = QStringLiteral("傳輸中...");
};

void TestUploadButton::uploads()
{
    DeviceWindow on(80, 100);
    addShow(on, 10);
    SimulatedProp prop;
    QVERIFY(prop.start(on.port(5)));
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    on.ui->prop_track->setCurrentIndex(3);
    QCOMPARE(on.ui->UPload_Button->text(), rest);
    on.ui->actionUpload->trigger();
    QVERIFY(on.window->uploadThread != nullptr);
    QCOMPARE(on.ui->UPload_Button->text(), sending);
    QVERIFY(!on.ui->GLWidget->isEnabled());
    QTRY_VERIFY(on.ui->progressBar->value() > 20 && on.ui->progressBar->value() < 100);
    QVERIFY(on.ui->statusBar->currentMessage().startsWith(QStringLiteral("COM5 輸出中 ")));
    QTRY_VERIFY_WITH_TIMEOUT(on.window->uploadThread == nullptr, longest);
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().at(0).title, QStringLiteral("完成"));
    QCOMPARE(driver.boxes().at(0).text, QStringLiteral("上傳完成"));
    QCOMPARE(on.ui->UPload_Button->text(), rest);
    QVERIFY(on.ui->GLWidget->isEnabled() && on.ui->Ex_Button->isEnabled());
    QCOMPARE(on.ui->progressBar->value(), 100);
    QCOMPARE(on.ui->statusBar->currentMessage(), QStringLiteral("COM5 輸出中 100%"));
    const PropSession session = prop.sessions().last();
    QCOMPARE(session.track, 4);
    QCOMPARE(session.show.problems, QStringList());
    const QByteArray header = fileBytes(QStringLiteral("extemp2.tmp"));
    QCOMPARE(session.received, header.left(header.size() - 2) + fileBytes(QStringLiteral("extemp.tmp")));
}

void TestUploadButton::emptyTrack()
{
    DeviceWindow on;
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    on.ui->UPload_Button->click();
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().at(0).icon, QMessageBox::Warning);
    QCOMPARE(driver.boxes().at(0).title, QStringLiteral("無可上傳圖樣"));
    QCOMPARE(driver.boxes().at(0).text, QStringLiteral("請選擇正確之時間軸"));
    QVERIFY(on.window->uploadThread == nullptr && !QFile::exists(QStringLiteral("extemp.tmp")));
}

void TestUploadButton::noPort()
{
    DeviceWindow on;
    addShow(on, 1);
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    on.ui->UPload_Button->click();
    QTRY_VERIFY_WITH_TIMEOUT(on.window->uploadThread == nullptr, longest);
    QTRY_COMPARE(driver.boxes().size(), 1);
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().at(0).icon, QMessageBox::Critical);
    QCOMPARE(driver.boxes().at(0).text, QStringLiteral("<font color='white'>偵測不到裝置！</font>"));
    QCOMPARE(on.ui->UPload_Button->text(), rest);
    QVERIFY(on.ui->GLWidget->isEnabled() && on.ui->Ex_Button->isEnabled());
}

void TestUploadButton::refused()
{
    DeviceWindow on;
    addShow(on, 1);
    PropBehaviour behaviour;
    behaviour.reply = "ERR";
    {
        SimulatedProp prop(behaviour);
        QVERIFY(prop.start(on.port(0)));
        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        on.ui->UPload_Button->click();
        QTRY_VERIFY_WITH_TIMEOUT(on.window->uploadThread == nullptr && driver.done(), longest);
        QCOMPARE(driver.boxes().at(0).text, QStringLiteral("<font color='white'>ERROR02</font>"));
    }
    // And the next one works.
    SimulatedProp prop;
    QVERIFY(prop.start(on.port(0)));
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    on.ui->UPload_Button->click();
    QTRY_VERIFY_WITH_TIMEOUT(on.window->uploadThread == nullptr && driver.done(), longest);
    QCOMPARE(driver.boxes().at(0).text, QStringLiteral("上傳完成"));
}

void TestUploadButton::silentEndKeepsTheText()
{
    DeviceWindow on(80, 100);
    addShow(on, 10);
    PropBehaviour behaviour;
    behaviour.vanishAfter = 10000;
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(on.port(0)));
    DialogDriver driver;
    on.ui->UPload_Button->click();
    QTRY_VERIFY_WITH_TIMEOUT(on.window->uploadThread == nullptr, longest);
    QVERIFY(driver.done() && driver.boxes().isEmpty());
    QCOMPARE(on.ui->UPload_Button->text(), sending);
    QVERIFY(!on.ui->GLWidget->isEnabled() && !on.ui->Ex_Button->isEnabled());
    // A click starts anew.
    SimulatedProp back;
    QVERIFY(back.start(on.port(0)));
    driver.answerBox(QMessageBox::Ok);
    on.ui->UPload_Button->click();
    QTRY_VERIFY_WITH_TIMEOUT(on.window->uploadThread == nullptr && driver.done(), longest);
    QCOMPARE(on.ui->UPload_Button->text(), rest);
    QVERIFY(on.ui->GLWidget->isEnabled());
}

void TestUploadButton::cancels()
{
    DeviceWindow on(80, 100);
    addShow(on, 250); // some seconds of sending
    SimulatedProp prop;
    QVERIFY(prop.start(on.port(0)));
    DialogDriver driver;
    on.ui->UPload_Button->click();
    WorkerThread *thread = on.window->uploadThread;
    QTRY_VERIFY(on.ui->progressBar->value() > 5);
    QSignalSpy cancelled(on.window.data(), &MainWindow::Upload_Cancel_Clicked);
    driver.answerBox(QMessageBox::Ok);
    on.ui->UPload_Button->click();
    QVERIFY(driver.done());
    QCOMPARE(cancelled.size(), 1);
    QCOMPARE(driver.boxes().at(0).icon, QMessageBox::Warning);
    QCOMPARE(driver.boxes().at(0).title, QStringLiteral("已取消上傳"));
    QCOMPARE(driver.boxes().at(0).text, QStringLiteral("已取消上傳"));
    QVERIFY(on.window->uploadThread == nullptr);
    QVERIFY(thread->wait(1000));
    QCOMPARE(on.ui->UPload_Button->text(), rest);
    QVERIFY(!on.ui->GLWidget->isEnabled());
    QVERIFY(prop.sessions().last().open); // still held

    // The held port does not open again; another prop is found.
    SimulatedProp other;
    while (on.window->currentTimeline->items.size() > 2) {
        on.window->currentTimeline->deleteTimelineItem(on.window->currentTimeline->items.last());
    }
    QVERIFY(other.start(on.port(1)));
    driver.answerBox(QMessageBox::Ok);
    on.ui->UPload_Button->click();
    QTRY_VERIFY_WITH_TIMEOUT(on.window->uploadThread == nullptr && driver.done(), longest);
    QCOMPARE(driver.boxes().last().text, QStringLiteral("上傳完成"));
    QVERIFY(!other.sessions().last().open);
}

void TestUploadButton::cancelsAtRandom()
{
    DeviceWindow on(80, 100);
    addShow(on, 4);
    QRandomGenerator random(99);
    int cut = 0;
    for (int round = 0; round < 30; ++round) {
        PropBehaviour behaviour;
        behaviour.greetingMs = 5;
        SimulatedProp prop(behaviour);
        QVERIFY(prop.start(on.port(round)));
        DialogDriver driver;
        on.ui->UPload_Button->click();
        QTest::qWait(static_cast<int>(random.bounded(200)));
        if (on.window->uploadThread != nullptr) {
            driver.answerBox(QMessageBox::Ok);
            driver.answerBox(QMessageBox::Ok); // of an upload that ended just then; stays unused otherwise
            on.ui->UPload_Button->click();
            cut += driver.boxes().last().text == QStringLiteral("已取消上傳") ? 1 : 0;
        }
        QTRY_VERIFY_WITH_TIMEOUT(on.window->uploadThread == nullptr, longest);
    }
    QVERIFY(cut > 5);
    SimulatedProp prop;
    QVERIFY(prop.start(on.port(99)));
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    on.ui->UPload_Button->click();
    QTRY_VERIFY_WITH_TIMEOUT(on.window->uploadThread == nullptr && driver.done(), longest);
    QCOMPARE(driver.boxes().at(0).text, QStringLiteral("上傳完成"));
}

QTEST_MAIN(TestUploadButton)
#include "test_uploadbutton.moc"
