// The waveform of the song, under the tracks and in line with the ruler.
#pragma once

#include <QList>
#include <QPointF>
#include <QtCharts/QChartView>

class ChartView : public QtCharts::QChartView
{
    Q_OBJECT

public:
    explicit ChartView(QWidget *parent = nullptr);

    double firstDecodePos = 0; // position of the decoder at its first buffer, milliseconds
    QList<QPointF> wavePoints; // x in point numbers, y from -1 to 1

    // Sizes the view so that its pixels stand under the ruler's at the present zoom.
    void resizeToWave();

signals:
    void chartClicked(int position);

public slots:
    void mouseMoveEvent(QMouseEvent *e) override;

protected:
    void mousePressEvent(QMouseEvent *e) override;
    void paintEvent(QPaintEvent *e) override;
};
