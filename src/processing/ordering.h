// Operations that give the points of a vector other places.
#pragma once

#include <cstdint>
#include <span>

#include "state/vectors.h"

namespace zolt {

/// Shifts to the left (to the right for an amount below 0): points move out at one end, zeros in at the other.
void shift(std::span<Complex> x, int64_t amount);

}  // namespace zolt
