#include "show/base/numbers.h"

#include <limits>

namespace glow {

int truncated(double value)
{
    // The bounds are exact in double: everything strictly between them truncates into the range of int.
    if (!(value > -2147483649.0 && value < 2147483648.0)) {
        return std::numeric_limits<int>::min();
    }
    return static_cast<int>(value);
}

} // namespace glow
