// The two files that a device image is handed over in, for an upload or a ".bin" file; rewritten for each.
#pragma once

#include <QString>

namespace glow {

// Both stand in the working directory.
inline QString frameDataFile()
{
    return QStringLiteral("extemp.tmp");
}
inline QString headerFile()
{
    return QStringLiteral("extemp2.tmp");
}

} // namespace glow
