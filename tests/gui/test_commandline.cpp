// The command line against the window: what both export is the same, byte for byte; and each command as a user calls
// it.
#include "show/model/projectfile.h"
#include "support/windowtest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>

class TestCommandLine : public WindowTest
{
    Q_OBJECT

private:
    // Runs a command; its outputs are those of the process afterwards. Minus one if it crashes or hangs.
    int run(const QStringList &arguments, const char *program = GLOWSMITH_CLI)
    {
        // The command line must do without a display.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("DISPLAY");
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        const bool ended = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
        return ended ? process.exitCode() : -1;
    }
    QJsonObject json() { return QJsonDocument::fromJson(process.readAllStandardOutput()).object(); }

    QString save(const QVector<QVector<QByteArray>> &tracks, qint16 leds = 36, float rate = 1000)
    {
        const QString path = env->path("show.gsw3");
        return put(path, glow::writeProject({leds, rate, "null", tracks})) ? path : QString();
    }

    // A colour, or the picture of a source file.
    static QByteArray pattern(int startMs, int endMs, const QString &source = QString(), int repeats = 2, int speed = 0)
    {
        const QString settings = source.isEmpty() ? "1?#ff0000" : "0?1?" + source + "?0|0|0";
        const QColor colour(startMs % 256, endMs % 256, 77);
        glow::PatternRecord record = glow::readPattern(patternBlob(settings, 0, 500, colour, repeats, speed));
        record.startTime = QTime::fromMSecsSinceStartOfDay(startMs); // also beyond a day, as foreign projects have it
        record.endTime = QTime::fromMSecsSinceStartOfDay(endMs);
        return glow::writePattern(record);
    }

    QProcess process;

private slots:
    void exportsWhatTheWindowExports()
    {
        const QString source = env->path("p.png");
        const QString bin = env->path("cli.bin");
        const QString fromWindow = env->path("window.bin");
        QVERIFY(QImage(8, 8, QImage::Format_RGB32).save(source));
        QRandomGenerator random(815);
        const auto number = [&random](int below) { return int(random.bounded(below)); };
        const QVector<QPair<qint16, float>> props{{36, 1333}, {70, 2100}, {120, 1800}};
        const QVector<int> shifts{0, glow::msPerDay - 1500, 3 * glow::msPerDay};
        for (int round = 0; round < 9; ++round) {
            QVector<QVector<QByteArray>> tracks(1 + number(3));
            for (QVector<QByteArray> &track : tracks) {
                for (int patterns = 1 + number(6); patterns > 0; --patterns) {
                    // A coarse grid of starts, so that equal ones and overlaps come up.
                    const int start = shifts.at(round / 3 % 3) + number(6) * 150;
                    track << pattern(start, start + 50 + number(900), number(3) == 0 ? QString() : source,
                                     1 + number(20), number(10) * 2);
                }
            }
            const auto &[leds, rate] = props.at(round % 3);
            const QString path = save(tracks, leds, rate);
            window->LoadFile(path);
            ui->prop_track->setCurrentIndex(2);
            QFile::remove(fromWindow); // the dialog would ask whether to overwrite it
            DialogDriver driver;
            driver.answerFile({fromWindow});
            driver.answerBox(QMessageBox::Ok);
            window->on_Ex_Button_clicked();
            QVERIFY(driver.done() && QFileInfo(fromWindow).size() > 100);
            QCOMPARE(run({"export", path, "-o", bin, "--slot", "3"}), 0);
            QVERIFY2(contentOf(bin) == contentOf(fromWindow), qPrintable(QString("round %1").arg(round)));
        }
    }

    void anExportThatFailsOrIsCutSaysSo()
    {
        const QString source = env->path("p.png");
        const QString bin = env->path("old.bin");
        QVERIFY(put(bin, "the older show"));
        // No file may grow beyond a block, as on a full disk.
        const QString path = save({{pattern(0, 5000, source)}});
        const QString line = "trap '' XFSZ; ulimit -f 1; exec \"$0\" export \"$1\" -o \"$2\"";
        process.start("sh", {"-c", line, GLOWSMITH_CLI, path, bin});
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitCode(), 1);
        QVERIFY(process.readAllStandardError().contains("old.bin: "));
        QCOMPARE(contentOf(bin), QByteArray("the older show"));

        // A day in one copy is more than is ever stored.
        QCOMPARE(run({"export", save({{pattern(0, 86399999, source, 1)}}, 80, 2100), "-o", bin}), 0);
        QVERIFY(process.readAllStandardError().startsWith("warning: "));
    }

    void tellsWhatAProjectHoldsAndWhatThePropWillNotShow()
    {
        const QString lost = "/gone/a.png";
        const QString path =
            save({{pattern(0, 1000)}, {pattern(1000, 2000, lost), pattern(2100, 2200), pattern(2150, 4000, lost)}}, 80,
                 2100);
        QCOMPARE(run({"info", path, "--json"}), 0);
        const QJsonObject facts = json();
        const QJsonObject second = facts["tracks"].toArray().at(1).toArray().at(1).toObject();
        QCOMPARE(QJsonArray({facts["leds"], facts["prop"], facts["song"], facts["lostPictures"], second["startMs"],
                             second["kind"]}),
                 QJsonArray({80, "Brevon Max-80LED", QJsonValue(), 2, 2100, "colour"}));

        const QString png = env->path("show.png");
        QCOMPARE(run({"show", path, "-o", png}), 0);
        QVERIFY(QImage(png).width() > 2000); // a column of the prop a pixel
        QCOMPARE(run({"check", path, "--json"}), 1);
        QSet<QString> kinds;
        for (const QJsonValue &finding : json().value("findings").toArray())
            kinds << finding.toObject().value("kind").toString();
        QCOMPARE(kinds, QSet<QString>({"gap", "overlap", "short-colour"}));
        QCOMPARE(run({"check", save({{pattern(1000, 2000, lost), pattern(2000, 3000, lost)}})}), 0);

        // Foreign times can lie farther apart than an int reaches.
        constexpr int least = std::numeric_limits<int>::min();
        constexpr int most = std::numeric_limits<int>::max();
        QCOMPARE(run({"check", save({{pattern(least, most), pattern(least + 500, most)}})}), 1);
        const QByteArray found = process.readAllStandardOutput();
        QVERIFY2(found.contains("begins 2147483648 ms before the start mark") &&
                     found.contains("overlap by 4294966795 ms") && found.contains("\n2 found"),
                 found);
    }

    void relinksAndGathersPictures()
    {
        const QString picture = env->path("art/deep/a.png");
        QVERIFY(put(picture) && QImage(8, 8, QImage::Format_RGB32).save(picture));
        const QString path = save({{pattern(0, 1000, "/gone/a.png"), pattern(1000, 2000, "/gone/b.png")}});
        QCOMPARE(run({"relink", path, "--pictures", env->path("art")}), 1);
        QCOMPARE(run({"info", path}), 0);
        QVERIFY(process.readAllStandardOutput().contains("lost pictures 1"));

        const QString gathered = env->path("gathered");
        QCOMPARE(run({"pictures", path, "-o", gathered}), 1); // b.png stays lost
        QCOMPARE(QDir(gathered).entryList(QDir::Files), QStringList{"a.png"});
    }

    void saysWhatIsWrong()
    {
        const QString show = save({{pattern(0, 1000)}});
        QVERIFY(put("text.gsw3", "Not a project, though it is long enough to be one.") && put("old.gsw", "36><1000\n"));
        QVERIFY(QFile::link("/nowhere.gsw3", "link.gsw3") && QDir().mkdir("folder.gsw3"));
        const struct
        {
            QString line;
            int code;
            QByteArray said; // on standard output if all is well, else on standard error
        } calls[] = {
            {"", 2, "Usage: "},
            {"--help", 0, "\n  check "},
            {"help", 0, "\n  check "},
            {"help relink", 0, "Usage: glowsmith-cli relink [options] PROJECT"},
            {"help nothing", 2, "no such command: nothing"},
            {"info a.gsw3 --loud", 2, "Unknown option 'loud'"},
            {"relink " + show, 2, "--pictures DIR is needed"},
            {"export /gone.gsw3 -o x.bin --slot 9", 2, "--slot takes a number from 1 to 8"},
            {"info /gone.gsw3", 1, "/gone.gsw3: no such file"},
            {"info folder.gsw3", 1, "folder.gsw3: is a folder"},
            {"info link.gsw3", 1, "link.gsw3: is a link to a file that is gone"},
            {"show /gone.bin -o x.png", 1, "/gone.bin: no such file"},
            {"info old.gsw", 1, "old.gsw: not a .gsw3 project; old .gsw projects are"},
            {"info text.gsw3", 1, "text.gsw3: not a project"},
            {"export " + show + " -o folder.gsw3", 1, "folder.gsw3: is a folder"},
            {"export " + show + " -o /gone/x.bin", 1, "/gone/x.bin: No such file or directory"},
            {"export " + show + " -o /dev/full", 1, "/dev/full: No space left on device"},
            {"show " + show + " -o x.doc", 1, "x.doc: unknown picture format; the name may end in one of: bmp, "},
            {"relink " + show + " --pictures old.gsw", 1, "old.gsw: is no folder"},
        };
        for (const auto &call : calls) {
            QVERIFY2(run(call.line.split(' ', Qt::SkipEmptyParts)) == call.code, qPrintable(call.line));
            const QByteArray said = call.code == 0 ? process.readAllStandardOutput() : process.readAllStandardError();
            QVERIFY2(said.contains(call.said), said);
        }
    }

    void writesToStandardOutput()
    {
        const QString show = save({{pattern(0, 1000)}});
        QCOMPARE(run({"export", show, "-o", "x.bin"}), 0);
        QCOMPARE(run({"export", show, "-o", "-"}), 0);
        QCOMPARE(process.readAllStandardOutput(), contentOf("x.bin"));
        QVERIFY(process.readAllStandardError().startsWith("1 patterns, "));
        QCOMPARE(run({"show", "x.bin", "-o", "-"}), 0);
        QVERIFY(QImage::fromData(process.readAllStandardOutput(), "png").width() > 900);
        QVERIFY(!QFile::exists("-"));
    }

    // No display is there to be found.
    void theWindowsProgramAnswersWithoutAWindow()
    {
        for (const auto &[option, answer] :
             {std::pair("--version", "glowsmith 3.104\n"), {"--help", "Usage: glowsmith "}}) {
            QCOMPARE(run({option}, GLOWSMITH_PROGRAM), 0);
            QVERIFY(process.readAllStandardOutput().startsWith(answer));
        }
    }
};

QTEST_MAIN(TestCommandLine)
#include "test_commandline.moc"
