#include "song/mytime.h"

#include "show/model/showtime.h"

namespace {

// An interval of 0 would load a processor core. Half the notify interval of the song player keeps the field well within
// its 10 milliseconds of the wall clock, a late firing included.
constexpr int clockIntervalMs = 5;

int wallClockMs()
{
    return QTime::currentTime().msecsSinceStartOfDay();
}

} // namespace

myTime::myTime(QWidget *parent)
    : QTimeEdit(parent)
    , clockTimer(new QTimer(this))
    , clockBase(0, 0)
{
    setDisplayFormat(QStringLiteral("mm:ss.zzz"));
    setButtonSymbols(QAbstractSpinBox::NoButtons);
    clockTimer->setTimerType(Qt::PreciseTimer);
    clockTimer->setInterval(clockIntervalMs);
    connect(clockTimer, &QTimer::timeout, this, &myTime::on_timer_update);
}

void myTime::restartClock(const QTime &t)
{
    clockBase = t;
    const int ms = glow::msOf(clockBase);
    setTime(glow::timeOf(ms));
    clockStartStamp = wallClockMs();
    emit timer_timeout(ms);
}

void myTime::on_timer_update()
{
    const QTime now = glow::timeOf(glow::msOf(clockBase) + wallClockMs() - clockStartStamp);
    setTime(now);
    emit timer_timeout(glow::msOf(now));
}
