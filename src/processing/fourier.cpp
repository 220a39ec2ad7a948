// The transforms of one vector around the FFT: order of points, signs, delay.
#include "processing/fourier.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

#include "processing/fft.h"
#include "state/dataset.h"

namespace zolt {

namespace {

using Double = std::complex<double>;

Double times(Double a, Double b) { return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()}; }

void exchange_halves(std::span<Complex> x) {
    const auto middle = x.begin() + static_cast<std::ptrdiff_t>(x.size() / 2);
    std::swap_ranges(x.begin(), middle, middle);
}

// Walks the pairs (k, n - k) of a series of n points with w = e^(i sign theta k), theta = pi / n.
template <class Pair>
void for_each_pair(size_t n, int sign, Pair pair) {
    const double theta = sign * std::numbers::pi / static_cast<double>(n);
    const double sine = std::sin(theta / 2);
    const Double turn(-2 * sine * sine, std::sin(theta));
    Double w(1 + turn.real(), turn.imag());
    for (size_t k = 1; k <= n / 2; ++k) {
        pair(k, n - k, w);
        w += times(w, turn);
    }
}

// From the transform of n points x[2j] + i x[2j+1] to that of the 2n real numbers x: points 0 to n - 1, the real
// parts of points 0 and n as the two parts of point 0. `sign` is that of the exponent.
template <class Float>
void untangle(std::span<std::complex<Float>> z, int sign) {
    for_each_pair(z.size(), sign, [z](size_t k, size_t mirror, Double w) {
        const Double a(z[k]), b = std::conj(Double(z[mirror]));
        const Double even = 0.5 * (a + b), difference = 0.5 * (a - b);
        const Double odd = times(w, Double(difference.imag(), -difference.real()));
        z[k] = std::complex<Float>(even + odd);
        z[mirror] = std::complex<Float>(std::conj(even - odd));
    });
    z[0] = {z[0].real() + z[0].imag(), z[0].real() - z[0].imag()};
}

// Back again; `sign` is that of the forward transform.
void tangle(std::span<Double> z, int sign) {
    for_each_pair(z.size(), -sign, [z](size_t k, size_t mirror, Double w) {
        const Double a = z[k], b = std::conj(z[mirror]);
        const Double even = 0.5 * (a + b), odd = times(w, 0.5 * (a - b));
        const Double turned(-odd.imag(), odd.real());
        z[k] = even + turned;
        z[mirror] = std::conj(even - turned);
    });
    z[0] = {0.5 * (z[0].real() + z[0].imag()), 0.5 * (z[0].real() - z[0].imag())};
}

}  // namespace

void conjugate(std::span<Complex> x) {
    for (Complex& point : x) point = std::conj(point);
}

bool forward_complex_ft(std::span<Complex> x, bool sort) {
    x.front() = 0.5F * (x.front() + x.back());
    if (float_fft_4_2(x.data(), x.size(), -1) == 0) return false;
    if (sort) exchange_halves(x);
    return true;
}

bool inverse_complex_ft(std::span<Complex> x) {
    exchange_halves(x);
    return float_fft_4_2(x.data(), x.size(), +1) != 0;
}

bool forward_real_ft(std::span<const Complex> x, std::span<Complex> out) {
    for (size_t k = 0; k < out.size(); ++k) out[k] = {x[2 * k].real(), x[2 * k + 1].real()};
    if (float_fft_4_2(out.data(), out.size(), -1) == 0) return false;
    untangle(out, -1);
    out[0].imag(0);
    std::reverse(out.begin(), out.end());
    return true;
}

bool forward_sequential_ft(std::span<Complex> x) {
    // The sign pattern + + - - of the samples is a change of sign from point to point.
    for (size_t k = 1; k < x.size(); k += 2) x[k] = -x[k];
    x[0].real(0.5F * x[0].real());
    if (float_fft_4_2(x.data(), x.size(), -1) == 0) return false;
    untangle(x, -1);
    x[0].imag(0);
    return true;
}

bool hilbert(std::span<Complex> x) {
    for (Complex& point : x) point.imag(0);
    if (!inverse_complex_ft(x)) return false;
    const size_t half = x.size() / 2, count = half <= 256 ? half - 1 : 256;
    std::complex<double> level = 0;
    for (const Complex point : x.subspan(half - count, count)) level += std::complex<double>(point);
    if (count > 0) level /= static_cast<double>(count);
    std::fill(x.begin() + static_cast<std::ptrdiff_t>(half), x.end(), Complex(level));
    return true;
}

Rotation delay_rotation(double delay, size_t n, int domain_code) {
    const double first_order = -2 * std::numbers::pi * delay;
    const size_t half = n / 2;
    const double middle = domain_code == domain_real && n > 0 ? static_cast<double>(half) / static_cast<double>(n) : 0;
    return {-first_order * middle, first_order, 0, 0, n};
}

void rotate_spectrum(std::span<Complex> x, const Rotation& rotation, bool sorted) {
    if (sorted) return rotate(x, rotation);
    const size_t half = x.size() / 2;
    rotate(x.first(x.size() - half), rotation, half);
    rotate(x.last(half), rotation, 0);
}

bool shift_out_delay(std::span<Complex> x, const Rotation& rotation) {
    if (float_fft_4_2(x.data(), x.size(), -1) == 0) return false;
    rotate_spectrum(x, rotation, false);
    return float_fft_4_2(x.data(), x.size(), +1) != 0;
}

bool shift_out_delay_sequential(std::span<Complex> x, const Rotation& rotation, std::span<Complex> work) {
    const size_t n = x.size();
    const auto sign = [](size_t k) { return k % 2 == 0 ? 1.0F : -1.0F; };
    for (size_t k = 0; k < n; ++k) {
        work[2 * k] = sign(k) * x[k].real();
        work[2 * k + 1] = sign(k) * x[k].imag();
    }
    if (float_fft_4_2(work.data(), 2 * n, -1) == 0) return false;
    // The samples are real: the upper half of the spectrum mirrors the lower one. What the rotation makes imaginary of the
    // frequency between them ends in the imaginary parts of the samples, which are dropped.
    rotate(work.first(n + 1), rotation);
    for (size_t k = 1; k < n; ++k) work[2 * n - k] = std::conj(work[k]);
    if (float_fft_4_2(work.data(), 2 * n, +1) == 0) return false;
    for (size_t k = 0; k < n; ++k) x[k] = sign(k) * Complex(work[2 * k].real(), work[2 * k + 1].real());
    return true;
}

bool packed_real_ft(std::span<Double> x, int sign) {
    if (sign < 0) tangle(x, +1);
    if (fftrad2(x.data(), x.size(), sign) == 0) return false;
    // fftrad2 divides by n in direction +1 only; here it is the way back that restores the scale.
    const auto n = static_cast<double>(x.size());
    const double scale = sign > 0 ? n : 1 / n;
    for (Double& point : x) point *= scale;
    if (sign > 0) untangle(x, +1);
    return true;
}

}  // namespace zolt
