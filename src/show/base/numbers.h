// From floating point to whole numbers, defined for every value.
#pragma once

namespace glow {

// A double cut to an int towards zero; what C++ leaves undefined (not a number, out of range) yields the most negative
// integer, which is what common hardware yields.
int truncated(double value);

} // namespace glow
