// Transforms of one vector between time and frequency. They work in place on whole vectors, say nothing and allocate
// nothing. A flag tells whether the Fourier transform itself could be done; see fft.h for its scale and sign.
#pragma once

#include <complex>
#include <span>

#include "processing/phase.h"
#include "state/dataset.h"

namespace zolt {

/// x[0] := (x[0] + x[n-1]) / 2, transform, and with `sort` the two halves exchanged: zero frequency at point n/2. n is even.
bool forward_complex_ft(std::span<Complex> x, bool sort);

/// Undoes a sorted forward transform (but for its first-point correction). n is even.
bool inverse_complex_ft(std::span<Complex> x);

/// Transforms the real parts of n points (n even) into n/2 points of `out`: the frequencies 0 to n/2 - 1 in reversed order.
bool forward_real_ft(std::span<const Complex> x, std::span<Complex> out);

/// Transforms n points that hold 2n real samples taken in turn (s0, s1, s2 ...): signs + + - - ..., first sample halved,
/// the first half of the 2n frequencies kept, in order.
bool forward_sequential_ft(std::span<Complex> x);

/// Imaginary parts to 0, inverse transform, and the second half replaced by the mean of the points just before it. n is even.
bool hilbert(std::span<Complex> x);

/// The rotation that takes out a delay (in points of the time domain) of vectors of n points: point k of the sorted
/// spectrum is multiplied by e^(+2 pi i delay k/n). Real data need it without the constant phase that goes with counting k
/// from the edge: they get e^(+2 pi i delay (k - n/2)/n), so that they stay real.
Rotation delay_rotation(double delay, size_t n, int domain_code);

/// Applies it to a spectrum; in one that is not sorted, every point is rotated as it would be in its sorted place.
void rotate_spectrum(std::span<Complex> x, const Rotation& rotation, bool sorted);

/// The same on time-domain data: a circular shift to the left, by any fraction of a point, such that the transform of the
/// result is the rotated transform (without their first-point corrections). Any n.
bool shift_out_delay(std::span<Complex> x, const Rotation& rotation);

/// The same for n points of sequential data; `work` holds 2n points.
bool shift_out_delay_sequential(std::span<Complex> x, const Rotation& rotation, std::span<Complex> work);

void conjugate(std::span<Complex> x);

/// Notes that a dimension of the data set has been transformed: complex, frequency. The second-order phase total outlives a
/// transform, the others do not.
void becomes_spectrum(Dimension& dimension);

/// The packed transform of 2n real numbers x, held in turn as the parts of n points, n a power of two. Sign +1 gives
/// F[k] = sum of x[j] e^(+2 pi i jk/2n), unscaled: point 0 holds F[0] and F[n] (both real), points 1 to n - 1 the F of their
/// number. Sign -1 takes that form back to the numbers, at their scale. The two-for-one method: one complex transform of
/// n points, then untangled.
bool packed_real_ft(std::span<std::complex<double>> x, int sign);

}  // namespace zolt
