// The waveform of the song, under the tracks and in line with the ruler. Its chart holds every point; the view paints
// them itself, reduced to pixel columns once for each zoom, for the play-head uncovers a strip of it a hundred times a
// second.
#pragma once

#include "show/draw/waveform.h"

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

    // Sizes the view so that its pixels stand under the ruler's at the present zoom. To be called after every change of
    // the zoom, of wavePoints and of the parent's height.
    void resizeToWave();

signals:
    void chartClicked(int position);

public slots:
    void mouseMoveEvent(QMouseEvent *e) override;

protected:
    void mousePressEvent(QMouseEvent *e) override;
    void resizeEvent(QResizeEvent *e) override;
    void paintEvent(QPaintEvent *e) override;

private:
    void prepareColumns();

    glow::WaveColumns columns; // of wavePoints at the present zoom, made by the first paint that needs them
    bool columnsStale = true;
    double columnsScale = 1; // device pixels per logical one that the columns were made for
};
