// The regions of a spectrum that hold signals, each phased for itself, for automatic phase correction.
#pragma once

#include <span>
#include <vector>

#include "processing/auto_phase_lines.h"

namespace zolt {

/// Lines that stand close together, phased as one.
struct PhasedRegion {
    double place = 0;     ///< of its middle, as a part of the spectrum
    double phase = 0;     ///< radians, up to half a turn
    double variance = 0;  ///< of the phase
    bool by_wings = false;
    bool strong = false;  ///< far above the noise: what is not known of it is due to its shape
    std::vector<Line> lines;
    double modelled_phase = 0, modelled_variance = 1e6;  ///< of the lines fitted together
};

/// A phase of zero and first order in radians: zero_order + first_order * (place as a part of the spectrum, 0 to 1).
struct PhaseLine {
    double zero_order = 0, first_order = 0;

    double at(double place) const { return zero_order + first_order * place; }
};

/// Joins lines to regions. A region has the mean phase of its lines, or, where it is known better, that of its wings: beyond
/// the lines a region is Z/(ix) + M2/x^2 + M3/x^3 over a straight background, and the phase of Z is that of the whole region
/// whatever the shape of its lines (an inhomogeneous field turns the phase of fitted lines, not that of Z).
std::vector<PhasedRegion> phase_regions(std::span<const Line> lines, std::span<const BinnedSpectrum> pyramid, size_t points);

/// The regions with what is known of their phases once a phase is near: beside its lines a phased spectrum does not hold any of
/// the dispersion that its imaginary part shows there. Regions that do not know it better that way stay as they are.
std::vector<PhasedRegion> phase_by_flanks(std::vector<PhasedRegion> regions, const BinnedSpectrum& spectrum, const PhaseLine& near);

}  // namespace zolt
