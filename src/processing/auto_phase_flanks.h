// Regions phased by what stands beside their lines, for automatic phase correction.
#pragma once

#include <vector>

#include "processing/auto_phase.h"
#include "processing/auto_phase_regions.h"

namespace zolt {

/// The regions with what is known of their phases once a phase is near: weak ones by their lines fitted together, strong ones
/// also by what stands beside their lines, where a phased spectrum does not hold any of the dispersion that its imaginary part
/// shows there. Where one of two contradicts the other, the surer one is taken.
std::vector<PhasedRegion> phase_by_flanks(std::vector<PhasedRegion> regions, std::span<const BinnedSpectrum> pyramid,
                                          const PhaseLine& near, PhaseOrder order);

}  // namespace zolt
