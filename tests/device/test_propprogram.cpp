// The program glowsmith-prop, started and used as from a shell, by the upload of the window and of the command line.
#include "device/devicetest.h"

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
        const QString none = run("");
        QVERIFY(none.startsWith("1 No device detect!\n") && none.contains("ModemManager"));
        start("--once --out got --link ports");
        qputenv("GLOWSMITH_PORT_PATTERN", "ports/COM%1"); // from the working directory
        QVERIFY(run("--slot 6").startsWith("0 sent 1 patterns"));
        QCOMPARE(endCode(), 0);
        QCOMPARE(contentOf("got/show-1.header") + contentOf("got/show-1.frames"), wholeUpload());
        start("--refuse --link ports");
        QVERIFY(run("--port ports/COM0").startsWith("1 the prop refused the show (ERROR02)\n"));
    }

    void misbehavesAsAsked()
    {
        deviceWaitMs = 1000;
        QByteArray frames = contentOf("extemp.tmp");
        QVERIFY(put("extemp.tmp", frames.replace(150, 1, "\xFE"))); // a frame ends too early
        const QString none = "偵測不到裝置！ terminated";
        const QPair<const char *, QString> rows[] = {{"--refuse", "ERROR02 terminated"},
                                                     {"--silent", none},
                                                     {"--delay 9000", none},
                                                     {"--vanish 40", "terminated"},
                                                     {"--once", "finish"}};
        for (const auto &[arguments, outcome] : rows) {
            start(arguments);
            QCOMPARE(Upload().run(), outcome);
            const bool endsItself = outcome == "terminated" || outcome == "finish"; // without a whole show
            if (!endsItself) {
                program.terminate();
            }
            QCOMPARE(endCode(), endsItself ? 1 : 0);
        }
        QVERIFY(program.readAllStandardError().contains("entry 1, frame 2 has"));
    }

    void wrongUse()
    {
        const QPair<const char *, int> rows[] = {
            {"--help", 0},   {"--version", 0},         {"--what", 2}, {"--number 100", 2}, {"--vanish x", 2},
            {"show.bin", 2}, {"--out extemp.tmp/x", 1}};
        for (const auto &row : rows) {
            QProcess call;
            call.start(GLOWSMITH_PROP, QString(row.first).split(' '));
            QVERIFY(call.waitForFinished(longest));
            QCOMPARE(call.exitCode(), row.second);
            QVERIFY(call.readAllStandardError().isEmpty() == (row.second == 0));
        }
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
