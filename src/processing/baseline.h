// Linear baseline correction of one vector.
#pragma once

#include <cstdint>
#include <span>

#include "state/vectors.h"

namespace zolt {

/// Subtracts the straight line that joins the mean levels at both ends, real and imaginary parts apart, in single
/// precision. `averaged` points make each level, `skipped` points at each end lie outside and are levelled flat. The slope
/// is the difference of the levels over n - 2 skipped, so that the line meets the right level one step behind its end.
/// 0, and the vector unchanged, when averaged is below 1 or above n/2 or the points do not suffice; else 1.
int correct_linear_baseline(std::span<Complex> x, int64_t averaged, int64_t skipped);

/// Subtracts the mean of the last eighth of a time-domain signal (of at least 16 points, or all when there are fewer).
void correct_offset(std::span<Complex> x);

}  // namespace zolt
