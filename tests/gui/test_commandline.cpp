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
    void saysWhatIsWrong_data();
    void saysWhatIsWrong();

private:
    struct Outcome
    {
        int code = -1;
        QByteArray out;
        QByteArray err;
    };
    static Outcome run(const QStringList &arguments);
    QString save(const glow::Project &project);
    QByteArray windowExport();
    static QByteArray colour(int startMs, int endMs);
    static QByteArray picture(const QString &path, int startMs, int endMs, int repeats = 2, int speed = 0);

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
    environment.remove(QStringLiteral("DISPLAY"));
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

QString TestCommandLine::save(const glow::Project &project)
{
    const QString path = env->path(QStringLiteral("show.gsw3"));
    return glow::writeWholeFile(path, glow::writeProject(project)).state == glow::WriteResult::Written ? path
                                                                                                       : QString();
}

QByteArray TestCommandLine::colour(int startMs, int endMs)
{
    glow::PatternRecord record;
    record.thumbnail = QPixmap(85, 85);
    record.thumbnail.fill(Qt::red);
    record.startTime = glow::timeOf(startMs);
    record.endTime = glow::timeOf(endMs);
    record.solidColor = QColor(startMs % 256, endMs % 256, 77);
    record.repeatCount = 1;
    record.patternKind = glow::ColourPattern;
    record.settingsText = QStringLiteral("1?#ff0000");
    return glow::writePattern(record);
}

QByteArray TestCommandLine::picture(const QString &path, int startMs, int endMs, int repeats, int speed)
{
    glow::PatternRecord record;
    QImage image(120, 85, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.setPixel(x, y, qRgb((x * 2 + startMs) & 255, y * 3, (x * y) & 255));
        }
    }
    record.thumbnail = QPixmap::fromImage(image);
    record.startTime = glow::timeOf(startMs);
    record.endTime = glow::timeOf(endMs);
    record.repeatCount = repeats;
    record.speedValue = speed;
    record.settingsText = QStringLiteral("0?1?%1?0|0|0").arg(path);
    return glow::writePattern(record);
}

QByteArray TestCommandLine::windowExport()
{
    MainWindow window;
    window.LoadFile(env->path(QStringLiteral("show.gsw3")));
    window.ui->prop_track->setCurrentIndex(2);
    const QString path = env->path(QStringLiteral("window.bin"));
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
    const QString source = env->path(QStringLiteral("p.png"));
    QVERIFY(QImage(8, 8, QImage::Format_RGB32).save(source));
    QRandomGenerator random(815);
    constexpr qint16 leds[] = {36, 48, 70, 80, 120};
    constexpr float rates[] = {1333, 1100, 2100, 2100, 1800};
    for (int round = 0; round < 25; ++round) {
        const int prop = int(random.bounded(5U));
        glow::Project project;
        project.ledCount = leds[prop];
        project.frameRate = rates[prop];
        const int tracks = 1 + int(random.bounded(3U));
        for (int track = 0; track < tracks; ++track) {
            QVector<QByteArray> blobs;
            const int patterns = 1 + int(random.bounded(6U));
            for (int i = 0; i < patterns; ++i) {
                // A coarse grid of starts, so that equal ones and overlaps come up.
                const int start = int(random.bounded(20U)) * 150;
                const int end = start + 50 + int(random.bounded(900U));
                const int repeats = 1 + int(random.bounded(20U));
                const int speed = int(random.bounded(10U)) * 2;
                blobs << (random.bounded(3U) == 0 ? colour(start, end) : picture(source, start, end, repeats, speed));
            }
            project.tracks << blobs;
        }
        const QString path = save(project);
        const QByteArray fromWindow = windowExport();
        QVERIFY(!fromWindow.isEmpty());
        const QString bin = env->path(QStringLiteral("cli.bin"));
        const Outcome outcome = run(
            {QStringLiteral("export"), path, QStringLiteral("-o"), bin, QStringLiteral("--slot"), QStringLiteral("3")});
        QVERIFY2(outcome.code == 0, outcome.err.constData());
        QFile file(bin);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY2(file.readAll() == fromWindow, qPrintable(QStringLiteral("round %1").arg(round)));
    }
}

void TestCommandLine::tellsWhatAProjectHolds()
{
    glow::Project project;
    project.ledCount = 80;
    project.frameRate = 2100;
    project.tracks = {{colour(0, 1000)}, {picture(QStringLiteral("/gone/a.png"), 500, 900), colour(2000, 3000)}};
    const QString path = save(project);
    const Outcome outcome = run({QStringLiteral("info"), path, QStringLiteral("--json")});
    QCOMPARE(outcome.code, 0);
    const QJsonObject facts = QJsonDocument::fromJson(outcome.out).object();
    QCOMPARE(facts.value(QStringLiteral("leds")).toInt(), 80);
    QCOMPARE(facts.value(QStringLiteral("prop")).toString(), QStringLiteral("Brevon Max-80LED"));
    QVERIFY(facts.value(QStringLiteral("song")).isNull());
    QCOMPARE(facts.value(QStringLiteral("lostPictures")).toInt(), 1);
    const QJsonArray second = facts.value(QStringLiteral("tracks")).toArray().at(1).toArray();
    QCOMPARE(second.at(0).toObject().value(QStringLiteral("startMs")).toInt(), 500);
    QCOMPARE(second.at(1).toObject().value(QStringLiteral("kind")).toString(), QStringLiteral("colour"));
}

void TestCommandLine::findsWhatThePropWillNotShow()
{
    const QString source = QStringLiteral("/p.png");
    glow::Project project;
    project.ledCount = 36;
    project.frameRate = 1100;
    project.tracks = {{picture(source, 1000, 2000), colour(2100, 2200), picture(source, 2150, 4000)}};
    const Outcome outcome = run({QStringLiteral("check"), save(project), QStringLiteral("--json")});
    QCOMPARE(outcome.code, 1);
    QStringList kinds;
    const QJsonArray findings =
        QJsonDocument::fromJson(outcome.out).object().value(QStringLiteral("findings")).toArray();
    for (const QJsonValue &finding : findings) {
        kinds << finding.toObject().value(QStringLiteral("kind")).toString();
    }
    kinds.sort();
    QCOMPARE(kinds, QStringList({QStringLiteral("gap"), QStringLiteral("overlap"), QStringLiteral("short-colour")}));

    project.tracks = {{picture(source, 1000, 2000), picture(source, 2000, 3000)}};
    QCOMPARE(run({QStringLiteral("check"), save(project)}).code, 0);
}

void TestCommandLine::drawsTheShow()
{
    glow::Project project;
    project.ledCount = 36;
    project.frameRate = 1000;
    project.tracks = {{colour(0, 1200)}};
    const QString png = env->path(QStringLiteral("show.png"));
    const Outcome outcome = run({QStringLiteral("show"), save(project), QStringLiteral("-o"), png});
    QVERIFY2(outcome.code == 0, outcome.err.constData());
    const QImage drawn(png);
    QCOMPARE(drawn.width(), 1200); // a column of the prop a pixel
    // Colour(0, 1200): red 0, green 1200 mod 256 = 176, blue 77; stored as squares over 750 and drawn back, to within
    // the rounding.
    const QColor pixel = drawn.pixelColor(600, 10);
    QCOMPARE(pixel.red(), 0);
    QVERIFY(qAbs(pixel.green() - 176) <= 3);
    QVERIFY(qAbs(pixel.blue() - 77) <= 6);
}

void TestCommandLine::relinksAndGathersPictures()
{
    QVERIFY(QDir().mkpath(env->path(QStringLiteral("art/deep"))));
    const QString found = env->path(QStringLiteral("art/deep/a.png"));
    QVERIFY(QImage(8, 8, QImage::Format_RGB32).save(found));
    glow::Project project;
    project.ledCount = 36;
    project.frameRate = 1000;
    project.tracks = {
        {picture(QStringLiteral("/gone/a.png"), 0, 1000), picture(QStringLiteral("/gone/b.png"), 1000, 2000)}};
    const QString path = save(project);
    QCOMPARE(run({QStringLiteral("relink"), path, QStringLiteral("--pictures"), env->path(QStringLiteral("art"))}).code,
             1);
    const QJsonObject facts =
        QJsonDocument::fromJson(run({QStringLiteral("info"), path, QStringLiteral("--json")}).out).object();
    QCOMPARE(facts.value(QStringLiteral("lostPictures")).toInt(), 1);

    const QString gathered = env->path(QStringLiteral("gathered"));
    QCOMPARE(run({QStringLiteral("pictures"), path, QStringLiteral("-o"), gathered}).code, 1); // b.png stays lost
    QCOMPARE(QDir(gathered).entryList(QDir::Files), QStringList{QStringLiteral("a.png")});
}

void TestCommandLine::saysWhatIsWrong_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    const auto words = [](const char *line) { return QString::fromLatin1(line).split(u' ', Qt::SkipEmptyParts); };
    QTest::newRow("no command") << QStringList() << 2;
    QTest::newRow("unknown command") << words("dance") << 2;
    QTest::newRow("help") << words("--help") << 0;
    QTest::newRow("help of a command") << words("export --help") << 0;
    QTest::newRow("no file") << words("info") << 2;
    QTest::newRow("unknown option") << words("info a.gsw3 --loud") << 2;
    QTest::newRow("missing file") << words("info /gone.gsw3") << 1;
    QTest::newRow("another kind of file") << words("info /etc/passwd") << 1;
    QTest::newRow("no output") << words("export /gone.gsw3") << 2;
    QTest::newRow("slot out of range") << words("export /gone.gsw3 -o x.bin --slot 9") << 2;
}

void TestCommandLine::saysWhatIsWrong()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    const Outcome outcome = run(arguments);
    QCOMPARE(outcome.code, code);
    QVERIFY(!(code == 0 ? outcome.out : outcome.err).isEmpty());
}

QTEST_MAIN(TestCommandLine)
#include "test_commandline.moc"
