// Baseline points by the derivative, polynomials and penalised least squares through them.
#include "processing/baseline_fit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace zolt {

namespace {

constexpr size_t most_bins = 8192;  // a baseline is smooth: so many means of points tell all of it
constexpr size_t fewest_bins = 512;
constexpr double largest_penalty = 1e12;  // beyond it the equations are not solved to any digit

// Lambda for a spectrum of so many bins.
double penalty(double lambda, size_t bins) {
    return std::min(lambda * std::pow(static_cast<double>(bins) / 32768, 4), largest_penalty);
}

enum class Difference { first, second };

// Differences of the means of `width` points before, about and behind each point; none at the ends.
std::vector<double> difference_power(std::span<const double> x, size_t width, Difference order) {
    std::vector<double> sums(x.size() + 1), power(x.size());
    for (size_t i = 0; i < x.size(); ++i) sums[i + 1] = sums[i] + x[i];
    const size_t half = (width + 1) / 2;
    for (size_t i = width + half; i + width + half < x.size(); ++i) {
        const auto mean = [&](size_t from, size_t to) { return (sums[to] - sums[from]) / static_cast<double>(to - from); };
        const double left = mean(i - half - width, i - half), right = mean(i + half, i + half + width);
        const double value = order == Difference::first ? right - left : right - 2 * mean(i - half, i + half) + left;
        power[i] = value * value;
    }
    return power;
}

// The power up to which points are baseline: that of 3.5 standard deviations, which the lower powers tell. (Mean and deviation
// of what is below a threshold, and again, would follow the noise itself down.)
double threshold_of(const std::vector<double>& power) {
    constexpr double lower_part = 0.3, its_power = 0.148;  // of squares of normal deviates
    std::vector<double> sorted;
    std::copy_if(power.begin(), power.end(), std::back_inserter(sorted), [](double value) { return value > 0; });
    if (sorted.empty()) return 0;
    const auto part = sorted.begin() + static_cast<std::ptrdiff_t>(lower_part * static_cast<double>(sorted.size()));
    std::nth_element(sorted.begin(), part, sorted.end());
    return 3.5 * 3.5 * *part / its_power;
}

// Marks the signals at this width of the difference. Points above the limit that lie closer than the width belong to one
// signal; one that is no longer than chance makes it is none.
void mark_signals(std::span<const double> x, size_t width, Difference order, std::vector<bool>& baseline) {
    const std::vector<double> power = difference_power(x, width, order);
    const double limit = threshold_of(power);
    for (size_t i = 0; i < x.size(); ++i) {
        if (power[i] <= limit) continue;
        size_t last = i, above = 0;
        for (size_t j = i; j < x.size() && j - last <= 2 * width; ++j) {
            if (power[j] <= limit) continue;
            last = j;
            ++above;
        }
        if (above >= std::max<size_t>(width, 3)) {
            const size_t feet = std::min((last - i + 1) / 2, x.size() / 32) + width;
            const size_t first = i > feet ? i - feet : 0, end = std::min(x.size(), last + feet + 1);
            std::fill(baseline.begin() + static_cast<std::ptrdiff_t>(first), baseline.begin() + static_cast<std::ptrdiff_t>(end),
                      false);
        }
        i = last;
    }
}

// Means of the baseline points in bins, and what part of each bin is baseline.
struct Bins {
    std::vector<double> y, weights;
    double width = 1;

    double place(double i) const { return (i + 0.5) * width - 0.5; }
};

// So few of them that the curve can be solved for.
Bins bin_points(std::span<const double> x, const std::vector<bool>& baseline, const BaselineCurve& curve) {
    size_t count = std::min(x.size(), most_bins);
    while (curve.order < 0 && count >= 2 * fewest_bins && penalty(curve.lambda, count) > 1e-3 * largest_penalty) count /= 2;
    Bins bins{std::vector<double>(count), std::vector<double>(count), static_cast<double>(x.size()) / static_cast<double>(count)};
    for (size_t i = 0; i < x.size(); ++i) {
        if (!baseline[i]) continue;
        const size_t bin = i * count / x.size();
        bins.y[bin] += x[i];
        bins.weights[bin] += 1;
    }
    for (size_t i = 0; i < count; ++i) {
        if (bins.weights[i] > 0) bins.y[i] /= bins.weights[i];
        bins.weights[i] /= bins.width;
    }
    return bins;
}

// Beyond its points a polynomial grows as Chebyshev's does, and in a wide gap between them it swings: so far as the first leaves
// a factor of five and the second does not happen.
int order_for(const Bins& bins, int order) {
    const size_t n = bins.weights.size();
    size_t first = n, last = 0, gap = 0;
    for (size_t i = 0; i < n; ++i) {
        if (bins.weights[i] <= 0) continue;
        if (first == n) first = i;
        gap = std::max(gap, i - std::max(last, first));
        last = i;
    }
    if (first >= last) return 0;
    const auto covered = static_cast<double>(last - first);
    const double beyond = std::acosh(1 + 2 * static_cast<double>(std::max(first, n - 1 - last)) / covered);
    const double outside = beyond > 0 ? std::acosh(5.0) / beyond : order, inside = 1.5 * covered / static_cast<double>(gap);
    return static_cast<int>(std::min({static_cast<double>(order), outside, inside}));
}

// Least squares in polynomials orthogonal over the weighted bins.
std::vector<double> fit_polynomial(const Bins& bins, int order) {
    const size_t n = bins.y.size();
    std::vector<double> result(n);
    std::vector<std::vector<double>> basis;
    for (int power = 0; power <= order; ++power) {
        std::vector<double> f(n, 1.0);
        if (power > 0)
            for (size_t i = 0; i < n; ++i) f[i] = basis.back()[i] * (2.0 * static_cast<double>(i) / static_cast<double>(n) - 1);
        // Twice, to be orthogonal to the last digit.
        for (int pass = 0; pass < 2; ++pass) {
            for (const auto& g : basis) {
                double shared = 0;
                for (size_t i = 0; i < n; ++i) shared += bins.weights[i] * f[i] * g[i];
                for (size_t i = 0; i < n; ++i) f[i] -= shared * g[i];
            }
        }
        double square = 0, part = 0;
        for (size_t i = 0; i < n; ++i) square += bins.weights[i] * f[i] * f[i];
        if (!(square > 0)) break;
        for (size_t i = 0; i < n; ++i) {
            f[i] /= std::sqrt(square);
            part += bins.weights[i] * f[i] * bins.y[i];
        }
        for (size_t i = 0; i < n; ++i) result[i] += part * f[i];
        basis.push_back(std::move(f));
    }
    return result;
}

// Solves (W + lambda D'D) z = W y, D the second difference: five diagonals, factored as L D L' from the top down.
std::vector<double> smooth(const std::vector<double>& y, const std::vector<double>& weights, double lambda) {
    const size_t n = y.size();
    std::vector<double> diagonal(n), next(n), second(n), z(n);
    const auto entry = [&](size_t i, size_t step) {
        // Of the rows 1, -2, 1 of D those that reach both columns.
        constexpr double row[] = {1, -2, 1};
        double sum = 0;
        for (size_t r = 0; r + step < 3; ++r)
            if (i >= r && i - r + 2 < n) sum += row[r] * row[r + step];
        return lambda * sum;
    };
    for (size_t i = 0; i < n; ++i) {
        diagonal[i] = weights[i] + entry(i, 0);
        next[i] = i + 1 < n ? entry(i, 1) : 0;
        second[i] = i + 2 < n ? entry(i, 2) : 0;
        z[i] = weights[i] * y[i];
        if (i >= 1) {
            const double f = next[i - 1];  // already divided by the diagonal
            diagonal[i] -= f * f * diagonal[i - 1];
            next[i] -= f * second[i - 1] * diagonal[i - 1];
            z[i] -= f * z[i - 1];
        }
        if (i >= 2) {
            const double f = second[i - 2];
            diagonal[i] -= f * f * diagonal[i - 2];
            z[i] -= f * z[i - 2];
        }
        next[i] /= diagonal[i];
        second[i] /= diagonal[i];
    }
    for (size_t i = n; i-- > 0;) {
        z[i] /= diagonal[i];
        if (i + 1 < n) z[i] -= next[i] * z[i + 1];
        if (i + 2 < n) z[i] -= second[i] * z[i + 2];
    }
    return z;
}

// Penalised least squares, reweighted until the weights stand still.
std::vector<double> fit_smooth(const Bins& bins, double lambda, bool positive) {
    constexpr int most_rounds = 50;
    constexpr double still = 1e-3;
    const size_t n = bins.y.size();
    std::vector<double> weights = bins.weights, z;
    for (int round = 0; round < most_rounds; ++round) {
        z = smooth(bins.y, weights, lambda);
        double sum = 0, squares = 0, count = 0;
        std::vector<double> sizes;
        for (size_t i = 0; i < n; ++i) {
            const double off = bins.y[i] - z[i];
            if (bins.weights[i] <= 0) continue;
            sizes.push_back(std::abs(off));
            if (positive && off >= 0) continue;
            sum += positive ? off : 0;
            squares += off * off;
            count += 1;
        }
        if (count < 2) break;
        // No less than what half of the bins are off, or ever fewer would hold the curve.
        const auto middle = sizes.begin() + static_cast<std::ptrdiff_t>(sizes.size() / 2);
        std::nth_element(sizes.begin(), middle, sizes.end());
        const double mean = sum / count, spread = std::max(std::sqrt(std::max(squares / count - mean * mean, 0.0)), 1.5 * *middle);
        if (!(spread > 0)) break;
        double change = 0, size = 0;
        for (size_t i = 0; i < n; ++i) {
            const double off = positive ? bins.y[i] - z[i] : std::abs(bins.y[i] - z[i]) - spread;
            const double x = std::min(2 * (off - (2 * spread - mean)) / spread, 50.0);
            const double weight = bins.weights[i] / (1 + std::exp(x));
            change += (weight - weights[i]) * (weight - weights[i]);
            size += weights[i] * weights[i];
            weights[i] = weight;
        }
        if (change < still * still * size) break;
    }
    return z;
}

}  // namespace

std::vector<bool> find_baseline_points(std::span<const double> spectrum) {
    std::vector<bool> baseline(spectrum.size(), true);
    if (spectrum.size() < BaselineCurve::fewest_points) return baseline;
    const size_t width = std::max<size_t>(spectrum.size() / 8192, 2);
    std::vector<double> flat(spectrum.begin(), spectrum.end());
    for (const auto order : {Difference::second, Difference::first}) {
        baseline.assign(spectrum.size(), true);
        for (const size_t times : {size_t{1}, size_t{4}}) mark_signals(flat, width * times, order, baseline);
        const auto left = std::count(baseline.begin(), baseline.end(), true);
        // A spectrum full of signals: all points tell more than a few between them.
        if (static_cast<size_t>(left) < spectrum.size() / 20) baseline.assign(spectrum.size(), true);
        if (order == Difference::first) break;
        const auto rough = fit_baseline(spectrum, baseline, {}, true);
        for (size_t i = 0; i < flat.size(); ++i) flat[i] -= rough[i];
    }
    return baseline;
}

std::vector<double> fit_baseline(std::span<const double> spectrum, const std::vector<bool>& baseline_points,
                                 const BaselineCurve& curve, bool positive) {
    const Bins bins = bin_points(spectrum, baseline_points, curve);
    const auto count = static_cast<double>(bins.y.size());
    const std::vector<double> z = curve.order >= 0
                                      ? fit_polynomial(bins, order_for(bins, std::min(curve.order, BaselineCurve::highest_order)))
                                      : fit_smooth(bins, penalty(curve.lambda, bins.y.size()), positive);
    std::vector<double> result(spectrum.size());
    for (size_t i = 0; i < result.size(); ++i) {
        const double at = (static_cast<double>(i) + 0.5) / bins.width - 0.5;
        const auto before = static_cast<size_t>(std::clamp(at, 0.0, count - 2));
        const double share = at - static_cast<double>(before);
        result[i] = (1 - share) * z[before] + share * z[before + 1];
    }
    return result;
}

bool correct_fitted_baseline(std::span<Complex> x, const BaselineCurve& curve) {
    if (x.size() < BaselineCurve::fewest_points) return false;
    std::array<std::vector<double>, 2> parts{std::vector<double>(x.size()), std::vector<double>(x.size())};
    for (size_t i = 0; i < x.size(); ++i) {
        if (!std::isfinite(x[i].real()) || !std::isfinite(x[i].imag())) return false;
        parts[0][i] = x[i].real();
        parts[1][i] = x[i].imag();
    }
    for (auto& part : parts) {
        const auto baseline = fit_baseline(part, find_baseline_points(part), curve, &part == &parts[0]);
        for (size_t i = 0; i < x.size(); ++i) part[i] -= baseline[i];
    }
    for (size_t i = 0; i < x.size(); ++i) x[i] = {static_cast<float>(parts[0][i]), static_cast<float>(parts[1][i])};
    return true;
}

}  // namespace zolt
