// The pictures, the prop catalogue, the style sheet and the English translation that are compiled into the program,
// under the paths ":/icon/", ":/pic/pic/", ":/presets/", ":/style/", ":/language/language/" and ":/appicon.ico".
#pragma once

namespace glow {

// Registers the compiled-in resources. A static library's resources are known to Qt only after this call; calling it
// again does nothing.
void initResources();

} // namespace glow
