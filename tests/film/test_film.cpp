// Whole films, probed and taken apart again by ffmpeg; what goes wrong on the way; the dialog and the command line.
#include "app/smalldisk.h"
#include "filmsamples.h"
#include "render/filmdialog.h"
#include "show/film/makefilm.h"
#include "show/model/projectfile.h"
#include "song/songmaker.h"
#include "support/windowtest.h"
#include "ui_filmdialog.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

using glow::FilmError;

class TestFilm : public WindowTest
{
    Q_OBJECT

private:
    static QByteArray outputOf(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.start(program, QStringList{"-v", "error"} + arguments);
        return process.waitForFinished(60000) && process.exitCode() == 0 ? process.readAllStandardOutput() : "";
    }
    static QJsonObject stream(const QString &film, int index)
    {
        const QByteArray facts = outputOf("ffprobe", {"-of", "json", "-show_streams", film});
        return QJsonDocument::fromJson(facts).object().value("streams").toArray().at(index).toObject();
    }
    // All frames of a film, as bytes of the screen.
    static QVector<QImage> framesOf(const QString &film, const QSize &size)
    {
        const QByteArray bytes = outputOf("ffmpeg", {"-i", film, "-vf", "scale=in_color_matrix=bt709", "-vsync", "0",
                                                     "-f", "rawvideo", "-pix_fmt", "bgr0", "-"});
        QVector<QImage> frames;
        const int frameBytes = size.width() * size.height() * 4;
        for (int at = 0; at + frameBytes <= bytes.size(); at += frameBytes) {
            const auto *frame = reinterpret_cast<const uchar *>(bytes.constData()) + at;
            frames << QImage(frame, size.width(), size.height(), QImage::Format_RGB32).copy();
        }
        return frames;
    }
    // The mean of all channels' differences, 0 to 255.
    static double apart(const QImage &one, const QImage &other)
    {
        qint64 sum = 0;
        for (int i = 0; i < one.width() * one.height(); ++i) {
            const QRgb a = reinterpret_cast<const QRgb *>(one.constBits())[i];
            const QRgb b = reinterpret_cast<const QRgb *>(other.constBits())[i];
            sum += std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) + std::abs(qBlue(a) - qBlue(b));
        }
        return double(sum) / (3.0 * one.width() * one.height());
    }

    glow::FilmResult make(glow::FilmPlan plan, const QString &name)
    {
        plan.goal = env->path(name);
        plan.format = *glow::filmFormat(name);
        return glow::makeFilm(plan, {});
    }
    // A project with one track of that length and an empty one.
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
        const QString program = env->path("bin/ffmpeg");
        QVERIFY(put(program, "#!/bin/sh\n" + script));
        QVERIFY(QFile(program).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
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

    void theFilmIsWhatThePreviewShows()
    {
        struct Case
        {
            const char *name;
            const char *codec;
            double most; // of the difference, lossy as it is
        };
        const glow::FilmPlan plan = smallPlan();
        for (const Case &each : {Case{"a.mp4", "h264", 3}, {"b.webm", "vp9", 4}, {"c.gif", "gif", 6}}) {
            const glow::FilmResult result = make(plan, each.name);
            QVERIFY2(result.error == FilmError::None, qPrintable(result.detail));
            const QString film = env->path(each.name);
            const QJsonObject video = stream(film, 0);
            QCOMPARE(QStringLiteral("%1 %2x%3 %4")
                         .arg(video.value("codec_name").toString())
                         .arg(video.value("width").toInt())
                         .arg(video.value("height").toInt())
                         .arg(video.value("r_frame_rate").toString()),
                     QStringLiteral("%1 320x180 25/1").arg(each.codec));
            QVERIFY(stream(film, 1).isEmpty());
            const double seconds =
                outputOf("ffprobe", {"-of", "csv=p=0", "-show_entries", "format=duration", film}).toDouble();
            QVERIFY2(std::abs(seconds - (plan.toMs - plan.fromMs) / 1000.0) <= 0.04,
                     qPrintable(QString::number(seconds)));
            const QVector<QImage> frames = framesOf(film, plan.size);
            QCOMPARE(frames.size(), plan.frames());
            QVector<int> times;
            for (int i = 0; i < frames.size(); ++i) {
                times << plan.timeOfFrame(i);
            }
            const QMap<int, QImage> expected = previews(plan.tracks.first().patterns, times, plan.size);
            for (int i = 1; i + 1 < frames.size(); ++i) {
                const double off = apart(frames.at(i), expected.value(times.at(i)));
                const double early = apart(frames.at(i), expected.value(times.at(i - 1)));
                const double late = apart(frames.at(i), expected.value(times.at(i + 1)));
                QVERIFY2(off < each.most && off <= std::min(early, late) + 0.2,
                         qPrintable(QStringLiteral("%1 frame %2: %3 off, %4 %5")
                                        .arg(each.name)
                                        .arg(i)
                                        .arg(off)
                                        .arg(early)
                                        .arg(late)));
            }
        }
        glow::FilmPlan sample = smallPlan();
        const glow::FilmShow show = glow::filmShow(glow::readProject(contentOf(GLOWSMITH_SAMPLE)));
        sample.tracks = {show.tracks.at(1)};
        sample.fromMs = 540; // early in the first pattern, before its columns and the milliseconds part
        sample.toMs = 600;
        QCOMPARE(make(sample, "a.png").error, FilmError::None);
        QCOMPARE(QImage(env->path("a.png")).convertToFormat(QImage::Format_RGB32),
                 previews(sample.tracks.first().patterns, {540}, sample.size).value(540));
    }

    // The song clicks at every whole second, and there the prop lights up.
    void soundAndPictureAreOneMoment()
    {
        const QString song = env->path("-song: it's 5 % \"loud\".wav"); // a file, whatever it is called
        songs::writeWav(song, {44100, 2, 4500});
        QCOMPARE(glow::askSong(song).ms, 4500);
        glow::FilmPlan plan = smallPlan(4500);
        plan.rate = 50;
        plan.songPath = song;
        plan.tracks.first().patterns.clear();
        for (int second = 1; second < 5; ++second) {
            plan.tracks.first().patterns.append(
                {second * 1000, second * 1000 + 200, painted(2, 2, [](int, int) { return white; }), 1});
        }
        for (const auto &[name, fromMs] :
             {std::pair("a.mp4", 0), std::pair("b.mp4", 1500), std::pair("c.webm", 1500)}) {
            plan.fromMs = fromMs;
            QCOMPARE(make(plan, name).error, FilmError::None);
            const QString film = env->path(name);
            QCOMPARE(stream(film, 1).value("codec_name").toString(), film.endsWith("mp4") ? "aac" : "opus");
            // The first sample stands at the film's time 0.
            const QByteArray bytes = outputOf("ffmpeg", {"-copyts", "-i", film, "-af", "aresample=async=1:first_pts=0",
                                                         "-f", "s16le", "-ac", "1", "-ar", "48000", "-"});
            const auto *samples = reinterpret_cast<const qint16 *>(bytes.constData());
            const QVector<QImage> frames = framesOf(film, plan.size);
            const double videoStart = 1000 * stream(film, 0).value("start_time").toString().toDouble();
            for (int second = fromMs / 1000 + 1; second < 5; ++second) {
                const int due = second * 1000 - fromMs;
                const auto louder = [](qint16 a, qint16 b) { return std::abs(a) < std::abs(b); };
                QVERIFY(bytes.size() / 2 >= due * 48 + 4800);
                const double heard =
                    double(std::max_element(samples + (due - 300) * 48, samples + due * 48 + 4800, louder) - samples) /
                    48;
                int lit = (due - 300) / 20;
                while (lit < frames.size() && qGray(frames.at(lit).pixel(160 + 81, 60)) < 128) {
                    ++lit;
                }
                const double seen = lit * 20 + videoStart;
                QVERIFY2(std::abs(heard - seen) <= 20 && std::abs(seen - due) <= 20,
                         qPrintable(QStringLiteral("%1: heard %2, seen %3").arg(name).arg(heard).arg(seen)));
            }
        }
        QCOMPARE(glow::askSong("").state, glow::SongState::NoSong);
        QCOMPARE(glow::askSong("/gone.mp3").state, glow::SongState::Lost);
        QCOMPARE(glow::askSong("/dev/zero").state, glow::SongState::Lost);
        QVERIFY(put(env->path("noise.mp3"), QByteArray(5000, 'x')));
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
        QCOMPARE(glow::makeFilm(plan, [&heard](const auto &) { return ++heard < 30; }).error, FilmError::Cancelled);
        QVERIFY(stands());
        // A disk that is full in the middle and at the very end, where ffmpeg alone would not tell.
        for (const char *name : {"b.mp4", "b.webm", "b.gif"}) {
            QCOMPARE(make(smallPlan(), name).error, FilmError::None);
            const QByteArray whole = contentOf(env->path(name));
            for (const int bytes : {whole.size() / 2, whole.size() - 700, whole.size() - 1}) {
                const SmallDisk disk(bytes);
                QCOMPARE(make(smallPlan(), name).error, FilmError::EncoderFailed);
                QVERIFY(contentOf(env->path(name)) == whole && leftovers().isEmpty());
            }
        }
        QVERIFY(stands());
        // One that dies in the middle of its work, and one that ends as if all were well but has written nothing.
        onlyEncoder("for f; do :; done; echo half > \"${f#file:}\"; echo it broke >&2; kill -9 $$\n");
        QCOMPARE(make(smallPlan(), "a.mp4").error, FilmError::EncoderFailed);
        QVERIFY(stands());
        onlyEncoder("exec /bin/cat >/dev/null\n");
        QCOMPARE(make(smallPlan(), "a.mp4").error, FilmError::EncoderFailed);
        qputenv("PATH", "/gone");
        QCOMPARE(make(smallPlan(), "a.mp4").error, FilmError::NoEncoder);
        QVERIFY(stands());
        qputenv("PATH", path);
        QCOMPARE(make(smallPlan(), "gone/a.mp4").error, FilmError::GoalReadOnly);
        QVERIFY(QDir(env->path()).mkdir("c.mp4"));
        QCOMPARE(make(smallPlan(), "c.mp4").error, FilmError::GoalNoFile);
        // A link's film is that of the file behind it.
        QVERIFY(QFile::link(goal, env->path("link.mp4")));
        QCOMPARE(make(smallPlan(400), "link.mp4").error, FilmError::None);
        QVERIFY(contentOf(goal).size() > 1000 && QFileInfo(env->path("link.mp4")).isSymLink() && leftovers().isEmpty());
    }

    void killedOnTheWay()
    {
        const QString goal = env->path("a.mp4");
        QVERIFY(put(goal, "old"));
        QProcess process;
        for (const bool bluntly : {true, false}) {
            process.start(GLOWSMITH_CLI, {"film", project(600000), "-o", goal, "--track", "1"});
            QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(env->path(".a.mp4.glowsmith-film")).size() > 0, 20000);
            QCOMPARE(make(smallPlan(), "a.mp4").error, FilmError::GoalBusy);
            QCOMPARE(make(smallPlan(200), "other.mp4").error, FilmError::None);
            QVERIFY(QFile::exists(env->path(".a.mp4.glowsmith-film"))); // of somebody who lives
            bluntly ? process.kill() : process.terminate();
            QVERIFY(process.waitForFinished());
            QCOMPARE(contentOf(goal), QByteArray("old"));
            if (bluntly) { // the next film in the folder, whatever its name, clears up
                QCOMPARE(make(smallPlan(200), "other.mp4").error, FilmError::None);
            }
            QCOMPARE(leftovers(), QStringList());
        }
    }

    void theCommandLine()
    {
        const QString show = project(3700000, "/gone/song.mp3");
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
        struct Case
        {
            QString line;
            const char *word;
            int code;
        };
        for (const Case &each :
             QVector<Case>{{"", "-o FILM", 2},
                           {"-o film.avi", ".webm", 2},
                           {out + " --size 1280", "even numbers from 64 to 4096", 2},
                           {out + " --size 1281x720", "even", 2},
                           {out + " --size 4098x720", "even", 2},
                           {out + " --fps 0", "--fps takes a number from 1 to 120", 2},
                           {"-o a.gif --fps 60", "at most 50", 2},
                           {out + " --from later", "mm:ss.zzz", 2},
                           {out + " --to 1:60", "mm:ss.zzz", 2},
                           {out + " --track 1 --from 0:02 --to 2000", "before its end at 00:02.000", 2},
                           {out + " --track 1 --from 1:02:00", "before the show ends at 1:01:40.000", 2},
                           {out + " --track 3", "--track takes a number from 1 to 2", 2},
                           {out + " --track 1 --all-tracks", "exclude", 2},
                           {out, "track 2 holds no pattern", 1},
                           {out + " --track 1", "60 minutes", 1},
                           {"-o a.gif --track 1 --to 1:01", "60 seconds", 1}}) {
            QVERIFY2(run(each.line, said) == each.code && said.contains(each.word) && said.count('\n') == 1 &&
                         !QFile::exists(film),
                     qPrintable(each.line + said));
        }
        QCOMPARE(run(out + " --all-tracks --size 128x96 --fps 10 --to 0:01.2 --time-code", said), 0);
        QVERIFY(said.contains("song.mp3 is gone"));
        QCOMPARE(framesOf(film, {128, 96}).size(), 12);
    }

    void theDialog()
    {
        const QString song = env->path("song.wav");
        const QString goal = env->path("a.mp4");
        songs::writeWav(song, {44100, 1, 3000});
        window->LoadFile(project(2000, song));
        ui->actionFilm->trigger();
        ui->actionFilm->trigger(); // there is one already
        QCOMPARE(window->findChildren<FilmDialog *>().size(), 1);
        auto *dialog = window->findChild<FilmDialog *>();
        QTRY_VERIFY(dialog->isActiveWindow());
        Ui::FilmDialog *film = dialog->ui;
        QVERIFY(!film->start->isEnabled() && film->status->text().contains('2')); // the current track, which is empty
        film->track->setCurrentIndex(film->track->findText("1"));
        QVERIFY(film->start->isEnabled() && !film->preview->pixmap(Qt::ReturnByValue).isNull());
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
        driver.answerFile({goal});
        film->start->click();
        QVERIFY(dialog->isBusy());
        window->on_timeline_add_clicked(); // the window goes on
        QTRY_VERIFY(!dialog->isBusy());
        QCOMPARE(framesOf(goal, {160, 90}).size(), 30);
        QCOMPARE(stream(goal, 1).value("codec_name").toString(), QString("aac"));

        // A song that is gone is asked about, and a film on its way can be cancelled; so can the window be closed.
        QVERIFY(QFile::remove(song) && QFile::remove(goal));
        film->to->setTime(QTime(0, 50));
        film->size->setEditText("1280x720");
        driver.answerBox(QMessageBox::No);
        film->start->click();
        QVERIFY(!dialog->isBusy());
        for (const bool closing : {false, true}) {
            driver.answerBox(QMessageBox::Yes);
            driver.answerFile({goal});
            film->start->click();
            QVERIFY(dialog->isBusy());
            QTRY_VERIFY(film->progress->value() > 5);
            if (closing) {
                delete dialog; // as the window does with it
            } else {
                film->cancel->click();
                QTRY_VERIFY(!dialog->isBusy());
            }
            QVERIFY(!QFile::exists(goal) && leftovers().isEmpty());
        }
        QVERIFY(driver.done());
    }
};

QTEST_MAIN(TestFilm)
#include "test_film.moc"
