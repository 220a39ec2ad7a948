// Weak spectra as sums of few absorption lines, for automatic phase correction.
#pragma once

#include <optional>
#include <span>

#include "processing/auto_phase.h"
#include "processing/auto_phase_regions.h"

namespace zolt {

/// The phase, starting from one that is near, for which few absorption lines of places and widths to choose from explain the
/// spectrum best: least squares with a penalty on the heights, which are not negative (once more with less of it for high ones:
/// Candes, Wakin, Boyd, J. Fourier Anal. Appl. 14 (2008) 877), by coordinate descent, and Newton's steps in the phase. It does not ask which lines there are, as a fit of
/// found lines does, so that its errors are others. A line has the sign of the region next to it. Nothing where it ends far from
/// the start, or the spectrum is too short. At least one region.
std::optional<PhaseLine> phase_by_sparse_lines(std::span<const PhasedRegion> regions, std::span<const BinnedSpectrum> pyramid,
                                               const PhaseLine& near, PhaseOrder order);

}  // namespace zolt
