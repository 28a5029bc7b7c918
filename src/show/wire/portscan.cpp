#include "show/wire/portscan.h"

#include "show/wire/portnames.h"

#include <QSerialPort>

namespace glow {

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
    number = 0;
    while (true) {
        do {
            if (rules.trying) {
                rules.trying(number);
            }
            if (!port.isOpen()) {
                port.setPortName(portName(number));
                port.open(QIODevice::ReadWrite);
            }
            ++number;
        } while (!port.isOpen() && number < portCount);

        if (!port.isOpen()) {
            return ScanResult::NoneOpen;
        }
        port.setDataTerminalReady(true);

        if (rules.wait(port, rules.waitMs)) {
            const QString text = deviceText(port.readAll());
            if (!text.isEmpty() && rules.accepts(text)) {
                --number;
                return ScanResult::Found;
            }
        } else {
            if (rules.silent) {
                rules.silent(number - 1);
            }
            port.close();
        }
        if (number >= portCount) {
            return ScanResult::NoAnswer;
        }
    }
}

} // namespace glow
