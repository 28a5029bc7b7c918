// The program glowsmith-prop, started and used as from a shell, by the upload of the window and of the command line.
#include "device/devicetest.h"

#include "show/base/wholefile.h"
#include "show/image/devicedecode.h"
#include "show/image/showpicture.h"
#include "show/model/projectfile.h"
#include "show/wire/wipe.h"

#include <QImage>
#include <QProcess>

namespace {

const QString finished = "finish";

QStringList words(const char *line)
{
    return QString::fromLatin1(line).split(u' ', Qt::SkipEmptyParts);
}

} // namespace

class TestPropProgram : public DeviceTest
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
    void listenFor(const QByteArray &text)
    {
        while (!output.contains(text) || !output.endsWith('\n')) {
            QVERIFY(program.waitForReadyRead(longest));
            output += program.readAllStandardOutput();
        }
    }

    // Starts it and sets the variable that it prints.
    void start(const char *arguments)
    {
        program.start(GLOWSMITH_PROP, words(arguments));
        output.clear();
        listenFor("GLOWSMITH_PORT_PATTERN=");
        qputenv("GLOWSMITH_PORT_PATTERN", output.mid(output.indexOf('=') + 1).trimmed());
    }

    // Ends when the program has ended by itself.
    int endCode()
    {
        if (!program.waitForFinished(longest) || program.exitStatus() != QProcess::NormalExit) {
            return -1;
        }
        output += program.readAllStandardOutput();
        return program.exitCode();
    }

    QProcess program;
    QByteArray output;
};

// A second of red in the track slot 6, converted.
void TestPropProgram::init()
{
    DeviceTest::init();
    setLeds(36, 100);
    addColour(0, 1000);
    ui->prop_track->setCurrentIndex(5);
    window->buildDeviceImage();
}

void TestPropProgram::cleanup()
{
    program.kill();
    program.waitForFinished();
    DeviceTest::cleanup();
}

void TestPropProgram::takesAnUpload()
{
    start("--once --out got --link ports --number 12");
    QVERIFY(output.startsWith("prop on /dev/"));
    QVERIFY(QFile::exists("ports/COM12"));
    QCOMPARE(Upload().run(), finished);
    QCOMPARE(endCode(), 0);
    QVERIFY2(output.contains("upload to track 6: 1 entries, 36 LEDs, 100 columns a second"), output.constData());
    QCOMPARE(contentOf("got/show-1.header"), contentOf("extemp2.tmp").chopped(2));
    QCOMPARE(contentOf("got/show-1.frames"), contentOf("extemp.tmp"));
    const QColor drawn = QImage("got/show-1.png").pixelColor(240, 5);
    QVERIFY(drawn.red() > 250 && drawn.green() == 0);
    QVERIFY(!QFile::exists("ports/COM12"));
}

void TestPropProgram::takesAnUploadFromTheCommandLine()
{
    const QString path = env->path("show.gsw3");
    QCOMPARE(glow::writeWholeFile(path, glow::writeProject(window->asProject())).state, glow::WriteResult::Written);
    const auto run = [](const QStringList &arguments) {
        QProcess process;
        process.start(GLOWSMITH_CLI, QStringList("upload") + arguments);
        process.waitForFinished(longest);
        return QString::number(process.exitCode()) + ' ' +
               QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError());
    };
    QCOMPARE(run({path}), QString("1 No device detect!\n"));
    start("--once --out got --link ports");
    qputenv("GLOWSMITH_PORT_PATTERN", "ports/COM%1"); // from the working directory
    QVERIFY(run({path, "--slot", "6"}).startsWith("0 sent 1 patterns"));
    QCOMPARE(endCode(), 0);
    QCOMPARE(contentOf("got/show-1.header") + contentOf("got/show-1.frames"), wholeUpload());
    start("--refuse --link ports");
    QCOMPARE(run({path, "--port", "ports/COM0"}), QString("1 the prop refused the show (ERROR02)\n"));
}

void TestPropProgram::complainsAboutBrokenData()
{
    start("--once");
    QVERIFY(put("extemp.tmp", contentOf("extemp.tmp").replace(150, 1, "\xFE"))); // a frame ends too early
    QCOMPARE(Upload().run(), finished);
    QCOMPARE(endCode(), 1);
    QVERIFY(program.readAllStandardError().contains("entry 1, frame 2 has"));
}

void TestPropProgram::misbehavesAsAsked()
{
    deviceWaitMs = 1500;
    const QString none = "偵測不到裝置！ terminated";
    const struct
    {
        const char *arguments;
        QString outcome;
        bool staysOn;
    } rows[] = {{"--refuse", "ERROR02 terminated", true},
                {"--silent", none, true},
                {"--delay 9000", none, true},
                {"--vanish 40", "terminated", false}};
    for (const auto &row : rows) {
        start(row.arguments);
        QCOMPARE(Upload().run(), row.outcome);
        if (row.staysOn) {
            program.terminate();
        }
        QCOMPARE(endCode(), row.staysOn ? 0 : 1); // one that is gone has got no whole show
    }
}

void TestPropProgram::takesAWipeUntilTold()
{
    start("");
    QSerialPort port;
    int number = 0;
    glow::ScanRules rules;
    rules.accepts = [](const QString &text) { return text.contains("Wait"); };
    QCOMPARE(glow::scanPorts(port, number, rules), glow::ScanResult::Found);
    QVERIFY(glow::wipeMemory(port));
    port.close();
    listenFor("wiped\n");
    program.terminate();
    QCOMPARE(endCode(), 0);
}

void TestPropProgram::wrongUse()
{
    const QPair<const char *, int> rows[] = {
        {"--help", 0},   {"--version", 0},         {"--what", 2}, {"--number 100", 2}, {"--vanish x", 2},
        {"show.bin", 2}, {"--out extemp.tmp/x", 1}};
    for (const auto &row : rows) {
        program.start(GLOWSMITH_PROP, words(row.first));
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
