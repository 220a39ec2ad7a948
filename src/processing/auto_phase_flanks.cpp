// Flanks of strong regions, and what they say together with the lines.
#include "processing/auto_phase_flanks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "processing/auto_phase_model.h"

namespace zolt {

namespace {

using Value = std::complex<double>;

constexpr double pi = std::numbers::pi, degree = pi / 180;
// What flanks are off however strong the signals are: it is not the noise that counts but how real lines look.
constexpr double flanks_floor = 8 * degree;
constexpr double broad_doubt = 6;                    // variance of broad lines over what their fit tells: they may be baseline
constexpr double flank_begin = 1.5, flank_end = 12;  // half widths beside a line
constexpr double trusted = 0.85;                     // cosine of what a fitted line may be off

// A real part beside the lines, and the imaginary part there, at a phase that is near.
struct Flank {
    double real, imag;
};

// How far the phase is still off: real = level - off * imag. Points above, which may be lines too weak to be found, count less.
KnownPhase fit_flanks(std::span<const Flank> flanks, double noise, double alike) {
    std::vector<double> weights(flanks.size(), 1.0);
    KnownPhase result = unknown_phase;
    for (int round = 0; round < 4; ++round) {
        double w = 0, wr = 0, wi = 0, wii = 0, wri = 0;
        for (size_t k = 0; k < flanks.size(); ++k) {
            const auto& [real, imag] = flanks[k];
            w += weights[k];
            wr += weights[k] * real;
            wi += weights[k] * imag;
            wii += weights[k] * imag * imag;
            wri += weights[k] * real * imag;
        }
        // The noise of the imaginary part adds to its square.
        const double square = wii - wi * wi / w - w * noise * noise;
        if (!(square > 4 * noise * noise * std::sqrt(w))) return unknown_phase;
        const double off = -(wri - wr * wi / w) / square, level = (wr + off * wi) / w;
        double misfit = 0;
        for (size_t k = 0; k < flanks.size(); ++k) {
            const double left = flanks[k].real - level + off * flanks[k].imag;
            misfit += weights[k] * left * left;
        }
        const double unit = std::max({misfit / w, noise * noise, 1e-300});
        result = {off, std::max(misfit / w, alike * noise * noise) / square};
        for (size_t k = 0; k < flanks.size(); ++k) {
            const double left = flanks[k].real - level + off * flanks[k].imag, far = left * left / (6 * unit);
            weights[k] = left > 0 ? 1 / (1 + far * far) : 1;
        }
    }
    return result;
}

// What the flanks are read from: the spectrum without the first order of the phase, the absorption of the fitted lines there at
// a phase that is near, and which points stand in a line.
struct FlankedSpectrum {
    std::vector<double> absorption;
    std::vector<bool> core;

    FlankedSpectrum(std::span<const PhasedRegion> regions, const BinnedSpectrum& spectrum, const PhaseLine& near)
        : absorption(spectrum.bins.size()), core(spectrum.bins.size()) {
        for (const PhasedRegion& region : regions)
            for (const Line& line : region.lines) add(line, spectrum, near);
    }

private:
    void add(const Line& line, const BinnedSpectrum& spectrum, const PhaseLine& near) {
        const auto last = static_cast<double>(core.size() - 1);
        const double along = std::cos(line.phase - near.at(line.point / (last + 1)));
        const double height = std::abs(along) < trusted ? 0 : line.height * along;
        const double reach =
            line.half_width * std::clamp(std::sqrt(std::abs(height) / (0.1 * spectrum.noise + 1e-300)), 2.0, 200.0);
        const double half_core = std::max(flank_begin * line.half_width, 1.0);
        const auto first = static_cast<size_t>(std::clamp(line.point - reach, 0.0, last));
        for (size_t i = first; i <= static_cast<size_t>(std::clamp(line.point + reach, 0.0, last)); ++i) {
            const double distance = std::abs(static_cast<double>(i) - line.point), x = distance / line.half_width;
            absorption[i] += height / (1 + x * x);
            if (distance <= half_core && !is_broad(line, core.size())) core[i] = true;
        }
    }
};

// The phase of a region by its flanks, starting from one that is near.
KnownPhase phase_of_flanks(const PhasedRegion& region, const FlankedSpectrum& flanked, const BinnedSpectrum& spectrum,
                           const PhaseLine& near) {
    const auto points = static_cast<double>(spectrum.bins.size());
    double width = 0;
    for (const Line& line : region.lines) width = std::max(width, line.half_width);
    const auto first = static_cast<size_t>(std::clamp(region.lines.front().point - flank_end * width, 0.0, points - 1));
    const auto last = static_cast<size_t>(std::clamp(region.lines.back().point + flank_end * width, 0.0, points - 1));
    double phase = near.at(region.place);
    KnownPhase part;
    for (int step = 0; step < 2; ++step) {
        std::vector<Flank> flanks;
        for (size_t i = first; i <= last; ++i) {
            if (flanked.core[i]) continue;
            const double here = phase + near.first_order * (static_cast<double>(i) / points - region.place);
            const Value turned = times(spectrum.bins[i], std::polar(1.0, -here));
            flanks.push_back({turned.real() - flanked.absorption[i], turned.imag()});
        }
        part = flanks.size() < 10 ? unknown_phase : fit_flanks(flanks, spectrum.noise, spectrum.alike);
        if (std::abs(part.phase) > 60 * degree || part.variance > 1) return unknown_phase;
        phase += part.phase;
    }
    return {phase, part.variance + flanks_floor * flanks_floor};
}

// The weighted mean of two that agree; the surer one of two that do not, which is less sure then.
KnownPhase agreed(const KnownPhase& a, const KnownPhase& b) {
    const auto& [surer, other] =
        std::minmax(a, b, [](const KnownPhase& one, const KnownPhase& two) { return one.variance < two.variance; });
    const double apart = std::remainder(other.phase - surer.phase, pi), both = surer.variance + other.variance;
    // The less sure one is off the mean by all of this, the surer one by less of its own deviation.
    if (apart * apart * other.variance >= 4 * both * both) return {surer.phase, 2 * surer.variance};
    return {surer.phase + apart * surer.variance / both, surer.variance};
}

}  // namespace

std::vector<PhasedRegion> phase_by_flanks(std::vector<PhasedRegion> regions, std::span<const BinnedSpectrum> pyramid,
                                          const PhaseLine& near, PhaseOrder order) {
    const BinnedSpectrum& spectrum = pyramid[0];
    const std::vector<KnownPhase> modelled = phase_by_model(regions, pyramid, near, order);
    const FlankedSpectrum flanked(regions, spectrum, near);
    for (size_t i = 0; i < regions.size(); ++i) {
        PhasedRegion& region = regions[i];
        KnownPhase best = modelled[i];
        if (is_broad(region.lines[0], spectrum.bins.size())) {
            best = {region.phase, region.variance * broad_doubt};
        } else if (region.strong) {
            best = agreed({region.phase, region.variance}, phase_of_flanks(region, flanked, spectrum, near));
        }
        region.phase = best.phase;
        region.variance = best.variance;
    }
    return regions;
}

}  // namespace zolt
