// The ruler: draws time, hosts the tracks and the play-head, and holds the start mark.
#pragma once

#include "show/draw/rulerticks.h"

#include <QPoint>
#include <QWidget>

class Indicator;
class QPainter;

class TimelineHeaders : public QWidget
{
    Q_OBJECT

public:
    explicit TimelineHeaders(QWidget *parent = nullptr);

    int startMarkX = 0;             // x of the start mark at the zoom of the moment it was set, 0 when none
    Indicator *indicator = nullptr; // the play-head
    QWidget *startShade = nullptr;  // band from 0 to startMarkX
    int timelineLengthMs = 0;       // length of the show area
    QPoint hoverPos;                // last mouse position in the ruler
    qint16 rulerTop = 17;           // y of the top of the tick zone and of the indicator

    // Other widgets hand their mouse moves straight to the ruler, whose x they share.
    void mouseMoveEvent(QMouseEvent *e) override;

signals:
    void indicatorMoved(int x, bool user);

public slots:
    void on_setStart_clicked();
    void on_resetStart_clicked();

protected:
    void mousePressEvent(QMouseEvent *e) override;
    void paintEvent(QPaintEvent *e) override;
    void resizeEvent(QResizeEvent *e) override;
    void childEvent(QChildEvent *e) override;

private:
    void drawTick(QPainter &painter, const glow::Tick &tick) const;

    glow::TickPositions ticks;
};
