// Wipe, firmware hand-over, terminal and lock, in the real window against a simulated prop.
#include "device/devicewindow.h"

#include "device/pass.h"
#include "device/setup.h"
#include "device/wipe.h"
#include "support/dialogdriver.h"
#include "ui_pass.h"
#include "ui_setup.h"

#include <QScrollBar>
#include <QSerialPort>

namespace {

constexpr int longest = 60000; // milliseconds, for a busy machine

// What a user does with the lock. A wrong password opens a box, which the driver can only answer once it has let go of
// the lock.
void typePassword(QDialog *dialog, const QString &password)
{
    auto *pass = qobject_cast<Pass *>(dialog);
    QVERIFY(pass != nullptr);
    QTimer::singleShot(0, pass, [pass, password] {
        pass->ui->lineEdit->clear();
        QTest::keyClicks(pass->ui->lineEdit, password);
        QTest::keyClick(pass->ui->lineEdit, Qt::Key_Return);
    });
}

void unlock(QDialog *dialog)
{
    typePassword(dialog, QStringLiteral("qz"));
}

glow::ScanRules waitRules()
{
    glow::ScanRules rules;
    rules.accepts = [](const QString &text) { return text.contains(QStringLiteral("Wait")); };
    return rules;
}

// A port whose waits end at once, each with the next of the prop's sayings.
class ScriptedPort : public QSerialPort
{
public:
    explicit ScriptedPort(const QStringList &sayings)
        : sayings(sayings)
    {
    }
    qint64 bytesAvailable() const override { return said.size(); }
    bool waitForReadyRead(int) override
    {
        said = sayings.isEmpty() ? QByteArray() : sayings.takeFirst().toUtf8();
        return !said.isEmpty();
    }

protected:
    qint64 readData(char *data, qint64 most) override
    {
        const int count = static_cast<int>(qMin<qint64>(most, said.size()));
        std::copy_n(said.constData(), count, data);
        said.remove(0, count);
        return count;
    }

private:
    QStringList sayings;
    QByteArray said;
};

void send(const setup &terminal, const QString &command)
{
    terminal.ui->COMMAND->setText(command);
    QTest::mouseClick(terminal.ui->SEND_BUTTON, Qt::LeftButton);
}

} // namespace

class TestMaintenance : public QObject
{
    Q_OBJECT

private slots:
    void wipeTranscript();
    void wipeRounds();
    void earlyChatterIsNoAnswer();
    void wipeInTheWindow();
    void wipeTimesOut();
    void lockStaysShut();
    void firmwareGetsItsArguments();
    void firmwareWithoutProp();
    void terminalTalks();
    void terminalSearches();
    void terminalScrolls();
    void terminalTakesAnything();
    void terminalTakesAFlood();
};

void TestMaintenance::wipeTranscript()
{
    const PortFolder on;
    SimulatedProp prop;
    QVERIFY(prop.start(on.port(0)));
    QSerialPort port;
    glow::setUpPort(port, glow::maintenanceBaud);
    int number = -1;
    QCOMPARE(glow::scanPorts(port, number, waitRules()), glow::ScanResult::Found);
    QCOMPARE(number, 0);
    QVERIFY(glow::wipeMemory(port));
    port.close();
    QVERIFY(prop.waitFor(portClosed));
    const PropSession session = prop.sessions().last();
    QCOMPARE(session.kind, PropSession::Wipe);
    QCOMPARE(session.events.size(), 3);
    QCOMPARE(session.events.at(0).bytes, QByteArray("Wait\r\n"));
    QCOMPARE(session.events.at(1).kind, PropEvent::Received);
    QCOMPARE(session.events.at(1).bytes, QByteArray("DD"));
    QCOMPARE(session.events.at(2).bytes, QByteArray("Wait\r\n"));
    QCOMPARE(port.baudRate(), 250000);
}

void TestMaintenance::wipeRounds()
{
    // With a limit of 5000 and steps of 100 the word counts up to the 51st round. The first saying is there when the
    // rounds begin; each round hears one. Words in two pieces count, those of another case do not.
    const auto wiped = [](int before, const QStringList &sayings) {
        const PortFolder on;
        SimulatedProp prop;
        QStringList all;
        for (int i = 0; i < before; ++i) {
            all << QStringLiteral(".");
        }
        ScriptedPort port(all + sayings);
        port.setPortName(on.port(0));
        return prop.start(on.port(0)) && port.open(QIODevice::ReadWrite) && glow::wipeMemory(port);
    };
    const QString word = QStringLiteral("..Wait..");
    QVERIFY(wiped(0, {word}));
    QVERIFY(wiped(49, {word})); // seen when 5000 are counted
    QVERIFY(!wiped(50, {word, word}));
    QVERIFY(wiped(3, {QStringLiteral("Wa"), QStringLiteral("it")}));
    QVERIFY(!wiped(0, {QStringLiteral("wait")}));
}

void TestMaintenance::earlyChatterIsNoAnswer()
{
    const PortFolder on;
    PropBehaviour behaviour;
    behaviour.wiped.clear();
    behaviour.chatter = {{60, "Wait "}, {90, "Wait "}};
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(on.port(0)));
    QSerialPort port(on.port(0));
    QVERIFY(port.open(QIODevice::ReadWrite));
    QVERIFY(glow::waitForData(port, 5000)); // one part ends up in Qt's buffer, the other in the driver's
    QVERIFY(prop.waitFor([](const QVector<PropSession> &all) { return all.last().events.size() == 3; }));
    glow::WipeTimes times;
    times.first = 50;
    times.round = 10;
    times.limit = 100;
    QVERIFY(!glow::wipeMemory(port, times));
    QVERIFY(prop.waitFor([](const QVector<PropSession> &all) { return all.last().received == "DD"; }));
}

void TestMaintenance::wipeInTheWindow()
{
    const QString done = QStringLiteral("記憶體清除完成");
    const QString none = QStringLiteral("偵測不到裝置！");
    const QString late = QStringLiteral("清除記憶體逾時");
    const struct
    {
        int number; // of the port, with a silent one before it; -1: neither
        QByteArray greeting;
        QByteArray later; // said soon after
        int vanishAfter;
        QByteArray received;
        QString text;
    } rows[] = {
        {-1, "", "", -1, "", none},    {7, "Wait", "", -1, "DD", done}, {7, "Hello", "now Wait", -1, "DD", done},
        {7, "wait", "", -1, "", none}, {99, "", "", -1, "", late},      {7, "Wait", "", 2, "DD", late}};
    for (const auto &row : rows) {
        DeviceWindow on;
        glow::deviceWaitMs = 800;
        PropBehaviour behaviour;
        behaviour.greeting = row.greeting;
        behaviour.chatter = {{100, row.later}};
        behaviour.vanishAfter = row.vanishAfter;
        SimulatedProp silent(silentProp());
        SimulatedProp prop(behaviour);
        QVERIFY(row.number < 0 || (silent.start(on.port(2)) && prop.start(on.port(row.number))));
        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        on.ui->actionFormat->trigger();
        QVERIFY(driver.done());
        QCOMPARE(driver.boxes().at(0).title, QString());
        QCOMPARE(driver.boxes().at(0).text, row.text);
        if (row.number >= 0) {
            QVERIFY(prop.waitFor(portClosed) && silent.waitFor(portClosed));
            QVERIFY(silent.sessions().last().received.isEmpty());
            QCOMPARE(prop.sessions().last().received, row.received);
        }
    }
}

void TestMaintenance::wipeTimesOut()
{
    DeviceWindow on;
    PropBehaviour behaviour;
    behaviour.wiped.clear();
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(on.port(0)));
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    QElapsedTimer clock;
    clock.start();
    on.ui->actionFormat->trigger();
    QVERIFY(clock.elapsed() >= 5600); // 500 ms and 51 rounds of 100 ms
    QCOMPARE(driver.boxes().at(0).icon, QMessageBox::Warning);
    QCOMPARE(driver.boxes().at(0).text, QStringLiteral("清除記憶體逾時"));
    QVERIFY(prop.waitFor(portClosed));
}

void TestMaintenance::lockStaysShut()
{
    DeviceWindow on;
    DialogDriver driver;
    driver.answerWith([](QDialog *dialog) { typePassword(dialog, QStringLiteral("QZ")); });
    driver.answerBox(QMessageBox::Ok);
    driver.answerWith([](QDialog *dialog) {
        auto *pass = qobject_cast<Pass *>(dialog);
        QVERIFY(pass != nullptr);
        QCOMPARE(pass->ui->lineEdit->text(), QStringLiteral("QZ")); // not cleared
        QCOMPARE(pass->ui->lineEdit->echoMode(), QLineEdit::Password);
        QCOMPARE(pass->windowTitle(), QStringLiteral("後台密碼"));
        pass->reject();
    });
    on.ui->action_admin->trigger();
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().at(0).text, QStringLiteral("密碼錯誤"));
    driver.answerWith([](QDialog *dialog) { dialog->reject(); });
    on.ui->actionFirUpdate->trigger(); // nothing follows: no box about a missing prop
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().size(), 1);
}

void TestMaintenance::firmwareGetsItsArguments()
{
    DeviceWindow on;
    QVERIFY(QDir().mkpath(QStringLiteral("tool")));
    QFile script(QStringLiteral("tool/maple_upload.bat"));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nprintf '%s\\n' \"$@\" > arguments.part\nmv arguments.part arguments\n");
    script.close();
    QVERIFY(script.setPermissions(script.permissions() | QFile::ExeOwner));
    SimulatedProp prop;
    QVERIFY(prop.start(on.port(5)));
    DialogDriver driver;
    driver.answerWith(unlock);
    on.ui->actionFirUpdate->trigger();
    QVERIFY(driver.done() && driver.boxes().isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(QStringLiteral("arguments")), longest);
    QCOMPARE(QString::fromUtf8(fileBytes(QStringLiteral("arguments"))),
             QStringLiteral("COM5\n2\n1EAF:0003\n%1/tool/firm/Brevon.RE.bin\n").arg(QDir::currentPath()));
    QVERIFY(prop.waitFor(portClosed)); // the script can have the port
    QVERIFY(prop.sessions().last().received.isEmpty());
}

void TestMaintenance::firmwareWithoutProp()
{
    DeviceWindow on;
    glow::deviceWaitMs = 800;
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    on.window->updatesystem();
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().at(0).icon, QMessageBox::Warning);
    QCOMPARE(driver.boxes().at(0).text, QStringLiteral("找不到裝置！"));
    SimulatedProp silent(silentProp());
    QVERIFY(silent.start(on.port(99)));
    on.window->updatesystem(); // the last port silent: nothing
    SimulatedProp prop;
    QVERIFY(prop.start(on.port(3)));
    on.window->updatesystem(); // no script: nothing
    QVERIFY(prop.waitFor(portClosed));
    QCOMPARE(driver.boxes().size(), 1);
}

void TestMaintenance::terminalTalks()
{
    DeviceWindow on;
    SimulatedProp prop;
    QVERIFY(prop.start(on.port(4)));
    DialogDriver driver;
    driver.answerWith(unlock);
    driver.answerWith([&prop](QDialog *dialog) {
        auto *terminal = qobject_cast<setup *>(dialog);
        QVERIFY(terminal != nullptr);
        QCOMPARE(terminal->windowTitle(), QStringLiteral("Serial COM"));
        QCOMPARE(terminal->portNumber, 4);
        QCOMPARE(terminal->ui->MONITOR->toPlainText(), QStringLiteral("連線中...COM4連接成功")); // no greeting
        QVERIFY(QTest::qWaitForWindowActive(terminal));
        QVERIFY(terminal->ui->COMMAND->hasFocus()); // ready for typing
        QTest::keyClicks(terminal->ui->COMMAND, QStringLiteral("AT"));
        QTest::keyClick(terminal->ui->COMMAND, Qt::Key_Return);
        QCOMPARE(terminal->ui->COMMAND->text(), QString());
        QTRY_VERIFY(terminal->ui->MONITOR->toPlainText().endsWith(QStringLiteral("連接成功Simulated prop\n")));
        QTest::keyClicks(terminal->ui->COMMAND, QStringLiteral("AP3"));
        QTest::mouseClick(terminal->ui->SEND_BUTTON, Qt::LeftButton);
        QTRY_VERIFY(terminal->ui->MONITOR->toPlainText().contains(QStringLiteral("Playing track 3")));
        QCOMPARE(prop.sessions().last().received, QByteArray("ATAP3")); // once each, no line endings
        terminal->close();
    });
    on.ui->action_admin->trigger();
    QVERIFY(driver.done());
    QVERIFY(prop.waitFor(portClosed)); // the port goes with the dialog
}

void TestMaintenance::terminalSearches()
{
    const PortFolder on;
    {
        setup terminal(nullptr);
        QCOMPARE(terminal.ui->MONITOR->toPlainText(), QStringLiteral("連線中...\n偵測不到裝置！"));
        terminal.show();
        send(terminal, QStringLiteral("AT"));
        QCOMPARE(terminal.ui->COMMAND->text(), QStringLiteral("AT")); // stays
    }
    glow::deviceWaitMs = 800;
    SimulatedProp silent(silentProp());
    SimulatedProp lastOne(silentProp());
    SimulatedProp prop;
    QVERIFY(silent.start(on.port(1)) && lastOne.start(on.port(99)));
    {
        const setup terminal(nullptr);
        QCOMPARE(terminal.ui->MONITOR->toPlainText(), QStringLiteral("連線中...COM1not working.COM99not working."));
        QVERIFY(!terminal.serial->isOpen());
    }
    QVERIFY(prop.start(on.port(20)));
    const setup terminal(nullptr);
    QCOMPARE(terminal.ui->MONITOR->toPlainText(), QStringLiteral("連線中...COM1not working.COM20連接成功"));
    QCOMPARE(terminal.serial->baudRate(), 250000);
}

void TestMaintenance::terminalScrolls()
{
    const PortFolder on;
    SimulatedProp prop;
    QVERIFY(prop.start(on.port(0)));
    setup terminal(nullptr);
    terminal.show();
    QPlainTextEdit *monitor = terminal.ui->MONITOR;
    monitor->insertPlainText(QStringLiteral("\nline").repeated(200));
    send(terminal, QStringLiteral("AT"));
    QTRY_VERIFY(monitor->toPlainText().endsWith(QStringLiteral("lineSimulated prop\n")));
    // The cursor's line is seen; how far beyond it the bar goes is the font's affair.
    QTRY_VERIFY(monitor->viewport()->rect().contains(monitor->cursorRect().center()));
    QVERIFY(monitor->verticalScrollBar()->value() > 100);

    // Without following: the text lands where the cursor is, the view stays.
    terminal.ui->checkBox->setChecked(false);
    QTextCursor top(monitor->document());
    top.setPosition(3, QTextCursor::KeepAnchor); // marked text is not lost
    monitor->setTextCursor(top);
    monitor->verticalScrollBar()->setValue(50);
    send(terminal, QStringLiteral("A0"));
    QTRY_VERIFY(monitor->toPlainText().startsWith(QStringLiteral("連線中Full speed test\n...COM0連接成功")));
    QCOMPARE(monitor->verticalScrollBar()->value(), 50);
    terminal.ui->checkBox->setChecked(true);
    send(terminal, QStringLiteral("AS"));
    QTRY_VERIFY(monitor->toPlainText().contains(QStringLiteral("test\nLED type changed\n...COM0")));
    QVERIFY(monitor->verticalScrollBar()->value() <= 2); // to the cursor, now in the third line
}

void TestMaintenance::terminalTakesAnything()
{
    const PortFolder on;
    QByteArray bytes;
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i);
    }
    const QByteArray chinese = QStringLiteral("完成").toUtf8();
    PropBehaviour behaviour;
    // A character in two pieces, a line's end in two pieces, then every byte there is.
    behaviour.chatter = {
        {1500, chinese.left(4)}, {1800, chinese.mid(4) + "a\r"}, {2100, "\nb"}, {2400, bytes + bytes + "end"}};
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(on.port(0)));
    setup terminal(nullptr);
    terminal.show();
    QTRY_VERIFY_WITH_TIMEOUT(terminal.ui->MONITOR->toPlainText().endsWith(QStringLiteral("end")), longest);
    QVERIFY(terminal.ui->MONITOR->toPlainText().contains(QStringLiteral("連接成功完成a\nb")));
    QVERIFY(!terminal.ui->MONITOR->toPlainText().contains(QChar::Null));
}

void TestMaintenance::terminalTakesAFlood()
{
    // Ten megabytes without a line ending, the worst there is for a text view, then a word.
    const PortFolder on;
    PropBehaviour behaviour;
    behaviour.chatter = {{1500, QByteArray(10 << 20, 'x') + "THE END"}};
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(on.port(0)));
    setup terminal(nullptr);
    terminal.show();
    QElapsedTimer beat;
    qint64 pauseMs = 0;
    QTimer pulse;
    connect(&pulse, &QTimer::timeout, &terminal, [&beat, &pauseMs] { pauseMs = qMax(pauseMs, beat.restart()); });
    beat.start();
    pulse.start(1);
    QTRY_VERIFY_WITH_TIMEOUT(terminal.ui->MONITOR->toPlainText().endsWith(QStringLiteral("THE END")), 3 * longest);
    QVERIFY(terminal.ui->MONITOR->document()->characterCount() <= setup::monitorLimit + 1);
    QVERIFY2(pauseMs < 5000, qPrintable(QString::number(pauseMs)));
    qInfo() << "longest pause of the event loop" << pauseMs << "ms";
}

QTEST_MAIN(TestMaintenance)
#include "test_maintenance.moc"
