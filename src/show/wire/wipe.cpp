#include "show/wire/wipe.h"

#include "show/wire/portscan.h"

#include <QByteArray>
#include <QSerialPort>
#include <QString>

namespace glow {

bool wipeMemory(QSerialPort &port, const WipeTimes &times)
{
    if (!port.isOpen()) {
        return false; // nobody there to answer
    }
    port.write("DD");
    waitUntilSent(port);
    // Only what came in: clearing the other direction as well would throw the order away where the driver still holds
    // it, as Linux does.
    port.clear(QSerialPort::Input);

    QByteArray said;
    waitForData(port, times.first);
    for (int t = 0; t <= times.limit; t += times.round) {
        if (deviceText(said).contains(QLatin1String("Wait"))) {
            return true;
        }
        if (waitForData(port, times.round)) {
            said += port.readAll();
        }
    }
    return false;
}

} // namespace glow
