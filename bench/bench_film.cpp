// Films: drawing and encoding them, against ffmpeg encoding the same frames from a file.
#include "bench.h"

#include "show/draw/effectimage.h"
#include "show/film/filmencoder.h"
#include "show/film/filmrenderer.h"
#include "show/film/makefilm.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>

namespace {

constexpr int minuteMs = 60000;

// Effects in their colours, four seconds each.
glow::FilmPlan effectsFilm(int lengthMs)
{
    constexpr int patternMs = 4000;
    glow::FilmPlan plan;
    plan.leds = 80;
    plan.size = {1280, 720};
    plan.toMs = lengthMs;
    plan.goal = QStringLiteral("bench.mp4");
    glow::FilmTrack track;
    for (int i = 0; i * patternMs < lengthMs; ++i) {
        glow::EffectSettings settings;
        settings.row = i % 14;
        settings.mode = i % 3;
        settings.width = 5;
        track.patterns.append({i * patternMs, (i + 1) * patternMs, glow::effectImage(settings), 4});
    }
    plan.tracks = {track};
    return plan;
}

double timeOf(const std::function<bool()> &run)
{
    QElapsedTimer timer;
    timer.start();
    return run() ? double(timer.nsecsElapsed()) / 1e6 : 0;
}

// What the process holds, in MB; 0 where the system does not tell.
double memory()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    constexpr double pageBytes = 4096;
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1).toDouble() * pageBytes / 1e6 : 0;
}

bool writeFrames(const glow::FilmPlan &plan, const QString &path)
{
    QFile file(path);
    glow::FilmRenderer renderer(plan);
    QByteArray bytes;
    bool good = file.open(QIODevice::WriteOnly);
    for (int i = 0; good && i < plan.frames(); ++i) {
        glow::encoderFrame(plan.format, renderer.frame(i), bytes);
        good = file.write(bytes) == bytes.size();
    }
    return good;
}

void measureLength(QVector<bench::Row> &rows)
{
    const glow::FilmPlan plan = effectsFilm(3 * minuteMs);
    double early = 0;
    const double taken = timeOf([&plan, &early] {
        const auto hear = [&early](const glow::FilmProgress &now) {
            early = now.done == now.total / 10 ? memory() : early;
            return true;
        };
        return glow::makeFilm(plan, hear).error == glow::FilmError::None;
    });
    rows.append(
        {QStringLiteral("A film of three minutes, 1280x720 at 30 frames a second; memory grew by %1 MB from its "
                        "first tenth to its end")
             .arg(memory() - early, 0, 'f', 1),
         taken, 0, 3.0 * minuteMs / 4, QString()});
}

void measureEncoding(QVector<bench::Row> &rows)
{
    const QString what = QStringLiteral("A film of one minute; floor: ffmpeg encoding the same frames from a file");
    const glow::FilmPlan plan = effectsFilm(minuteMs);
    const QString raw = QStringLiteral("bench.yuv");
    if (!writeFrames(plan, raw)) {
        rows.append({what, 0, 0, 1.5, QStringLiteral("no room for the raw frames")});
    } else {
        const double floor = bench::median(3, [&plan, &raw] {
            QProcess::execute(glow::findEncoder(), glow::encoderArguments(plan, QStringLiteral("floor.mp4"), 0, raw));
        });
        rows.append({what, bench::median(3, [&plan] { glow::makeFilm(plan, {}); }), floor, 1.5, QString()});
    }
    QFile::remove(raw);
}

} // namespace

void bench::film(QVector<Row> &rows)
{
    if (glow::findEncoder().isEmpty()) {
        rows.append({QStringLiteral("A film"), 0, 0, 0, QStringLiteral("no ffmpeg")});
        return;
    }
    measureLength(rows);
    measureEncoding(rows);
}
