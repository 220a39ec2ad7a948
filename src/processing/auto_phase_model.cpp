// Regions fitted as sums of lines that share one phase.
#include "processing/auto_phase_model.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace zolt {

namespace {

using Value = std::complex<double>;

constexpr int sweeps = 8;
constexpr double farthest_wing = 60;  // half widths to which a line is taken away from its neighbours

Value shape(const Line& line, double x) {
    const double off = (x - line.point) / line.half_width, down = 1 / (1 + off * off);
    return {down, (line.reversed ? off : -off) * down};
}

// The spectrum less a region's lines, the phase of the region among them.
class Residual {
public:
    Residual(const BinnedSpectrum& spectrum, double first_order)
        : spectrum_(spectrum), rest_(spectrum.bins), step_(first_order / static_cast<double>(spectrum.bins.size())) {}

    // Adds the line `sign` times; `phase` holds at the point `middle`.
    void add(const Line& line, double phase, double middle, double sign) {
        const double reach =
            line.half_width * std::clamp(std::abs(line.height) / (0.2 * spectrum_.noise + 1e-300), 4.0, farthest_wing);
        const auto [first, last] = range(line.point - reach, line.point + reach);
        Value turn = std::polar(sign * line.height, phase + step_ * (static_cast<double>(first) - middle));
        const Value step = std::polar(1.0, step_);
        for (size_t i = first; i <= last; ++i) {
            rest_[i] += times(turn, shape(line, static_cast<double>(i)));
            turn = times(turn, step);
        }
    }

    std::pair<size_t, size_t> range(double first, double last) const {
        const auto end = static_cast<double>(rest_.size() - 1);
        return {static_cast<size_t>(std::clamp(first, 0.0, end)), static_cast<size_t>(std::clamp(last, 0.0, end))};
    }

    // What is left at a point, turned back by the phase.
    Value turned(size_t i, double phase, double middle) const {
        return times(rest_[i], std::polar(1.0, -(phase + step_ * (static_cast<double>(i) - middle))));
    }

    void take_away_smooth() {
        const std::vector<Value> level = smooth_level(rest_);
        for (size_t i = 0; i < rest_.size(); ++i) rest_[i] -= level[i];
    }

private:
    const BinnedSpectrum& spectrum_;
    std::vector<Value> rest_;
    double step_;
};

// One Gauss-Newton step for height, place and width of a line.
void improve(Line& line, const Residual& residual, double phase, double middle) {
    const double reach = std::max(3 * line.half_width, 4.0);
    const auto [first, last] = residual.range(line.point - reach, line.point + reach);
    std::array<std::array<double, 4>, 3> m{};
    for (size_t i = first; i <= last; ++i) {
        const auto x = static_cast<double>(i);
        const Value left = residual.turned(i, phase, middle), g = shape(line, x);
        const Value slope = times(times(g, g), Value(0, (line.reversed ? -line.height : line.height) / line.half_width));
        const std::array<Value, 3> by = {g, slope, slope * ((x - line.point) / line.half_width)};
        for (size_t r = 0; r < 3; ++r) {
            for (size_t c = 0; c < 3; ++c) m[r][c] += by[r].real() * by[c].real() + by[r].imag() * by[c].imag();
            m[r][3] += by[r].real() * left.real() + by[r].imag() * left.imag();
        }
    }
    for (size_t r = 0; r < 3; ++r) m[r][r] *= 1.001;
    for (size_t p = 0; p < 3; ++p) {
        if (!(std::abs(m[p][p]) > 1e-300)) return;
        for (size_t r = 0; r < 3; ++r) {
            if (r == p) continue;
            const double f = m[r][p] / m[p][p];
            for (size_t c = p; c < 4; ++c) m[r][c] -= f * m[p][c];
        }
    }
    line.height += m[0][3] / m[0][0];
    line.point += std::clamp(m[1][3] / m[1][1], -0.5 * line.half_width, 0.5 * line.half_width);
    line.half_width = std::max(line.half_width + std::clamp(m[2][3] / m[2][2], -0.3 * line.half_width, 0.3 * line.half_width), 0.3);
}

struct Modelled {
    std::vector<Line> lines;
    double middle = 0;  // in points
    KnownPhase known;
};

void add(Residual& residual, const Modelled& region, double sign) {
    for (const Line& line : region.lines) residual.add(line, region.known.phase, region.middle, sign);
}

// A step for the phase of all lines of a region. What the places of the lines take up of it makes the step of it alone too short
// by half.
void improve_phase(Modelled& region, Residual& residual, double noise, double alike) {
    double first = 1e300, last = -1e300, turn = 0, power = 0, misfit = 0;
    for (const Line& line : region.lines) {
        first = std::min(first, line.point - 4 * line.half_width);
        last = std::max(last, line.point + 4 * line.half_width);
    }
    const auto [from, to] = residual.range(first, last);
    for (size_t i = from; i <= to; ++i) {
        Value model = 0;
        for (const Line& line : region.lines) model += line.height * shape(line, static_cast<double>(i));
        const Value left = residual.turned(i, region.known.phase, region.middle);
        turn += model.real() * left.imag() - model.imag() * left.real();
        power += std::norm(model);
        misfit += std::norm(left);
    }
    const double excess = std::max(misfit / (2 * static_cast<double>(to - from + 1) * noise), 1.0);
    add(residual, region, 1);
    region.known.phase += std::clamp(1.6 * turn / std::max(power, 1e-300), -0.3, 0.3);
    add(residual, region, -1);
    region.known.variance = 2 * alike * noise * excess * excess / std::max(power, 1e-300);
}

}  // namespace

std::vector<KnownPhase> phase_by_model(std::span<const PhasedRegion> regions, const BinnedSpectrum& spectrum,
                                       const PhaseLine& near) {
    const size_t points = spectrum.bins.size();
    Residual residual(spectrum, near.first_order);
    std::vector<Modelled> models;
    for (const PhasedRegion& region : regions) {
        if (is_broad(region.lines[0], points)) continue;
        Modelled model{region.lines, region.place * static_cast<double>(points), {near.at(region.place), 0}};
        for (Line& line : model.lines) line.height *= std::cos(line.phase - near.at(line.point / static_cast<double>(points)));
        add(residual, model, -1);
        if (!region.strong) models.push_back(std::move(model));
    }
    for (int sweep = 0; sweep < sweeps && !models.empty(); ++sweep) {
        if (sweep % 3 == 0) residual.take_away_smooth();
        for (Modelled& model : models) {
            for (Line& line : model.lines) {
                const Line before = line;
                improve(line, residual, model.known.phase, model.middle);
                residual.add(before, model.known.phase, model.middle, 1);
                residual.add(line, model.known.phase, model.middle, -1);
            }
            improve_phase(model, residual, spectrum.noise * spectrum.noise, spectrum.alike);
        }
    }
    std::vector<KnownPhase> phases(regions.size(), unknown_phase);
    auto model = models.begin();
    for (size_t i = 0; i < regions.size(); ++i)
        if (!regions[i].strong && !is_broad(regions[i].lines[0], points)) phases[i] = (model++)->known;
    return phases;
}

}  // namespace zolt
