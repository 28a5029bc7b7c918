// Wiping the prop's memory, once the prop has been found and has said "Wait".
#pragma once

class QSerialPort;

namespace glow {

// Milliseconds.
struct WipeTimes
{
    int first = 500;  // the wait right after the order
    int round = 100;  // every further wait
    int limit = 5000; // the prop must have answered when this many have been counted, a round's worth at a time
};

// Says "DD" and listens for "Wait". What the prop said before the order never counts. Rounds are counted, not timed: a
// prop that talks of other things uses them up faster, and an answer that comes in the round beyond the limit is late.
bool wipeMemory(QSerialPort &port, const WipeTimes &times = {});

} // namespace glow
