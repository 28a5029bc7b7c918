// The program glowsmith-prop, started and used as from a shell.
#include "device/deviceimage.h"
#include "device/portscan.h"
#include "device/wipe.h"
#include "device/workerthread.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QLoggingCategory>
#include <QProcess>
#include <QSerialPort>
#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr int patienceMs = 30000;

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

void writeShow()
{
    glow::DeviceShow show;
    show.ledCount = 36;
    show.ledsShown = 36;
    show.frameRate = 100.0F;
    show.rateShown = 100;
    show.slot = 6;
    glow::ShowPattern red;
    red.endMs = 1000;
    red.isColour = true;
    red.colour = qRgb(255, 0, 0);
    show.patterns << red;
    QFile data(QStringLiteral("extemp.tmp"));
    QFile header(QStringLiteral("extemp2.tmp"));
    QVERIFY(data.open(QIODevice::WriteOnly) && header.open(QIODevice::WriteOnly));
    glow::writeDeviceImage(show, data, header);
}

} // namespace

class TestPropProgram : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void takesAnUpload();
    void complainsAboutBrokenData();
    void misbehavesAsAsked_data();
    void misbehavesAsAsked();
    void takesAWipe();
    void endsWhenTold();
    void wrongUse_data();
    void wrongUse();

private:
    // Starts it and sets the variable that it prints.
    void start(const QStringList &arguments)
    {
        program.start(QStringLiteral(GLOWSMITH_PROP), arguments);
        output.clear();
        while (!output.contains("GLOWSMITH_PORT_PATTERN=") || !output.endsWith('\n')) {
            QVERIFY(program.waitForReadyRead(patienceMs));
            output += program.readAllStandardOutput();
        }
        const int at = output.indexOf("GLOWSMITH_PORT_PATTERN=");
        qputenv("GLOWSMITH_PORT_PATTERN", output.mid(at + int(qstrlen("GLOWSMITH_PORT_PATTERN="))).trimmed());
    }

    int endCode()
    {
        if (!program.waitForFinished(patienceMs) || program.exitStatus() != QProcess::NormalExit) {
            return -1;
        }
        output += program.readAllStandardOutput();
        return program.exitCode();
    }

    QProcess program;
    QByteArray output;
    QScopedPointer<QTemporaryDir> dir;
    QString oldPath;
};

void TestPropProgram::init()
{
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    oldPath = QDir::currentPath();
    dir.reset(new QTemporaryDir);
    QVERIFY(QDir::setCurrent(dir->path()));
    glow::deviceWaitMs = 5000;
    writeShow();
}

void TestPropProgram::cleanup()
{
    program.kill();
    program.waitForFinished();
    QDir::setCurrent(oldPath);
}

void TestPropProgram::takesAnUpload()
{
    start({QStringLiteral("--once"), QStringLiteral("--out"), QStringLiteral("got"), QStringLiteral("--link"),
           QStringLiteral("ports"), QStringLiteral("--number"), QStringLiteral("12")});
    QVERIFY(output.startsWith("prop on /dev/"));
    QVERIFY(QFile::exists(QStringLiteral("ports/COM12")));
    WorkerThread thread;
    thread.start();
    QVERIFY(thread.wait(patienceMs));
    QCOMPARE(int(thread.uploadOk), 1);
    QCOMPARE(thread.portIndex, 12);
    QCOMPARE(endCode(), 0);
    QVERIFY2(output.contains("upload to track 6: 1 entries, 36 LEDs, 100 columns a second"), output.constData());
    const QByteArray header = contents(QStringLiteral("extemp2.tmp"));
    QCOMPARE(contents(QStringLiteral("got/show-1.header")), header.left(header.size() - 2));
    QCOMPARE(contents(QStringLiteral("got/show-1.frames")), contents(QStringLiteral("extemp.tmp")));
    const QImage picture(QStringLiteral("got/show-1.png"));
    QVERIFY(!picture.isNull());
    QVERIFY(qRed(picture.pixel(picture.width() / 2, 5)) > 250 && qGreen(picture.pixel(picture.width() / 2, 5)) == 0);
    QVERIFY(!QFile::exists(QStringLiteral("ports/COM12")));
}

void TestPropProgram::complainsAboutBrokenData()
{
    start({QStringLiteral("--once")});
    QFile data(QStringLiteral("extemp.tmp"));
    QVERIFY(data.open(QIODevice::ReadWrite));
    data.seek(150);
    data.write("\xFE"); // a frame ends too early
    data.close();
    WorkerThread thread;
    thread.start();
    QVERIFY(thread.wait(patienceMs));
    QCOMPARE(endCode(), 1);
    QVERIFY(program.readAllStandardError().contains("entry 1, frame 2 has"));
}

void TestPropProgram::misbehavesAsAsked_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    QTest::newRow("refuse") << QStringList{QStringLiteral("--refuse")} << QStringLiteral("ERROR02");
    QTest::newRow("silent") << QStringList{QStringLiteral("--silent")} << QStringLiteral("偵測不到裝置！");
    QTest::newRow("late") << QStringList{QStringLiteral("--delay"), QStringLiteral("3000")}
                          << QStringLiteral("偵測不到裝置！");
    QTest::newRow("vanish") << QStringList{QStringLiteral("--vanish"), QStringLiteral("40")} << QString();
}

void TestPropProgram::misbehavesAsAsked()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    glow::deviceWaitMs = 400;
    start(arguments);
    WorkerThread thread;
    QString heard;
    connect(&thread, &WorkerThread::expmess, this, [&heard](const QString &text) { heard = text; });
    thread.start();
    QVERIFY(thread.wait(patienceMs));
    QCoreApplication::processEvents();
    QCOMPARE(heard, message);
    QCOMPARE(int(thread.uploadOk), 0);
    if (message.isEmpty()) {
        QCOMPARE(endCode(), 1); // gone; what came so far was no whole show
    } else {
        QCOMPARE(program.state(), QProcess::Running);
    }
}

void TestPropProgram::takesAWipe()
{
    start({QStringLiteral("--once")});
    QSerialPort port;
    int number = 0;
    glow::ScanRules rules;
    rules.accepts = [](const QString &text) { return text.contains(QStringLiteral("Wait")); };
    QCOMPARE(glow::scanPorts(port, number, rules), glow::ScanResult::Found);
    QVERIFY(glow::wipeMemory(port));
    port.close();
    QCOMPARE(endCode(), 0);
    QVERIFY(output.endsWith("wiped\n"));
}

void TestPropProgram::endsWhenTold()
{
    start({});
    program.terminate();
    QCOMPARE(endCode(), 0);
}

void TestPropProgram::wrongUse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");

    QTest::newRow("help") << QStringList{QStringLiteral("--help")} << 0;
    QTest::newRow("version") << QStringList{QStringLiteral("--version")} << 0;
    QTest::newRow("unknown") << QStringList{QStringLiteral("--what")} << 2;
    QTest::newRow("number") << QStringList{QStringLiteral("--number"), QStringLiteral("100")} << 2;
    QTest::newRow("no number") << QStringList{QStringLiteral("--vanish"), QStringLiteral("x")} << 2;
    QTest::newRow("operand") << QStringList{QStringLiteral("show.bin")} << 2;
    QTest::newRow("no folder") << QStringList{QStringLiteral("--out"), QStringLiteral("extemp.tmp/x")} << 1;
}

void TestPropProgram::wrongUse()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    program.start(QStringLiteral(GLOWSMITH_PROP), arguments);
    QCOMPARE(endCode(), code);
    const bool explained = !program.readAllStandardError().isEmpty();
    QVERIFY(code == 0 ? !output.isEmpty() : explained);
}

QTEST_GUILESS_MAIN(TestPropProgram)
#include "test_propprogram.moc"
