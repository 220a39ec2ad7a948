// Regions fitted as sums of lines that share one phase, for automatic phase correction.
#pragma once

#include "processing/auto_phase_regions.h"

namespace zolt {

/// Fits the lines of each narrow region together: heights, places and widths of their own, the phase in common. Sets the
/// modelled phase and its variance.
void phase_by_model(std::span<PhasedRegion> regions, const BinnedSpectrum& spectrum, const PhaseLine& near);

}  // namespace zolt
