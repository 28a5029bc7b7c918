// The program from its first line to its last.
#pragma once

namespace glow {

// Prepares the application and its language, shows the start dialog, then the window. The optional first argument is
// the path of a project to open, or --version or --help, which are answered at once. Returns the event loop's result, or
// 0 if the start dialog ends the program.
int runGlowsmith(int argc, char **argv);

// The question at the start after a run that went down: whether its show is wanted back.
bool wantsUnsavedBack();

} // namespace glow
