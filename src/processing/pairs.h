// The two vectors of a pair, A and B.
#pragma once

#include <span>
#include <string_view>

#include "state/vectors.h"

namespace zolt {

/// Exchanges parts of the two vectors of a pair, of as many points each.
using PairExchange = void (*)(std::span<Complex> a, std::span<Complex> b);
/// The exchange that a word of SwitchAB names; nullptr for other words. ArBr takes the real parts of A and B together into
/// A and the imaginary ones into B, and back; zero clears B; real and imag keep one part of each vector as its real part.
PairExchange pair_exchange(std::string_view word);

/// From echo P and anti-echo N to the cosine and sine parts (P + N)/2 and (P - N)/2i.
void echo_antiecho(std::span<Complex> p, std::span<Complex> n);

}  // namespace zolt
