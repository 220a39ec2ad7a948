// Operations on single values and places of a vector.
#pragma once

#include <cstdint>
#include <span>

#include "state/vectors.h"

namespace zolt {

/// Turns a vector in a circle: its first `amount` points go to its end.
void rotate_left(std::span<Complex> x, uint64_t amount);

/// The mean of each block of x.size() / means.size() points.
void average_blocks(std::span<const Complex> x, std::span<Complex> means);

/// The modulus (its square) as the real part, the imaginary part 0.
void magnitude(std::span<Complex> x);
void power(std::span<Complex> x);

}  // namespace zolt
