// Beats: heard in songs that are made here, in the values that the user turns, in the cache, and by the command line.
#include "show/beats/beatfinder.h"
#include "show/beats/songbeats.h"
#include "show/model/showtime.h"
#include "song/songmaker.h"
#include "support/samples.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QtEndian>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <random>

namespace {

using glow::SongBeats;

struct Song
{
    const char *name;
    double tempo;
    double swing = 0.5; // where the off-beat stands
    int bar = 4;
    double laterTempo = 0; // from the middle on
    double breakFrom = 0, breakTo = 0;
    float noise = 0;
    bool speech = false;
    double seconds = 40;
};

struct Made
{
    std::vector<float> samples;
    QVector<double> beats; // seconds
};

const std::atomic<bool> never(false);

// A sound that fades: a tone, or noise for 0 hertz.
void strike(std::vector<float> &samples, double at, double hertz, double seconds, double loudness)
{
    static std::mt19937 random(3);
    const auto first = size_t(at * 44100);
    const auto count = size_t(seconds * 44100);
    const double fade = std::exp(-5.0 / double(count));
    for (size_t i = 0; i < count && first + i < samples.size(); ++i, loudness *= fade) {
        const double wave = hertz > 0 ? std::sin(i * hertz * 6.2832 / 44100) : double(random() % 2000) / 1000 - 1;
        samples[first + i] += float(loudness * wave);
    }
}

void speakOver(std::vector<float> &samples)
{
    QTemporaryDir folder;
    const QString path = folder.filePath("voice.wav");
    const QString words =
        "Light the staff and let it spin, one more turn and then begin, all the colours of the night ";
    if (QProcess::execute("espeak-ng", {"-w", path, words.repeated(3)}) != 0)
        return;
    const QByteArray wav = contentOf(path).mid(44); // 22050 a second, 16 bits
    for (size_t i = 0; i < samples.size() && wav.size() > 2; ++i)
        samples[i] += 0.4F * qFromLittleEndian<qint16>(wav.constData() + (i / 2 * 2) % (wav.size() & ~1)) / 32768.0F;
}

Made make(const Song &song)
{
    Made made;
    made.samples.resize(size_t(song.seconds * 44100));
    double at = 0.4;
    for (int beat = 0; at < song.seconds - 0.5; ++beat) {
        const double length = 60 / (song.laterTempo > 0 && at > song.seconds / 2 ? song.laterTempo : song.tempo);
        const int inBar = beat % song.bar;
        made.beats << at;
        if (inBar == 0)
            for (const double note : {1.0, 1.25, 1.5}) // another chord each bar
                strike(made.samples, at, 110 * note * std::pow(2, (beat / song.bar * 5 % 12) / 12.0), 3, 0.08);
        if (at < song.breakFrom || at >= song.breakTo) {
            const bool low = song.bar == 3 ? inBar == 0 : inBar % 2 == 0;
            strike(made.samples, at, low ? 60 : 0, 0.2, low ? 0.5 : 0.2);
            strike(made.samples, at, 0, 0.04, 0.1);
            strike(made.samples, at + length * song.swing, 0, 0.04, 0.06);
        }
        at += length;
    }
    std::mt19937 random(5);
    for (size_t i = 0; song.noise > 0 && i < made.samples.size(); ++i)
        made.samples[i] += song.noise * (float(random() % 2000) / 1000 - 1);
    if (song.speech)
        speakOver(made.samples);
    return made;
}

glow::Beats hear(const Made &made)
{
    glow::BeatFinder finder;
    for (size_t i = 0; i < made.samples.size(); i += 3001)
        finder.add(made.samples.data() + i, int(std::min<size_t>(3001, made.samples.size() - i)));
    return finder.finish(never);
}

double fMeasure(const QVector<int> &heard, const QVector<double> &beats)
{
    int hits = 0;
    for (int h = 0, b = 0; h < heard.size() && b < beats.size();) {
        const double away = heard.at(h) - beats.at(b) * 1000;
        hits += std::abs(away) <= 70 ? 1 : 0;
        h += away <= 70 ? 1 : 0;
        b += away >= -70 ? 1 : 0;
    }
    return 2.0 * hits / (heard.size() + beats.size());
}

// The best of the tempo, its double and both of its halves.
double fAtAnyLevel(const QVector<int> &heard, const QVector<double> &beats)
{
    QVector<double> levels[3];
    for (int i = 0; i < beats.size(); ++i) {
        levels[0] << beats.at(i) << (beats.at(i) + beats.value(i + 1, beats.at(i) + 0.5)) / 2;
        levels[1 + i % 2] << beats.at(i);
    }
    double best = fMeasure(heard, beats);
    for (const QVector<double> &level : levels)
        best = std::max(best, fMeasure(heard, level));
    return best;
}

QVector<int> timesOf(const SongBeats &song)
{
    QVector<int> times;
    for (const glow::ShownBeat &beat : glow::shownBeats(song))
        times << beat.ms;
    return times;
}

} // namespace

class TestBeats : public QObject
{
    Q_OBJECT

private slots:
    void hearsBeats()
    {
        if (!glow::beatsAvailable())
            QSKIP("built without qm-dsp");
        const QVector<Song> songs{{"70", 70},
                                  {"85 swung", 85, 0.667},
                                  {"93 swung", 93, 0.62},
                                  {"100", 100},
                                  {"112 in 3/4", 112, 0.5, 3},
                                  {"120", 120},
                                  {"120 with a break", 120, 0.5, 4, 0, 16, 24},
                                  {"124 under noise", 124, 0.5, 4, 0, 0, 0, 0.1F},
                                  {"128 under speech", 128, 0.5, 4, 0, 0, 0, 0, true},
                                  {"96 under speech", 96, 0.5, 4, 0, 0, 0, 0, true},
                                  {"100, then 130", 100, 0.5, 4, 130},
                                  {"140 swung", 140, 0.667},
                                  {"150 in 3/4", 150, 0.5, 3},
                                  {"180", 180}};
        int good = 0, goodBars = 0, wrongBars = 0;
        for (const Song &song : songs) {
            const Made made = make(song);
            const glow::Beats heard = hear(made);
            const double f = fAtAnyLevel(heard.times, made.beats);
            good += f >= 0.9 ? 1 : 0;
            // Bars that were heard are the right ones.
            QVector<double> bars;
            for (int i = 0; i < made.beats.size(); i += song.bar)
                bars << made.beats.at(i);
            QVector<int> heardBars;
            for (const int place : heard.bars)
                heardBars << heard.times.at(place);
            const double ofBars = fMeasure(heardBars, bars);
            goodBars += ofBars >= 0.9 ? 1 : 0;
            wrongBars += !heardBars.isEmpty() && ofBars < 0.9 ? 1 : 0;
            qInfo("| %s | %.2f | %.3f | %.3f |", song.name, heard.tempo, f, ofBars);
        }
        QVERIFY(goodBars >= 10 && wrongBars == 0);
        QVERIFY2(good >= 10, qPrintable(QString("%1 of %2 songs").arg(good).arg(songs.size())));

        const Made made = make({"five minutes", 120, 0.5, 4, 0, 0, 0, 0, false, 300});
        const std::clock_t before = std::clock();
        const glow::Beats heard = hear(made);
        const double seconds = double(std::clock() - before) / CLOCKS_PER_SEC;
        qInfo("five minutes: %.2f s of a core", seconds);
        QVERIFY(fAtAnyLevel(heard.times, made.beats) >= 0.9 && seconds <= 3);
    }

    // What is heard, turned as the user likes.
    void turnsBeats()
    {
        const glow::Beats heard{{1000, 1500, 2000, 2501, 5000}, {1, 3}, 120};
        const struct
        {
            int doublings;
            bool shifted;
            QVector<int> marks, times;
        } rows[] = {{0, false, {}, {1000, 1500, 2000, 2501, 5000}},
                    {0, true, {}, {1250, 1750, 2250, 3750, 6249}},
                    {1, false, {}, {1000, 1250, 1500, 1750, 2000, 2250, 2501, 3750, 5000}},
                    {-1, false, {}, {1500, 2501}}, // the bars stay
                    {-1, true, {}, {2000, 3001}},
                    {-2, false, {}, {1500}},
                    {-1, false, {0, 1500, 1501, 9000}, {0, 1500, 1501, 2501, 9000}},
                    {99, false, {}, timesOf({heard, glow::mostDoublings, false, {}})}};
        for (const auto &row : rows)
            QCOMPARE(timesOf({heard, row.doublings, row.shifted, row.marks}), row.times);
        QVERIFY(glow::shownBeats({{{glow::msPerDay - 10, glow::msPerDay}, {}, 60}, 0, true, {}}).size() == 2);

        SongBeats song{heard, 0, false, {}};
        for (const int ms : {1500, 700, 700, -1, glow::msPerDay + 1, 800})
            glow::addMark(song, ms);
        QCOMPARE(song.marks, QVector<int>({700, 800, 1500}));
        const QVector<glow::ShownBeat> shown = glow::shownBeats(song);
        QCOMPARE(int(shown.at(3).kind), int(glow::ShownBeat::Bar)); // 1500, where a mark is as well
        QCOMPARE(glow::nearestBeat(shown, 750, 50), std::optional<int>(700));
        QCOMPARE(glow::nearestBeat(shown, 751, 49), std::optional<int>(800));
        QCOMPARE(glow::nearestBeat(shown, 1250, 249), std::nullopt);
        QCOMPARE(glow::nearestBeat({}, 1250, INT_MAX), std::nullopt);
        QCOMPARE(glow::nextBeat(shown, 800), std::optional<int>(1000));
        QCOMPARE(glow::nextBeat(shown, 5000), std::nullopt);
        QCOMPARE(glow::previousBeat(shown, 801), std::optional<int>(800));
        for (int step = 0; step < 5; ++step)
            glow::halveBeats(song);
        glow::doubleBeats(song);
        QCOMPARE(glow::shownTempo(song), 60.0);
    }

    void keepsThemForTheSameSongOnly()
    {
        const QTemporaryDir folder;
        const QString song = folder.filePath("song");
        QByteArray content(9 * 1024 * 1024, 'a');
        QVERIFY(put(song, content));
        const QByteArray key = glow::songKey(song);
        content.replace(content.size() - 1, 1, "b");
        QVERIFY(put(song, content) && glow::songKey(song) != key && key.size() == 32);
        QVERIFY(glow::songKey(folder.path()).isEmpty() && glow::songKey(folder.filePath("none")).isEmpty());

        const SongBeats beats{{{10, 510, 1010}, {0, 2}, 120.5}, -1, true, {7, 9}};
        const QString cache = folder.filePath("deep/cache");
        QVERIFY(!glow::keptBeats(cache, key));
        QCOMPARE(glow::keepBeats(cache, beats, key).state, glow::WriteResult::Written);
        const std::optional<SongBeats> kept = glow::keptBeats(cache, key);
        QVERIFY(kept && kept->heard.tempo == 120.5 && kept->marks == beats.marks && timesOf(*kept) == timesOf(beats));
        QVERIFY(!glow::keptBeats(cache, QByteArray(32, 'x')) && !glow::keptBeats(cache, {}));

        // Damaged: cut, with a changed byte, and whole but against what a song's beats are.
        const QByteArray whole = glow::writeBeats(beats, key);
        for (int i = 0; i < whole.size(); ++i) {
            QByteArray changed = whole;
            changed[i] = char(changed.at(i) ^ 0x81);
            QVERIFY(!glow::readBeats(whole.left(i), key) && !glow::readBeats(changed, key));
        }
        QVERIFY(!glow::readBeats(whole + '!', key) && !glow::readBeats(whole, "another"));
        for (const SongBeats &wrong : {SongBeats{{{10, 10}, {}, 60}, 0, false, {}},
                                       {{{-1}, {}, 60}, 0, false, {}},
                                       {{{10, glow::msPerDay + 1}, {}, 60}, 0, false, {}},
                                       {{{10}, {1}, 60}, 0, false, {}},
                                       {{{10}, {}, qQNaN()}, 0, false, {}},
                                       {{{10}, {}, 60}, 9, false, {}},
                                       {{{10}, {}, 60}, 0, false, {5, 4}}})
            QVERIFY(!glow::readBeats(glow::writeBeats(wrong, key), key));
    }

    void readsASongInAnyThreadAndByTheCommandLine()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("song.wav");
        songs::writeWav(path, {48000, 2, 20000}); // a click every second
        glow::BeatSearch search;
        std::atomic<bool> cancelled(false);
        const auto inAThread = [&](const QString &file, const std::function<void(int)> &progress) {
            const QScopedPointer<QThread> thread(
                QThread::create([&] { search = glow::findBeats(file, cancelled, progress); }));
            thread->start();
            return thread->wait(60000);
        };
        int last = 0;
        QVERIFY(inAThread(path, [&last](int percent) { last = percent; }));
        QVERIFY2(search.song.state == glow::SongRead::Whole && last >= 99, qPrintable(search.song.error));
        const QVector<int> times = search.beats.times;
        QVERIFY(inAThread(path, [&cancelled](int) { cancelled = true; }));
        QVERIFY(search.song.state == glow::SongRead::Cancelled && search.beats.times.isEmpty());
        cancelled = false;
        QVERIFY(inAThread(folder.filePath("none.wav"), {}));
        QVERIFY(search.song.state == glow::SongRead::Failed && !search.song.error.isEmpty());

        const QString text = folder.filePath("text.mp3");
        QVERIFY(put(text, "no song"));
        QProcess process;
        const auto run = [&process](const QStringList &arguments) {
            process.start(GLOWSMITH_CLI, QStringList{"beats"} + arguments);
            return process.waitForFinished(60000) ? process.exitCode() : -1;
        };
        for (const QString &bad : {text, folder.path(), folder.filePath("none.wav")}) {
            QCOMPARE(run({bad}), 1);
            QVERIFY(process.readAllStandardError().startsWith((bad + ": ").toUtf8()));
        }
        if (!glow::beatsAvailable())
            QSKIP("built without qm-dsp");
        QCOMPARE(run({path, "--json"}), 0);
        const QJsonObject facts = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
        QVERIFY(std::abs(std::remainder(facts["tempo"].toDouble(), 60)) < 1);
        QVector<int> told;
        for (const QJsonValue &ms : facts["beats"].toArray())
            told << ms.toInt();
        QCOMPARE(told, times);
        for (int second = 2; second < 19; ++second)
            QVERIFY2(std::any_of(told.cbegin(), told.cend(), [=](int ms) { return std::abs(ms - 1000 * second) < 30; }),
                     qPrintable(QString::number(second)));
        QCOMPARE(run({path}), 0);
        QCOMPARE(process.readAllStandardOutput().count('\n'), times.size() + 1);
    }
};

QTEST_GUILESS_MAIN(TestBeats)
#include "test_beats.moc"
