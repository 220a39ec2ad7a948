// Regions fitted as sums of lines that share one phase, for automatic phase correction.
#pragma once

#include <span>
#include <vector>

#include "processing/auto_phase_regions.h"

namespace zolt {

/// Fits the lines of each weak region together, starting from a phase that is near: heights, places and widths of their own, the
/// phase in common. The phases of the regions in order, unknown where a region is strong or broad.
std::vector<KnownPhase> phase_by_model(std::span<const PhasedRegion> regions, const BinnedSpectrum& spectrum,
                                       const PhaseLine& near);

}  // namespace zolt
