// What goes wrong outside of the program: it is killed, the disk is full, the prop is pulled out, files vanish. Each at
// a hundred moments where the moment matters. What a killed program leaves is offered at the next start: test_startup.
#include "app/mainwindow.h"
#include "app/smalldisk.h"
#include "device/workerthread.h"
#include "prop/simulatedprop.h"
#include "show/base/wholefile.h"
#include "show/image/deviceimage.h"
#include "show/model/projectfile.h"
#include "show/wire/portscan.h"
#include "song/songmaker.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "support/windowcheck.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QApplication>
#include <QLoggingCategory>
#include <QProcess>
#include <QRandomGenerator>
#include <QSerialPort>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int moments = 100;

QByteArray bytesOf(const QString &path)
{
    return glow::readWholeFile(path).value_or("unreadable");
}

// Noise, which no compression makes small.
void addPattern(MainWindow &window, int startMs, int columns = 85)
{
    QImage noise(columns, 85, QImage::Format_RGB32);
    QRandomGenerator random(startMs);
    random.fillRange(reinterpret_cast<quint32 *>(noise.bits()), columns * 85);
    glow::PatternRecord record;
    record.thumbnail = QPixmap::fromImage(noise);
    record.startTime = glow::timeOf(startMs);
    record.endTime = glow::timeOf(startMs + 900);
    record.repeatCount = 1;
    // Any file that is there will do as the source.
    record.settingsText = QStringLiteral("0?1?%1?0|0|0").arg(QCoreApplication::applicationFilePath());
    window.currentTimeline->addTimelineItem(new TimelineItem(glow::writePattern(record), window.currentTimeline));
}

} // namespace

class TestFaults : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void killedWhileSaving();
    void diskFullOnSaveAndExport();
    void propVanishes();
    void filesVanishInUse();

private:
    void build();

    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
};

void TestFaults::init()
{
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    env.reset(new TestEnv);
}

void TestFaults::cleanup()
{
    window.reset();
    env.reset();
}

void TestFaults::build()
{
    DialogDriver driver; // this platform's screen is smaller than the window likes
    driver.answerBox(QMessageBox::Ok);
    window.reset(new MainWindow);
    window->currentFile = env->path(QStringLiteral("show.gsw3"));
    window->hasFile = true;
}

// A fork of this process saves two shows in turn until it is killed. Whenever that is, the file holds one of them
// whole.
void TestFaults::killedWhileSaving()
{
    build();
    for (int i = 0; i < 40; ++i) {
        addPattern(*window, i * 1000);
    }
    QList<TimelineItem *> &items = window->currentTimeline->items;
    const QList<TimelineItem *> all = items;
    const QByteArray whole = glow::writeProject(window->asProject());
    items = all.mid(0, 15);
    const QByteArray part = glow::writeProject(window->asProject());
    QVERIFY(whole.size() > 2 * part.size());
    window->on_actionSave_triggered();
    QCOMPARE(bytesOf(window->currentFile), part);

    QElapsedTimer clock;
    clock.start();
    const auto saveBoth = [&] {
        for (const int count : {40, 15}) {
            items = all.mid(0, count);
            window->on_actionSave_triggered();
        }
    };
    for (int i = 0; i < 5; ++i) {
        saveBoth();
    }
    const qint64 round = clock.nsecsElapsed() / 5000; // microseconds for both

    int wholes = 0;
    int parts = 0;
    for (int i = 0; i < moments; ++i) {
        std::array<int, 2> started{};
        QCOMPARE(pipe(started.data()), 0);
        const pid_t child = fork();
        QVERIFY(child >= 0);
        if (child == 0) {
            close(started[0]); // so that it ends with this process
            while (write(started[1], "s", 1) == 1) {
                saveBoth();
            }
        }
        char byte = 0;
        QCOMPARE(read(started[0], &byte, 1), ssize_t(1));
        usleep(useconds_t(round * i / moments));
        QCOMPARE(kill(child, SIGKILL), 0);
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
        close(started[0]);
        close(started[1]);
        const QByteArray found = bytesOf(window->currentFile);
        wholes += found == whole ? 1 : 0;
        parts += found == part ? 1 : 0;
        QCOMPARE(wholes + parts, i + 1);
    }
    qInfo("%d kills in the %lld us of two saves; the file held the large show %d times, the small one %d times",
          moments, round, wholes, parts);
    QVERIFY(wholes > 0 && parts > 0);
}

// A real small disk where one may be mounted, else a limit on the size of files.
void TestFaults::diskFullOnSaveAndExport()
{
    build();
    const QString disk = env->path(QStringLiteral("disk"));
    QVERIFY(QDir().mkpath(disk));
    const QString options = QStringLiteral("-ttmpfs -osize=256k none ");
    const bool mounted = QProcess::execute(QStringLiteral("mount"), (options + disk).split(u' ')) == 0;
    const auto unmount = qScopeGuard([&] {
        QDir::setCurrent(env->path());
        if (mounted) {
            QProcess::execute(QStringLiteral("umount"), {disk});
        }
    });
    qInfo("%s", mounted ? "on a disk of 256 kB" : "with a limit on the size of files");
    QVERIFY(QDir::setCurrent(disk)); // the export's own files go there too

    window->currentFile = disk + QStringLiteral("/show.gsw3");
    addPattern(*window, 0);
    window->on_actionSave_triggered();
    const QByteArray good = bytesOf(window->currentFile);
    QCOMPARE(good, glow::writeProject(window->asProject()));

    for (int i = 1; i < 20; ++i) {
        addPattern(*window, i * 1000);
    }
    const glow::Project full = window->asProject();
    QScopedPointer<SmallDisk> limit(mounted ? nullptr : new SmallDisk(256 << 10));
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    window->on_actionSave_triggered();
    QCOMPARE(driver.boxes().size(), 1);
    QVERIFY(driver.boxes().at(0).text.contains(window->currentFile));
    QCOMPARE(bytesOf(window->currentFile), good);

    // The export has no words for it; it comes to its end, and the show stays as it is.
    driver.answerFile({disk + QStringLiteral("/show.bin")});
    driver.answerBox(QMessageBox::Ok);
    window->on_Ex_Button_clicked();
    QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(u' ')));
    QCOMPARE(window->asProject().tracks, full.tracks);

    // With room elsewhere the show is saved after all.
    limit.reset();
    window->currentFile = env->path(QStringLiteral("elsewhere.gsw3"));
    window->on_actionSave_triggered();
    QCOMPARE(bytesOf(window->currentFile), glow::writeProject(full));
}

void TestFaults::propVanishes()
{
    qputenv("GLOWSMITH_PORT_PATTERN", QFile::encodeName(env->path(QStringLiteral("COM%1"))));
    glow::DeviceShow show;
    show.ledCount = show.ledsShown = 80;
    show.frameRate = 100.0F;
    show.rateShown = 100;
    glow::ShowPattern pattern;
    pattern.endMs = 3000;
    pattern.isColour = true;
    pattern.colour = qRgb(255, 99, 0);
    show.patterns << pattern;
    QFile data(QStringLiteral("extemp.tmp"));
    QFile header(QStringLiteral("extemp2.tmp"));
    QVERIFY(data.open(QIODevice::WriteOnly) && header.open(QIODevice::WriteOnly));
    glow::writeDeviceImage(show, data, header);
    const qint64 wire = data.size() + header.size() - 2;
    data.close();
    header.close();

    for (int i = 0; i <= moments; ++i) {
        PropBehaviour behaviour;
        behaviour.greetingMs = 0;
        behaviour.vanishAfter = i < moments ? 1 + i * (wire - 2) / (moments - 1) : -1; // the last one stays
        SimulatedProp prop(behaviour);
        QVERIFY(prop.start(env->path(QStringLiteral("COM0"))));
        WorkerThread upload;
        upload.waitMs = 1000;
        upload.start();
        QVERIFY2(upload.wait(20000), qPrintable(QStringLiteral("hangs at byte %1").arg(behaviour.vanishAfter)));
        QCOMPARE(int(upload.uploadOk), i < moments ? 0 : 1);
        QVERIFY(!upload.serial->isOpen());
    }
}

void TestFaults::filesVanishInUse()
{
    build();
    const QString song = env->path(QStringLiteral("song.wav"));
    const QString picture = env->path(QStringLiteral("a.png"));
    songs::writeWav(song, {8000, 1, 1500});
    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(Qt::red);
    QVERIFY(image.save(picture));
    window->ReadSong(song);
    QTRY_VERIFY_WITH_TIMEOUT(window->hasSong(), 20000);
    window->ui->Mode_Pic->setCurrentIndex(glow::PicturePattern);
    window->picload(picture);
    window->on_Add_Button_clicked();
    window->on_actionSave_triggered();
    const QSize size = window->currentTimeline->items.value(0)->thumbnail.size();
    DialogDriver driver;

    // All three are gone, the project's place even taken by a folder: the show is still there and can be edited.
    for (const QString &path : {song, picture, window->currentFile}) {
        QVERIFY(QFile::remove(path));
    }
    QVERIFY(QDir().mkpath(window->currentFile));
    window->on_Song_play_clicked();
    window->on_Song_Stop_clicked();
    driver.answerBox(QMessageBox::No); // search for the picture?
    window->on_timelineItem_Clicked(window->currentTimeline->items.value(0), false);
    window->on_Add_Button_clicked();
    window->on_actionSave_triggered();
    QCOMPARE(window->currentTimeline->items.size(), 1);
    QVERIFY(QDir().rmdir(window->currentFile));

    // Saved again, opened again: the pattern carries its picture, the song says that it is gone.
    window->on_actionSave_triggered();
    driver.answerBox(QMessageBox::No);
    window->LoadFile(window->currentFile);
    QTRY_VERIFY(!window->hasSong());
    QCOMPARE(window->currentTimeline->items.value(0)->thumbnail.size(), size);
    QCOMPARE(whatIsWrong(*window), QString());

    // Gone altogether: an empty show that no save may write over anything.
    QVERIFY(QFile::remove(window->currentFile));
    window->LoadFile(window->currentFile);
    QVERIFY(window->currentTimeline->items.isEmpty());
    QCOMPARE(whatIsWrong(*window), QString());
}

int main(int argc, char **argv)
{
    // A fork has no part in the conversation with a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    TestFaults test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_faults.moc"
