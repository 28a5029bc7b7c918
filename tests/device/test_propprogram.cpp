// The program glowsmith-prop, started and used as from a shell, by the upload of the window and of the command line.
#include "device/devicewindow.h"

#include "app/projectfile.h"
#include "app/wholefile.h"
#include "device/devicedecode.h"
#include "device/showpicture.h"
#include "device/wipe.h"
#include "device/workerthread.h"

#include <QImage>
#include <QProcess>
#include <QSerialPort>

namespace {

constexpr int patienceMs = 60000;

QStringList words(const char *line)
{
    return QString::fromLatin1(line).split(u' ', Qt::SkipEmptyParts);
}

} // namespace

class TestPropProgram : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void takesAnUpload();
    void takesAnUploadFromTheCommandLine();
    void complainsAboutBrokenData();
    void misbehavesAsAsked();
    void takesAWipeUntilTold();
    void wrongUse();
    void drawsAnyShow();

private:
    // Starts it and sets the variable that it prints.
    void start(const char *arguments)
    {
        program.start(QStringLiteral(GLOWSMITH_PROP), words(arguments));
        output.clear();
        while (!output.contains("GLOWSMITH_PORT_PATTERN=") || !output.endsWith('\n')) {
            QVERIFY(program.waitForReadyRead(patienceMs));
            output += program.readAllStandardOutput();
        }
        qputenv("GLOWSMITH_PORT_PATTERN", output.mid(output.indexOf('=') + 1).trimmed());
    }

    // Ends when the program has ended by itself.
    int endCode()
    {
        if (!program.waitForFinished(patienceMs) || program.exitStatus() != QProcess::NormalExit) {
            return -1;
        }
        output += program.readAllStandardOutput();
        return program.exitCode();
    }

    // The message of an upload, "finish" for none.
    static QString upload()
    {
        WorkerThread thread;
        QString heard;
        connect(&thread, &WorkerThread::expmess, &thread, [&heard](const QString &text) { heard = text; });
        thread.start();
        const bool over = thread.wait(patienceMs);
        QCoreApplication::processEvents();
        return over && thread.uploadOk == 1 ? QStringLiteral("finish") : heard;
    }

    QScopedPointer<DeviceWindow> on;
    QProcess program;
    QByteArray output;
};

// A second of red in the track slot 6, converted.
void TestPropProgram::init()
{
    on.reset(new DeviceWindow(36, 100));
    on->add(glow::ColourPattern, 0, 1000, Qt::red);
    on->ui->prop_track->setCurrentIndex(5);
    on->window->buildDeviceImage();
}

void TestPropProgram::cleanup()
{
    program.kill();
    program.waitForFinished();
    on.reset();
}

void TestPropProgram::takesAnUpload()
{
    start("--once --out got --link ports --number 12");
    QVERIFY(output.startsWith("prop on /dev/"));
    QVERIFY(QFile::exists(QStringLiteral("ports/COM12")));
    QCOMPARE(upload(), QStringLiteral("finish"));
    QCOMPARE(endCode(), 0);
    QVERIFY2(output.contains("upload to track 6: 1 entries, 36 LEDs, 100 columns a second"), output.constData());
    QCOMPARE(fileBytes("got/show-1.header"), fileBytes("extemp2.tmp").chopped(2));
    QCOMPARE(fileBytes("got/show-1.frames"), fileBytes("extemp.tmp"));
    const QColor drawn = QImage(QStringLiteral("got/show-1.png")).pixelColor(240, 5);
    QVERIFY(drawn.red() > 250 && drawn.green() == 0);
    QVERIFY(!QFile::exists(QStringLiteral("ports/COM12")));
}

void TestPropProgram::takesAnUploadFromTheCommandLine()
{
    const QString path = on->env.path(QStringLiteral("show.gsw3"));
    QCOMPARE(glow::writeWholeFile(path, glow::writeProject(on->window->asProject())).state, glow::WriteResult::Written);
    const auto run = [](const QStringList &arguments) {
        QProcess process;
        process.start(QStringLiteral(GLOWSMITH_CLI), QStringList(QStringLiteral("upload")) + arguments);
        process.waitForFinished(patienceMs);
        return QString::number(process.exitCode()) + QStringLiteral(" ") +
               QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError());
    };
    QCOMPARE(run({path}), QStringLiteral("1 No device detect!\n"));
    start("--once --out got --link ports");
    qputenv("GLOWSMITH_PORT_PATTERN", "ports/COM%1"); // from the working directory
    QVERIFY(run({path, QStringLiteral("--slot"), QStringLiteral("6")}).startsWith(QStringLiteral("0 sent 1 patterns")));
    QCOMPARE(endCode(), 0);
    QCOMPARE(fileBytes("got/show-1.header"), fileBytes("extemp2.tmp").chopped(2));
    QCOMPARE(fileBytes("got/show-1.frames"), fileBytes("extemp.tmp"));
    start("--refuse --link ports");
    QCOMPARE(run({path, QStringLiteral("--port"), QStringLiteral("ports/COM0")}),
             QStringLiteral("1 the prop refused the show (ERROR02)\n"));
}

void TestPropProgram::complainsAboutBrokenData()
{
    start("--once");
    QFile data(QStringLiteral("extemp.tmp"));
    QVERIFY(data.open(QIODevice::ReadWrite));
    data.seek(150);
    data.write("\xFE"); // a frame ends too early
    data.close();
    QCOMPARE(upload(), QStringLiteral("finish"));
    QCOMPARE(endCode(), 1);
    QVERIFY(program.readAllStandardError().contains("entry 1, frame 2 has"));
}

void TestPropProgram::misbehavesAsAsked()
{
    const QString none = QStringLiteral("偵測不到裝置！");
    const QPair<const char *, QString> rows[] = {{"--refuse", QStringLiteral("ERROR02")},
                                                 {"--silent", none},
                                                 {"--delay 9000", none},
                                                 {"--vanish 40", QString()}};
    for (const auto &row : rows) {
        glow::deviceWaitMs = 1500;
        start(row.first);
        QCOMPARE(upload(), row.second);
        if (row.second.isEmpty()) {
            QCOMPARE(endCode(), 1); // gone; what came so far was no whole show
        } else {
            program.terminate();
            QCOMPARE(endCode(), 0);
        }
    }
}

void TestPropProgram::takesAWipeUntilTold()
{
    start("");
    QSerialPort port;
    int number = 0;
    glow::ScanRules rules;
    rules.accepts = [](const QString &text) { return text.contains(QStringLiteral("Wait")); };
    QCOMPARE(glow::scanPorts(port, number, rules), glow::ScanResult::Found);
    QVERIFY(glow::wipeMemory(port));
    port.close();
    while (!output.endsWith("wiped\n")) {
        QVERIFY(program.waitForReadyRead(patienceMs));
        output += program.readAllStandardOutput();
    }
    program.terminate();
    QCOMPARE(endCode(), 0);
}

void TestPropProgram::wrongUse()
{
    const QPair<const char *, int> rows[] = {
        {"--help", 0},   {"--version", 0},         {"--what", 2}, {"--number 100", 2}, {"--vanish x", 2},
        {"show.bin", 2}, {"--out extemp.tmp/x", 1}};
    for (const auto &row : rows) {
        program.start(QStringLiteral(GLOWSMITH_PROP), words(row.first));
        output.clear();
        QCOMPARE(endCode(), row.second);
        QVERIFY(!(row.second == 0 ? output : program.readAllStandardError()).isEmpty());
    }
}

void TestPropProgram::drawsAnyShow()
{
    // A damaged file can tell of any number of repeats: a million green frames two thousand million times.
    glow::DecodedShow show;
    show.leds = 1;
    show.rate = 100;
    glow::DecodedEntry entry;
    entry.repeat = std::numeric_limits<int>::max();
    entry.frameCount = 1 << 20;
    entry.frames = QByteArray("\0\x56\0", 3).repeated(entry.frameCount);
    show.entries = {entry, entry};
    const QImage picture = glow::drawShow(show);
    QCOMPARE(picture.width(), glow::widestShowPicture);
    QVERIFY(picture.pixelColor(7900, 1).green() > 250); // 0x56 is full brightness
    QVERIFY(!glow::drawShow(glow::DecodedShow()).isNull());
}

QTEST_MAIN(TestPropProgram)
#include "test_propprogram.moc"
