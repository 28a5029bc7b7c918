#include "show/wire/portnames.h"

#include "show/base/hint.h"

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

QString portAccessMend()
{
#ifdef Q_OS_WIN
    return hint(QT_TRANSLATE_NOOP("Hints", "・驅動程式：道具須在裝置管理員中以 COM 埠出現，否則安裝驅動程式。"));
#else
    return hint(QT_TRANSLATE_NOOP("Hints",
                                  "・權限：帳號須屬於群組 dialout（sudo adduser $USER dialout，再重新登入）。\n"
                                  "・ModemManager：插上後數秒內會占住連接埠，稍候再試。"));
#endif
}

} // namespace glow
