// What differs between platforms about the terminal.
#pragma once

namespace cli {

// Whether somebody reads standard error as it is written.
bool errorsAreWatched();

// Standard output takes bytes as they are from now on.
void makeOutputBinary();

} // namespace cli
