// The names of the serial ports that are tried for a prop: the only place that knows what this platform calls them.
//
//   Windows     COM0 to COM99
//   elsewhere   ttyACM0 to ttyACM49 for the numbers 0 to 49, ttyUSB0 to ttyUSB49 for 50 to 99
//
// The environment variable GLOWSMITH_PORT_PATTERN overrides both for unusual set-ups: a pattern in which %1 stands for
// the number, such as /dev/rfcomm%1. With a "/" in it, it is a path, from the working directory if relative.
#pragma once

#include <QString>

namespace glow {

constexpr int portCount = 100;

// What QSerialPort is given for a port number of 0 to 99.
QString portName(int number);

// What the user reads: the name behind its last "/".
QString portLabel(int number);

// Why a port that is there may not open on this system, and what mends it, in the user's language; lines of text.
QString portAccessMend();

} // namespace glow
