// The plain rules under the tracks: order and collisions, snapping, the time scale, the ruler's ticks.
#include "timeline/collision.h"
#include "timeline/dragformat.h"
#include "timeline/rulerticks.h"
#include "timeline/snapping.h"
#include "timeline/timescale.h"

#include <QRandomGenerator>
#include <QtTest>

using glow::Span;
using glow::SpanEdit;

namespace glow {

bool operator==(const Span &a, const Span &b)
{
    return a.start == b.start && a.end == b.end;
}

bool operator<(const Span &a, const Span &b)
{
    return a.start != b.start ? a.start < b.start : a.end < b.end;
}

} // namespace glow

Q_DECLARE_METATYPE(glow::Span)

class TestRules : public QObject
{
    Q_OBJECT

private slots:
    void init() { msPerPixel = 10.0F; }
    void cleanup() { msPerPixel = 10.0F; }
    void sortsByStart();
    void equalStartsGiveWayToTheLater_data();
    void equalStartsGiveWayToTheLater();
    void settlingTouchesOnlyWhatIsMet_data();
    void settlingTouchesOnlyWhatIsMet();
    void aThousandMovesTakeTheirSpanFromTheOthers();
    void bodySnapsWithinTheMagnet_data();
    void bodySnapsWithinTheMagnet();
    void edgesSnapWithinFivePixels();
    void zoomFollowsTheSlider();
    void timesAndPixelsMapInSinglePrecision();
    void rulerShowsByZoom_data();
    void rulerShowsByZoom();
    void tickPositionsAreTheSumsFromZero();
    void dragHeaderHasTheStatedBytes();
};

namespace {

using Spans = QVector<Span>;

// Edits as text, so that a table can hold what is expected.
QStringList asText(const QVector<SpanEdit> &edits)
{
    QStringList lines;
    for (const SpanEdit &edit : edits) {
        switch (edit.kind) {
        case SpanEdit::Remove:
            lines << QStringLiteral("remove %1").arg(edit.index);
            break;
        case SpanEdit::SetTimes:
            lines << QStringLiteral("%1: %2-%3").arg(edit.index).arg(edit.times.start).arg(edit.times.end);
            break;
        case SpanEdit::Split:
            lines << QStringLiteral("split %1: %2-%3, %4-%5")
                         .arg(edit.index)
                         .arg(edit.times.start)
                         .arg(edit.times.end)
                         .arg(edit.rest.start)
                         .arg(edit.rest.end);
            break;
        }
    }
    return lines;
}

// A track as the rules leave it after a pattern was placed, done the way Timeline does it: the moved one stands last.
Spans placed(Spans track, Span place)
{
    track.append(place);
    const glow::SortedSpans sorted = glow::sortSpans(track);
    for (const SpanEdit &edit : sorted.edits) {
        track[edit.index] = edit.times;
    }
    Spans list;
    for (const int position : sorted.order) {
        list.append(track.at(position));
    }
    const int moved = sorted.order.indexOf(track.size() - 1);
    QVector<int> gone;
    for (const SpanEdit &edit : glow::settleSpans(list, moved, place)) {
        if (edit.kind == SpanEdit::Remove) {
            gone.prepend(edit.index);
            continue;
        }
        list[edit.index] = edit.times;
        if (edit.kind == SpanEdit::Split) {
            list.append(edit.rest);
        }
    }
    for (const int index : gone) {
        list.removeAt(index);
    }
    std::sort(list.begin(), list.end());
    return list;
}

} // namespace

void TestRules::sortsByStart()
{
    const glow::SortedSpans sorted = glow::sortSpans({{500, 600}, {0, 900}, {200, 100}});
    QCOMPARE(sorted.order, QVector<int>({1, 2, 0}));
    QVERIFY(sorted.edits.isEmpty()); // overlaps without an equal start stay
    QVERIFY(glow::sortSpans({}).order.isEmpty());
}

void TestRules::equalStartsGiveWayToTheLater_data()
{
    QTest::addColumn<Spans>("spans");
    QTest::addColumn<QVector<int>>("order");
    QTest::addColumn<QStringList>("edits");

    QTest::newRow("longer survives behind")
        << Spans{{0, 1000}, {0, 400}} << QVector<int>{1, 0} << QStringList{"0: 400-1000"};
    QTest::newRow("equal end goes") << Spans{{0, 400}, {0, 400}} << QVector<int>{1} << QStringList{"remove 0"};
    QTest::newRow("shorter goes") << Spans{{0, 300}, {0, 400}} << QVector<int>{1} << QStringList{"remove 0"};
    QTest::newRow("three with one start")
        << Spans{{0, 1000}, {0, 700}, {0, 400}} << QVector<int>{2, 1, 0} << QStringList{"0: 700-1000", "1: 400-700"};
    // The piece that begins at 400 takes the place of the pattern that stood there, which no edit names.
    QTest::newRow("displaced one drops out")
        << Spans{{0, 1000}, {400, 600}, {0, 400}} << QVector<int>{2, 0} << QStringList{"0: 400-1000"};
    QTest::newRow("piece meets a later one")
        << Spans{{0, 1000}, {0, 400}, {400, 700}} << QVector<int>{1, 2, 0} << QStringList{"0: 400-1000", "0: 700-1000"};
    // Without a length the later one ends where it starts, so the piece displaces it at once.
    QTest::newRow("empty later one drops out")
        << Spans{{0, 1000}, {0, 0}} << QVector<int>{0} << QStringList{"0: 0-1000"};
}

void TestRules::equalStartsGiveWayToTheLater()
{
    QFETCH(const Spans, spans);
    const glow::SortedSpans sorted = glow::sortSpans(spans);
    QTEST(sorted.order, "order");
    QTEST(asText(sorted.edits), "edits");
}

void TestRules::settlingTouchesOnlyWhatIsMet_data()
{
    QTest::addColumn<Spans>("sorted");
    QTest::addColumn<int>("moved");
    QTest::addColumn<QStringList>("edits");

    QTest::newRow("touching neighbours stay") << Spans{{0, 100}, {100, 200}, {200, 300}} << 1 << QStringList{};
    QTest::newRow("neighbours are trimmed")
        << Spans{{0, 150}, {100, 250}, {200, 300}} << 1 << QStringList{"2: 250-300", "0: 0-100"};
    QTest::newRow("covered ones go, also beyond a gap")
        << Spans{{100, 400}, {150, 200}, {250, 400}, {390, 500}, {600, 700}} << 0
        << QStringList{"remove 1", "remove 2", "3: 400-500"};
    QTest::newRow("a longer one is split")
        << Spans{{0, 1000}, {300, 400}} << 1 << QStringList{"split 0: 0-300, 400-1000"};
    QTest::newRow("an equal end is only trimmed") << Spans{{0, 400}, {300, 400}} << 1 << QStringList{"0: 0-300"};
    QTest::newRow("empty one splits too") << Spans{{0, 400}, {200, 200}} << 1 << QStringList{"split 0: 0-200, 200-400"};
}

void TestRules::settlingTouchesOnlyWhatIsMet()
{
    QFETCH(const Spans, sorted);
    QFETCH(const int, moved);
    QTEST(asText(glow::settleSpans(sorted, moved, sorted.at(moved))), "edits");

    // A pattern that sorting removed is on no list: all others count as standing behind it.
    const Spans others{{0, 100}, {50, 150}, {120, 300}, {400, 500}};
    QCOMPARE(asText(glow::settleSpans(others, -1, {60, 150})), (QStringList{"remove 0", "remove 1", "2: 150-300"}));
}

void TestRules::aThousandMovesTakeTheirSpanFromTheOthers()
{
    // Seen from outside, a placed pattern takes its span away from every other one: what is left of each are the parts
    // before and behind. Tracks start free of overlap and stay so.
    QRandomGenerator random(7);
    const auto number = [&random](int below) { return int(random.bounded(quint32(below))); };
    Spans track;
    for (int round = 0; round < 1500; ++round) {
        const bool fresh = track.size() < 6 || number(4) == 0;
        Span place;
        if (!fresh) {
            // A move keeps the length, as often as not to the very edge of another.
            const Span old = track.takeAt(number(track.size()));
            const Span &goal = track.at(number(track.size()));
            const int start = number(2) == 0 ? number(400) * 10 : number(2) == 0 ? goal.end : goal.start;
            place = {start, start + old.end - old.start};
        } else {
            place.start = number(400) * 10;
            place.end = place.start + 10 + number(60) * 10;
        }
        Spans expected{place};
        for (const Span &other : qAsConst(track)) {
            const Span before{other.start, qMin(other.end, place.start)};
            const Span behind{qMax(other.start, place.end), other.end};
            if (before.start < before.end) {
                expected.append(before);
            }
            if (behind.start < behind.end) {
                expected.append(behind);
            }
        }
        std::sort(expected.begin(), expected.end());
        track = placed(track, place);
        QVERIFY2(track == expected, qPrintable(QStringLiteral("round %1").arg(round)));
    }
}

void TestRules::bodySnapsWithinTheMagnet_data()
{
    QTest::addColumn<double>("zoom");
    QTest::addColumn<int>("left");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("expected");

    // The neighbours leave 100 to 300 free. Half a tick is 0.5 pixels at the default zoom: 5.5 reach 5 whole pixels.
    QTest::newRow("left, just inside") << 10.0 << 105 << 50 << 100;
    QTest::newRow("left, just outside") << 10.0 << 106 << 50 << 106;
    QTest::newRow("left, from the other side") << 10.0 << 95 << 50 << 100;
    QTest::newRow("over the neighbour") << 10.0 << 94 << 50 << 94;
    QTest::newRow("right, just inside") << 10.0 << 245 << 50 << 250;
    QTest::newRow("right, just outside") << 10.0 << 244 << 50 << 244;
    QTest::newRow("right, beyond") << 10.0 << 255 << 50 << 250;
    QTest::newRow("free beyond the right") << 10.0 << 900 << 50 << 900;
    QTest::newRow("closest zoom reaches 7") << 2.5 << 107 << 50 << 100;
    QTest::newRow("closest zoom ends at 8") << 2.5 << 108 << 50 << 108;
    QTest::newRow("widest zoom reaches 5") << 40.0 << 105 << 50 << 100;
    QTest::newRow("the left goes first") << 10.0 << 103 << 200 << 100;
    QTest::newRow("right snap of a wide one stops at 0") << 10.0 << -98 << 400 << 0;
    QTest::newRow("left of the track") << 10.0 << -50 << 20 << 0;
}

void TestRules::bodySnapsWithinTheMagnet()
{
    QFETCH(const double, zoom);
    QFETCH(const int, left);
    QFETCH(const int, width);
    msPerPixel = float(zoom);
    QTEST(glow::snappedBody(left, width, 100, 300), "expected");
}

void TestRules::edgesSnapWithinFivePixels()
{
    QCOMPARE(glow::snappedRightEdge(293, 300), 300); // 295 after the lead of 2
    QCOMPARE(glow::snappedRightEdge(303, 300), 300);
    QCOMPARE(glow::snappedRightEdge(292, 300), 294);
    QCOMPARE(glow::snappedRightEdge(304, 300), 306);
    QCOMPARE(glow::snappedLeftEdge(107, 100), 100);
    QCOMPARE(glow::snappedLeftEdge(97, 100), 100);
    QCOMPARE(glow::snappedLeftEdge(108, 100), 106);
    QCOMPARE(glow::snappedLeftEdge(96, 100), 94);
    QCOMPARE(glow::snappedLeftEdge(1, 100), 0);
}

void TestRules::zoomFollowsTheSlider()
{
    // 640000 / value², cut to a whole number, in tenths.
    const QVector<QPair<int, float>> table{{40, 40.0F}, {41, 38.0F}, {80, 10.0F}, {85, 8.8F},
                                           {100, 6.4F}, {120, 4.4F}, {160, 2.5F}};
    for (const auto &row : table) {
        QCOMPARE(glow::msPerPixelOfSlider(row.first), row.second);
    }
    const QVector<QPair<float, int>> widths{{10.0F, 2}, {2.5F, 8}, {40.0F, 0}};
    for (const auto &row : widths) {
        msPerPixel = row.first;
        QCOMPARE(glow::minimumItemWidth(), row.second);
    }
}

void TestRules::timesAndPixelsMapInSinglePrecision()
{
    QCOMPARE(glow::pixelOfTime(0), 0);
    QCOMPARE(glow::pixelOfTime(1004), 100);
    QCOMPARE(glow::pixelOfTime(1005), 101);
    QCOMPARE(glow::widthOfLength(1009), 100);
    msPerPixel = 6.4F;
    QCOMPARE(glow::timeOfPixel(4), 25); // 25.6
    QCOMPARE(glow::roundedTimeOfPixel(4), 26);
    // 6.4 is 6.4000000954 in single precision: the product 21474835.52 becomes 21474836, where floats are 2 apart.
    QCOMPARE(glow::timeOfPixel(3355443), 21474836);
    msPerPixel = 4.4F;
    QCOMPARE(glow::pixelOfTime(1000), 227); // 227.27
    QCOMPARE(glow::pixelOfTime(1010), 230); // 229.55
}

void TestRules::rulerShowsByZoom_data()
{
    QTest::addColumn<double>("zoom");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("label");

    const struct
    {
        double zoom;
        int index;
        const char *line;
        const char *label;
    } table[] = {
        {2.5, 0, "long", "mm:ss"},
        {2.5, 100, "long", "mm:ss"},
        {2.5, 10, "middle", ""},
        {2.5, 20, "middle", ".zzz"},
        {2.5, 7, "short", ""},
        {2.6, 20, "middle", ""},
        {5.0, 7, "short", ""},
        {5.1, 7, "", ""},
        {5.1, 30, "middle", ""},
        {10.0, 300, "long", "mm:ss"},
        {10.1, 300, "long", ""},
        {10.1, 400, "long", "mm:ss"},
        {23.0, 300, "long", ""},
        {23.0, 10, "middle", ""},
        {23.1, 10, "", ""},
        {23.1, 50, "middle", ""},
        {23.1, 400, "middle", ""},
        {23.1, 500, "long", "mm:ss"},
        {40.0, 1000, "long", "mm:ss"},
        {40.0, 999, "", ""},
    };
    for (const auto &row : table) {
        QTest::addRow("%g, tick %d", row.zoom, row.index)
            << row.zoom << row.index << QString::fromLatin1(row.line) << QString::fromLatin1(row.label);
    }
}

void TestRules::rulerShowsByZoom()
{
    QFETCH(const double, zoom);
    QFETCH(const int, index);
    const QMap<glow::TickLine, QString> lines{{glow::TickLine::None, QString()},
                                              {glow::TickLine::Long, QStringLiteral("long")},
                                              {glow::TickLine::Middle, QStringLiteral("middle")},
                                              {glow::TickLine::Short, QStringLiteral("short")}};
    const QMap<glow::TickLabel, QString> labels{{glow::TickLabel::None, QString()},
                                                {glow::TickLabel::Seconds, QStringLiteral("mm:ss")},
                                                {glow::TickLabel::Fraction, QStringLiteral(".zzz")}};
    QFETCH(const QString, line);
    QFETCH(const QString, label);
    QCOMPARE(lines.value(glow::lineOfTick(index, float(zoom))), line);
    QCOMPARE(labels.value(glow::labelOfTick(index, float(zoom))), label);
}

void TestRules::tickPositionsAreTheSumsFromZero()
{
    QRandomGenerator random(3);
    for (const int slider : {40, 67, 80, 93, 100, 120, 131, 160}) {
        const float zoom = glow::msPerPixelOfSlider(slider);
        const float width = 300000.0F / zoom;
        glow::TickPositions positions(zoom);
        for (int round = 0; round < 8; ++round) {
            const auto from = float(int(random.bounded(quint32(width))) - 50);
            const float end = qMin(width, from + 900);
            QVector<glow::Tick> expected;
            int index = 0;
            for (float x = 0; x < end; x += tickMs / zoom, ++index) {
                if (x >= from) {
                    expected.append({index, x});
                }
            }
            const QVector<glow::Tick> ticks = positions.between(from, end);
            QCOMPARE(ticks.size(), expected.size());
            for (int i = 0; i < ticks.size(); ++i) {
                QCOMPARE(ticks.at(i).index, expected.at(i).index);
                QVERIFY(ticks.at(i).x == expected.at(i).x);
            }
        }
    }
    // Where a sum no longer grows the ruler ends instead of the program hanging.
    glow::TickPositions coarse(40.0F);
    QVERIFY(coarse.between(8e6F, 8.1e6F).isEmpty());
}

void TestRules::dragHeaderHasTheStatedBytes()
{
    const QByteArray bytes = glow::writeDragHeader({-2, 258, QStringLiteral("0x")});
    QCOMPARE(bytes.toHex(), QByteArray("fffffffe"
                                       "00000102"
                                       "00000004"
                                       "00300078"));
    const glow::DragHeader header = glow::readDragHeader(bytes);
    QCOMPARE(header.grabX, 258);
    QCOMPARE(header.itemId, QStringLiteral("0x"));
    QVERIFY(glow::readDragHeader("short").itemId.isEmpty());
}

QTEST_GUILESS_MAIN(TestRules)
#include "test_rules.moc"
