// Whole films, probed and taken apart again by ffmpeg; what goes wrong on the way; the dialog and the command line.
#include "app/smalldisk.h"
#include "filmsamples.h"
#include "render/filmdialog.h"
#include "show/film/filmencoder.h"
#include "show/film/makefilm.h"
#include "show/model/projectfile.h"
#include "song/songmaker.h"
#include "support/dialogdriver.h"
#include "support/samples.h"
#include "support/windowtest.h"
#include "timeline/timeline.h"
#include "ui_filmdialog.h"
#include "ui_mainwindow.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QtTest>

using glow::FilmError;

class TestFilm : public WindowTest
{
    Q_OBJECT

private:
    static QByteArray outputOf(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.start(program, arguments);
        return process.waitForFinished(60000) && process.exitCode() == 0 ? process.readAllStandardOutput()
                                                                         : QByteArray();
    }

    static QJsonObject probe(const QString &film)
    {
        return QJsonDocument::fromJson(outputOf("ffprobe", {"-v", "error", "-of", "json", "-show_format",
                                                            "-show_streams", "-count_packets", film}))
            .object();
    }
    static QJsonObject stream(const QJsonObject &facts, int index)
    {
        return facts.value("streams").toArray().at(index).toObject();
    }
    static double number(const QJsonObject &object, const char *key) { return object.value(key).toString().toDouble(); }

    // All frames of a film, as bytes of the screen.
    static QVector<QImage> framesOf(const QString &film, const QSize &size)
    {
        const QByteArray bytes = outputOf("ffmpeg", {"-v", "error", "-i", film, "-vf", "scale=in_color_matrix=bt709",
                                                     "-f", "rawvideo", "-pix_fmt", "bgr0", "-"});
        QVector<QImage> frames;
        const int frameBytes = size.width() * size.height() * 4;
        for (int at = 0; at + frameBytes <= bytes.size(); at += frameBytes) {
            frames << QImage(reinterpret_cast<const uchar *>(bytes.constData()) + at, size.width(), size.height(),
                             QImage::Format_RGB32)
                          .copy();
        }
        return frames;
    }

    glow::FilmResult make(glow::FilmPlan plan, const QString &name)
    {
        plan.goal = env->path(name);
        glow::filmFormat(name, plan.format);
        return glow::makeFilm(plan, {});
    }

    static glow::FilmPlan smallPlan(int toMs = 2000)
    {
        std::mt19937 random(7);
        glow::FilmPlan plan;
        plan.leds = 80;
        plan.size = {320, 180};
        plan.rate = 25;
        plan.toMs = toMs;
        plan.tracks = {{1, randomTrack(random, 2000)}};
        return plan;
    }

    // A project with one colour all through; the longer, the longer its film takes.
    QString project(int lengthMs, const QString &song = "null")
    {
        glow::Project show;
        show.ledCount = 36;
        show.frameRate = 1333;
        show.songPath = song;
        show.tracks = {{patternBlob("1?#ff0000", 0, lengthMs)}, {}};
        const QString path = env->path("show.gsw3");
        return put(path, glow::writeProject(show)) ? path : QString();
    }

    QStringList leftovers() const
    {
        return QDir(env->path()).entryList({"*glowsmith-film*"}, QDir::Files | QDir::Hidden);
    }

    // A program called ffmpeg that is the only one to be found.
    void onlyEncoder(const QByteArray &script)
    {
        const QString path = env->path("bin/ffmpeg");
        QVERIFY(put(path, "#!/bin/sh\n" + script) && QFile(path).setPermissions(QFile::ReadOwner | QFile::ExeOwner));
        qputenv("PATH", env->path("bin").toLocal8Bit());
    }

    QByteArray path = qgetenv("PATH");

private slots:
    void initTestCase()
    {
        if (glow::findEncoder().isEmpty()) {
            QSKIP("no ffmpeg here: install the package ffmpeg to test films");
        }
    }
    void cleanup()
    {
        qputenv("PATH", path);
        WindowTest::cleanup();
    }

    // The sample show and a random one, in each format.
    void theFilmIsWhatThePreviewShows()
    {
        QByteArray sample;
        QFile file(QStringLiteral(GLOWSMITH_SAMPLE));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const glow::FilmShow show = glow::filmShow(glow::readProject(file.readAll()));
        glow::FilmPlan ofSample = smallPlan();
        ofSample.tracks = {show.tracks.at(1)};
        ofSample.fromMs = 3700;
        ofSample.toMs = 6340;
        struct Case
        {
            const char *name;
            const char *codec;
            double most; // of the difference, lossy as it is
        };
        for (const Case &each : {Case{"a.mp4", "h264", 3.0}, Case{"a.webm", "vp9", 4.0}, Case{"a.gif", "gif", 6.0}}) {
            for (const glow::FilmPlan &plan : {ofSample, smallPlan()}) {
                const glow::FilmResult result = make(plan, each.name);
                QVERIFY2(result.error == FilmError::None, qPrintable(result.detail));
                const QJsonObject facts = probe(env->path(each.name));
                const QJsonObject video = stream(facts, 0);
                QCOMPARE(facts.value("streams").toArray().size(), 1);
                QCOMPARE(video.value("codec_name").toString(), QString(each.codec));
                QCOMPARE(QSize(video.value("width").toInt(), video.value("height").toInt()), plan.size);
                QCOMPARE(video.value("r_frame_rate").toString(), QString("25/1"));
                const double seconds = number(facts.value("format").toObject(), "duration");
                QVERIFY2(std::abs(seconds - (plan.toMs - plan.fromMs) / 1000.0) <= 0.04,
                         qPrintable(QString::number(seconds)));
                const QVector<QImage> frames = framesOf(env->path(each.name), plan.size);
                QCOMPARE(frames.size(), plan.frames());
                for (int i = 1; i + 1 < frames.size(); i += 7) {
                    const auto &patterns = plan.tracks.first().patterns;
                    const auto off = [&](int frame) {
                        return apart(frames.at(i), previewAt(patterns, plan.leds, plan.timeOfFrame(frame), plan.size));
                    };
                    QVERIFY2(off(i) < each.most && off(i) <= std::min(off(i - 1), off(i + 1)),
                             qPrintable(QString("%1 frame %2 off %3").arg(each.name).arg(i).arg(off(i))));
                }
            }
        }
        QCOMPARE(make(ofSample, "a.png").error, FilmError::None);
        QCOMPARE(QImage(env->path("a.png")).convertToFormat(QImage::Format_RGB32),
                 previewAt(ofSample.tracks.first().patterns, ofSample.leds, 3700, ofSample.size));
        QVERIFY(leftovers().isEmpty());
    }

    // The song clicks at every whole second, and there the prop lights up.
    void soundAndPictureAreOneMoment()
    {
        const QString song = env->path("-song: it's 5 % \"loud\".wav"); // a file, whatever it is called
        songs::writeWav(song, {44100, 2, 6000});
        QCOMPARE(glow::askSong(song).ms, 6000);
        QImage light(2, 2, QImage::Format_RGB32);
        light.fill(Qt::white);
        for (const char *name : {"a.mp4", "a.webm"}) {
            for (const int fromMs : {0, 1500}) {
                glow::FilmPlan plan = smallPlan(5500);
                plan.rate = 50;
                plan.fromMs = fromMs;
                plan.songPath = song;
                plan.tracks.first().patterns.clear();
                for (int second = 1; second < 6; ++second) {
                    plan.tracks.first().patterns.append({second * 1000, second * 1000 + 200, light, 1});
                }
                QCOMPARE(make(plan, name).error, FilmError::None);
                const QJsonObject facts = probe(env->path(name));
                QCOMPARE(facts.value("streams").toArray().size(), 2);
                QCOMPARE(stream(facts, 1).value("codec_name").toString(),
                         QString(name).endsWith("mp4") ? "aac" : "opus");
                const QByteArray sound = outputOf(
                    "ffmpeg", {"-v", "error", "-i", env->path(name), "-f", "s16le", "-ac", "1", "-ar", "48000", "-"});
                const QVector<QImage> frames = framesOf(env->path(name), plan.size);
                for (int second = fromMs / 1000 + 1; second < 6; ++second) {
                    const auto *samples = reinterpret_cast<const qint16 *>(sound.constData());
                    const int middle = (second * 1000 - fromMs) * 48;
                    int loudest = middle - 24000;
                    for (int i = loudest; i < std::min(middle + 12000, int(sound.size() / 2)); ++i) {
                        loudest =
                            i >= 0 && std::abs(samples[i]) > std::abs(samples[std::max(0, loudest)]) ? i : loudest;
                    }
                    const double heard = loudest / 48.0 + 1000 * number(stream(facts, 1), "start_time");
                    int lit = (second * 1000 - fromMs - 500) / 20;
                    while (lit + 1 < frames.size() &&
                           qGray(frames.at(std::max(0, lit)).pixel(160 + 162 / 2, 60)) < 128) {
                        ++lit;
                    }
                    const double seen = lit * 20 + 1000 * number(stream(facts, 0), "start_time");
                    QVERIFY2(std::abs(heard - seen) <= 20 && std::abs(seen - (second * 1000 - fromMs)) <= 20,
                             qPrintable(QString("%1: heard %2, seen %3").arg(name).arg(heard).arg(seen)));
                }
            }
        }
    }

    void songsThatAreNone()
    {
        QCOMPARE(glow::askSong("").state, glow::SongState::NoSong);
        QCOMPARE(glow::askSong("/gone.mp3").state, glow::SongState::Lost);
        QCOMPARE(glow::askSong("/dev/zero").state, glow::SongState::Lost);
        songs::writeBytes(env->path("noise.mp3"), QByteArray(5000, 'x'));
        QCOMPARE(glow::askSong(env->path("noise.mp3")).state, glow::SongState::Unreadable);
    }

    // Whatever happens: the old film stands, and nothing lies beside it.
    void noHalfFilm()
    {
        const QString goal = env->path("a.mp4");
        const auto stands = [&] { return contentOf(goal) == "old" && leftovers().isEmpty(); };
        QVERIFY(put(goal, "old"));
        glow::FilmPlan plan = smallPlan(60000);
        plan.goal = goal;
        int heard = 0;
        QCOMPARE(glow::makeFilm(plan, [&heard](const glow::FilmProgress &now) { return ++heard < 30 && now.total > 0; })
                     .error,
                 FilmError::Cancelled);
        QVERIFY(stands());
        {
            const SmallDisk disk(20000);
            const glow::FilmResult result = make(smallPlan(60000), "a.mp4");
            QCOMPARE(result.error, FilmError::EncoderFailed);
            QVERIFY(!result.detail.isEmpty());
        }
        QVERIFY(stands());
        // One that dies in the middle of its work, and one that ends as if all were well but has written nothing.
        onlyEncoder("for f; do :; done; echo half > \"${f#file:}\"; echo it broke >&2; kill -9 $$\n");
        const glow::FilmResult result = make(smallPlan(), "a.mp4");
        QCOMPARE(result.error, FilmError::EncoderFailed);
        QVERIFY(stands());
        onlyEncoder("exec /bin/cat >/dev/null\n");
        QCOMPARE(make(smallPlan(), "a.mp4").error, FilmError::EncoderFailed);
        qputenv("PATH", "/gone");
        QCOMPARE(make(smallPlan(), "a.mp4").error, FilmError::NoEncoder);
        QVERIFY(stands());
        qputenv("PATH", path);
        QCOMPARE(make(smallPlan(), "gone/a.mp4").error, FilmError::GoalReadOnly);
        QVERIFY(QDir(env->path()).mkdir("b.mp4"));
        QCOMPARE(make(smallPlan(), "b.mp4").error, FilmError::GoalNoFile);
        // A link's film is that of the file behind it.
        QVERIFY(QFile::link(goal, env->path("link.mp4")));
        QCOMPARE(make(smallPlan(), "link.mp4").error, FilmError::None);
        QVERIFY(contentOf(goal).size() > 1000 && QFileInfo(env->path("link.mp4")).isSymLink() && leftovers().isEmpty());
    }

    void killedOnTheWay()
    {
        const QString goal = env->path("a.mp4");
        QVERIFY(put(goal, "old"));
        QProcess process;
        process.start(GLOWSMITH_CLI, {"film", project(600000), "-o", goal, "--track", "1"});
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(env->path(".a.mp4.glowsmith-film")).size() > 0, 20000);
        // Nobody else writes the same film meanwhile.
        QCOMPARE(make(smallPlan(), "a.mp4").error, FilmError::GoalBusy);
        QCOMPARE(make(smallPlan(200), "other.mp4").error, FilmError::None);
        QVERIFY(QFile::exists(env->path(".a.mp4.glowsmith-film")));
        process.kill();
        QVERIFY(process.waitForFinished());
        QCOMPARE(contentOf(goal), QByteArray("old"));
        // The next film in the folder, whatever its name, clears up.
        QCOMPARE(make(smallPlan(200), "other.mp4").error, FilmError::None);
        QCOMPARE(leftovers(), QStringList());
        QCOMPARE(contentOf(goal), QByteArray("old"));

        process.start(GLOWSMITH_CLI, {"film", project(600000), "-o", goal, "--track", "1"});
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(env->path(".a.mp4.glowsmith-film")).size() > 0, 20000);
        process.terminate();
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 1);
        QVERIFY(contentOf(goal) == "old" && leftovers().isEmpty());
    }

    void theCommandLine()
    {
        const QString show = project(1000, "/gone/song.mp3");
        const QString film = env->path("cli.mp4");
        const auto run = [&](const QString &line, QByteArray &said) {
            QProcess process;
            process.start(GLOWSMITH_CLI, QStringList{"film", show} + line.split(' ', Qt::SkipEmptyParts));
            process.waitForFinished(60000);
            said = process.readAllStandardError();
            return process.exitCode();
        };
        QByteArray said;
        const QString out = "-o " + film;
        for (const auto &[line, code] : QVector<QPair<QString, int>>{
                 {"", 2},
                 {"-o film.avi", 2},
                 {out + " --size 1280", 2},
                 {out + " --size 10x10", 2},
                 {out + " --fps 0", 2},
                 {out + " --from later", 2},
                 {out + " --track 1 --from 0:02 --to 1000", 2},
                 {out + " --track 3", 2},
                 {out + " --track 1 --all-tracks", 2},
                 {out, 1}, // the last track is empty
                 {out + " --track 1 --to 1:30:00", 1},
             }) {
            QVERIFY2(run(line, said) == code && said.count('\n') == 1 && !QFile::exists(film), qPrintable(line + said));
        }
        QCOMPARE(run(out + " --all-tracks --size 128x96 --fps 10 --to 0:01.2 --time-code", said), 0);
        QVERIFY(said.contains("song.mp3 is gone") && said.contains("100%"));
        QCOMPARE(framesOf(film, {128, 96}).size(), 12);
    }

    void theDialog()
    {
        const QString song = env->path("song.wav");
        songs::writeWav(song, {44100, 1, 3000});
        window->LoadFile(project(2000, song));
        window->on_actionFilm_triggered();
        auto *dialog = window->findChild<FilmDialog *>();
        QVERIFY(dialog != nullptr);
        QTRY_VERIFY(dialog->isActiveWindow());
        window->on_actionFilm_triggered(); // there is one already
        QCOMPARE(window->findChildren<FilmDialog *>().size(), 1);
        Ui::FilmDialog *film = dialog->ui;
        QCOMPARE(film->track->currentText(), QString("2")); // the current one, which is empty
        QVERIFY(!film->start->isEnabled() && !film->status->text().isEmpty());
        film->track->setCurrentIndex(film->track->findText("1"));
        QVERIFY(film->start->isEnabled() && film->preview->pixmap() != nullptr);
        QCOMPARE(film->to->time(), QTime(0, 0, 3)); // the song's end
        film->song->setChecked(false);
        QCOMPARE(film->to->time(), QTime(0, 0, 2)); // the pattern's
        film->to->setTime(QTime(0, 0, 1));
        film->song->setChecked(true);
        QCOMPARE(film->to->time(), QTime(0, 0, 1)); // the user's
        film->size->setEditText("no size");
        QVERIFY(!film->start->isEnabled());
        film->size->setEditText("160x90");

        DialogDriver driver;
        driver.answerFile({env->path("a.mp4")});
        film->start->click();
        QVERIFY(dialog->isBusy());
        window->on_timeline_add_clicked(); // the window goes on
        QTRY_VERIFY(!dialog->isBusy());
        QVERIFY(driver.done());
        QCOMPARE(framesOf(env->path("a.mp4"), {160, 90}).size(), 30);
        QCOMPARE(probe(env->path("a.mp4")).value("streams").toArray().size(), 2);

        // A song that is gone is asked about, and a film on its way can be cancelled; so can the window be closed.
        QVERIFY(QFile::remove(song) && put(env->path("a.mp4"), "old"));
        film->to->setTime(QTime(0, 50));
        film->size->setEditText("1280x720");
        driver.answerBox(QMessageBox::No);
        film->start->click();
        QVERIFY(!dialog->isBusy());
        for (const bool closing : {false, true}) {
            driver.answerBox(QMessageBox::Yes);
            driver.answerFile({env->path("a.mp4")});
            driver.answerBox(QMessageBox::Yes); // replace the old one
            film->start->click();
            QVERIFY(dialog->isBusy());
            QTRY_VERIFY(film->progress->value() > 5);
            if (closing) {
                delete dialog; // as the window does with it
            } else {
                film->cancel->click();
                QTRY_VERIFY(!dialog->isBusy());
            }
            QVERIFY(contentOf(env->path("a.mp4")) == "old" && leftovers().isEmpty());
        }
        QVERIFY(driver.done());
    }
};

QTEST_MAIN(TestFilm)
#include "test_film.moc"
