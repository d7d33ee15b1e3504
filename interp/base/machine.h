/* interp/base/machine.h - the machine constants shared by all numerical code.
 * Owns:    nothing but constants.
 * Callers: anyone.
 * Never:   changes with the platform: all numbers are IEEE doubles. */
#pragma once

inline constexpr double MAXPOS = 1.7976931348623157e308; // overflow, no answer, "absent" in a clause
inline constexpr double MAXNEG = -1.7976931348623157e308;
inline constexpr double MINPOS = 2.2250738585072014e-308; // smallest normal double
inline constexpr double MACHEPS = 1.110223024625157e-16;  // two units in the last place above 2^-53
