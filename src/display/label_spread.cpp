// Without their widths the places only have to rise: a monotone regression, by pooling neighbours that violate the order.
#include "display/label_spread.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zolt {

namespace {

// Labels that push one another: their common place, widths taken out.
struct Pool {
    double mean = 0;
    size_t count = 0;
};

void thin(std::vector<SpreadLabel>& labels, double room) {
    double taken = 0;
    std::vector<SpreadLabel*> by_weight;
    for (SpreadLabel& label : labels) {
        label.shown = true;
        taken += label.width;
        by_weight.push_back(&label);
    }
    std::stable_sort(by_weight.begin(), by_weight.end(), [](const auto* a, const auto* b) { return a->weight < b->weight; });
    for (size_t i = 0; i < by_weight.size() && taken > room; ++i) {
        by_weight[i]->shown = false;
        taken -= by_weight[i]->width;
    }
}

}  // namespace

double spread_labels(std::vector<SpreadLabel>& labels, double from, double to) {
    thin(labels, to - from);
    std::vector<Pool> pools;
    double before = 0;  // widths of the labels in front
    for (const SpreadLabel& label : labels) {
        if (!label.shown) continue;
        pools.push_back({label.wanted - before - label.width / 2, 1});
        before += label.width;
        for (; pools.size() > 1 && pools[pools.size() - 2].mean > pools.back().mean; pools.pop_back()) {
            Pool& left = pools[pools.size() - 2];
            const Pool& right = pools.back();
            const size_t count = left.count + right.count;
            left = {(left.mean * static_cast<double>(left.count) + right.mean * static_cast<double>(right.count)) /
                        static_cast<double>(count),
                    count};
        }
    }
    double furthest = 0, taken = 0;
    size_t pool = 0, used = 0;
    for (SpreadLabel& label : labels) {
        if (!label.shown) continue;
        label.place = std::clamp(pools[pool].mean, from, std::max(from, to - before)) + taken + label.width / 2;
        taken += label.width;
        furthest = std::max(furthest, std::abs(label.place - label.wanted));
        if (++used == pools[pool].count) ++pool, used = 0;
    }
    return furthest;
}

}  // namespace zolt
