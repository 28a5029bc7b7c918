// The simulated prop by show time, and the frames that a film is made of.
#include "filmsamples.h"
#include "show/film/filmrenderer.h"
#include "show/film/yuvframe.h"

#include <QtTest>

using glow::FilmError;

namespace {

glow::FilmShow showOf(const QVector<QVector<glow::PropPattern>> &tracks)
{
    glow::FilmShow show;
    show.leds = 80;
    for (const auto &patterns : tracks) {
        show.tracks.append({show.tracks.size() + 1, patterns});
    }
    return show;
}

} // namespace

class TestShowProp : public QObject
{
    Q_OBJECT

private slots:
    // In order, backwards and in leaps: always the preview's picture of that moment.
    void everyMomentIsThePreviews()
    {
        std::mt19937 random(20);
        const QSize size(320, 180);
        for (int round = 0; round < 4; ++round) {
            const QVector<glow::PropPattern> track = randomTrack(random, 6000);
            glow::FilmPlan plan;
            plan.leds = 80;
            plan.size = size;
            plan.tracks = {{1, track}};
            plan.toMs = 6500;
            glow::FilmRenderer renderer(plan);
            QVector<int> moments{0, 1, 40, 41, 900, 933, 3000, 2999, 641, 640, 6499};
            for (int i = 0; i < 6; ++i) {
                moments << int(random() % 6500);
            }
            for (const int ms : qAsConst(moments)) {
                QVERIFY2(renderer.moment(ms) == previewAt(track, 80, ms, size), qPrintable(QString::number(ms)));
            }
        }
    }

    // 99 repetitions in five seconds have 50 columns each, of 50.5 ms: every share of the pattern shows its share of
    // all columns, while a column a millisecond would be done 50 ms early.
    void aPatternKeepsItsTime()
    {
        const QImage halves = painted(50, 1, [](int x, int) { return x < 25 ? red : green; });
        glow::ShowProp prop({{1000, 6000, halves, 99}}, 80);
        const auto onStrip = [&prop](int ms) {
            QImage picture(400, 400, QImage::Format_RGB32);
            picture.fill(Qt::black);
            prop.showAt(ms);
            prop.draw(picture, {-200, 0, 400, 400});
            return picture.pixel(192 * 9 / 10, 200);
        };
        for (int repetition = 0; repetition < 99; repetition += 14) {
            const double start = 1000 + repetition * 5000.0 / 99;
            QCOMPARE(onStrip(int(start) + 12), red);
            QCOMPARE(onStrip(int(start) + 37), green);
        }
        QCOMPARE(onStrip(999), black);
        QCOMPARE(onStrip(6000), black);
    }

    void theLaterOfTwoIsSeen()
    {
        const glow::ShowProp prop({{0, 5000, {}, 1}, {1000, 2000, {}, 1}, {3000, 3000, {}, 1}, {4000, 9000, {}, 1}},
                                  80);
        const QVector<QPair<int, int>> expected{{0, 0},    {999, 0},  {1000, 1}, {1999, 1}, {2000, 0},
                                                {3000, 0}, {4000, 3}, {8999, 3}, {9000, -1}};
        for (const auto &[ms, pattern] : expected) {
            QCOMPARE(prop.patternAt(ms), pattern);
        }
    }

    void manyTracksHaveACellEach()
    {
        for (const QSize &size : {QSize(1280, 720), QSize(1080, 1920), QSize(640, 640)}) {
            for (int props = 1; props <= 12; ++props) {
                const QVector<QRect> cells = glow::gridOf(props, size);
                QCOMPARE(cells.size(), props);
                QRegion covered;
                for (const QRect &cell : cells) {
                    QVERIFY(QRect(QPoint(), size).contains(cell) && !covered.intersects(cell));
                    covered += cell;
                    // Nothing of the disc is cut off.
                    const QRect views = glow::viewsWithin(cell);
                    QVERIFY(cell.contains(views) && views.height() * 1.71 <= views.width() + 2);
                }
            }
        }
        QCOMPARE(glow::viewsWithin({0, 0, 1280, 720}), QRect(0, 0, 1280, 720)); // as the preview does
        QVERIFY(glow::gridOf(100, {64, 64}).isEmpty());

        // Each cell is the prop alone, but for the number and the time.
        std::mt19937 random(3);
        glow::FilmPlan plan;
        plan.leds = 36;
        plan.size = {640, 360};
        plan.tracks = {{1, randomTrack(random, 2000)}, {2, {}}, {3, randomTrack(random, 2000)}};
        const QImage plain = glow::FilmRenderer(plan).moment(1500);
        plan.timeCode = true;
        const QImage timed = glow::FilmRenderer(plan).moment(1500);
        QCOMPARE(timed.copy(0, 0, 640, 330), plain.copy(0, 0, 640, 330));
        QVERIFY(timed != plain);
        const QVector<QRect> cells = glow::gridOf(3, plan.size);
        for (int i = 0; i < 3; ++i) {
            const QRect views = glow::viewsWithin(cells.at(i));
            const QRect below = QRect(0, 30, views.width(), views.height() - 30); // of the number
            const QImage alone = previewAt(plan.tracks.at(i).patterns, 36, 1500, views.size());
            QCOMPARE(plain.copy(views).copy(below), alone.copy(below));
            QVERIFY(plain.copy(cells.at(i).x(), cells.at(i).y(), 30, 30) !=
                    alone.copy(0, 0, 30, 30)); // the number is there
        }
    }

    // Colours that are the same for four pixels come back from ffmpeg's own formula.
    void yuvAsItIsDefined()
    {
        std::mt19937 random(709);
        const QImage small = noise(20, 10, random);
        const QImage picture = small.scaled(40, 20);
        QByteArray planes;
        glow::toYuv420(picture, planes);
        QCOMPARE(planes.size(), 40 * 20 * 3 / 2);
        const auto at = [&planes](int i) { return double(uchar(planes.at(i))); };
        for (int y = 0; y < 10; ++y) {
            for (int x = 0; x < 20; ++x) {
                const QColor colour(small.pixel(x, y));
                const double luma = 0.2126 * colour.redF() + 0.7152 * colour.greenF() + 0.0722 * colour.blueF();
                QVERIFY(std::abs(at(2 * y * 40 + 2 * x + 1) - (16 + 219 * luma)) < 2);
                QVERIFY(std::abs(at(800 + y * 20 + x) - (128 + 224 * (colour.blueF() - luma) / 1.8556)) < 2);
                QVERIFY(std::abs(at(1000 + y * 20 + x) - (128 + 224 * (colour.redF() - luma) / 1.5748)) < 2);
            }
        }
    }

    void choicesAreChecked()
    {
        const glow::FilmShow show = showOf({{{0, 90000, {}, 1}}, {}, {{0, 4000000, {}, 1}}});
        struct Case
        {
            FilmError error;
            std::function<void(glow::FilmOptions &)> spoil;
        };
        const Case cases[] = {
            {FilmError::None, [](auto &) {}},
            {FilmError::UnknownFormat, [](auto &o) { o.goal = "film.avi"; }},
            {FilmError::BadSize,
             [](auto &o) {
                 o.size = {1281, 720};
             }},
            {FilmError::BadSize,
             [](auto &o) {
                 o.size = {1280, 62};
             }},
            {FilmError::BadSize,
             [](auto &o) {
                 o.size = {4098, 720};
             }},
            {FilmError::BadRate, [](auto &o) { o.rate = 0; }},
            {FilmError::BadRate, [](auto &o) { o.rate = 121; }},
            {FilmError::BadGifRate, [](auto &o) { o.goal = "a.GIF", o.rate = 60; }},
            {FilmError::NoSuchTrack, [](auto &o) { o.track = 4; }},
            {FilmError::EmptyTrack, [](auto &o) { o.track = 2; }},
            {FilmError::FromBehindTo, [](auto &o) { o.fromMs = 5000, o.toMs = 5000; }},
            {FilmError::FromBehindEnd, [](auto &o) { o.fromMs = 90000; }},
            {FilmError::TooLong, [](auto &o) { o.track = 3; }},
            {FilmError::None, [](auto &o) { o.track = 3, o.fromMs = 3000000; }},
            {FilmError::GifTooLong, [](auto &o) { o.goal = "a.gif"; }},
            {FilmError::None, [](auto &o) { o.goal = "a.png", o.track = 3, o.fromMs = 5000000; }},
            {FilmError::None, [](auto &o) { o.track = glow::allTracks, o.toMs = 9000; }},
        };
        int number = 0;
        for (const Case &each : cases) {
            glow::FilmOptions options;
            options.goal = "film.mp4";
            options.track = 1;
            each.spoil(options);
            glow::FilmPlan plan;
            QString detail;
            QVERIFY2(glow::planFilm(show, options, 0, plan, detail) == each.error, qPrintable(QString::number(number)));
            QCOMPARE(glow::filmErrorText(each.error, detail).isEmpty(), each.error == FilmError::None);
            ++number;
        }
        // The song's end counts if it is part of the film, and a film behind the song's end has no sound.
        glow::FilmOptions options;
        QCOMPARE(glow::filmEndMs(showOf({{{0, 9000, {}, 1}}}), options, 12340), 12340);
        options.song = false;
        QCOMPARE(glow::filmEndMs(showOf({{{0, 9000, {}, 1}}}), options, 12340), 9000);
        for (const auto &[text, ms] : QVector<QPair<QString, int>>{{"1500", 1500},
                                                                   {"1:02", 62000},
                                                                   {"01:02.5", 62500},
                                                                   {"1:00:00.001", 3600001},
                                                                   {"1:60", -1},
                                                                   {"-5", -1},
                                                                   {"", -1},
                                                                   {"86400000", -1},
                                                                   {"1:02.", -1}}) {
            QCOMPARE(glow::parseFilmTime(text), ms);
        }
        QCOMPARE(glow::parseFilmSize("640 × 360"), QSize(640, 360));
        QVERIFY(glow::parseFilmSize("640x360x2").isEmpty());
    }
};

QTEST_MAIN(TestShowProp)
#include "test_showprop.moc"
