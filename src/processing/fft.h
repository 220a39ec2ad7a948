// The discrete Fourier transform of one vector. fft.cpp is the only file that knows the library behind it.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>

namespace zolt {

/// Transforms `n` points (any count from 1 to 2^31 - 1) in place. Direction -1 gives the sum of x[k] e^(-2 pi i jk/n),
/// unscaled; direction +1 the sum of x[k] e^(+2 pi i jk/n) divided by n, so that one undoes the other. 1 when done; 0, and
/// the data as they were, for a count or direction out of range or without memory. May be called from several threads.
int16_t float_fft_4_2(std::complex<float>* data, size_t n, int direction);

/// True when float_fft_4_2 can transform these data: what it has to set up for their length has been set up.
bool fft_available(std::complex<float>* data, size_t n, int direction);

/// The same transform in double precision, for powers of two (and 1) only; 0 for any other count.
int16_t fftrad2(std::complex<double>* data, size_t n, int direction);

}  // namespace zolt
