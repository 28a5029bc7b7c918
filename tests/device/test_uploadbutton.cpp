// The upload button: what the window shows and allows in each state of an upload.
#include "device/devicewindow.h"

#include "device/workerthread.h"
#include "support/dialogdriver.h"

#include <QRandomGenerator>

namespace {

constexpr int longest = 60000; // milliseconds, for an upload on a busy machine
const QString rest = QStringLiteral("上傳至道具");
const QString sending = QStringLiteral("傳輸中...");
const QString uploaded = QStringLiteral("上傳完成");

// A window with a show of so many seconds on its track, 6 KB each.
class UploadWindow : public DeviceWindow
{
public:
    explicit UploadWindow(int seconds)
        : DeviceWindow(80, 100)
    {
        for (int i = 0; i < seconds; ++i) {
            add(glow::ColourPattern, i * 1000, i * 1000 + 1000, QColor(255, i, 0));
        }
    }

    // A whole upload; the text of the box that it ends with.
    QString upload(bool withBox = true) const
    {
        DialogDriver driver;
        if (withBox) {
            driver.answerBox(QMessageBox::Ok);
        }
        ui->UPload_Button->click();
        const auto isOver = [&] { return window->uploadThread == nullptr && driver.done(); };
        return !QTest::qWaitFor(isOver, longest) ? QStringLiteral("does not end")
               : driver.boxes().isEmpty()        ? QStringLiteral("no box")
                                                 : driver.boxes().last().text;
    }

    // At rest, as after an upload that ended with a box.
    bool isAtRest() const
    {
        return ui->UPload_Button->text() == rest && ui->GLWidget->isEnabled() && ui->Ex_Button->isEnabled();
    }
};

} // namespace

class TestUploadButton : public QObject
{
    Q_OBJECT

private slots:
    void uploads();
    void endsInTrouble();
    void silentEndKeepsTheText();
    void cancels();
    void cancelsAtRandom();
};

void TestUploadButton::uploads()
{
    UploadWindow on(10);
    SimulatedProp prop;
    QVERIFY(prop.start(on.port(5)));
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    QStringList messages;
    connect(on.ui->statusBar, &QStatusBar::messageChanged, this,
            [&](const QString &text) { messages << text + QStringLiteral(" = %1").arg(on.ui->progressBar->value()); });
    on.ui->prop_track->setCurrentIndex(3);
    QCOMPARE(on.ui->UPload_Button->text(), rest);
    on.ui->actionUpload->trigger();
    QVERIFY(on.window->uploadThread != nullptr);
    QCOMPARE(on.ui->UPload_Button->text(), sending);
    QVERIFY(!on.ui->GLWidget->isEnabled());
    QTRY_VERIFY_WITH_TIMEOUT(on.window->uploadThread == nullptr, longest);
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().at(0).title, QStringLiteral("完成"));
    QCOMPARE(driver.boxes().at(0).text, uploaded);
    QVERIFY(on.isAtRest());
    QCOMPARE(on.ui->progressBar->value(), 100);
    // 60262 bytes in 30 pieces, the last one from 29 * 202752 / 60262 = 97 percent; the bar follows the text.
    QCOMPARE(messages.first(), QStringLiteral("COM5 輸出中 0% = 0"));
    QCOMPARE(messages.last(), QStringLiteral("COM5 輸出中 100% = 97"));
    QVERIFY(messages.size() > 20);
    const PropSession session = prop.sessions().last();
    QCOMPARE(session.track, 4);
    QCOMPARE(session.received, fileBytes(QStringLiteral("extemp2.tmp")).chopped(2) + fileBytes("extemp.tmp"));
}

void TestUploadButton::endsInTrouble()
{
    {
        DeviceWindow empty;
        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        empty.ui->UPload_Button->click();
        QVERIFY(driver.done());
        QCOMPARE(driver.boxes().at(0).icon, QMessageBox::Warning);
        QCOMPARE(driver.boxes().at(0).title, QStringLiteral("無可上傳圖樣"));
        QCOMPARE(driver.boxes().at(0).text, QStringLiteral("請選擇正確之時間軸"));
        QVERIFY(empty.window->uploadThread == nullptr && !QFile::exists(QStringLiteral("extemp.tmp")));
    }
    const UploadWindow on(1);
    QCOMPARE(on.upload(), QStringLiteral("<font color='white'>偵測不到裝置！</font>"));
    QVERIFY(on.isAtRest());
    {
        PropBehaviour behaviour;
        behaviour.reply = "ERR";
        SimulatedProp prop(behaviour);
        QVERIFY(prop.start(on.port(0)));
        QCOMPARE(on.upload(), QStringLiteral("<font color='white'>ERROR02</font>"));
        QVERIFY(on.isAtRest());
    }
    SimulatedProp prop; // and the next one works
    QVERIFY(prop.start(on.port(0)));
    QCOMPARE(on.upload(), uploaded);
}

void TestUploadButton::silentEndKeepsTheText()
{
    const UploadWindow on(10);
    PropBehaviour behaviour;
    behaviour.vanishAfter = 10000;
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(on.port(0)));
    QCOMPARE(on.upload(false), QStringLiteral("no box"));
    QCOMPARE(on.ui->UPload_Button->text(), sending);
    QVERIFY(!on.ui->GLWidget->isEnabled() && !on.ui->Ex_Button->isEnabled());
    SimulatedProp back; // a click starts anew
    QVERIFY(back.start(on.port(0)));
    QCOMPARE(on.upload(), uploaded);
    QVERIFY(on.isAtRest());
}

void TestUploadButton::cancels()
{
    const UploadWindow on(250); // some seconds of sending
    SimulatedProp prop;
    QVERIFY(prop.start(on.port(0)));
    QScopedPointer<DialogDriver> driver(new DialogDriver);
    on.ui->UPload_Button->click();
    WorkerThread *thread = on.window->uploadThread;
    QTRY_VERIFY_WITH_TIMEOUT(on.ui->progressBar->value() > 5, longest);
    QSignalSpy cancelled(on.window.data(), &MainWindow::Upload_Cancel_Clicked);
    driver->answerBox(QMessageBox::Ok);
    on.ui->UPload_Button->click();
    QVERIFY(driver->done());
    QCOMPARE(cancelled.size(), 1);
    QCOMPARE(driver->boxes().at(0).icon, QMessageBox::Warning);
    QCOMPARE(driver->boxes().at(0).title, QStringLiteral("已取消上傳"));
    QCOMPARE(driver->boxes().at(0).text, QStringLiteral("已取消上傳"));
    QVERIFY(on.window->uploadThread == nullptr);
    QVERIFY(thread->wait(longest));
    QCOMPARE(on.ui->UPload_Button->text(), rest);
    QVERIFY(!on.ui->GLWidget->isEnabled());
    QVERIFY(prop.sessions().last().open); // still held: it does not open again, another prop is found

    driver.reset(); // or it would answer for the next upload
    SimulatedProp other;
    while (on.window->currentTimeline->items.size() > 2) {
        on.window->currentTimeline->deleteTimelineItem(on.window->currentTimeline->items.last());
    }
    QVERIFY(other.start(on.port(1)));
    QCOMPARE(on.upload(), uploaded);
    QVERIFY(other.waitFor(portClosed));
}

void TestUploadButton::cancelsAtRandom()
{
    const UploadWindow on(4);
    QRandomGenerator random(99);
    int cut = 0;
    for (int round = 0; round < 30; ++round) {
        PropBehaviour behaviour;
        behaviour.greetingMs = 5;
        SimulatedProp prop(behaviour);
        QVERIFY(prop.start(on.port(round)));
        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        driver.answerBox(QMessageBox::Ok); // of an upload that ended just then; stays unused otherwise
        on.ui->UPload_Button->click();
        QTest::qWait(static_cast<int>(random.bounded(200))); // the moments are the point
        if (on.window->uploadThread != nullptr) {
            on.ui->UPload_Button->click();
            cut += driver.boxes().last().text == QStringLiteral("已取消上傳") ? 1 : 0;
        }
        QTRY_VERIFY_WITH_TIMEOUT(on.window->uploadThread == nullptr, longest);
    }
    QVERIFY(cut > 5);
    SimulatedProp prop;
    QVERIFY(prop.start(on.port(99)));
    QCOMPARE(on.upload(), uploaded);
}

QTEST_MAIN(TestUploadButton)
#include "test_uploadbutton.moc"
