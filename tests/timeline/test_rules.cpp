// The plain rules under the tracks: order and collisions, snapping, the time scale, the ruler's ticks.
#include "show/draw/rulerticks.h"
#include "show/model/collision.h"
#include "show/model/dragheader.h"
#include "show/model/repeatrules.h"
#include "show/model/snapping.h"
#include "show/model/timescale.h"

#include <QtTest>

using glow::Span;
using glow::SpanEdit;
using Spans = QVector<Span>;
using Numbers = QVector<int>;

namespace {

QString asText(const QVector<SpanEdit> &edits)
{
    const auto text = [](Span span) { return QString(" %1-%2").arg(span.start).arg(span.end); };
    QStringList lines;
    for (const SpanEdit &edit : edits) {
        const QString index = QString::number(edit.index);
        if (edit.kind == SpanEdit::Remove)
            lines << index + " gone";
        else
            lines << index + text(edit.times) + (edit.kind == SpanEdit::Split ? text(edit.rest) : QString());
    }
    return lines.join(", ");
}

} // namespace

class TestRules : public QObject
{
    Q_OBJECT

private slots:
    void init() { msPerPixel = 10.0F; }

    void equalStartsGiveWayToTheLater()
    {
        const std::tuple<Spans, Numbers, const char *> table[] = {
            {{}, {}, ""},
            {{{500, 600}, {0, 900}, {200, 100}}, {1, 2, 0}, ""}, // overlaps without an equal start stay
            {{{0, 1000}, {0, 400}}, {1, 0}, "0 400-1000"},
            {{{0, 400}, {0, 400}}, {1}, "0 gone"},
            {{{0, 300}, {0, 400}}, {1}, "0 gone"},
            {{{0, 1000}, {0, 700}, {0, 400}}, {2, 1, 0}, "0 700-1000, 1 400-700"},
            // The piece that begins at 400 takes the place of the pattern that stood there, which no edit names.
            {{{0, 1000}, {400, 600}, {0, 400}}, {2, 0}, "0 400-1000"},
            {{{0, 1000}, {0, 400}, {400, 700}}, {1, 2, 0}, "0 400-1000, 0 700-1000"},
            // Without a length the later one ends where it starts, so the piece displaces it at once.
            {{{0, 1000}, {0, 0}}, {0}, "0 0-1000"},
        };
        for (const auto &[spans, order, edits] : table) {
            const glow::SortedSpans sorted = glow::sortSpans(spans);
            QCOMPARE(asText(sorted.edits), QString(edits));
            QCOMPARE(sorted.order, order);
        }
    }

    void settlingTouchesOnlyWhatIsMet()
    {
        const std::tuple<Spans, std::optional<int>, Span, const char *> table[] = {
            {{{0, 100}, {100, 200}, {200, 300}}, 1, {100, 200}, ""},
            {{{0, 150}, {100, 250}, {200, 300}}, 1, {100, 250}, "2 250-300, 0 0-100"},
            {{{100, 400}, {150, 200}, {250, 400}, {390, 500}, {600, 700}}, 0, {100, 400}, "1 gone, 2 gone, 3 400-500"},
            {{{100, 400}, {110, 900}, {300, 350}},
             0,
             {100, 400},
             "1 400-900, 2 gone"}, // looks on behind one that stays
            {{{0, 1000}, {300, 400}}, 1, {300, 400}, "0 0-300 400-1000"},
            {{{0, 400}, {300, 400}}, 1, {300, 400}, "0 0-300"}, // with an equal end nothing is left behind
            {{{0, 400}, {200, 200}}, 1, {200, 200}, "0 0-200 200-400"},
            // A pattern that sorting removed is on no list: all others count as standing behind it.
            {{{0, 100}, {50, 150}, {120, 300}, {400, 500}}, {}, {60, 150}, "0 gone, 1 gone, 2 150-300"},
        };
        for (const auto &[sorted, moved, place, edits] : table)
            QCOMPARE(asText(glow::settleSpans(sorted, moved, place)), QString(edits));
    }

    void edgesSnapToTheirNeighbours()
    {
        // The neighbours leave 100 to 300 free. Half a tick is 0.5 pixels at the default zoom: 5.5 reach 5 whole
        // pixels. The closest zoom reaches 7, the widest 5.1.
        const auto snapped = [](float zoom, const Numbers &lefts, int width = 50) {
            msPerPixel = zoom;
            Numbers places;
            for (const int left : lefts)
                places << glow::snappedBody(left, width, 100, 300);
            return places;
        };
        QCOMPARE(snapped(10, {94, 95, 105, 106, 900}), (Numbers{94, 100, 100, 106, 900}));
        QCOMPARE(snapped(10, {244, 245, 255, 256}), (Numbers{244, 250, 250, 256}));
        QCOMPARE(snapped(10, {103}, 200), Numbers{100}); // the left goes first
        QCOMPARE(snapped(10, {-98, -50}, 400), (Numbers{0, 0}));
        QCOMPARE(snapped(2.5, {92, 93, 107, 108, 242, 243}), (Numbers{92, 100, 100, 108, 242, 250}));
        QCOMPARE(snapped(40, {105, 106, 255}), (Numbers{100, 106, 250}));
        // A single edge reaches 5 pixels and leads the mouse by 2.
        Numbers edges;
        for (const int mouse : {292, 293, 303, 304})
            edges << glow::snappedRightEdge(mouse, 300);
        for (const int mouse : {108, 107, 97, 96, 1})
            edges << glow::snappedLeftEdge(mouse, 100);
        QCOMPARE(edges, (Numbers{294, 300, 300, 306, 106, 100, 100, 94, 0}));
    }

    void timesAndPixelsMapInSinglePrecision()
    {
        // 640000 / value², cut to a whole number, in tenths.
        for (const auto &[slider, zoom] : {std::pair(40, 40.0F), {41, 38.0F}, {80, 10.0F}, {85, 8.8F}, {160, 2.5F}})
            QCOMPARE(glow::msPerPixelOfSlider(slider), zoom);
        QVERIFY(glow::pixelOfTime(1004) == 100 && glow::pixelOfTime(1005) == 101);
        QCOMPARE(glow::widthOfLength(1009), 100);
        msPerPixel = 6.4F;
        QVERIFY(glow::timeOfPixel(4) == 25 && glow::roundedTimeOfPixel(4) == 26); // 25.6
        // 6.4 is 6.4000000954 in single precision: the product 21474835.52 becomes 21474836, where floats are 2 apart.
        QCOMPARE(glow::timeOfPixel(3355443), 21474836);
        msPerPixel = 4.4F;
        QVERIFY(glow::pixelOfTime(1000) == 227 && glow::pixelOfTime(1010) == 230); // 227.27, 229.55
    }

    // The limits of the zoom themselves belong to the nearer view.
    void ticksThinOutWithTheZoom()
    {
        using Ticks = std::tuple<float, QString, QString>; // of number 1, 10, 50, 100, 500; of number 20, 100, 200, 500
        for (const auto &[zoom, lines, labels] : {Ticks{2.5F, "SMMLL", ".:::"},
                                                  {2.6F, "SMMLL", " :::"},
                                                  {5.0F, "SMMLL", " :::"},
                                                  {5.1F, " MMLL", " :::"},
                                                  {10.1F, " MMLL", "  : "},
                                                  {23.0F, " MMLL", "  : "},
                                                  {23.1F, "  MML", "   :"}}) {
            QString line;
            QString label;
            for (const int index : {1, 10, 50, 100, 500})
                line += QString(" LMS").at(int(glow::lineOfTick(index, zoom)));
            for (const int index : {20, 100, 200, 500})
                label += QString(" :.").at(int(glow::labelOfTick(index, zoom)));
            QCOMPARE(line + label, lines + labels);
        }
    }

    void placedRepeatsAreRounded()
    {
        // 1000 ms at speed 10 and a width of 100: 10 copies; at the higher rates twice as many.
        for (const auto &[ms, repeats] : {std::pair(1000, 10), {1049, 10}, {1050, 11}, {0, 1}})
            QCOMPARE(glow::placedRepeat(ms, 10, 100, 1000.0F), repeats);
        QCOMPARE(glow::placedRepeat(1000, 10, 100, 2100.0F), 20);
    }

    void tickPositionsAreTheSumsFromZero()
    {
        // Far out the rounding of the sums moves the ticks; what is seen of the ruler must not change that.
        for (const int slider : {40, 71, 113, 160}) {
            const float zoom = glow::msPerPixelOfSlider(slider);
            const float width = 300000.0F / zoom;
            QVector<float> sums{0.0F};
            while (sums.last() < width)
                sums << sums.last() + tickMs / zoom;
            glow::TickPositions positions(zoom);
            for (const float from : {width - 77, -50.0F, width / 3, sums.at(600)}) {
                const float end = qMin(width, from + 900);
                int index = int(std::lower_bound(sums.begin(), sums.end(), from) - sums.begin());
                for (const glow::Tick &tick : positions.between(from, end)) {
                    QVERIFY(tick.index == index && tick.x == sums.at(index));
                    ++index;
                }
                QVERIFY(sums.at(index) >= end);
            }
        }
        // Where a sum no longer grows the ruler ends instead of the program hanging.
        QVERIFY(glow::TickPositions(40.0F).between(8e6F, 8.1e6F).isEmpty());
    }

    void dragHeaderHasTheStatedBytes()
    {
        const QByteArray bytes = glow::writeDragHeader({-2, 258, "0x"});
        QCOMPARE(bytes.toHex(), QByteArray("fffffffe000001020000000400300078"));
        const glow::DragHeader header = glow::readDragHeader(bytes);
        QVERIFY(header.itemX == -2 && header.grabX == 258 && header.itemId == "0x");
        QVERIFY(glow::readDragHeader("short").itemId.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestRules)
#include "test_rules.moc"
