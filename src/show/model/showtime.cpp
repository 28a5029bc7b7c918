#include "show/model/showtime.h"

namespace glow {

int msOf(const QTime &time)
{
    return time.msecsSinceStartOfDay();
}

QTime timeOf(int ms)
{
    const int wrapped = ms % msPerDay;
    return QTime::fromMSecsSinceStartOfDay(wrapped < 0 ? wrapped + msPerDay : wrapped);
}

QString timeText(const QTime &time)
{
    return time.toString(QStringLiteral("mm:ss.zzz"));
}

} // namespace glow
