// The program glowsmith-prop, started and used as from a shell, by the upload of the window and of the command line.
#include "device/devicetest.h"

#include "show/image/devicedecode.h"
#include "show/image/showpicture.h"
#include "show/model/projectfile.h"

#include <QImage>
#include <QProcess>

class TestPropProgram : public DeviceTest
{
    Q_OBJECT

private slots:
    // A second of red in the track slot 6, converted.
    void init()
    {
        DeviceTest::init();
        setLeds(36, 100);
        addColour(0, 1000);
        ui->prop_track->setCurrentIndex(5);
        window->buildDeviceImage();
    }

    void cleanup()
    {
        program.kill();
        program.waitForFinished();
        DeviceTest::cleanup();
    }

    void takesAnUpload()
    {
        start("--once --out got --link ports --number 12");
        QVERIFY(output.startsWith("prop on /dev/") && QFile::exists("ports/COM12"));
        QCOMPARE(Upload().run(), QString("finish"));
        QCOMPARE(endCode(), 0);
        QVERIFY2(output.contains("upload to track 6: 1 entries, 36 LEDs, 100 columns a second"), output.constData());
        QCOMPARE(contentOf("got/show-1.header"), contentOf("extemp2.tmp").chopped(2));
        QCOMPARE(contentOf("got/show-1.frames"), contentOf("extemp.tmp"));
        const QColor drawn = QImage("got/show-1.png").pixelColor(240, 5);
        QVERIFY(drawn.red() > 250 && drawn.green() == 0);
        QVERIFY(!QFile::exists("ports/COM12"));
    }

    void takesAnUploadFromTheCommandLine()
    {
        QVERIFY(put("show.gsw3", glow::writeProject(window->asProject())));
        const auto run = [](const QString &arguments) {
            QProcess process;
            process.start(GLOWSMITH_CLI, ("upload show.gsw3 " + arguments).split(' ', Qt::SkipEmptyParts));
            process.waitForFinished(longest);
            return QString::number(process.exitCode()) + ' ' +
                   QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError());
        };
        QCOMPARE(run(""), QString("1 No device detect!\n"));
        start("--once --out got --link ports");
        qputenv("GLOWSMITH_PORT_PATTERN", "ports/COM%1"); // from the working directory
        QVERIFY(run("--slot 6").startsWith("0 sent 1 patterns"));
        QCOMPARE(endCode(), 0);
        QCOMPARE(contentOf("got/show-1.header") + contentOf("got/show-1.frames"), wholeUpload());
        start("--refuse --link ports");
        QCOMPARE(run("--port ports/COM0"), QString("1 the prop refused the show (ERROR02)\n"));
    }

    void misbehavesAsAsked()
    {
        deviceWaitMs = 1000;
        const QString none = "偵測不到裝置！ terminated";
        const struct
        {
            const char *arguments;
            QString outcome;
            bool staysOn;
        } rows[] = {{"--refuse", "ERROR02 terminated", true},
                    {"--silent", none, true},
                    {"--delay 9000", none, true},
                    {"--vanish 40", "terminated", false}, // one that is gone has got no whole show
                    {"--once", "finish", false}};         // of broken data, see below
        for (const auto &row : rows) {
            QByteArray frames = contentOf("extemp.tmp");
            QVERIFY(put("extemp.tmp", frames.replace(150, 1, "\xFE"))); // a frame ends too early
            start(row.arguments);
            QCOMPARE(Upload().run(), row.outcome);
            if (row.staysOn) {
                program.terminate();
            }
            QCOMPARE(endCode(), row.staysOn ? 0 : 1);
        }
        QVERIFY(program.readAllStandardError().contains("entry 1, frame 2 has"));
    }

    void wrongUse()
    {
        const QPair<const char *, int> rows[] = {
            {"--help", 0},   {"--version", 0},         {"--what", 2}, {"--number 100", 2}, {"--vanish x", 2},
            {"show.bin", 2}, {"--out extemp.tmp/x", 1}};
        for (const auto &row : rows) {
            program.start(GLOWSMITH_PROP, QString(row.first).split(' '));
            output.clear();
            QCOMPARE(endCode(), row.second);
            QVERIFY(!(row.second == 0 ? output : program.readAllStandardError()).isEmpty());
        }
    }

    // A damaged file can tell of any number of repeats: a million green frames two thousand million times.
    void drawsAnyShow()
    {
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

private:
    // Starts it and sets the variable that it prints.
    void start(const QString &arguments)
    {
        program.start(GLOWSMITH_PROP, arguments.split(' '));
        output.clear();
        while (!output.contains("GLOWSMITH_PORT_PATTERN=") || !output.endsWith('\n')) {
            QVERIFY(program.waitForReadyRead(longest));
            output += program.readAllStandardOutput();
        }
        qputenv("GLOWSMITH_PORT_PATTERN", output.mid(output.indexOf('=') + 1).trimmed());
    }

    // Ends when the program has ended by itself.
    int endCode()
    {
        const bool ended = program.waitForFinished(longest) && program.exitStatus() == QProcess::NormalExit;
        output += program.readAllStandardOutput();
        return ended ? program.exitCode() : -1;
    }

    QProcess program;
    QByteArray output;
};

QTEST_MAIN(TestPropProgram)
#include "test_propprogram.moc"
