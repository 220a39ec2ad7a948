// Phases of regions laid on a line over frequency, for automatic phase correction.
#pragma once

#include <span>

#include "processing/auto_phase.h"
#include "processing/auto_phase_regions.h"

namespace zolt {

/// The angle less whole multiples of half a turn.
double within_half_turn(double angle);

/// Weighted regression of the regions' phases, up to half a turn each, starting from a phase that is near; outliers are cut off
/// (Tukey's biweight): those far off for what is known of them. Where the regions do not determine it the first order leans to
/// a small one.
PhaseLine regress(std::span<const PhasedRegion> regions, PhaseLine phase, PhaseOrder order);

}  // namespace zolt
