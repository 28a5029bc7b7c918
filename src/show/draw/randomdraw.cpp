#include "show/draw/randomdraw.h"

#include <QtGlobal>

namespace glow {

// The generator is shared with all of Qt's standard one, so that seeding that one makes a sequence repeatable from
// outside.
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

void seedRandomDraws(int ms)
{
    qsrand(static_cast<uint>(ms));
}

int randomDraw()
{
    return qrand();
}

QT_WARNING_POP

} // namespace glow
