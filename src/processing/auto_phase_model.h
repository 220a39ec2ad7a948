// Lines of weak regions fitted all together with one phase, for automatic phase correction.
#pragma once

#include <span>
#include <vector>

#include "processing/auto_phase_regions.h"
#include "processing/auto_phase_regression.h"

namespace zolt {

/// What least squares know of the phases of the weak regions, starting from a phase that is near: heights, places and widths of
/// all their lines and one phase of the given order are fitted together, more lines wherever the residual shows them. Others,
/// strong regions and broad lines, are only taken away. `unknown_phase` for those.
std::vector<KnownPhase> phase_by_model(std::span<const PhasedRegion> regions, std::span<const BinnedSpectrum> pyramid,
                                       const PhaseLine& near, PhaseOrder order);

}  // namespace zolt
