// From samples to points, from points to pixel columns, and the line that they paint.
#include "show/draw/waveform.h"
#include "show/model/timescale.h"
#include "song/chartview.h"
#include "song/songformat.h"
#include "support/golden.h"

#include <QAudioBuffer>
#include <QPainter>
#include <QtCharts/QChart>
#include <QtCharts/QLineSeries>
#include <QtCharts/QValueAxis>
#include <QtTest>

#include <cmath>

namespace {

// Two seconds of noise that swells and fades.
QVector<QPointF> noisyWave()
{
    std::mt19937 random(7);
    QVector<qint16> samples;
    for (int i = 0; i < 960; ++i) {
        const double loudness = 0.05 + 0.95 * std::pow(std::sin(i / 90.0), 8.0);
        samples << static_cast<qint16>((static_cast<int>(random() % 65536) - 32768) * loudness);
    }
    QVector<QPointF> points;
    double maximum = 0;
    glow::appendWavePoints(points, maximum, samples.constData(), samples.size(), 2000);
    return points;
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
        for (const auto &[zoom, points, width] : {std::tuple(10.0F, 144001, 30000),
                                                  {10.0F, 7, 1},
                                                  {2.5F, 144001, 120000},
                                                  {40.0F, 144001, 7500},
                                                  {40.0F, 2, 0}}) {
            msPerPixel = zoom;
            QCOMPARE(glow::waveWidth(points), width);
        }
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
        // 599979 * 0.48 = 287989.92; floats stand 1/32 apart there.
        glow::appendWavePoints(points, maximum, samples.constData() + 2, 2, 599979);
        QCOMPARE(points.size(), 5);
        QCOMPARE(points.at(3).x(), 287987.90625);
        QCOMPARE(points.at(4).x(), 287988.90625);
        QCOMPARE(glow::waveAxisLimit(maximum), 0.8);

        const QAudioFormat format = glow::waveFormat();
        const QByteArray twoHundredMs(96 * 2, '\0');
        // A buffer that does not know its own start follows the decoder's position, unless it is a first one.
        for (const auto &[startUs, positionMs, endMs] :
             {std::tuple(1500000, 77, 1700), {0, 77, 200}, {-1, 500, 700}, {-1, -1, 200}})
            QCOMPARE(glow::endOfBuffer(QAudioBuffer(twoHundredMs, format, startUs), positionMs), qint64(endMs));
        QAudioFormat other = format;
        other.setChannelCount(2);
        QVERIFY(glow::isWaveBuffer(QAudioBuffer(twoHundredMs, format)));
        QVERIFY(!glow::isWaveBuffer(QAudioBuffer()) && !glow::isWaveBuffer(QAudioBuffer(twoHundredMs, other)));
    }

    void columnsOfOddPoints()
    {
        glow::WaveColumns columns;
        columns.build({}, 1, 3);
        QVERIFY(columns.spans.size() == 3 && columns.spans.at(1).low > columns.spans.at(1).high);
        columns.build({{0, 0}, {1, 1}}, 1, -5);
        QCOMPARE(columns.spans.size(), 0);
        const double inf = qInf();
        columns.build({{-40, 0.5}, {qQNaN(), 1}, {-inf, 1}, {inf, qQNaN()}, {1e300, 1}, {5, 0.25}, {2, 0.25}, {2, -1}},
                      1, 4);
        QCOMPARE(columns.spans.size(), 4);
        QCOMPARE(columns.spans.at(2).low, -1.0F); // a step back in time still draws
        QCOMPARE(columns.spans.at(3).high, 0.25F);
    }

    // At three zooms, and on the axis of a silent song, which has no scale.
    void theViewLooksAsEver()
    {
        QImage sheet(831, 4 * 100, QImage::Format_RGB32);
        sheet.fill(Qt::darkRed);
        QPainter painter(&sheet);
        for (const auto &[zoom, limit] : {std::pair(40.0F, 0.8), {10.0F, 0.8}, {2.5F, 0.8}, {20.0F, 0.0}}) {
            msPerPixel = zoom;
            QWidget frame;
            frame.resize(900, 100);
            ChartView view(&frame);
            QVERIFY(view.testAttribute(Qt::WA_TransparentForMouseEvents));
            view.resizeToWave(); // without points: nothing
            view.wavePoints = noisyWave().toList();
            auto *series = new QtCharts::QLineSeries;
            series->setPen(QColor(100, 100, 255));
            view.chart()->addSeries(series);
            auto *axis = new QtCharts::QValueAxis;
            axis->setRange(-limit, limit);
            view.chart()->addAxis(axis, Qt::AlignLeft);
            view.chart()->setBackgroundBrush(QColor(30, 35, 40));
            view.resizeToWave();
            frame.show();
            painter.drawPixmap(0, 0, view.grab());
            // Ten minutes in, a spike still stands under its second, which is at 820 on the sheet.
            view.wavePoints.clear();
            for (int x = 0; x <= 288000; ++x)
                view.wavePoints.append(QPointF(x, x == 287520 ? 1 : 0));
            view.resizeToWave();
            painter.drawPixmap(810, 0, view.grab(QRect(static_cast<int>(599000 / zoom) - 10, 0, 21, 100)));
            painter.translate(0, 100);
        }
        QCOMPARE(unlikeGolden(sheet, "waves.png", 20), QString());
    }
};

QTEST_MAIN(TestWaveform)
#include "test_waveform.moc"
