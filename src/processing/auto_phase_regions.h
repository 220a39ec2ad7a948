// The regions of a spectrum that hold signals, each phased for itself, for automatic phase correction.
#pragma once

#include <span>
#include <vector>

#include "processing/auto_phase_lines.h"

namespace zolt {

/// A phase in radians, up to half a turn, and the variance of it.
struct KnownPhase {
    double phase = 0, variance = 0;
};
constexpr KnownPhase unknown_phase = {0, 1e6};

/// Lines that stand close together, phased as one.
struct PhasedRegion {
    double place = 0;  ///< of its middle, as a part of the spectrum
    double phase = 0, variance = 0;
    bool by_wings = false;
    bool strong = false;  ///< far above the noise: what is not known of it is due to its shape
    std::vector<Line> lines;
};

/// A broad line is background to those that stand on it, and makes a region of its own.
inline bool is_broad(const Line& line, size_t points) { return line.half_width > static_cast<double>(points) / 500; }

/// A phase of zero and first order in radians: zero_order + first_order * (place as a part of the spectrum, 0 to 1).
struct PhaseLine {
    double zero_order = 0, first_order = 0;

    double at(double place) const { return zero_order + first_order * place; }
};

/// The half width, in points, of which half of what is known stands in narrower lines.
double usual_half_width(std::span<const PhasedRegion> regions, size_t points);

/// The widest bins that still resolve lines of the usual width.
const BinnedSpectrum& bins_for_lines(std::span<const PhasedRegion> regions, std::span<const BinnedSpectrum> pyramid);

/// No line stands far above the noise of these bins. In other spectra what no fit explains is due to how real lines look.
bool is_noisy(std::span<const PhasedRegion> regions, std::span<const BinnedSpectrum> pyramid);

/// The bins turned back by a phase; the whole spectrum has so many points.
std::vector<std::complex<double>> turned_back(const BinnedSpectrum& bins, size_t points, const PhaseLine& phase);

/// Joins lines to regions. A region has the mean phase of its lines, or, where it is known better, that of its wings: beyond
/// the lines a region is Z/(ix) + M2/x^2 + M3/x^3 over a straight background, and the phase of Z is that of the whole region
/// whatever the shape of its lines (an inhomogeneous field turns the phase of fitted lines, not that of Z).
std::vector<PhasedRegion> phase_regions(std::span<const Line> lines, std::span<const BinnedSpectrum> pyramid, size_t points);

}  // namespace zolt
