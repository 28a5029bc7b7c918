// Where a file dialog starts when the place that is remembered may be gone: another computer's project, a stick that
// was pulled out, a home folder without "Documents".
#pragma once

#include <QString>

namespace glow {

// The path itself if it is there, as a file or a folder; otherwise the nearest folder above it that is. The home folder
// where nothing but the root is left, and for what is no path of the file system.
QString startForOpening(const QString &path);

// The same for a dialog that offers a name: a file's name (something with an ending) is kept, in the folder found.
QString startForSaving(const QString &path);

} // namespace glow
