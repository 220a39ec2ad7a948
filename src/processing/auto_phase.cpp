// Regions, regression, candidates and their choice.
#include "processing/auto_phase.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "processing/auto_phase_flanks.h"
#include "processing/auto_phase_lines.h"
#include "processing/auto_phase_regions.h"
#include "processing/auto_phase_regression.h"
#include "processing/auto_phase_score.h"
#include "processing/auto_phase_sparse.h"

namespace zolt {

namespace {

constexpr double pi = std::numbers::pi, degree = pi / 180;
constexpr double largest_first_order = 6 * pi;
constexpr double broad = 6 * degree;  // added to what is known of each region, so that none rules alone
constexpr size_t score_bins = 4096;
constexpr double usual_scatter = 2 * degree;  // of strong regions whose lines overlap, but have the shapes they are fitted with
constexpr double area_error = 1.5 * degree;   // of the phase with the smallest area, by baseline and overlap
constexpr double farthest = 25 * degree;      // that a region counts as off

// How much of the regions' weight speaks against a phase, 0 to 1.
double disagreement(std::span<const PhasedRegion> regions, const PhaseLine& phase) {
    double total = 0, against = 0;
    for (const PhasedRegion& region : regions) {
        const double weight = 1 / (region.variance + broad * broad);
        const double off = within_half_turn(region.phase - phase.at(region.place)) / (20 * degree);
        total += weight;
        against += weight * std::min(1.0, off * off);
    }
    return total > 0 ? against / total : 0;
}

int agreeing(std::span<const PhasedRegion> regions, const PhaseLine& phase) {
    return static_cast<int>(std::count_if(regions.begin(), regions.end(), [&](const PhasedRegion& region) {
        return std::abs(within_half_turn(region.phase - phase.at(region.place))) < 10 * degree;
    }));
}

// First orders for which the phases of the regions lie best on a line: the largest maxima of the sum of their unit vectors
// turned back, small first orders preferred.
void add_lines_of_regions(std::span<const PhasedRegion> regions, PhaseOrder order, std::vector<PhaseLine>& candidates) {
    if (regions.empty()) return;
    constexpr int steps = 216;
    const int reach = order == PhaseOrder::first ? steps : 0;
    double total = 0;
    for (const PhasedRegion& region : regions) total += 1 / (region.variance + broad * broad);
    std::vector<std::pair<double, PhaseLine>> sums;
    for (int i = -reach - 1; i <= reach + 1; ++i) {
        const double slope = largest_first_order * i / steps;
        std::complex<double> sum = 0;
        for (const PhasedRegion& region : regions)
            sum += std::polar(1 / (region.variance + broad * broad), 2 * (region.phase - slope * region.place));
        sums.emplace_back(std::abs(sum) / total * (1 - 0.1 * std::abs(i) / steps), PhaseLine{std::arg(sum) / 2, slope});
    }
    std::vector<std::pair<double, PhaseLine>> maxima;
    for (size_t i = 1; i + 1 < sums.size(); ++i)
        if (reach == 0 || (sums[i].first > sums[i - 1].first && sums[i].first >= sums[i + 1].first)) maxima.push_back(sums[i]);
    std::stable_sort(maxima.begin(), maxima.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    for (size_t i = 0; i < std::min<size_t>(maxima.size(), 4); ++i) candidates.push_back(regress(regions, maxima[i].second, order));
}

// Nelder and Mead's simplex in zero order at the pivot and first order; for zero order alone, along one edge.
template <class F>
PhaseLine minimise(F measure, PhaseLine start, double pivot, PhaseOrder order, double size, int evaluations) {
    struct Corner {
        double at_pivot, slope, value;
    };
    const auto evaluate = [&](double at_pivot, double slope) {
        const double beyond = std::max(0.0, std::abs(slope) - largest_first_order);
        return Corner{at_pivot, slope, measure(PhaseLine{at_pivot - slope * pivot, slope}) + beyond};
    };
    const double middle = start.zero_order + start.first_order * pivot;
    const bool both = order == PhaseOrder::first;
    std::array<Corner, 3> corners = {evaluate(middle, start.first_order), evaluate(middle + size, start.first_order),
                                     evaluate(both ? middle : middle - size, start.first_order + (both ? 2 * size : 0))};
    const auto better = [](const Corner& a, const Corner& b) { return a.value < b.value; };
    std::sort(corners.begin(), corners.end(), better);
    while ((evaluations -= 2) > 0) {
        Corner& worst = corners[2];
        const double x = (corners[0].at_pivot + corners[1].at_pivot) / 2, y = (corners[0].slope + corners[1].slope) / 2;
        const auto along = [&](double t) { return evaluate(x + t * (x - worst.at_pivot), y + t * (y - worst.slope)); };
        const Corner reflected = along(1);
        if (better(reflected, corners[0]))
            worst = std::min(along(2), reflected, better);
        else if (better(reflected, corners[1]))
            worst = reflected;
        else if (const Corner contracted = along(better(reflected, worst) ? 0.5 : -0.5); better(contracted, worst))
            worst = contracted;
        else
            for (size_t i = 1; i < 3; ++i)
                corners[i] = evaluate((corners[i].at_pivot + corners[0].at_pivot) / 2, (corners[i].slope + corners[0].slope) / 2);
        std::sort(corners.begin(), corners.end(), better);
    }
    return {corners[0].at_pivot - corners[0].slope * pivot, corners[0].slope};
}

// Where the signal is, weighted by its power: turning about it, zero and first order hardly depend on one another.
double centre_of_signal(const BinnedSpectrum& bins, size_t points) {
    double sum = 0, moment = 0;
    for (size_t i = 0; i < bins.bins.size(); ++i) {
        const double power = std::norm(bins.bins[i]);
        sum += power;
        moment += power * bins.point(static_cast<double>(i));
    }
    return sum > 0 ? moment / sum / static_cast<double>(points) : 0.5;
}

// Something stands so far above the noise, at one width of bins or another, as chance does not make it.
bool holds_signal(std::span<const BinnedSpectrum> pyramid) {
    constexpr double chance = 5.2;
    return std::any_of(pyramid.begin(), pyramid.end(), [](const BinnedSpectrum& level) {
        const double least = std::pow(chance * level.noise, 2);
        return std::any_of(level.bins.begin(), level.bins.end(), [&](const auto& bin) { return std::norm(bin) > least; });
    });
}

// The finest bins that are few enough to be judged often.
const BinnedSpectrum& for_scores(std::span<const BinnedSpectrum> pyramid) {
    return *std::find_if(pyramid.begin(), pyramid.end(), [](const auto& level) { return level.bins.size() <= score_bins; });
}

// The candidate that all measures together like best, half a turn more tried for each.
PhaseLine choose(std::span<const PhasedRegion> regions, const PhaseScore& score, double pivot, PhaseOrder order) {
    std::vector<PhaseLine> candidates;
    add_lines_of_regions(regions, order, candidates);
    const auto entropy = [&](const PhaseLine& phase) { return score.entropy(phase); };
    const auto negative = [&](const PhaseLine& phase) { return score.negative(phase); };
    for (int quarter = 0; quarter < 4; ++quarter)
        candidates.push_back(minimise(entropy, {quarter * pi / 2, 0}, pivot, order, 30 * degree, 40));
    candidates.push_back(minimise(negative, candidates.back(), pivot, order, 30 * degree, 40));
    PhaseLine best;
    double least = std::numeric_limits<double>::max();
    for (const PhaseLine& found : candidates) {
        for (const double turn : {0.0, pi}) {
            const PhaseLine candidate{found.zero_order + turn, found.first_order};
            const double large = 1 + 0.05 * std::abs(candidate.first_order) / (2 * pi);
            const double value = score.area(candidate) * large + disagreement(regions, candidate);
            if (value >= least) continue;
            best = candidate;
            least = value;
        }
    }
    return best;
}

// The square of what `off` tells of strong regions, on the weighted average; 0 without any.
template <class F>
double mean_square(std::span<const PhasedRegion> regions, size_t points, F off) {
    double weights = 0, sum = 0;
    for (const PhasedRegion& region : regions) {
        if (!region.strong || is_broad(region.lines[0], points)) continue;
        weights += 1 / region.variance;
        sum += std::pow(off(region), 2) / region.variance;
    }
    return weights > 0 ? sum / weights : 0;
}

// The phase near another with the smallest area; the baseline is taken away anew as the phase becomes known.
PhaseLine settle(const BinnedSpectrum& bins, size_t points, PhaseLine phase, double pivot, PhaseOrder order) {
    for (int round = 0; round < 3; ++round) {
        const PhaseScore score(level_at_phase(bins, points, phase), points);
        const auto area = [&](const PhaseLine& change) { return score.area(change); };
        const PhaseLine change = minimise(area, {}, pivot, order, 3 * degree, 50);
        phase.zero_order += change.zero_order;
        phase.first_order += change.first_order;
    }
    return phase;
}

PhaseLine mean(const PhaseLine& a, const PhaseLine& b) {
    return {(a.zero_order + b.zero_order) / 2, (a.first_order + b.first_order) / 2};
}

// The regression over the regions that agree with a phase, their own phases known better each time. Where noise decides, the mean
// of it and of a sum of few lines, which has other errors. Where strong regions do not
// lie on a line the shapes of their lines are at fault, and the area, which asks for no shape, counts by how much they scatter;
// the less the farther it is from them.
PhaseLine refine(std::span<const PhasedRegion> regions, std::span<const BinnedSpectrum> pyramid, PhaseLine phase, double pivot,
                 PhaseOrder order) {
    std::vector<PhasedRegion> refined(regions.begin(), regions.end());
    for (int round = 0; round < 2 && agreeing(refined, phase) > 0; ++round) {
        phase = regress(refined, phase, order);
        refined = phase_by_flanks({regions.begin(), regions.end()}, pyramid, phase, order);
    }
    phase = regress(refined, phase, order);
    if (is_noisy(regions, pyramid))
        if (const auto sparse = phase_by_sparse_lines(regions, pyramid, phase, order)) return mean(phase, *sparse);
    const size_t points = pyramid[0].bins.size();
    const double scatter = mean_square(refined, points, [&](const PhasedRegion& region) {
        return std::min(std::abs(within_half_turn(region.phase - phase.at(region.place))), farthest);
    });
    const double excess = scatter - usual_scatter * usual_scatter;
    if (excess <= 0) return phase;
    const PhaseLine settled = settle(for_scores(pyramid), points, phase, pivot, order);
    const double apart =
        mean_square(refined, points, [&](const PhasedRegion& region) { return settled.at(region.place) - phase.at(region.place); });
    const double share = excess / (excess + std::max(area_error * area_error, apart));
    return {phase.zero_order + share * (settled.zero_order - phase.zero_order),
            phase.first_order + share * (settled.first_order - phase.first_order)};
}

// The greater part of the area is taken to be positive; where there are lines, theirs, which no baseline touches. What seems a
// broad line may be baseline, too.
bool upside_down(std::span<const Line> lines, size_t points, const PhaseScore& score, const PhaseLine& phase) {
    if (lines.empty()) return score.area({phase.zero_order + pi, phase.first_order}) < score.area(phase);
    double sum = 0;
    const bool narrow = std::any_of(lines.begin(), lines.end(), [&](const Line& line) { return !is_broad(line, points); });
    for (const Line& line : lines)
        if (!narrow || !is_broad(line, points))
            sum += line.height * line.half_width * std::cos(line.phase - phase.at(line.point / static_cast<double>(points)));
    return sum < 0;
}

}  // namespace

std::optional<FoundPhase> find_phase(std::span<const Complex> spectrum, PhaseOrder order) {
    const auto finite = [](const Complex& point) { return std::isfinite(point.real()) && std::isfinite(point.imag()); };
    if (!std::all_of(spectrum.begin(), spectrum.end(), finite)) return std::nullopt;
    const auto pyramid = bin_spectrum(spectrum);
    if (!holds_signal(pyramid)) return std::nullopt;
    const auto lines = find_lines(pyramid);
    const auto regions = phase_regions(lines, pyramid, spectrum.size());

    BinnedSpectrum coarse = for_scores(pyramid);
    if (!lines.empty()) {
        const auto level = smooth_level(coarse.bins, 16);
        for (size_t i = 0; i < level.size(); ++i) coarse.bins[i] -= level[i];
    }
    const double pivot = centre_of_signal(coarse, spectrum.size());
    const PhaseScore score(std::move(coarse), spectrum.size());
    PhaseLine best = choose(regions, score, pivot, order);
    if (agreeing(regions, best) > 0)
        best = refine(regions, pyramid, best, pivot, order);
    else
        best = minimise([&](const PhaseLine& phase) { return score.area(phase); }, best, pivot, order, 5 * degree, 60);
    if (upside_down(lines, spectrum.size(), score, best)) best.zero_order += pi;
    return FoundPhase{std::remainder(best.zero_order, 2 * pi) / degree, best.first_order / degree};
}

}  // namespace zolt
