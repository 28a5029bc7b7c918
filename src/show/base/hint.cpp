#include "show/base/hint.h"

#include <QCoreApplication>
#include <QString>

namespace glow {

QString hint(const char *source)
{
    return QCoreApplication::translate("Hints", source);
}

} // namespace glow
