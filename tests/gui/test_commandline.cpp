// The command line against the window: what both export is the same, byte for byte; and each command as a user calls
// it.
#include "app/mainwindow.h"
#include "app/projectfile.h"
#include "app/wholefile.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "timeline/timeline.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

class TestCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void exportsWhatTheWindowExports();
    void tellsWhatAProjectHolds();
    void findsWhatThePropWillNotShow();
    void drawsTheShow();
    void relinksAndGathersPictures();
    void saysWhatIsWrong();

private:
    struct Outcome
    {
        int code = -1;
        QByteArray out;
        QByteArray err;
    };
    static Outcome run(const QStringList &arguments);
    static QJsonObject json(const QStringList &arguments, int code); // empty if the command ends with another code
    QString save(const QVector<QVector<QByteArray>> &tracks, qint16 leds = 36, float rate = 1000);
    QByteArray windowExport();
    // A colour, or the picture of a source file.
    static QByteArray pattern(int startMs, int endMs, const QString &source = QString(), int repeats = 2,
                              int speed = 0);

    QScopedPointer<TestEnv> env;
};

void TestCommandLine::init()
{
    env.reset(new TestEnv);
    msPerPixel = 10.0F;
}

void TestCommandLine::cleanup()
{
    env.reset();
}

TestCommandLine::Outcome TestCommandLine::run(const QStringList &arguments)
{
    QProcess process;
    // The command line must do without a display.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("DISPLAY");
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(GLOWSMITH_CLI), arguments);
    Outcome outcome;
    if (process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit) {
        outcome.code = process.exitCode();
    }
    outcome.out = process.readAllStandardOutput();
    outcome.err = process.readAllStandardError();
    return outcome;
}

QJsonObject TestCommandLine::json(const QStringList &arguments, int code)
{
    const Outcome outcome = run(arguments);
    return outcome.code == code ? QJsonDocument::fromJson(outcome.out).object() : QJsonObject();
}

QString TestCommandLine::save(const QVector<QVector<QByteArray>> &tracks, qint16 leds, float rate)
{
    glow::Project project;
    project.ledCount = leds;
    project.frameRate = rate;
    project.tracks = tracks;
    const QString path = env->path("show.gsw3");
    const bool written = glow::writeWholeFile(path, glow::writeProject(project)).state == glow::WriteResult::Written;
    return written ? path : QString();
}

QByteArray TestCommandLine::pattern(int startMs, int endMs, const QString &source, int repeats, int speed)
{
    QImage image(120, 85, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.setPixel(x, y, qRgb((x * 2 + startMs) & 255, y * 3, (x * y) & 255));
        }
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

QByteArray TestCommandLine::windowExport()
{
    MainWindow window;
    window.LoadFile(env->path("show.gsw3"));
    window.ui->prop_track->setCurrentIndex(2);
    const QString path = env->path("window.bin");
    QFile::remove(path); // the dialog would ask whether to overwrite it
    DialogDriver driver;
    driver.answerFile({path});
    driver.answerBox(QMessageBox::Ok);
    window.on_Ex_Button_clicked();
    QFile file(path);
    return driver.done() && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestCommandLine::exportsWhatTheWindowExports()
{
    const QString source = env->path("p.png");
    QVERIFY(QImage(8, 8, QImage::Format_RGB32).save(source));
    QRandomGenerator random(815);
    constexpr qint16 leds[] = {36, 48, 70, 80, 120};
    constexpr float rates[] = {1333, 1100, 2100, 2100, 1800};
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
        const uint prop = random.bounded(5U);
        const QString path = save(tracks, leds[prop], rates[prop]);
        const QByteArray fromWindow = windowExport();
        QVERIFY(!fromWindow.isEmpty());
        const QString bin = env->path("cli.bin");
        const Outcome outcome = run({"export", path, "-o", bin, "--slot", "3"});
        QVERIFY2(outcome.code == 0, outcome.err.constData());
        QFile file(bin);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY2(file.readAll() == fromWindow, qPrintable(QString("round %1").arg(round)));
    }
}

void TestCommandLine::tellsWhatAProjectHolds()
{
    const QString path = save({{pattern(0, 1000)}, {pattern(500, 900, "/gone/a.png"), pattern(2000, 3000)}}, 80, 2100);
    const QJsonObject facts = json({"info", path, "--json"}, 0);
    QCOMPARE(facts.value("leds").toInt(), 80);
    QCOMPARE(facts.value("prop").toString(), QString("Brevon Max-80LED"));
    QVERIFY(facts.value("song").isNull());
    QCOMPARE(facts.value("lostPictures").toInt(), 1);
    const QJsonArray second = facts.value("tracks").toArray().at(1).toArray();
    QCOMPARE(second.at(0).toObject().value("startMs").toInt(), 500);
    QCOMPARE(second.at(1).toObject().value("kind").toString(), QString("colour"));
}

void TestCommandLine::findsWhatThePropWillNotShow()
{
    const QString source = "/p.png";
    const QString path = save({{pattern(1000, 2000, source), pattern(2100, 2200), pattern(2150, 4000, source)}});
    QStringList kinds;
    const QJsonArray findings = json({"check", path, "--json"}, 1).value("findings").toArray();
    for (const QJsonValue &finding : findings) {
        kinds << finding.toObject().value("kind").toString();
    }
    kinds.sort();
    QCOMPARE(kinds, QStringList({"gap", "overlap", "short-colour"}));
    QCOMPARE(run({"check", save({{pattern(1000, 2000, source), pattern(2000, 3000, source)}})}).code, 0);
}

void TestCommandLine::drawsTheShow()
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

void TestCommandLine::relinksAndGathersPictures()
{
    QVERIFY(QDir().mkpath(env->path("art/deep")));
    QVERIFY(QImage(8, 8, QImage::Format_RGB32).save(env->path("art/deep/a.png")));
    const QString path = save({{pattern(0, 1000, "/gone/a.png"), pattern(1000, 2000, "/gone/b.png")}});
    QCOMPARE(run({"relink", path, "--pictures", env->path("art")}).code, 1);
    QCOMPARE(json({"info", path, "--json"}, 0).value("lostPictures").toInt(), 1);

    const QString gathered = env->path("gathered");
    QCOMPARE(run({"pictures", path, "-o", gathered}).code, 1); // b.png stays lost
    QCOMPARE(QDir(gathered).entryList(QDir::Files), QStringList{"a.png"});
}

void TestCommandLine::saysWhatIsWrong()
{
    const struct
    {
        const char *line;
        int code;
    } calls[] = {
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
    for (const auto &call : calls) {
        const Outcome outcome = run(QString(call.line).split(' ', Qt::SkipEmptyParts));
        QVERIFY2(outcome.code == call.code, call.line);
        QVERIFY2(!(call.code == 0 ? outcome.out : outcome.err).isEmpty(), call.line);
    }
}

QTEST_MAIN(TestCommandLine)
#include "test_commandline.moc"
