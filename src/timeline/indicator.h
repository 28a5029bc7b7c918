// The play-head: a line one pixel wide from the ruler down through tracks and waveform.
#pragma once

#include <QTime>
#include <QWidget>

class Indicator : public QWidget
{
    Q_OBJECT

public:
    Indicator(int top, QWidget *parent);

    QTime indicatorTime = QTime(0, 0);
    int indicatorY = 0; // y of the widget in the ruler

    // Both take the time at once; only a new pixel moves the line and emits moved. user is true for a seek by the user,
    // false where the clock moves the line.
    void setIndicatorX(int x, bool user);
    void setIndicatorTime(const QTime &t, bool user);

signals:
    void moved(int x, bool user);

protected:
    void paintEvent(QPaintEvent *e) override;
};
