// The one source of chance: the random button's draws, seeded once at start-up.
#pragma once

namespace glow {

// ms: milliseconds since midnight.
void seedRandomDraws(int ms);

// The next draw, 0 or above.
int randomDraw();

} // namespace glow
