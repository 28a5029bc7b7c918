// The program's version: an ordinary decimal number, so that 3.2 is newer than 3.104.
#pragma once

namespace glow {

constexpr double programVersion = 3.104;

} // namespace glow
