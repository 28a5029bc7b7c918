// Wipe, firmware hand-over, terminal and lock, in the real window against a simulated prop.
#include "device/devicetest.h"

#include "device/pass.h"
#include "device/setup.h"
#include "show/wire/wipe.h"
#include "support/dialogdriver.h"
#include "ui_pass.h"
#include "ui_setup.h"

#include <QScrollBar>

namespace {

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
    typePassword(dialog, "qz");
}

// A port whose waits end at once, each with the next of the prop's sayings.
class ScriptedPort : public QSerialPort
{
public:
    explicit ScriptedPort(const QStringList &sayings)
        : QSerialPort(glow::portName(0))
        , sayings(sayings)
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

class Terminal : public setup
{
public:
    Terminal()
        : setup(nullptr, deviceWaitMs)
    {
        show();
    }
    QString text() const { return ui->MONITOR->toPlainText(); }
    void send(const QString &command) const
    {
        ui->COMMAND->setText(command);
        QTest::mouseClick(ui->SEND_BUTTON, Qt::LeftButton);
    }
};

} // namespace

class TestMaintenance : public DeviceTest
{
    Q_OBJECT

private slots:
    void wipeTranscript();
    void wipeRounds();
    void earlyChatterIsNoAnswer();
    void wipeInTheWindow();
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
    Prop prop;
    QSerialPort port;
    glow::setUpPort(port, glow::maintenanceBaud);
    glow::ScanRules rules;
    rules.accepts = [](const QString &text) { return text.contains("Wait"); };
    int number = -1;
    QCOMPARE(glow::scanPorts(port, number, rules), glow::ScanResult::Found);
    QCOMPARE(number, 0);
    QVERIFY(glow::wipeMemory(port));
    QCOMPARE(port.baudRate(), 250000);
    port.close();
    const PropSession session = prop.ended();
    QCOMPARE(session.kind, PropSession::Wipe);
    QCOMPARE(session.events.size(), 3);
    QCOMPARE(session.events.at(0).bytes, QByteArray("Wait\r\n"));
    QCOMPARE(session.events.at(1).kind, PropEvent::Received);
    QCOMPARE(session.events.at(1).bytes, QByteArray("DD"));
    QCOMPARE(session.events.at(2).bytes, QByteArray("Wait\r\n"));
}

void TestMaintenance::wipeRounds()
{
    // With a limit of 5000 and steps of 100 the word counts up to the 51st round. The first saying is there when the
    // rounds begin; each round hears one. Words in two pieces count, those of another case do not.
    const auto wiped = [](int before, QStringList sayings) {
        const Prop prop;
        for (int i = 0; i < before; ++i) {
            sayings.prepend(".");
        }
        ScriptedPort port(sayings);
        return port.open(QIODevice::ReadWrite) && glow::wipeMemory(port);
    };
    QVERIFY(wiped(0, {"..Wait.."}));
    QVERIFY(wiped(49, {"..Wait.."})); // seen when 5000 are counted
    QVERIFY(!wiped(50, {"..Wait..", "..Wait.."}));
    QVERIFY(wiped(3, {"Wa", "it"}));
    QVERIFY(!wiped(0, {"wait"}));
}

void TestMaintenance::earlyChatterIsNoAnswer()
{
    PropBehaviour behaviour;
    behaviour.wiped.clear();
    behaviour.chatter = {{60, "Wait "}, {90, "Wait "}};
    Prop prop(0, behaviour);
    QSerialPort port(glow::portName(0));
    QVERIFY(port.open(QIODevice::ReadWrite));
    QVERIFY(glow::waitForData(port, 5000)); // one part ends up in Qt's buffer, the other in the driver's
    QVERIFY(prop.waitFor([](const QVector<PropSession> &all) { return all.last().events.size() == 3; }));
    QVERIFY(!glow::wipeMemory(port, {50, 10, 100}));
    QVERIFY(prop.waitFor([](const QVector<PropSession> &all) { return all.last().received == "DD"; }));
}

void TestMaintenance::wipeInTheWindow()
{
    window->propWaitMs = 800;
    const QString done = "記憶體清除完成";
    const QString none = "偵測不到裝置！";
    const QString late = "清除記憶體逾時";
    const struct
    {
        int number; // of the port, with a silent one before it; -1: neither
        int vanishAfter;
        QByteArray greeting;
        QByteArray later; // said soon after
        QByteArray wiped;
        QByteArray received;
        QString text;
    } rows[] = {{-1, -1, "", "", "", "", none},
                {7, -1, "Wait", "", "Wait", "DD", done},
                {8, -1, "Hello", "now Wait", "Wait", "DD", done},
                {9, -1, "wait", "", "Wait", "", none},
                {99, -1, "", "", "Wait", "", late},
                {10, 2, "Wait", "", "Wait", "DD", late},
                {11, -1, "Wait", "", "", "DD", late}};
    for (const auto &row : rows) {
        PropBehaviour behaviour = greets(row.greeting);
        behaviour.chatter = {{100, row.later}};
        behaviour.wiped = row.wiped;
        behaviour.vanishAfter = row.vanishAfter;
        QScopedPointer<Prop> silent(row.number < 0 ? nullptr : new Prop(2, silence));
        QScopedPointer<Prop> prop(row.number < 0 ? nullptr : new Prop(row.number, behaviour));
        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        QElapsedTimer clock;
        clock.start();
        ui->actionFormat->trigger();
        QVERIFY(driver.done());
        QCOMPARE(driver.boxes().at(0).title, QString());
        QCOMPARE(driver.boxes().at(0).text, row.text);
        QCOMPARE(driver.boxes().at(0).icon == QMessageBox::Warning, row.text != done);
        if (row.number >= 0) {
            QVERIFY(silent->ended().received.isEmpty());
            QCOMPARE(prop->ended().received, row.received);
            QVERIFY(!row.wiped.isEmpty() || clock.elapsed() >= 5600); // 500 ms and 51 rounds of 100 ms
        }
    }
}

void TestMaintenance::lockStaysShut()
{
    DialogDriver driver;
    driver.answerWith([](QDialog *dialog) { typePassword(dialog, QString("QZ")); });
    driver.answerBox(QMessageBox::Ok);
    driver.answerWith([](QDialog *dialog) {
        auto *pass = qobject_cast<Pass *>(dialog);
        QVERIFY(pass != nullptr);
        QCOMPARE(pass->ui->lineEdit->text(), QString("QZ")); // not cleared
        QCOMPARE(pass->ui->lineEdit->echoMode(), QLineEdit::Password);
        QCOMPARE(pass->windowTitle(), QString("後台密碼"));
        pass->reject();
    });
    ui->action_admin->trigger();
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().at(0).text, QString("密碼錯誤"));
    driver.answerWith([](QDialog *dialog) { dialog->reject(); });
    ui->actionFirUpdate->trigger(); // nothing follows: no box about a missing prop
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().size(), 1);
}

void TestMaintenance::firmwareGetsItsArguments()
{
    const QString script = "tool/maple_upload.bat";
    QVERIFY(put(script, "#!/bin/sh\nprintf '%s\\n' \"$@\" > arguments.part\nmv arguments.part arguments\n"));
    QVERIFY(QFile::setPermissions(script, QFile::permissions(script) | QFile::ExeOwner));
    Prop prop(5);
    DialogDriver driver;
    driver.answerWith(unlock);
    ui->actionFirUpdate->trigger();
    QVERIFY(driver.done() && driver.boxes().isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists("arguments"), longest);
    QCOMPARE(QString::fromUtf8(contentOf("arguments")),
             QString("COM5\n2\n1EAF:0003\n%1/tool/firm/Brevon.RE.bin\n").arg(QDir::currentPath()));
    QVERIFY(prop.ended().received.isEmpty()); // the script can have the port
}

void TestMaintenance::firmwareWithoutProp()
{
    window->propWaitMs = 800;
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    window->updatesystem();
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().at(0).icon, QMessageBox::Warning);
    QCOMPARE(driver.boxes().at(0).text, QString("找不到裝置！"));
    const Prop silent(99, silence);
    window->updatesystem(); // the last port silent: nothing
    Prop prop(3);
    window->updatesystem(); // no script: nothing
    prop.ended();
    QCOMPARE(driver.boxes().size(), 1);
}

void TestMaintenance::terminalTalks()
{
    Prop prop(4);
    DialogDriver driver;
    driver.answerWith(unlock);
    driver.answerWith([&prop](QDialog *dialog) {
        auto *terminal = qobject_cast<setup *>(dialog);
        QVERIFY(terminal != nullptr);
        QCOMPARE(terminal->windowTitle(), QString("Serial COM"));
        QCOMPARE(terminal->portNumber, 4);
        QPlainTextEdit *monitor = terminal->ui->MONITOR;
        QLineEdit *command = terminal->ui->COMMAND;
        QCOMPARE(monitor->toPlainText(), QString("連線中...COM4連接成功")); // no greeting
        QVERIFY(QTest::qWaitForWindowActive(terminal));
        QVERIFY(command->hasFocus()); // ready for typing
        QTest::keyClicks(command, "AT");
        QTest::keyClick(command, Qt::Key_Return);
        QCOMPARE(command->text(), QString());
        QTRY_VERIFY(monitor->toPlainText().endsWith("連接成功Simulated prop\n"));
        QTest::keyClicks(command, "AP3");
        QTest::mouseClick(terminal->ui->SEND_BUTTON, Qt::LeftButton);
        QTRY_VERIFY(monitor->toPlainText().contains("Playing track 3"));
        QCOMPARE(prop.sessions().last().received, QByteArray("ATAP3")); // once each, no line endings
        terminal->close();
    });
    ui->action_admin->trigger();
    QVERIFY(driver.done());
    prop.ended(); // the port goes with the dialog
}

void TestMaintenance::terminalSearches()
{
    {
        const Terminal terminal;
        QCOMPARE(terminal.text(), QString("連線中...\n偵測不到裝置！"));
        terminal.send("AT");
        QCOMPARE(terminal.ui->COMMAND->text(), QString("AT")); // stays
    }
    deviceWaitMs = 800;
    const Prop silent(1, silence);
    const Prop lastOne(99, silence);
    {
        const Terminal terminal;
        QCOMPARE(terminal.text(), QString("連線中...COM1not working.COM99not working."));
        QVERIFY(!terminal.serial->isOpen());
    }
    const Prop prop(20);
    const Terminal terminal;
    QCOMPARE(terminal.text(), QString("連線中...COM1not working.COM20連接成功"));
    QCOMPARE(terminal.serial->baudRate(), 250000);
}

void TestMaintenance::terminalScrolls()
{
    const Prop prop;
    const Terminal terminal;
    QPlainTextEdit *monitor = terminal.ui->MONITOR;
    monitor->insertPlainText(QString("\nline").repeated(200));
    terminal.send("AT");
    QTRY_VERIFY(terminal.text().endsWith("lineSimulated prop\n"));
    // The cursor's line is seen; how far beyond it the bar goes is the font's affair.
    QTRY_VERIFY(monitor->viewport()->rect().contains(monitor->cursorRect().center()));
    QVERIFY(monitor->verticalScrollBar()->value() > 100);

    // Without following: the text lands where the cursor is, the view stays.
    terminal.ui->checkBox->setChecked(false);
    QTextCursor top(monitor->document());
    top.setPosition(3, QTextCursor::KeepAnchor); // marked text is not lost
    monitor->setTextCursor(top);
    monitor->verticalScrollBar()->setValue(50);
    terminal.send("A0");
    QTRY_VERIFY(terminal.text().startsWith("連線中Full speed test\n...COM0連接成功"));
    QCOMPARE(monitor->verticalScrollBar()->value(), 50);
    terminal.ui->checkBox->setChecked(true);
    terminal.send("AS");
    QTRY_VERIFY(terminal.text().contains("test\nLED type changed\n...COM0"));
    QVERIFY(monitor->verticalScrollBar()->value() <= 2); // to the cursor, now in the third line
}

void TestMaintenance::terminalTakesAnything()
{
    QByteArray bytes;
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i);
    }
    const QByteArray chinese = "完成";
    PropBehaviour behaviour;
    // A character in two pieces, a line's end in two pieces, then every byte there is.
    behaviour.chatter = {
        {1500, chinese.left(4)}, {1800, chinese.mid(4) + "a\r"}, {2100, "\nb"}, {2400, bytes + bytes + "end"}};
    const Prop prop(0, behaviour);
    const Terminal terminal;
    QTRY_VERIFY_WITH_TIMEOUT(terminal.text().endsWith("end"), longest);
    QVERIFY(terminal.text().contains("連接成功完成a\nb"));
    QVERIFY(!terminal.text().contains(QChar::Null));
}

void TestMaintenance::terminalTakesAFlood()
{
    // Ten megabytes without a line ending, the worst there is for a text view, then a word.
    PropBehaviour behaviour;
    behaviour.chatter = {{1500, QByteArray(10 << 20, 'x') + "THE END"}};
    const Prop prop(0, behaviour);
    Terminal terminal;
    QElapsedTimer beat;
    qint64 pauseMs = 0;
    QTimer pulse;
    connect(&pulse, &QTimer::timeout, &terminal, [&beat, &pauseMs] { pauseMs = qMax(pauseMs, beat.restart()); });
    beat.start();
    pulse.start(1);
    QTRY_VERIFY_WITH_TIMEOUT(terminal.text().endsWith("THE END"), 3 * longest);
    QVERIFY(terminal.ui->MONITOR->document()->characterCount() <= setup::monitorLimit + 1);
    QVERIFY2(pauseMs < 5000, qPrintable(QString::number(pauseMs)));

    // The newest is kept as well when the user has put the cursor to the top of a full monitor.
    terminal.ui->MONITOR->clear();
    terminal.ui->MONITOR->insertPlainText(QString("old\n").repeated(20000));
    terminal.ui->MONITOR->moveCursor(QTextCursor::Start);
    terminal.take(QByteArray("new\n").repeated(7000));
    QTRY_VERIFY(terminal.text().startsWith("new\n"));
    terminal.take("newer\n"); // little comes at once, also during a pause
    QVERIFY(terminal.text().startsWith(QString("new\n").repeated(7000) + "newer\nold\n"));
    QVERIFY(terminal.ui->MONITOR->document()->characterCount() <= setup::monitorLimit + 1);
}

QTEST_MAIN(TestMaintenance)
#include "test_maintenance.moc"
