// How large the noise of a spectrum is.
#pragma once

#include <span>

#include "state/vectors.h"

namespace zolt {

/// Standard deviation of the noise in the real part: the spectrum is cut into 32 segments (fewer, of at least 16 points,
/// where it is short), and that of each about its own line is taken; the answer is the one that an eighth of the segments
/// stay below. So up to seven eighths of them may hold signals. Segments that are level throughout, or not
/// finite, do not count. 0 where none is left.
double noise_deviation(std::span<const Complex> spectrum);

}  // namespace zolt
