#include "show/base/resources.h"

#include <QtGlobal>

// The macro declares the functions that it calls where it stands, so it cannot be used inside a namespace. It registers
// a resource only once.
static void registerResources()
{
    Q_INIT_RESOURCE(glowsmith);
    Q_INIT_RESOURCE(glowsmith_language);
}

namespace glow {

void initResources()
{
    registerResources();
}

} // namespace glow
