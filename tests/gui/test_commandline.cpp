// The command line against the window: what both export is the same, byte for byte; and each command as a user calls
// it.
#include "app/projectfile.h"
#include "support/dialogdriver.h"
#include "support/samples.h"
#include "support/windowtest.h"
#include "ui_mainwindow.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

class TestCommandLine : public WindowTest
{
    Q_OBJECT

private:
    struct Outcome
    {
        int code = -1;
        QByteArray out;
        QByteArray err;
    };
    static Outcome run(const QStringList &arguments)
    {
        QProcess process;
        // The command line must do without a display.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("DISPLAY");
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(GLOWSMITH_CLI), arguments);
        Outcome outcome;
        if (process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit)
            outcome.code = process.exitCode();
        outcome.out = process.readAllStandardOutput();
        outcome.err = process.readAllStandardError();
        return outcome;
    }

    // Empty if the command ends with another code
    static QJsonObject json(const QStringList &arguments, int code)
    {
        const Outcome outcome = run(arguments);
        return outcome.code == code ? QJsonDocument::fromJson(outcome.out).object() : QJsonObject();
    }

    QString save(const QVector<QVector<QByteArray>> &tracks, qint16 leds = 36, float rate = 1000)
    {
        glow::Project project;
        project.ledCount = leds;
        project.frameRate = rate;
        project.tracks = tracks;
        const QString path = env->path("show.gsw3");
        return put(path, glow::writeProject(project)) ? path : QString();
    }

    QByteArray windowExport()
    {
        window->LoadFile(env->path("show.gsw3"));
        ui->prop_track->setCurrentIndex(2);
        const QString path = env->path("window.bin");
        QFile::remove(path); // the dialog would ask whether to overwrite it
        DialogDriver driver;
        driver.answerFile({path});
        driver.answerBox(QMessageBox::Ok);
        window->on_Ex_Button_clicked();
        return driver.done() ? contentOf(path) : QByteArray();
    }

    // A colour, or the picture of a source file.
    static QByteArray pattern(int startMs, int endMs, const QString &source = QString(), int repeats = 2, int speed = 0)
    {
        QImage image(120, 85, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, qRgb((x * 2 + startMs) & 255, y * 3, (x * y) & 255));
        }
        glow::PatternRecord record;
        record.thumbnail = QPixmap::fromImage(image);
        record.startTime = glow::timeOf(startMs);
        record.endTime = glow::timeOf(endMs);
        record.solidColor = QColor(startMs % 256, endMs % 256, 77);
        record.repeatCount = repeats;
        record.speedValue = speed;
        record.patternKind = source.isEmpty() ? glow::ColourPattern : glow::PicturePattern;
        record.settingsText = source.isEmpty() ? "1?#ff0000" : "0?1?" + source + "?0|0|0";
        return glow::writePattern(record);
    }

private slots:
    void exportsWhatTheWindowExports()
    {
        const QString source = env->path("p.png");
        QVERIFY(QImage(8, 8, QImage::Format_RGB32).save(source));
        QRandomGenerator random(815);
        const QVector<QPair<qint16, float>> props{{36, 1333}, {48, 1100}, {70, 2100}, {80, 2100}, {120, 1800}};
        for (int round = 0; round < 25; ++round) {
            QVector<QVector<QByteArray>> tracks(1 + int(random.bounded(3U)));
            for (QVector<QByteArray> &track : tracks) {
                const int patterns = 1 + int(random.bounded(6U));
                for (int i = 0; i < patterns; ++i) {
                    // A coarse grid of starts, so that equal ones and overlaps come up.
                    const int start = int(random.bounded(20U)) * 150;
                    const int end = start + 50 + int(random.bounded(900U));
                    const int repeats = 1 + int(random.bounded(20U));
                    const int speed = int(random.bounded(10U)) * 2;
                    track << pattern(start, end, random.bounded(3U) == 0 ? QString() : source, repeats, speed);
                }
            }
            const auto &[leds, rate] = props.at(random.bounded(5));
            const QString path = save(tracks, leds, rate);
            const QByteArray fromWindow = windowExport();
            QVERIFY(fromWindow.size() > 100);
            const QString bin = env->path("cli.bin");
            const Outcome outcome = run({"export", path, "-o", bin, "--slot", "3"});
            QVERIFY2(outcome.code == 0, outcome.err.constData());
            QVERIFY2(contentOf(bin) == fromWindow, qPrintable(QString("round %1").arg(round)));
        }
    }

    void tellsWhatAProjectHolds()
    {
        const QString path =
            save({{pattern(0, 1000)}, {pattern(500, 900, "/gone/a.png"), pattern(2000, 3000)}}, 80, 2100);
        const QJsonObject facts = json({"info", path, "--json"}, 0);
        QCOMPARE(facts.value("leds").toInt(), 80);
        QCOMPARE(facts.value("prop").toString(), QString("Brevon Max-80LED"));
        QVERIFY(facts.value("song").isNull());
        QCOMPARE(facts.value("lostPictures").toInt(), 1);
        const QJsonArray second = facts.value("tracks").toArray().at(1).toArray();
        QCOMPARE(second.at(0).toObject().value("startMs").toInt(), 500);
        QCOMPARE(second.at(1).toObject().value("kind").toString(), QString("colour"));
    }

    void findsWhatThePropWillNotShow()
    {
        const QString source = "/p.png";
        const QString path = save({{pattern(1000, 2000, source), pattern(2100, 2200), pattern(2150, 4000, source)}});
        QStringList kinds;
        const QJsonArray findings = json({"check", path, "--json"}, 1).value("findings").toArray();
        for (const QJsonValue &finding : findings)
            kinds << finding.toObject().value("kind").toString();
        kinds.sort();
        QCOMPARE(kinds, QStringList({"gap", "overlap", "short-colour"}));
        QCOMPARE(run({"check", save({{pattern(1000, 2000, source), pattern(2000, 3000, source)}})}).code, 0);
    }

    void drawsTheShow()
    {
        const QString png = env->path("show.png");
        const Outcome outcome = run({"show", save({{pattern(0, 1200)}}), "-o", png});
        QVERIFY2(outcome.code == 0, outcome.err.constData());
        const QImage drawn(png);
        QCOMPARE(drawn.width(), 1200); // a column of the prop a pixel
        // Red 0, green 1200 mod 256 = 176, blue 77; stored as squares over 750 and drawn back, to within the rounding.
        const QColor pixel = drawn.pixelColor(600, 10);
        QCOMPARE(pixel.red(), 0);
        QVERIFY(qAbs(pixel.green() - 176) <= 3);
        QVERIFY(qAbs(pixel.blue() - 77) <= 6);
    }

    void relinksAndGathersPictures()
    {
        QVERIFY(put(env->path("art/deep/a.png")) &&
                QImage(8, 8, QImage::Format_RGB32).save(env->path("art/deep/a.png")));
        const QString path = save({{pattern(0, 1000, "/gone/a.png"), pattern(1000, 2000, "/gone/b.png")}});
        QCOMPARE(run({"relink", path, "--pictures", env->path("art")}).code, 1);
        QCOMPARE(json({"info", path, "--json"}, 0).value("lostPictures").toInt(), 1);

        const QString gathered = env->path("gathered");
        QCOMPARE(run({"pictures", path, "-o", gathered}).code, 1); // b.png stays lost
        QCOMPARE(QDir(gathered).entryList(QDir::Files), QStringList{"a.png"});
    }

    void saysWhatIsWrong()
    {
        const QVector<QPair<QString, int>> calls{
            {"", 2},
            {"dance", 2},
            {"--help", 0},
            {"export --help", 0},
            {"info", 2},
            {"info a.gsw3 --loud", 2},
            {"info /gone.gsw3", 1},
            {"info /etc/passwd", 1},
            {"export /gone.gsw3", 2},
            {"export /gone.gsw3 -o x.bin --slot 9", 2},
        };
        for (const auto &[line, code] : calls) {
            const Outcome outcome = run(line.split(' ', Qt::SkipEmptyParts));
            QVERIFY2(outcome.code == code, qPrintable(line));
            QVERIFY2(!(code == 0 ? outcome.out : outcome.err).isEmpty(), qPrintable(line));
        }
    }
};

QTEST_MAIN(TestCommandLine)
#include "test_commandline.moc"
