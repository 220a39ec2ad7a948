// The regression of phases over frequency.
#include "processing/auto_phase_regression.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace zolt {

namespace {

constexpr double pi = std::numbers::pi, degree = pi / 180;
constexpr double usual_first_order = pi;  // the regression leans to smaller ones by this much
constexpr double farthest = 4;            // standard deviations that a region may be off

}  // namespace

double within_half_turn(double angle) { return angle - pi * std::round(angle / pi); }

PhaseLine regress(std::span<const PhasedRegion> regions, PhaseLine phase, PhaseOrder order) {
    std::vector<double> sizes(regions.size());
    for (int step = 0; step < 12; ++step) {
        const auto off_of = [&](const PhasedRegion& region) { return within_half_turn(region.phase - phase.at(region.place)); };
        size_t count = 0;
        for (const PhasedRegion& region : regions)
            if (const double off = std::abs(off_of(region)); off < 60 * degree) sizes[count++] = off / std::sqrt(region.variance);
        if (count == 0) return phase;
        const auto middle = sizes.begin() + static_cast<std::ptrdiff_t>(count / 2);
        std::nth_element(sizes.begin(), middle, sizes.begin() + static_cast<std::ptrdiff_t>(count));
        const double cut = farthest * std::max(1.0, 1.5 * *middle);
        double w = 0, wx = 0, wxx = 0, we = 0, wxe = 0;
        for (const PhasedRegion& region : regions) {
            const double off = off_of(region), size = off / std::sqrt(region.variance) / cut;
            if (std::abs(off) >= 60 * degree || std::abs(size) >= 1) continue;
            const double inside = 1 - size * size, weight = inside * inside / region.variance;
            w += weight;
            wx += weight * region.place;
            wxx += weight * region.place * region.place;
            we += weight * off;
            wxe += weight * region.place * off;
        }
        if (!(w > 0)) return phase;
        // The lean to small first orders: one more observation of it, zero, with the usual spread.
        double slope = 0;
        if (order == PhaseOrder::first) {
            const double lean = 1 / (usual_first_order * usual_first_order);
            slope = (wxe - wx * we / w - lean * phase.first_order) / (wxx - wx * wx / w + lean);
        }
        phase.zero_order += (we - wx * slope) / w;
        phase.first_order += slope;
    }
    return phase;
}

}  // namespace zolt
