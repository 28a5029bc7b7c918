// Show time is integer milliseconds; in patterns and fields it stands as a QTime.
#pragma once

#include <QString>
#include <QTime>

namespace glow {

constexpr int msPerDay = 24 * 60 * 60 * 1000;

// Milliseconds since midnight; a null time counts as 0.
int msOf(const QTime &time);

// The time that many milliseconds after midnight; what does not fit into a day wraps like QTime's own addition.
QTime timeOf(int ms);

// The tool tip and status text of a time: minutes, seconds, milliseconds.
QString timeText(const QTime &time);

} // namespace glow
