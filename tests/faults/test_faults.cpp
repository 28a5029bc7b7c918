// What goes wrong outside of the program: it is killed while it saves, the disk is full. What a killed program leaves
// is offered at the next start: test_startup. A prop that is pulled out: test_upload.
#include "app/smalldisk.h"
#include "show/model/projectfile.h"
#include "support/windowtest.h"

#include <QApplication>
#include <QLoggingCategory>
#include <QProcess>
#include <QRandomGenerator>

#include <array>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Noise, which no compression makes small.
void addPattern(MainWindow &window, int startMs)
{
    QImage noise(85, 85, QImage::Format_RGB32);
    QRandomGenerator(startMs + 1).fillRange(reinterpret_cast<quint32 *>(noise.bits()), 85 * 85);
    // Any file that is there will do as the source.
    const QString settings = "0?1?" + QCoreApplication::applicationFilePath() + "?0|0|0";
    glow::PatternRecord record = glow::readPattern(patternBlob(settings, startMs, 900));
    record.thumbnail = QPixmap::fromImage(noise);
    window.currentTimeline->addTimelineItem(new TimelineItem(glow::writePattern(record), window.currentTimeline));
}

} // namespace

class TestFaults : public WindowTest
{
    Q_OBJECT

private slots:
    void init()
    {
        QLoggingCategory::setFilterRules("default.debug=false");
        env.reset(new TestEnv);
        DialogDriver driver; // this platform's screen is smaller than the window likes
        driver.answerBox(QMessageBox::Ok);
        window.reset(new MainWindow);
        window->currentFile = env->path("show.gsw3");
        window->hasFile = true;
    }

    // A fork of this process saves two shows in turn until it is killed. Whenever that is, the file holds one of them
    // whole.
    void killedWhileSaving()
    {
        for (int i = 0; i < 40; ++i) {
            addPattern(*window, i * 1000);
        }
        QList<TimelineItem *> &items = window->currentTimeline->items;
        const QList<TimelineItem *> all = items;
        const QByteArray whole = glow::writeProject(window->asProject());
        items = all.mid(0, 15);
        const QByteArray part = glow::writeProject(window->asProject());
        QVERIFY(whole.size() > 2 * part.size());
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
        QCOMPARE(contentOf(window->currentFile), part);

        constexpr int moments = 60;
        int wholes = 0;
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
            const QByteArray found = contentOf(window->currentFile);
            QVERIFY(found == whole || found == part);
            wholes += found == whole ? 1 : 0;
        }
        qInfo("%d kills in the %lld us of two saves; the file held the large show %d times", moments, round, wholes);
        QVERIFY(wholes > 0 && wholes < moments);
    }

    // A real small disk where one may be mounted, else a limit on the size of files.
    void diskFullOnSaveAndExport()
    {
        const QString disk = env->path("disk");
        QVERIFY(QDir().mkpath(disk));
        const QStringList options{"-ttmpfs", "-osize=256k", "none", disk};
        const bool mounted = QProcess::execute("mount", options) == 0;
        const auto unmount = qScopeGuard([&] {
            QDir::setCurrent(env->path());
            if (mounted) {
                QProcess::execute("umount", {disk});
            }
        });
        qInfo("%s", mounted ? "on a disk of 256 kB" : "with a limit on the size of files");
        QVERIFY(QDir::setCurrent(disk)); // the export's own files go there too

        window->currentFile = disk + "/show.gsw3";
        addPattern(*window, 0);
        window->on_actionSave_triggered();
        const QByteArray good = contentOf(window->currentFile);
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
        QCOMPARE(contentOf(window->currentFile), good);

        // The export has no words for it; it comes to its end, and the show stays as it is.
        driver.answerFile({disk + "/show.bin"});
        driver.answerBox(QMessageBox::Ok);
        window->on_Ex_Button_clicked();
        QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(' ')));
        QCOMPARE(window->asProject().tracks, full.tracks);

        // With room elsewhere the show is saved after all.
        limit.reset();
        window->currentFile = env->path("elsewhere.gsw3");
        window->on_actionSave_triggered();
        QCOMPARE(contentOf(window->currentFile), glow::writeProject(full));
    }
};

int main(int argc, char **argv)
{
    // A fork has no part in the conversation with a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    TestFaults test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_faults.moc"
