// The time field that shows the present time and runs the clock of a show without a song.
#pragma once

#include <QTime>
#include <QTimeEdit>
#include <QTimer>

class myTime : public QTimeEdit
{
    Q_OBJECT

public:
    explicit myTime(QWidget *parent = nullptr);

    QTimer *clockTimer = nullptr; // its timeout goes to on_timer_update
    QTime clockBase;              // show time at the last start of the clock
    int clockStartStamp = 0;      // wall clock at that moment, milliseconds since midnight

    // Makes t the present time, from which a running clock goes on, and emits timer_timeout with it.
    void restartClock(const QTime &t);

signals:
    void timer_timeout(qlonglong msecs);

public slots:
    void on_timer_update();
};
