#include "show/wire/portnames.h"

#include <QDir>
#include <QtGlobal>

namespace glow {

QString portName(int number)
{
    const QString pattern = qEnvironmentVariable("GLOWSMITH_PORT_PATTERN");
    if (!pattern.isEmpty()) {
        const QString name = QString(pattern).replace(QLatin1String("%1"), QString::number(number));
        // QSerialPort would look for a relative path among the system's devices.
        return name.contains(QLatin1Char('/')) ? QDir::current().absoluteFilePath(name) : name;
    }
#ifdef Q_OS_WIN
    return QStringLiteral("COM") + QString::number(number);
#else
    constexpr int half = portCount / 2;
    return number < half ? QStringLiteral("ttyACM") + QString::number(number)
                         : QStringLiteral("ttyUSB") + QString::number(number - half);
#endif
}

QString portLabel(int number)
{
    const QString name = portName(number);
    return name.mid(name.lastIndexOf(QLatin1Char('/')) + 1);
}

} // namespace glow
