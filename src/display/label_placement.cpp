// Without the room that the labels before it take, each label's place only must not lie left of the one before.
#include "display/label_placement.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace zolt {

namespace {

// The non-decreasing series nearest to the targets.
std::vector<double> isotonic(const std::vector<double>& targets) {
    struct Pool {
        double sum = 0;
        size_t count = 0;
        double mean() const { return sum / static_cast<double>(count); }
    };
    std::vector<Pool> pools;
    for (const double target : targets) {
        Pool pool = {target, 1};
        for (; !pools.empty() && pools.back().mean() >= pool.mean(); pools.pop_back()) {
            pool.sum += pools.back().sum;
            pool.count += pools.back().count;
        }
        pools.push_back(pool);
    }
    std::vector<double> series;
    for (const Pool& pool : pools) series.insert(series.end(), pool.count, pool.mean());
    return series;
}

// Places of the labels `kept`, which fit together.
std::vector<double> spread(std::span<const LabelWish> wishes, const std::vector<size_t>& kept, double left, double right) {
    if (kept.empty()) return {};
    std::vector<double> before(kept.size()), targets(kept.size());
    for (size_t i = 0; i < kept.size(); ++i) {
        if (i > 0) before[i] = before[i - 1] + (wishes[kept[i - 1]].width + wishes[kept[i]].width) / 2;
        targets[i] = wishes[kept[i]].place - before[i];
    }
    const double low = left + wishes[kept.front()].width / 2, high = right - wishes[kept.back()].width / 2 - before.back();
    std::vector<double> places = isotonic(targets);
    // Of the solutions between bounds the nearest is the unbounded one cut off at them.
    for (size_t i = 0; i < places.size(); ++i) places[i] = std::clamp(places[i], low, std::max(low, high)) + before[i];
    return places;
}

// Drops the lightest until the rest fit side by side.
void drop_what_does_not_fit(std::span<const LabelWish> wishes, std::vector<size_t>& kept, double room) {
    std::vector<size_t> by_weight = kept;
    std::stable_sort(by_weight.begin(), by_weight.end(), [&](size_t a, size_t b) { return wishes[a].weight > wishes[b].weight; });
    double taken = 0;
    size_t fit = 0;
    for (; fit < by_weight.size(); ++fit) {
        taken += wishes[by_weight[fit]].width;
        if (taken > room) break;
    }
    kept.assign(by_weight.begin(), by_weight.begin() + static_cast<std::ptrdiff_t>(fit));
    std::sort(kept.begin(), kept.end());
}

// In every row of labels that touch, with one too far from its place, the lightest is dropped. False when there is none.
bool drop_crowding(std::span<const LabelWish> wishes, std::vector<size_t>& kept, const std::vector<double>& places,
                   double farthest) {
    std::vector<size_t> left_over;
    size_t first = 0;
    for (size_t i = 0; i < kept.size(); ++i) {
        const double pitch = i + 1 < kept.size() ? (wishes[kept[i]].width + wishes[kept[i + 1]].width) / 2 : 0;
        if (i + 1 < kept.size() && places[i + 1] - places[i] < pitch + 1e-6) continue;
        bool far = false;
        size_t lightest = first;
        for (size_t k = first; k <= i; ++k) {
            far = far || std::abs(places[k] - wishes[kept[k]].place) > farthest;
            if (wishes[kept[k]].weight < wishes[kept[lightest]].weight) lightest = k;
        }
        for (size_t k = first; k <= i; ++k)
            if (!far || k != lightest) left_over.push_back(kept[k]);
        first = i + 1;
    }
    const bool dropped = left_over.size() < kept.size();
    kept = std::move(left_over);
    return dropped;
}

}  // namespace

std::vector<std::optional<double>> place_labels(std::span<const LabelWish> wishes, double left, double right, double farthest) {
    std::vector<size_t> kept(wishes.size());
    std::iota(kept.begin(), kept.end(), size_t{0});
    drop_what_does_not_fit(wishes, kept, right - left);
    std::vector<double> places = spread(wishes, kept, left, right);
    while (drop_crowding(wishes, kept, places, farthest)) places = spread(wishes, kept, left, right);
    std::vector<std::optional<double>> all(wishes.size());
    for (size_t i = 0; i < kept.size(); ++i) all[kept[i]] = places[i];
    return all;
}

}  // namespace zolt
