// Operations that give the points of a vector other places or other parts.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "state/vectors.h"

namespace zolt {

/// Shifts to the left (to the right for an amount below 0): points move out at one end, zeros in at the other.
void shift(std::span<Complex> x, int64_t amount);

/// The modulus (its square) as the real part, the imaginary part 0.
void magnitude(std::span<Complex> x);
void power(std::span<Complex> x);

/// Exchanges parts of the two vectors of a pair.
using PairExchange = void (*)(Complex& a, Complex& b);
/// The exchange that a word of SwitchAB names; nullptr for other words. ArBr takes the real parts of A and B together into
/// A and the imaginary ones into B, and back; zero clears B; real and imag keep one part of each vector as its real part.
PairExchange pair_exchange(std::string_view word);

/// From echo P and anti-echo N to the cosine and sine parts (P + N)/2 and (P - N)/2i.
void echo_antiecho(Complex& p, Complex& n);

}  // namespace zolt
