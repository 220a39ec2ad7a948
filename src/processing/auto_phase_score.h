// Measures of how well a spectrum is phased, from its real part alone, for automatic phase correction.
#pragma once

#include <vector>

#include "processing/auto_phase_lines.h"
#include "processing/auto_phase_regions.h"

namespace zolt {

class PhaseScore {
public:
    /// Judges at the resolution of these bins, of a spectrum of so many points.
    PhaseScore(BinnedSpectrum bins, size_t points);

    /// The area of the real part where there is signal, what is negative counted three times, over the area of the magnitude:
    /// small for absorption lines, whose wings fall off faster than those of dispersion. Not changed by the scale.
    double area(const PhaseLine& phase) const;
    /// Entropy of the derivative with a penalty for what is negative (Chen, Weng, Goh, Garland, J. Magn. Reson. 158 (2002) 164).
    double entropy(const PhaseLine& phase) const;
    /// The square of what is negative beyond the noise, over the square of all.
    double negative(const PhaseLine& phase) const;

private:
    template <class F>
    void for_each_real(const PhaseLine& phase, F f) const;

    BinnedSpectrum bins_;
    double part_of_bin_ = 0, first_ = 0;  // places of the bins as parts of the spectrum
    double largest_ = 0, magnitude_ = 0, power_ = 0;
    std::vector<bool> signal_;
};

/// The bins turned back by a phase, and rid of their baseline at that phase: running medians of both parts, over windows that
/// lines do not fill. The median of a part depends on the phase; that of a phased spectrum is least touched by its lines.
BinnedSpectrum level_at_phase(const BinnedSpectrum& bins, size_t points, const PhaseLine& phase);

}  // namespace zolt
