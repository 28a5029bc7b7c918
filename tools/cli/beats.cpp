// glowsmith-cli beats: where a song's beats are.
#include "cli.h"
#include "progressbar.h"

#include "show/beats/beatfinder.h"
#include "show/beats/songbeats.h"
#include "show/model/showtime.h"

#include <QJsonArray>

#include <cmath>

namespace cli {

namespace {

void printBeats(const Call &call, const glow::Beats &beats)
{
    const double tempo = std::round(beats.tempo * 100) / 100;
    if (call.isSet("json")) {
        QJsonArray times;
        for (const int ms : beats.times) {
            times.append(ms);
        }
        printJson({{QStringLiteral("tempo"), tempo}, {QStringLiteral("beats"), times}});
        return;
    }
    print(QStringLiteral("tempo %1 beats a minute, %2 beats").arg(tempo).arg(beats.times.size()));
    for (const int ms : beats.times) {
        print(QStringLiteral("  ") + glow::timeText(glow::timeOf(ms)));
    }
}

} // namespace

ExitCode beats(const Call &call)
{
    if (!glow::beatsAvailable()) {
        complain(QStringLiteral("glowsmith-cli beats: built without the library that finds beats (qm-dsp)"));
        return Failed;
    }
    const QString song = call.operand();
    if (!isReadable(song)) {
        return Failed;
    }
    ProgressBar bar;
    const std::atomic<bool> never(false);
    const glow::BeatSearch search = glow::findBeats(song, never, [&bar](int percent) { bar.show(percent); });
    bar.end();
    if (search.song.state != glow::SongRead::Whole) {
        complain(QStringLiteral("%1: cannot be decoded: %2").arg(song, search.song.error));
        return Failed;
    }
    if (search.beats.times.isEmpty()) {
        complain(QStringLiteral("%1: no beats found").arg(song));
        return Failed;
    }
    printBeats(call, search.beats);
    return Done;
}

} // namespace cli
