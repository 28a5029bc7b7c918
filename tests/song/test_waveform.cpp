// From samples to points, from points to pixel columns, and the line that they paint.
#include "show/draw/waveform.h"
#include "show/model/timescale.h"
#include "song/chartview.h"
#include "song/songformat.h"

#include <QAudioBuffer>
#include <QGraphicsLayout>
#include <QGraphicsScene>
#include <QPainter>
#include <QRandomGenerator>
#include <QtCharts/QChart>
#include <QtCharts/QLineSeries>
#include <QtCharts/QValueAxis>
#include <QtTest>

#include <cmath>
#include <limits>

using namespace QtCharts;

namespace {

const QColor waveColor(100, 100, 255);

// The highest and the lowest row of a column that the line colours clearly; (-1, -1) if none.
QPair<int, int> rowsOf(const QImage &image, int x)
{
    QVector<int> lit;
    for (int y = 0; y < image.height(); ++y) {
        if (qRed(image.pixel(x, y)) < 190)
            lit << y;
    }
    return {lit.value(0, -1), lit.value(lit.size() - 1, -1)};
}

// True if no column of one picture reaches further up or down than the same column or its neighbours in the other, for
// the soft edges of a line fall on either side of a pixel's border.
bool extendsNoFurther(const QImage &one, const QImage &other)
{
    for (int x = 1; x < one.width() - 1; ++x) {
        int upper = one.height();
        int lower = -1;
        for (int near = x - 1; near <= x + 1; ++near) {
            upper = qMin(upper, rowsOf(other, near).first);
            lower = qMax(lower, rowsOf(other, near).second);
        }
        const QPair<int, int> rows = rowsOf(one, x);
        if (rows.first < upper - 2 || rows.second > lower + 2) {
            qDebug() << msPerPixel << "ms a pixel, column" << x << rows << "against" << upper << lower;
            return false;
        }
    }
    return true;
}

QList<QPointF> randomWave(int count, quint32 seed)
{
    QRandomGenerator random(seed);
    QVector<QPointF> points;
    double maximum = 0;
    for (int i = 0; i < count; i += 12) {
        QVector<qint16> samples;
        for (int k = i; k < i + 12; ++k) {
            const double loudness = 0.05 + 0.95 * std::pow(std::sin(k / 90.0), 8.0);
            samples << static_cast<qint16>(random.bounded(-32768, 32768) * loudness);
        }
        glow::appendWavePoints(points, maximum, samples.constData(), 12, (i + 12) * 1000LL / 480);
    }
    return points.toList();
}

} // namespace

class TestWaveform : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { msPerPixel = 10.0F; }

    void arithmetic()
    {
        QCOMPARE(glow::wavePointsOfTime(2083), 999); // 999.84
        QCOMPARE(glow::wavePointsOfTime(300000), 144000);
        QCOMPARE(glow::wavePointsOfTime(-1), 0); // what an unknown duration becomes
        QCOMPARE(glow::timeOfWavePoints(144000), qint64(300000));
        QCOMPARE(glow::waveHeight(8192), std::sqrt(8192 / 32767.0));
        QCOMPARE(glow::waveHeight(-32767), -1.0);
        QVERIFY(glow::waveHeight(-32768) < -1.0 && glow::waveHeight(-32768) > -1.0001);
        // Five minutes at the zooms; cut and not rounded; less than a pixel.
        QCOMPARE(glow::waveWidth(144001), 30000);
        QCOMPARE(glow::waveWidth(7), 1);
        msPerPixel = 2.5F;
        QCOMPARE(glow::waveWidth(144001), 120000);
        msPerPixel = 40.0F;
        QCOMPARE(glow::waveWidth(144001), 7500);
        QCOMPARE(glow::waveWidth(2), 0);
    }

    void aBufferEndsOnePointBeforeItsPosition()
    {
        const QVector<qint16> samples{0, 100, -32767, 5};
        QVector<QPointF> points;
        double maximum = 0;
        glow::appendWavePoints(points, maximum, samples.constData(), 2, 4);
        QCOMPARE(points.size(), 3);
        QCOMPARE(points.at(0), QPointF(0.0, 1 / 32767.0));
        QVERIFY(qAbs(points.at(1).x() - (4 * 0.48 - 2)) < 1e-6);
        QVERIFY(qAbs(points.at(2).x() - (4 * 0.48 - 1)) < 1e-6);
        QCOMPARE(maximum, std::sqrt(100 / 32767.0)); // the first point is no sample

        glow::appendWavePoints(points, maximum, samples.constData() + 2, 2, 599979);
        QCOMPARE(points.size(), 5);
        QCOMPARE(maximum, 1.0);
        // 599979 * 0.48 = 287989.92; floats stand 1/32 apart there.
        QCOMPARE(points.at(3).x(), 287987.90625);
        QCOMPARE(points.at(4).x(), 287988.90625);
        QCOMPARE(glow::waveAxisLimit(maximum), 0.8);
    }

    void theEndOfABuffer()
    {
        const QAudioFormat format = glow::waveFormat();
        const QByteArray twoHundredMs(96 * 2, '\0');
        // A buffer that does not know its own start follows the decoder's position, unless it is a first one.
        for (const auto &[startUs, positionMs, endMs] :
             {std::tuple(1500000, 77, 1700), {0, 77, 200}, {-1, 500, 700}, {-1, -1, 200}})
            QCOMPARE(glow::endOfBuffer(QAudioBuffer(twoHundredMs, format, startUs), positionMs), qint64(endMs));
        QVERIFY(glow::isWaveBuffer(QAudioBuffer(twoHundredMs, format)));
        QVERIFY(!glow::isWaveBuffer(QAudioBuffer()));
        QAudioFormat other = format;
        other.setChannelCount(2);
        QVERIFY(!glow::isWaveBuffer(QAudioBuffer(twoHundredMs, other)));
    }

    // Against the line walked in steps far finer than a column.
    void columnsHoldTheLine()
    {
        const QList<QPointF> points = randomWave(2400, 7);
        for (const double columnsPerPoint : {3.7, 1 / 1.2, 1 / 19.2}) { // far in, the closest zoom, the widest
            const int width = static_cast<int>(points.last().x() * columnsPerPoint) + 1;
            QVector<QPair<double, double>> reference(width, {2.0, -2.0});
            for (int i = 1; i < points.size(); ++i) {
                for (int step = 0; step <= 500; ++step) {
                    const QPointF at = points.at(i - 1) + (points.at(i) - points.at(i - 1)) * (step / 500.0);
                    const double x = at.x() * columnsPerPoint;
                    if (x >= 0 && x < width) {
                        QPair<double, double> &span = reference[static_cast<int>(x)];
                        span = {qMin(span.first, at.y()), qMax(span.second, at.y())};
                    }
                }
            }
            glow::WaveColumns columns;
            columns.build(points, columnsPerPoint, width);
            QCOMPARE(columns.spans.size(), width);
            for (int x = 0; x < width; ++x) {
                QVERIFY2(qAbs(columns.spans.at(x).low - reference.at(x).first) < 0.01 &&
                             qAbs(columns.spans.at(x).high - reference.at(x).second) < 0.01,
                         qPrintable(QStringLiteral("column %1").arg(x)));
            }
        }
    }

    void columnsOfOddPoints()
    {
        const double inf = std::numeric_limits<double>::infinity();
        const double nan = std::numeric_limits<double>::quiet_NaN();
        glow::WaveColumns columns;
        columns.build({}, 1, 3);
        QVERIFY(columns.spans.size() == 3 && columns.spans.at(1).low > columns.spans.at(1).high);
        columns.build({{0, 0}, {1, 1}}, 1, -5);
        QCOMPARE(columns.spans.size(), 0);
        columns.build({{-40, 0.5}, {nan, 1}, {-inf, 1}, {inf, nan}, {1e300, 1}, {5, 0.25}, {2, 0.25}, {2, -1}}, 1, 4);
        QCOMPARE(columns.spans.size(), 4);
        QCOMPARE(columns.spans.at(2).low, -1.0F); // a step back in time still draws
        QCOMPARE(columns.spans.at(3).high, 0.25F);
    }

    void aSilentSongIsALineInTheMiddle()
    {
        glow::WaveColumns columns;
        columns.build({{0, 0}, {3, 0}}, 1, 5);
        QImage image(5, 100, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        glow::drawWave(painter, image.rect(), columns, 100, 0, waveColor); // it has no scale
        QVERIFY(rowsOf(image, 0).first >= 49 && rowsOf(image, 0).second <= 50);
        QCOMPARE(rowsOf(image, 4).first, -1); // nothing behind the last point
    }

    // What the view paints is what the chart itself would.
    void theViewLooksLikeItsChart()
    {
        for (const float zoom : {40.0F, 10.0F, 2.5F}) {
            msPerPixel = zoom;
            QWidget frame;
            frame.resize(2000, 140);
            ChartView view(&frame);
            view.wavePoints = randomWave(1920, 3);
            auto *series = new QLineSeries;
            series->replace(view.wavePoints);
            series->setPen(QPen(waveColor, 1));
            auto *chart = new QChart;
            chart->setMargins(QMargins());
            chart->layout()->setContentsMargins(0, 0, 0, 0);
            chart->legend()->hide();
            chart->addSeries(series);
            auto *axis = new QValueAxis;
            axis->setRange(-0.8, 0.8);
            chart->addAxis(axis, Qt::AlignLeft);
            axis->hide();
            series->attachAxis(axis);
            view.setChart(chart);
            view.setRenderHint(QPainter::Antialiasing);
            view.resizeToWave();
            frame.show();
            QVERIFY(QTest::qWaitForWindowExposed(&frame));
            QCOMPARE(view.size(), QSize(static_cast<int>(4000 / zoom), 140)); // 1920 points are 4 seconds
            const QImage painted = view.grab().toImage();

            chart->resize(view.size());
            QCoreApplication::processEvents();
            QImage drawn(view.size(), QImage::Format_RGB32);
            drawn.fill(Qt::white);
            QPainter painter(&drawn);
            painter.setRenderHint(QPainter::Antialiasing);
            view.scene()->render(&painter, drawn.rect(), QRectF(QPointF(0, 0), view.size()));
            painter.end();

            QVERIFY2(extendsNoFurther(painted, drawn), "the view paints what the chart does not");
            QVERIFY2(extendsNoFurther(drawn, painted), "the view leaves out what the chart paints");

            // Ten minutes in, a spike still stands under its second.
            view.wavePoints.clear();
            for (int x = 0; x <= 288000; ++x)
                view.wavePoints.append(QPointF(x, x == 287520 ? 1 : 0));
            view.resizeToWave();
            const int place = static_cast<int>(599000 / zoom);
            const QImage strip = view.grab(QRect(place - 20, 5, 41, 1)).toImage();
            QVector<int> lit;
            for (int column = 0; column < strip.width(); ++column) {
                if (qRed(strip.pixel(column, 0)) < 190)
                    lit.append(column - 20);
            }
            QVERIFY(!lit.isEmpty() && lit.first() >= -1 && lit.last() <= 1);
        }
    }

    void theViewLeavesTheMouseToOthers()
    {
        ChartView view;
        QVERIFY(view.testAttribute(Qt::WA_TransparentForMouseEvents));
        view.resizeToWave(); // without points: nothing
        view.resize(50, 50);
        view.grab();
    }
};

QTEST_MAIN(TestWaveform)
#include "test_waveform.moc"
