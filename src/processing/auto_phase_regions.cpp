// Regions: their lines and their wings.
#include "processing/auto_phase_regions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>

namespace zolt {

namespace {

using Value = std::complex<double>;

constexpr double pi = std::numbers::pi, degree = pi / 180;
constexpr double line_floor = 4 * degree;  // what fitted lines are off however strong they are, by their shape
constexpr double wings_floor = 1.5 * degree;
constexpr double surest_wings = 4 * degree;  // wings that know less are not used,
constexpr double surest_weak_wings = 2.5 * degree;
constexpr double strong = 100;       // of a region whose tallest line is less above the noise
constexpr double bins_to_edge = 8;   // from the middle of a region to where its wings begin
constexpr double longest_wings = 8;  // end of the wings over their beginning
constexpr double shortest_wings = 1.7;
constexpr double narrowest = 1.5;   // half width, in bins, of the usual line in the bins that resolve it
constexpr double noisy_below = 40;  // a spectrum whose tallest line is less above the noise

struct Region {
    std::span<const Line> lines;
    double first = 0, last = 0;  // points, the feet of the lines included
    double area = 0;
    bool strong = false;
};

// The sum of the lines' amplitudes: where lines overlap, what one is turned too far the other is too little. Lines of both
// signs are added as if of one.
KnownPhase phase_by_lines(const Region& region) {
    Value direction = 0;
    for (const Line& line : region.lines) direction += std::polar(1 / (line.variance + line_floor * line_floor), 2 * line.phase);
    direction = std::polar(1.0, std::arg(direction) / 2);
    Value sum = 0;
    double squares = 0, scatter = 0;
    for (const Line& line : region.lines) {
        const double area = line.height * line.half_width;
        const Value turned = std::polar(area, line.phase) * std::conj(direction), amplitude = turned.real() < 0 ? -turned : turned;
        sum += amplitude;
        squares += area * area * line.variance;
        scatter += amplitude.imag() * amplitude.imag();
    }
    const double size = std::norm(sum);
    const auto count = static_cast<double>(region.lines.size());
    return {std::arg(sum * direction), std::max(squares, 0.25 * scatter) / size + line_floor * line_floor / std::min(count, 4.0)};
}

// Points of both wings, seen from the middle of the region.
struct Wings {
    std::vector<double> x;
    std::vector<Value> s;
};

// Fits the wings; twice more with the points weighted down that lie far off, be it by lines too weak to be found.
KnownPhase fit_wings(const Wings& wings, double sense, double noise) {
    constexpr size_t terms = 5;
    const size_t n = wings.x.size();
    std::vector<double> weights(n, 1.0), rest(n);
    std::vector<std::array<double, terms>> functions(n);
    KnownPhase result = unknown_phase;
    for (int round = 0; round < 3; ++round) {
        // The term of Z last: what is left of it behind the others carries the phase.
        for (size_t i = 0; i < n; ++i) {
            const double x = wings.x[i], inverse = 1 / x;
            functions[i] = {1, x, inverse * inverse, inverse * inverse * inverse, inverse};
        }
        std::array<Value, terms> parts;
        double length = 0;
        for (size_t t = 0; t < terms; ++t) {
            for (size_t u = 0; u < t; ++u) {
                double shared = 0;
                for (size_t i = 0; i < n; ++i) shared += weights[i] * functions[i][t] * functions[i][u];
                for (size_t i = 0; i < n; ++i) functions[i][t] -= shared * functions[i][u];
            }
            length = 0;
            for (size_t i = 0; i < n; ++i) length += weights[i] * functions[i][t] * functions[i][t];
            length = std::sqrt(length);
            if (!(length > 1e-9)) return result;
            parts[t] = 0;
            for (size_t i = 0; i < n; ++i) {
                functions[i][t] /= length;
                parts[t] += weights[i] * functions[i][t] * wings.s[i];
            }
        }
        double misfit = 0, total = 0;
        for (size_t i = 0; i < n; ++i) {
            Value left = wings.s[i];
            for (size_t t = 0; t < terms; ++t) left -= functions[i][t] * parts[t];
            rest[i] = std::norm(left);
            misfit += weights[i] * rest[i];
            total += weights[i];
        }
        misfit /= 2 * std::max(total - terms, 1.0);
        const double unit = std::max({misfit, noise * noise, 1e-300});
        const Value z = parts[terms - 1] * Value(0, sense);
        result = {std::arg(z), unit / std::max(std::norm(z), 1e-300)};
        for (size_t i = 0; i < n; ++i) {
            const double off = rest[i] / (2 * 4 * unit);
            weights[i] = 1 / (1 + off * off);
        }
    }
    return result;
}

// Wings from `begin` to `end` points off the middle, in bins that resolve their beginning.
KnownPhase phase_of_wings(double middle, double begin, double end, std::span<const BinnedSpectrum> pyramid, double sense) {
    const BinnedSpectrum* level = &pyramid[0];
    for (const BinnedSpectrum& coarser : pyramid)
        if (coarser.width * bins_to_edge <= begin) level = &coarser;
    Wings wings;
    const double at = level->point(0), last = static_cast<double>(level->bins.size() - 1);
    const auto bin = [&](double point) {
        return static_cast<size_t>(std::clamp(std::round((point - at) / level->width), 0.0, last));
    };
    for (size_t i = bin(middle - end); i <= bin(middle + end); ++i) {
        const double x = (level->point(static_cast<double>(i)) - middle) / begin;
        if (std::abs(x) < 1) continue;
        wings.x.push_back(x);
        wings.s.push_back(level->bins[i]);
    }
    return wings.x.size() < 12 ? unknown_phase : fit_wings(wings, sense, level->noise);
}

// The wings reach to the next region of some size. Where a shorter piece of them tells another phase, they do not know it
// better than by the difference.
std::optional<KnownPhase> phase_by_wings(const Region& region, double free, std::span<const BinnedSpectrum> pyramid,
                                         size_t points) {
    double width = 0;
    for (const Line& line : region.lines) width = std::max(width, line.half_width);
    const double middle = (region.first + region.last) / 2, begin = std::max((region.last - region.first) / 2 + 3 * width, 4.0);
    const double edge = std::min(middle, static_cast<double>(points) - 1 - middle);
    const double end = std::min({0.9 * free, longest_wings * begin, edge});
    if (end < shortest_wings * begin) return std::nullopt;
    const double sense = region.lines[0].reversed ? -1 : 1;
    KnownPhase whole = phase_of_wings(middle, begin, end, pyramid, sense);
    for (const auto& [from, to] : {std::pair(1.3, 1.0), std::pair(1.0, 0.75)}) {
        const KnownPhase part = phase_of_wings(middle, begin * from, end * to, pyramid, sense);
        const double off = std::remainder(part.phase - whole.phase, pi);
        whole.variance += std::max(0.0, off * off - 2 * part.variance) / 2;
    }
    return whole;
}

// Lines of a kind, sorted by their points.
std::vector<Region> join(std::span<const Line> lines, size_t points, double noise) {
    std::vector<Region> regions;
    const auto close = [&](const Line& a, const Line& b) {
        return b.point - a.point < std::max(static_cast<double>(points) / 700, 6 * (a.half_width + b.half_width));
    };
    for (size_t first = 0, next = 1; first < lines.size(); first = next++) {
        while (next < lines.size() && close(lines[next - 1], lines[next])) ++next;
        Region region{lines.subspan(first, next - first), 1e300, -1e300};
        for (const Line& line : region.lines) {
            region.first = std::min(region.first, line.point - 3 * line.half_width);
            region.last = std::max(region.last, line.point + 3 * line.half_width);
            region.area += line.height * line.half_width;
            region.strong |= line.height > strong * noise;
        }
        regions.push_back(region);
    }
    return regions;
}

}  // namespace

std::vector<PhasedRegion> phase_regions(std::span<const Line> lines, std::span<const BinnedSpectrum> pyramid, size_t points) {
    std::vector<Line> sorted(lines.begin(), lines.end());
    const auto broad =
        std::stable_partition(sorted.begin(), sorted.end(), [&](const Line& line) { return !is_broad(line, points); });
    std::vector<Region> regions = join({sorted.begin(), broad}, points, pyramid[0].noise);
    const std::vector<Region> of_broad = join({broad, sorted.end()}, points, pyramid[0].noise);
    regions.insert(regions.end(), of_broad.begin(), of_broad.end());
    std::vector<PhasedRegion> phased;
    for (const Region& region : regions) {
        const double middle = (region.first + region.last) / 2;
        double free = static_cast<double>(points);
        for (const Region& other : regions)
            if (&other != &region && other.area > 0.02 * region.area)
                free = std::min(free, other.first > middle ? other.first - middle : middle - other.last);
        KnownPhase part = phase_by_lines(region);
        const auto wings = phase_by_wings(region, free, pyramid, points);
        const double surest = region.strong ? surest_wings : surest_weak_wings;
        const bool by_wings =
            wings && wings->variance < surest * surest && wings->variance + wings_floor * wings_floor < part.variance;
        if (by_wings) part = {wings->phase, wings->variance + wings_floor * wings_floor};
        PhasedRegion result;
        result.place = middle / static_cast<double>(points);
        result.phase = part.phase;
        result.variance = part.variance;
        result.by_wings = by_wings;
        result.strong = region.strong;
        result.lines.assign(region.lines.begin(), region.lines.end());
        phased.push_back(std::move(result));
    }
    return phased;
}

double usual_half_width(std::span<const PhasedRegion> regions, size_t points) {
    std::vector<std::pair<double, double>> widths;
    double total = 0, sum = 0;
    for (const PhasedRegion& region : regions)
        if (!is_broad(region.lines[0], points))
            for (const Line& line : region.lines) {
                widths.emplace_back(line.half_width, line.height * line.height * line.half_width);
                total += widths.back().second;
            }
    std::sort(widths.begin(), widths.end());
    for (const auto& [width, weight] : widths)
        if ((sum += weight) >= total / 2) return width;
    return 1;
}

const BinnedSpectrum& bins_for_lines(std::span<const PhasedRegion> regions, std::span<const BinnedSpectrum> pyramid) {
    const double width = usual_half_width(regions, pyramid[0].bins.size());
    size_t level = 0;
    while (level + 1 < pyramid.size() && width >= narrowest * pyramid[level + 1].width) ++level;
    return pyramid[level];
}

bool is_noisy(std::span<const PhasedRegion> regions, std::span<const BinnedSpectrum> pyramid) {
    const double most = noisy_below * bins_for_lines(regions, pyramid).noise;
    return std::all_of(regions.begin(), regions.end(), [&](const PhasedRegion& region) {
        return std::all_of(region.lines.begin(), region.lines.end(), [&](const Line& line) { return line.height < most; });
    });
}

std::vector<std::complex<double>> turned_back(const BinnedSpectrum& bins, size_t points, const PhaseLine& phase) {
    const auto whole = static_cast<double>(points);
    std::vector<Value> turned(bins.bins);
    Value turn = std::polar(1.0, -phase.at(bins.point(0) / whole));
    const Value step = std::polar(1.0, -phase.first_order * bins.width / whole);
    for (Value& bin : turned) {
        bin = times(bin, turn);
        turn = times(turn, step);
    }
    return turned;
}

}  // namespace zolt
