#include "show/wire/portscan.h"

#include "show/wire/portnames.h"

#include <QSerialPort>

namespace glow {

namespace {

// A port that an unaccepted answer has left open stays the one.
bool openPort(QSerialPort &port, int number, const ScanRules &rules)
{
    if (rules.trying) {
        rules.trying(number);
    }
    if (!port.isOpen()) {
        port.setPortName(portName(number));
        port.open(QIODevice::ReadWrite);
    }
    return port.isOpen();
}

// Whether what the caller looks for speaks at the open port. A silent one is closed.
bool answers(QSerialPort &port, int number, const ScanRules &rules)
{
    port.setDataTerminalReady(true);
    if (!rules.wait(port, rules.waitMs)) {
        if (rules.silent) {
            rules.silent(number);
        }
        port.close();
        return false;
    }
    const QString text = deviceText(port.readAll());
    return !text.isEmpty() && rules.accepts(text);
}

} // namespace

void setUpPort(QSerialPort &port, int baud)
{
    port.setBaudRate(baud);
    port.setDataBits(QSerialPort::Data8);
    port.setParity(QSerialPort::NoParity);
    port.setStopBits(QSerialPort::OneStop);
    port.setFlowControl(QSerialPort::NoFlowControl);
}

QString deviceText(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes.constData(), bytes.size()).remove(QChar::Null);
}

bool waitForData(QSerialPort &port, int ms)
{
    return port.bytesAvailable() > 0 || (port.isOpen() && port.waitForReadyRead(ms));
}

bool waitUntilSent(QSerialPort &port)
{
    while (port.bytesToWrite() > 0) {
        if (!port.waitForBytesWritten(-1)) {
            return false;
        }
    }
    return true;
}

ScanResult scanPorts(QSerialPort &port, int &number, const ScanRules &rules)
{
    bool opened = false;
    for (number = 0; number < portCount;) {
        opened = openPort(port, number, rules);
        ++number;
        if (opened && answers(port, number - 1, rules)) {
            --number;
            return ScanResult::Found;
        }
    }
    return opened ? ScanResult::NoAnswer : ScanResult::NoneOpen;
}

} // namespace glow
