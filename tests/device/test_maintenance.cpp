// Wipe, firmware hand-over, terminal and lock, in the real window against a simulated prop.
#include "device/devicetest.h"

#include "device/pass.h"
#include "device/setup.h"
#include "show/wire/wipe.h"
#include "ui_pass.h"
#include "ui_setup.h"

#include <QScrollBar>

namespace {

void unlock(QDialog *dialog)
{
    QTest::keyClicks(dialog->findChild<QLineEdit *>(), "qz");
    QTest::keyClick(dialog->findChild<QLineEdit *>(), Qt::Key_Return);
}

// A port whose waits end at once, each with the next of the prop's sayings.
class ScriptedPort : public QSerialPort
{
public:
    qint64 bytesAvailable() const override { return said.size(); }
    bool waitForReadyRead(int) override
    {
        said = sayings.isEmpty() ? QByteArray() : sayings.takeFirst();
        return !said.isEmpty();
    }
    qint64 readData(char *data, qint64 most) override
    {
        const auto count = qMin<qint64>(most, said.size());
        std::copy_n(said.constData(), count, data);
        said.remove(0, int(count));
        return count;
    }

    QByteArrayList sayings;
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
    // With a limit of 5000 and steps of 100 the word counts up to the 51st round. The first saying is there when the
    // rounds begin; each round hears one. Words in two pieces count, those of another case do not.
    void wipeRounds()
    {
        const auto wiped = [](int before, const QByteArrayList &sayings) {
            const Prop prop;
            ScriptedPort port;
            port.setPortName(glow::portName(0));
            for (int i = 0; i < before; ++i) {
                port.sayings << ".";
            }
            port.sayings << sayings;
            return port.open(QIODevice::ReadWrite) && glow::wipeMemory(port);
        };
        QVERIFY(wiped(49, {"..Wait.."})); // seen when 5000 are counted
        QVERIFY(!wiped(50, {"..Wait..", "..Wait.."}));
        QVERIFY(wiped(3, {"Wa", "it"}));
        QVERIFY(!wiped(0, {"wait"}));
    }

    void earlyChatterIsNoAnswer()
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

    void wipeInTheWindow()
    {
        window->propWaitMs = 400;
        const struct
        {
            int number; // of the port, behind a silent one
            QByteArray greeting;
            QByteArray later; // said soon after
            QString text;
            QByteArray received;
        } rows[] = {{7, "Wait", "", "記憶體清除完成", "DD"},
                    {8, "Hello", "now Wait", "記憶體清除完成", "DD"},
                    {9, "wait", "", "偵測不到裝置！", ""},
                    {99, "", "", "清除記憶體逾時", ""}};
        for (const auto &row : rows) {
            PropBehaviour behaviour = greets(row.greeting);
            behaviour.chatter = {{100, row.later}};
            Prop silent(2, silence);
            Prop prop(row.number, behaviour);
            DialogDriver driver;
            driver.answerBox(QMessageBox::Ok);
            ui->actionFormat->trigger();
            QVERIFY(driver.done());
            QCOMPARE(driver.boxes().at(0).title + driver.boxes().at(0).text, row.text);
            QCOMPARE(driver.boxes().at(0).icon == QMessageBox::Warning, row.received.isEmpty());
            QVERIFY(silent.ended().received.isEmpty());
            QCOMPARE(prop.ended().received, row.received);
        }
    }

    void lockStaysShut()
    {
        Pass lock(nullptr);
        lock.show();
        DialogDriver driver;
        for (const char *wrong : {"QZ", "qzz"}) {
            driver.answerBox(QMessageBox::Ok);
            lock.ui->lineEdit->clear();
            QTest::keyClicks(lock.ui->lineEdit, wrong);
            QTest::keyClick(lock.ui->lineEdit, Qt::Key_Return);
            QCOMPARE(driver.boxes().last().text, QString("密碼錯誤"));
            QVERIFY(lock.isVisible());
            QCOMPARE(lock.ui->lineEdit->text(), QString(wrong)); // not cleared
        }
        QCOMPARE(lock.ui->lineEdit->echoMode(), QLineEdit::Password);
        lock.hide();
        // Nothing follows: no box about a missing prop.
        driver.answerWith([](QDialog *dialog) { dialog->reject(); });
        ui->actionFirUpdate->trigger();
        QVERIFY(driver.done());
    }

    void firmwareIsHandedOver()
    {
        window->propWaitMs = 400;
        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        window->updatesystem();
        QVERIFY(driver.done());
        QCOMPARE(driver.boxes().at(0).icon, QMessageBox::Warning);
        QCOMPARE(driver.boxes().at(0).text, QString("找不到裝置！"));
        const Prop silent(99, silence);
        window->updatesystem(); // the last port silent: nothing
        Prop prop(5);
        window->updatesystem(); // no script: nothing
        prop.ended();

        const QString script = "tool/maple_upload.bat";
        QVERIFY(put(script, "#!/bin/sh\nprintf '%s\\n' \"$@\" > arguments.part\nmv arguments.part arguments\n"));
        QVERIFY(QFile::setPermissions(script, QFile::permissions(script) | QFile::ExeOwner));
        driver.answerWith(unlock);
        ui->actionFirUpdate->trigger();
        QVERIFY(driver.done() && driver.boxes().size() == 1);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists("arguments"), longest);
        QCOMPARE(QString::fromUtf8(contentOf("arguments")),
                 QString("COM5\n2\n1EAF:0003\n%1/tool/firm/Brevon.RE.bin\n").arg(QDir::currentPath()));
        QVERIFY(prop.ended().received.isEmpty()); // the script can have the port
    }

    void terminalTalks()
    {
        Prop prop(4);
        DialogDriver driver;
        driver.answerWith(unlock);
        driver.answerWith([&prop](QDialog *dialog) {
            auto *terminal = qobject_cast<setup *>(dialog);
            QVERIFY(terminal != nullptr);
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

    void terminalSearches()
    {
        {
            const Terminal terminal;
            QCOMPARE(terminal.text(), QString("連線中...\n偵測不到裝置！"));
            terminal.send("AT");
            QCOMPARE(terminal.ui->COMMAND->text(), QString("AT")); // stays
        }
        deviceWaitMs = 400;
        const Prop silent(1, silence);
        const Prop lastOne(99, silence);
        QCOMPARE(Terminal().text(), QString("連線中...COM1not working.COM99not working."));
        const Prop prop(20);
        const Terminal terminal;
        QCOMPARE(terminal.text(), QString("連線中...COM1not working.COM20連接成功"));
        QCOMPARE(terminal.serial->baudRate(), 250000);
    }

    void terminalScrolls()
    {
        Terminal terminal;
        QPlainTextEdit *monitor = terminal.ui->MONITOR;
        monitor->setPlainText(QString("line\n").repeated(200));
        monitor->moveCursor(QTextCursor::End);
        terminal.take("end");
        // The cursor's line is seen; how far beyond it the bar goes is the font's affair.
        QTRY_VERIFY(monitor->viewport()->rect().contains(monitor->cursorRect().center()));
        QVERIFY(monitor->verticalScrollBar()->value() > 100);

        // Without following: the text lands where the cursor is, the view stays.
        terminal.ui->checkBox->setChecked(false);
        QTextCursor top(monitor->document());
        top.setPosition(3, QTextCursor::KeepAnchor); // marked text is not lost
        monitor->setTextCursor(top);
        monitor->verticalScrollBar()->setValue(50);
        terminal.take("one\n");
        QCOMPARE(terminal.text().left(9), QString("linone\ne\n"));
        QCOMPARE(monitor->verticalScrollBar()->value(), 50);
        terminal.ui->checkBox->setChecked(true);
        terminal.take("two\n");
        QCOMPARE(terminal.text().left(13), QString("linone\ntwo\ne\n"));
        QVERIFY(monitor->verticalScrollBar()->value() <= 2); // to the cursor, now in the third line
    }

    void terminalTakesAnything()
    {
        QByteArray bytes;
        for (int i = 0; i < 256; ++i) {
            bytes += static_cast<char>(i);
        }
        // A character in two pieces, a line's end in two pieces, then every byte there is.
        const QByteArray chinese = "完成";
        Terminal terminal;
        for (const QByteArray &piece : {chinese.left(4), chinese.mid(4) + "a\r", QByteArray("\nb"), bytes + "end"}) {
            terminal.take(piece);
        }
        QTRY_VERIFY(terminal.text().endsWith("end"));
        QVERIFY(terminal.text().contains("裝置！完成a\nb"));
        QVERIFY(!terminal.text().contains(QChar::Null));

        // Megabytes without a line ending, the worst there is for a text view, then a word.
        for (int i = 0; i < 200; ++i) {
            terminal.take(QByteArray(20000, 'x'));
            QCoreApplication::processEvents();
        }
        terminal.take(QByteArray(4 << 20, 'x') + "THE END");
        QTRY_VERIFY_WITH_TIMEOUT(terminal.text().endsWith("THE END"), longest);
        QVERIFY(terminal.ui->MONITOR->document()->characterCount() <= setup::monitorLimit + 1);

        // The newest is kept as well when the user has put the cursor to the top of a full monitor.
        terminal.ui->MONITOR->setPlainText(QString("old\n").repeated(20000));
        terminal.ui->MONITOR->moveCursor(QTextCursor::Start);
        terminal.take(QByteArray("new\n").repeated(7000));
        QTRY_VERIFY(terminal.text().startsWith("new\n"));
        terminal.take("newer\n"); // little comes at once, also during a pause
        QVERIFY(terminal.text().startsWith(QString("new\n").repeated(7000) + "newer\nold\n"));
        QVERIFY(terminal.ui->MONITOR->document()->characterCount() <= setup::monitorLimit + 1);
    }
};

QTEST_MAIN(TestMaintenance)
#include "test_maintenance.moc"
