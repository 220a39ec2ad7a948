// The lines of a spectrum and the phase of each, for automatic phase correction.
#pragma once

#include <complex>
#include <cstddef>
#include <span>
#include <vector>

#include "state/vectors.h"

namespace zolt {

/// The product, by hand: that of the library looks after infinities, which takes most of the time.
inline std::complex<double> times(std::complex<double> a, std::complex<double> b) {
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

/// A spectrum in bins of `width` points each: the mean of their points.
struct BinnedSpectrum {
    std::vector<std::complex<double>> bins;
    double width = 1;  ///< points to a bin
    double noise = 0;  ///< standard deviation of the real part where there is no signal
    double alike = 1;  ///< how many neighbouring bins share their noise, as they do after zero filling and weighting

    /// Place of a bin's middle (i may lie between bins), in points of the spectrum.
    double point(double i) const { return (i + 0.5) * width - 0.5; }
};

/// The spectrum at bins of 1, 2, 4 … points, down to 64 bins: a line stands in the one or other of them with a width of a few
/// bins and the least noise. Points behind the last whole bin are left out.
std::vector<BinnedSpectrum> bin_spectrum(std::span<const Complex> spectrum);

/// Standard deviation of the real part where there is no signal: of sections a tenth is taken to be free (after Golotvin and
/// Williams, J. Magn. Reson. 146 (2000) 122). At least 64 values.
double noise_of(std::span<const std::complex<double>> x);

/// What is smooth in the bins: running medians of both parts over a `part` of them.
std::vector<std::complex<double>> smooth_level(std::span<const std::complex<double>> bins, size_t part = 64);

/// One line: S(x) = z / (w + i(x - x0)), or its conjugate shape, over a straight background.
struct Line {
    double point = 0;       ///< x0
    double half_width = 0;  ///< w, in points
    double height = 0;      ///< |z| / w
    double phase = 0;       ///< of z, radians
    double variance = 0;    ///< of the phase, by noise and by what the shape does not explain
    bool reversed = false;  ///< the conjugate shape: the signal that was transformed turns the other way
    size_t level = 0;       ///< where in the pyramid it was fitted

    std::complex<double> value(double x) const;
};

/// Finds the lines in all bin widths and fits each of them; what stands in several is taken where its phase is best known. The
/// sense of most lines rules; fits of the other sense are left out. Then each is fitted again with the others taken away.
/// Ordered by their points.
std::vector<Line> find_lines(std::span<const BinnedSpectrum> pyramid);

}  // namespace zolt
