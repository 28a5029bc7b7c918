// The simulated prop by show time, and the frames that a film is made of.
#include "filmsamples.h"
#include "show/film/filmrenderer.h"
#include "show/film/yuvframe.h"

#include <QPainter>
#include <QtTest>

class TestFrames : public QObject
{
    Q_OBJECT

private slots:
    // In order, backwards and in leaps: always the preview's picture of that moment.
    void everyMomentIsThePreviews()
    {
        const glow::FilmPlan plan = smallPlan();
        glow::FilmRenderer renderer(plan);
        const QVector<int> moments{0, 1, 40, 1240, 1273, 2000, 1999, 641, 640, 333, 1777};
        const QMap<int, QImage> expected = previews(plan.tracks.first().patterns, moments, plan.size);
        for (const int ms : moments) {
            QVERIFY2(renderer.moment(ms) == expected.value(ms), qPrintable(QString::number(ms)));
        }
    }

    // What a film takes of the simulated prop is what the preview paints, but for the frame rate in its corner.
    void viewsAreThoseOfThePreview()
    {
        for (const int speed : {9, -4, 0}) {
            for (const QSize &size : {QSize(320, 180), QSize(501, 263), QSize(1280, 720)}) {
                glow::PropSimulator prop;
                prop.showPicture(smallPlan().tracks.first().patterns.first().picture, 80, 1, 1);
                prop.setSpinSpeed(speed);
                prop.advance(500);
                QImage painted(size, QImage::Format_RGB32);
                QImage drawn = painted;
                drawn.fill(Qt::black);
                QPainter painter(&painted);
                prop.paintFrame(painter, size.width(), size.height());
                painter.fillRect(0, 0, 100, 20, Qt::black);
                prop.drawViews(drawn, drawn.rect());
                QPainter(&drawn).fillRect(0, 0, 100, 20, Qt::black);
                QCOMPARE(drawn, painted);
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
            QImage picture(800, 400, QImage::Format_RGB32);
            picture.fill(Qt::black);
            prop.showAt(ms);
            prop.draw(picture, picture.rect());
            return picture.pixel(400 + 180, 200);
        };
        for (int repetition = 0; repetition < 99; repetition += 14) {
            const double start = 1000 + repetition * 5000.0 / 99;
            QCOMPARE(onStrip(int(start) + 12), red);
            QCOMPARE(onStrip(int(start) + 37), green);
        }
        QCOMPARE(onStrip(999), black);
        QCOMPARE(onStrip(6000), black);
        const glow::ShowProp mixed({{0, 5000, {}, 1}, {1000, 2000, {}, 1}, {3000, 3000, {}, 1}, {4000, 9000, {}, 1}},
                                   8);
        QString seen; // of two patterns the later one
        for (const int ms : {0, 999, 1000, 1999, 2000, 3000, 4000, 8999, 9000}) {
            seen += QString::number(mixed.patternAt(ms)) + ' ';
        }
        QCOMPARE(seen, QString("0 0 1 1 0 0 3 3 -1 "));
    }

    void manyTracksHaveACellEach()
    {
        for (const QSize &size : {QSize(1280, 720), QSize(1080, 1920)}) {
            for (int props = 1; props <= 12; ++props) {
                QRegion covered;
                const QVector<QRect> cells = glow::gridOf(props, size);
                QCOMPARE(cells.size(), props);
                for (const QRect &cell : cells) {
                    QVERIFY(QRect(QPoint(), size).contains(cell) && !covered.intersects(cell));
                    covered += cell;
                    const QRect views = glow::viewsWithin(cell); // nothing of the disc is cut off
                    QVERIFY(cell.contains(views) && views.height() * 1.71 <= views.width() + 2);
                }
            }
        }
        QCOMPARE(glow::viewsWithin({0, 0, 1280, 720}), QRect(0, 0, 1280, 720)); // as the preview does
        QVERIFY(glow::gridOf(100, {64, 64}).isEmpty());

        // Each cell is the prop alone, but for the number and the time.
        glow::FilmPlan plan = smallPlan();
        plan.size = {640, 360};
        plan.tracks = {plan.tracks.first(), {2, {}}, {3, plan.tracks.first().patterns.mid(1)}};
        const QImage plain = glow::FilmRenderer(plan).moment(900);
        plan.timeCode = true;
        const QImage timed = glow::FilmRenderer(plan).moment(900);
        QVERIFY(timed != plain && timed.copy(0, 0, 640, 330) == plain.copy(0, 0, 640, 330));
        const QVector<QRect> cells = glow::gridOf(3, plan.size);
        for (int i = 0; i < 3; ++i) {
            const QRect views = glow::viewsWithin(cells.at(i));
            const QRect below = QRect(0, 30, views.width(), views.height() - 30); // of the number
            const QImage alone = previews(plan.tracks.at(i).patterns, {900}, views.size()).value(900);
            QCOMPARE(plain.copy(views).copy(below), alone.copy(below));
            QVERIFY(plain.copy(QRect(cells.at(i).topLeft(), QSize(30, 30))) != alone.copy(0, 0, 30, 30));
        }
    }

    // Against the definition, with colours that are the same for four pixels.
    void yuvAsItIsDefined()
    {
        std::mt19937 random(709);
        const QImage small = noise(20, 10, random);
        QByteArray planes;
        glow::toYuv420(small.scaled(40, 20), planes);
        QCOMPARE(planes.size(), 40 * 20 * 3 / 2);
        const auto at = [&planes](int i) { return double(uchar(planes.at(i))); };
        for (int i = 0; i < 200; ++i) {
            const QColor colour(small.pixel(i % 20, i / 20));
            const double luma = 0.2126 * colour.redF() + 0.7152 * colour.greenF() + 0.0722 * colour.blueF();
            QVERIFY(std::abs(at(i / 20 * 80 + i % 20 * 2 + 1) - (16 + 219 * luma)) < 2);
            QVERIFY(std::abs(at(800 + i) - (128 + 224 * (colour.blueF() - luma) / 1.8556)) < 2);
            QVERIFY(std::abs(at(1000 + i) - (128 + 224 * (colour.redF() - luma) / 1.5748)) < 2);
        }
    }
};

QTEST_MAIN(TestFrames)
#include "test_frames.moc"
