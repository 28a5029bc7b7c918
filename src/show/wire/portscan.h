// Finding the prop: the one scan of the serial ports that upload, wipe, firmware hand-over and terminal share, with
// their differences as parameters. No USB identity is used. Every port is opened in turn, DTR is raised, and the prop
// is the one that then speaks.
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

class QSerialPort;

namespace glow {

// How long a prop may take to speak, in milliseconds: after DTR went up, and for its reply to an upload's first byte.
constexpr int propWaitMs = 5000;

constexpr int uploadBaud = 115200;
constexpr int maintenanceBaud = 250000; // wipe, firmware hand-over, terminal; differs on purpose

// 8 data bits, no parity, one stop bit, no flow control.
void setUpPort(QSerialPort &port, int baud);

// What a prop said. Zero bytes, which a prop that is just starting may let slip, are no text.
QString deviceText(const QByteArray &bytes);

// Waits until there is something to read; what Qt has buffered already counts as arrived. Negative: without a limit.
bool waitForData(QSerialPort &port, int ms);

// Waits until everything written has left Qt's buffers; false if the port gave up before.
bool waitUntilSent(QSerialPort &port);

enum class ScanResult {
    Found,    // the port is open and said something acceptable
    NoneOpen, // the last name did not open either
    NoAnswer, // the last name opened, but was silent (the port is closed) or not accepted (it is open)
};

struct ScanRules
{
    // Is this text, not accepted if empty, what the caller looks for? A port that says something else stays open, and
    // the following rounds listen to it again instead of opening the next one.
    std::function<bool(const QString &text)> accepts;
    std::function<void(int number)> trying; // a name is about to be opened
    std::function<void(int number)> silent; // nothing came in time, the port is about to be closed
    std::function<bool(QSerialPort &port, int ms)> wait = [](QSerialPort &port, int ms) {
        return waitForData(port, ms);
    };
    int waitMs = propWaitMs;
};

// Tries the names for the numbers 0 to 99. While it runs, number is the one behind the name last tried; when a prop is
// found, it is set to that of the last name tried, which is the prop's unless an unaccepted answer kept an earlier port
// open. A port that refuses DTR (a pseudo-terminal does) is listened to all the same.
ScanResult scanPorts(QSerialPort &port, int &number, const ScanRules &rules);

} // namespace glow
