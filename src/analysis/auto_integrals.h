// Finding the regions of a spectrum that hold signals.
#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "common/axis.h"
#include "state/vectors.h"

namespace zolt {

/// First and last point of a region, both included.
using Region = std::pair<int64_t, int64_t>;

/// Regions of the real part in which signals stand out of the baseline, in order. The spectrum is divided into
/// `segments` (at least 4): noise is the smallest standard deviation of a segment about its own line, the baseline runs
/// through the medians of the quiet ones (after Golotvin and Williams, J. Magn. Reson. 146 (2000) 122). A top
/// that stands out of both sides by 6 times the noise, and by 0.4 % of the tallest, begins a region, which reaches to where
/// 1 % of it or the noise is met, widened by its own width, at most by 0.02 ppm; regions closer than 0.02 ppm (10 Hz without a
/// spectrometer frequency) are joined. They are cut again at deep gaps between lines that are wider than couplings are: of 25 Hz,
/// or of 18 Hz where what is beside them differs in area (equal halves are a doublet). Those whose sum the noise explains, or
/// that have less than 2 % of the area of most, are dropped. The outermost 2 % of the points begin no region.
std::vector<Region> find_regions(std::span<const Complex> spectrum, const Axis& axis, int64_t segments);

}  // namespace zolt
