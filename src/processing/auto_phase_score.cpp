// Measures of how well a spectrum is phased.
#include "processing/auto_phase_score.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <span>
#include <utility>

namespace zolt {

namespace {

constexpr double noise_level = 3;
constexpr double penalty = 1000;    // of the entropy, for a spectrum whose largest magnitude is 1
constexpr size_t level_parts = 24;  // windows of the baseline in a spectrum

// The median of the window about each value; near the ends that of the first or last whole window.
std::vector<double> running_medians(std::span<const double> values, size_t window) {
    std::vector<double> sorted(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(window)), medians(values.size());
    std::sort(sorted.begin(), sorted.end());
    size_t first = 0;
    for (size_t i = 0; i < values.size(); ++i) {
        if (i > first + window / 2 && first + window < values.size()) {
            sorted.erase(std::lower_bound(sorted.begin(), sorted.end(), values[first]));
            sorted.insert(std::upper_bound(sorted.begin(), sorted.end(), values[first + window]), values[first + window]);
            ++first;
        }
        medians[i] = sorted[window / 2];
    }
    return medians;
}

}  // namespace

PhaseScore::PhaseScore(BinnedSpectrum bins, size_t points)
    : bins_(std::move(bins)),
      part_of_bin_(bins_.width / static_cast<double>(points)),
      first_(bins_.point(0) / static_cast<double>(points)),
      signal_(bins_.bins.size()) {
    for (size_t i = 0; i < signal_.size(); ++i) {
        const double size = std::abs(bins_.bins[i]);
        signal_[i] = size > noise_level * bins_.noise;
        largest_ = std::max(largest_, size);
        power_ += size * size;
        if (signal_[i]) magnitude_ += size;
    }
}

template <class F>
void PhaseScore::for_each_real(const PhaseLine& phase, F f) const {
    const double start = phase.zero_order + phase.first_order * first_, step = phase.first_order * part_of_bin_;
    double c = std::cos(start), s = std::sin(start);
    const double step_c = std::cos(step), step_s = std::sin(step);
    for (size_t i = 0; i < bins_.bins.size(); ++i) {
        f(i, bins_.bins[i].real() * c + bins_.bins[i].imag() * s);
        const double turned = c * step_c - s * step_s;
        s = s * step_c + c * step_s;
        c = turned;
    }
}

double PhaseScore::area(const PhaseLine& phase) const {
    double sum = 0;
    for_each_real(phase, [&](size_t i, double real) {
        if (signal_[i]) sum += real < 0 ? -3 * real : real;
    });
    return magnitude_ > 0 ? sum / magnitude_ : 0;
}

double PhaseScore::entropy(const PhaseLine& phase) const {
    double before = 0, total = 0, logarithms = 0, below = 0;
    for_each_real(phase, [&](size_t i, double real) {
        const double change = i == 0 ? 0 : std::abs(real - before);
        before = real;
        total += change;
        if (change > 0) logarithms += change * std::log(change);
        if (real < 0) below += real * real;
    });
    if (!(total > 0)) return 0;
    return std::log(total) - logarithms / total + penalty * below / (largest_ * largest_) / static_cast<double>(bins_.bins.size());
}

double PhaseScore::negative(const PhaseLine& phase) const {
    double sum = 0;
    for_each_real(phase, [&](size_t, double real) {
        const double below = -real - noise_level * bins_.noise;
        if (below > 0) sum += below * below;
    });
    return power_ > 0 ? sum / power_ : 0;
}

BinnedSpectrum level_at_phase(const BinnedSpectrum& bins, size_t points, const PhaseLine& phase) {
    BinnedSpectrum result = bins;
    std::vector<double> real, imag;
    result.bins = turned_back(bins, points, phase);
    for (const auto& bin : result.bins) {
        real.push_back(bin.real());
        imag.push_back(bin.imag());
    }
    const size_t window = std::max<size_t>(real.size() / level_parts, 1);
    real = running_medians(real, window);
    imag = running_medians(imag, window);
    for (size_t i = 0; i < real.size(); ++i) result.bins[i] -= std::complex(real[i], imag[i]);
    return result;
}

}  // namespace zolt
