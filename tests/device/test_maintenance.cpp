// Wipe, firmware hand-over, terminal and lock, in the real window against a simulated prop.
#include "device/devicewindow.h"
#include "device/pass.h"
#include "device/setup.h"
#include "device/wipe.h"
#include "prop/simulatedprop.h"
#include "support/dialogdriver.h"
#include "ui_pass.h"
#include "ui_setup.h"

#include <QScrollBar>
#include <QSerialPort>

namespace {

bool ended(const QVector<PropSession> &sessions)
{
    return !sessions.isEmpty() && !sessions.last().open;
}

PropBehaviour silentProp()
{
    PropBehaviour behaviour;
    behaviour.greeting.clear();
    return behaviour;
}

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

QStringList linesOf(const QString &path)
{
    return QString::fromUtf8(fileBytes(path)).split(u'\n', Qt::SkipEmptyParts);
}

} // namespace

class TestMaintenance : public QObject
{
    Q_OBJECT

private slots:
    void wipeTranscript();
    void wipeRounds_data();
    void wipeRounds();
    void earlyChatterIsNoAnswer();
    void wipeInTheWindow_data();
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
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("COM0"));
    SimulatedProp prop;
    QVERIFY(prop.start(path));
    qputenv("GLOWSMITH_PORT_PATTERN", QFile::encodeName(dir.filePath(QStringLiteral("COM%1"))));
    QSerialPort port;
    glow::setUpPort(port, glow::maintenanceBaud);
    int number = -1;
    glow::ScanRules rules;
    rules.accepts = [](const QString &text) { return text.contains(QStringLiteral("Wait")); };
    QCOMPARE(glow::scanPorts(port, number, rules), glow::ScanResult::Found);
    QCOMPARE(number, 0);
    QVERIFY(glow::wipeMemory(port));
    port.close();
    QVERIFY(prop.waitFor(ended));
    const PropSession session = prop.sessions().last();
    QCOMPARE(session.kind, PropSession::Wipe);
    QVERIFY(session.complete);
    QCOMPARE(session.events.size(), 3);
    QCOMPARE(session.events.at(0).bytes, QByteArray("Wait\r\n"));
    QCOMPARE(session.events.at(1).kind, PropEvent::Received);
    QCOMPARE(session.events.at(1).bytes, QByteArray("DD"));
    QCOMPARE(session.events.at(2).bytes, QByteArray("Wait\r\n"));
    QCOMPARE(port.baudRate(), 250000);
}

void TestMaintenance::wipeRounds_data()
{
    QTest::addColumn<int>("answer"); // which of the prop's sayings holds the word, counted from 0
    QTest::addColumn<bool>("inTime");

    QTest::newRow("first") << 0 << true;
    QTest::newRow("in the last round") << 2 << true;
    QTest::newRow("one too late") << 3 << false;
}

void TestMaintenance::wipeRounds()
{
    // Rounds are counted: with a limit of three and sayings that each end one, the clock does not matter. The first
    // saying is there when the rounds begin; the fourth round's comes when the limit has passed.
    QFETCH(int, answer);
    QFETCH(bool, inTime);
    const QTemporaryDir dir;
    PropBehaviour behaviour;
    behaviour.wiped.clear();
    for (int i = 0; i < 5; ++i) {
        behaviour.chatter.append({600 + i * 200, i == answer ? "..Wait.." : "..."});
    }
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(dir.filePath(QStringLiteral("COM0"))));
    QSerialPort port(dir.filePath(QStringLiteral("COM0")));
    QVERIFY(port.open(QIODevice::ReadWrite));
    QVERIFY(glow::waitForData(port, 5000));
    port.readAll();
    glow::WipeTimes times;
    times.first = 10000;
    times.round = 10000;
    times.limit = 30000;
    QCOMPARE(glow::wipeMemory(port, times), inTime);
}

void TestMaintenance::earlyChatterIsNoAnswer()
{
    const QTemporaryDir dir;
    PropBehaviour behaviour;
    behaviour.wiped.clear();
    behaviour.chatter = {{60, "Wait "}, {90, "Wait "}};
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(dir.filePath(QStringLiteral("COM0"))));
    QSerialPort port(dir.filePath(QStringLiteral("COM0")));
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

void TestMaintenance::wipeInTheWindow_data()
{
    QTest::addColumn<int>("number"); // of the port; -1: none
    QTest::addColumn<QByteArray>("greeting");
    QTest::addColumn<QByteArray>("later"); // said after 100 ms
    QTest::addColumn<int>("vanishAfter");
    QTest::addColumn<QString>("text");

    const QString done = QStringLiteral("記憶體清除完成");
    const QString none = QStringLiteral("偵測不到裝置！");
    const QString late = QStringLiteral("清除記憶體逾時");
    QTest::newRow("no port") << -1 << QByteArray() << QByteArray() << -1 << none;
    QTest::newRow("behind a silent port") << 7 << QByteArray("Wait") << QByteArray() << -1 << done;
    QTest::newRow("something else first") << 7 << QByteArray("Hello") << QByteArray("now Wait") << -1 << done;
    QTest::newRow("lower case only") << 7 << QByteArray("wait") << QByteArray() << -1 << none;
    QTest::newRow("last port silent") << 99 << QByteArray() << QByteArray() << -1 << late;
    QTest::newRow("vanishes") << 7 << QByteArray("Wait") << QByteArray() << 2 << late;
}

void TestMaintenance::wipeInTheWindow()
{
    QFETCH(int, number);
    QFETCH(QByteArray, greeting);
    QFETCH(QByteArray, later);
    QFETCH(int, vanishAfter);
    QFETCH(QString, text);
    DeviceWindow on;
    glow::deviceWaitMs = 250;
    PropBehaviour behaviour;
    behaviour.greeting = greeting;
    if (!later.isEmpty()) {
        behaviour.chatter = {{100, later}};
    }
    behaviour.vanishAfter = vanishAfter;
    SimulatedProp silent(silentProp());
    SimulatedProp prop(behaviour);
    if (number >= 0) {
        QVERIFY(silent.start(on.port(2)) && prop.start(on.port(number)));
    }
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    on.ui->actionFormat->trigger();
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().at(0).title, QString());
    QCOMPARE(driver.boxes().at(0).text, text);
    if (number >= 0) {
        QVERIFY(prop.waitFor(ended) && silent.waitFor(ended));
        QVERIFY(silent.sessions().last().received.isEmpty());
        QCOMPARE(prop.sessions().last().received, greeting + later == "Wait" || !later.isEmpty() ? "DD" : "");
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
    QVERIFY(prop.waitFor(ended));
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
    QTRY_VERIFY(QFile::exists(QStringLiteral("arguments")));
    QCOMPARE(linesOf(QStringLiteral("arguments")),
             QStringList({QStringLiteral("COM5"), QStringLiteral("2"), QStringLiteral("1EAF:0003"),
                          QDir::currentPath() + QStringLiteral("/tool/firm/Brevon.RE.bin")}));
    QVERIFY(prop.waitFor(ended)); // the script can have the port
    QVERIFY(prop.sessions().last().received.isEmpty());
}

void TestMaintenance::firmwareWithoutProp()
{
    DeviceWindow on;
    glow::deviceWaitMs = 100;
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
    QVERIFY(prop.waitFor(ended));
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
        terminal->ui->COMMAND->setFocus();
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
    QVERIFY(prop.waitFor(ended)); // the port goes with the dialog
}

void TestMaintenance::terminalSearches()
{
    const PortFolder on;
    glow::deviceWaitMs = 100;
    {
        setup terminal(nullptr);
        QCOMPARE(terminal.ui->MONITOR->toPlainText(), QStringLiteral("連線中...\n偵測不到裝置！"));
        terminal.show();
        terminal.ui->COMMAND->setText(QStringLiteral("AT"));
        QTest::mouseClick(terminal.ui->SEND_BUTTON, Qt::LeftButton);
        QCOMPARE(terminal.ui->COMMAND->text(), QStringLiteral("AT")); // stays
    }
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
    PropBehaviour behaviour;
    QByteArray lines;
    for (int i = 0; i < 200; ++i) {
        lines += "line " + QByteArray::number(i) + "\n";
    }
    behaviour.chatter = {{400, lines}, {900, "UPPER"}, {1300, "LOWER"}};
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(on.port(0)));
    setup terminal(nullptr);
    terminal.show();
    QPlainTextEdit *monitor = terminal.ui->MONITOR;
    QTRY_VERIFY(monitor->toPlainText().contains(QStringLiteral("line 199\n")));
    QTRY_COMPARE(monitor->verticalScrollBar()->value(), monitor->verticalScrollBar()->maximum());

    // Without following: the text lands where the cursor is, the view stays.
    terminal.ui->checkBox->setChecked(false);
    QTextCursor top(monitor->document());
    top.setPosition(3, QTextCursor::KeepAnchor); // marked text is not lost
    monitor->setTextCursor(top);
    monitor->verticalScrollBar()->setValue(50);
    QTRY_VERIFY(monitor->toPlainText().contains(QStringLiteral("UPPER")));
    QVERIFY(monitor->toPlainText().startsWith(QStringLiteral("連線中UPPER...COM0連接成功")));
    QCOMPARE(monitor->verticalScrollBar()->value(), 50);
    terminal.ui->checkBox->setChecked(true);
    QTRY_VERIFY(monitor->toPlainText().startsWith(QStringLiteral("連線中UPPERLOWER...")));
    QCOMPARE(monitor->verticalScrollBar()->value(), 0); // where the cursor is
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
    // A character in two pieces, then every byte there is.
    behaviour.chatter = {{300, chinese.left(4)}, {500, chinese.mid(4)}, {700, bytes + bytes + "end"}};
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(on.port(0)));
    setup terminal(nullptr);
    terminal.show();
    QTRY_VERIFY(terminal.ui->MONITOR->toPlainText().endsWith(QStringLiteral("end")));
    QVERIFY(terminal.ui->MONITOR->toPlainText().contains(QStringLiteral("連接成功完成")));
}

void TestMaintenance::terminalTakesAFlood()
{
    // Ten megabytes without a line ending, the worst there is for a text view, then a word.
    const PortFolder on;
    PropBehaviour behaviour;
    behaviour.chatter = {{300, QByteArray(10 << 20, 'x') + "THE END"}};
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(on.port(0)));
    setup terminal(nullptr);
    terminal.show();
    QElapsedTimer beat;
    qint64 longest = 0;
    QTimer pulse;
    connect(&pulse, &QTimer::timeout, &terminal, [&beat, &longest] {
        longest = qMax(longest, beat.elapsed());
        beat.restart();
    });
    beat.start();
    pulse.start(1);
    QTRY_VERIFY_WITH_TIMEOUT(terminal.ui->MONITOR->toPlainText().endsWith(QStringLiteral("THE END")), 120000);
    QVERIFY(terminal.ui->MONITOR->document()->characterCount() <= setup::monitorLimit + 1);
    QVERIFY2(longest < 3000, qPrintable(QString::number(longest)));
    qInfo() << "longest pause of the event loop" << longest << "ms";
}

QTEST_MAIN(TestMaintenance)
#include "test_maintenance.moc"
