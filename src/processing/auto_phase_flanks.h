// Regions phased by what stands beside their lines, for automatic phase correction.
#pragma once

#include <vector>

#include "processing/auto_phase_regions.h"

namespace zolt {

/// The regions with what is known of their phases once a phase is near: beside its lines a phased spectrum does not hold any of
/// the dispersion that its imaginary part shows there; weak regions by their lines fitted together and by their integral as
/// well. Where one of these contradicts the others it is left out.
std::vector<PhasedRegion> phase_by_flanks(std::vector<PhasedRegion> regions, const BinnedSpectrum& spectrum, const PhaseLine& near);

}  // namespace zolt
