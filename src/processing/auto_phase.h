// Automatic phase correction of one spectrum: zero and first order.
#pragma once

#include <optional>
#include <span>

#include "state/vectors.h"

namespace zolt {

enum class PhaseOrder { zero, first };

/// What was found: PC with these angles in degrees (pivot 0) phases the spectrum.
struct FoundPhase {
    double zero_order = 0, first_order = 0;
};

/// Finds the phase of a spectrum. The regions of the power spectrum that hold lines are phased each for itself; a robust
/// regression over frequency (after Zorin, Bernstein, Cobas, Magn. Reson. Chem. 55 (2017) 738), the smallest entropy and the
/// least negative area give candidates, each tried with half a turn more as well; the best by one common measure is refined by
/// the regions that agree with it, or by the measure where there are none, or by both where strong regions contradict each
/// other; in noisy spectra also by a sum of few lines. The first order stays within three turns. Nothing when there is no signal, a value that is not finite, or fewer than
/// 64 points. The result depends on the data alone, not on their scale.
std::optional<FoundPhase> find_phase(std::span<const Complex> spectrum, PhaseOrder order);

}  // namespace zolt
