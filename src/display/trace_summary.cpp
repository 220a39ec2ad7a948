// One level of blocks: even of 64 million points that is a million blocks, a millisecond to go through.
#include "display/trace_summary.h"

#include <algorithm>

namespace zolt {

void TraceSummary::take_points(Extremes& into, size_t begin, size_t end) const {
    for (size_t i = begin; i < end; ++i) into.take(i, value_of(points_[i], part_));
}

void TraceSummary::build(std::span<const Complex> points, Part part) {
    points_ = points;
    part_ = part;
    built_ = true;
    all_ = {};
    blocks_.assign((points.size() + block - 1) / block, {});
    for (size_t k = 0; k < blocks_.size(); ++k) {
        take_points(blocks_[k], k * block, std::min((k + 1) * block, points.size()));
        all_.take(blocks_[k]);
    }
}

Extremes TraceSummary::between(size_t begin, size_t end) const {
    Extremes found;
    const size_t first = (begin + block - 1) / block, last = end / block;
    if (first >= last) {
        take_points(found, begin, end);
        return found;
    }
    take_points(found, begin, first * block);
    for (size_t k = first; k < last; ++k) found.take(blocks_[k]);
    take_points(found, last * block, end);
    return found;
}

const TraceSummary& PlotCache::summary(std::span<const Complex> points, Part part) {
    if (points.data() != data_ || points.size() != count_) forget();
    data_ = points.data();
    count_ = points.size();
    TraceSummary& summary = parts_[static_cast<int>(part)];
    if (!summary.built()) summary.build(points, part);
    return summary;
}

void PlotCache::forget() {
    for (TraceSummary& part : parts_) part.forget();
}

}  // namespace zolt
