// One level of blocks: even of 64 million points that is a million blocks, a millisecond to go through.
#include "display/trace_summary.h"

#include <algorithm>

namespace zolt {

void TraceSummary::take_points(Extremes& into, size_t begin, size_t end) const {
    for (size_t i = begin; i < end; ++i) into.take(i, value_of(points_[i], part_));
}

namespace {

constexpr size_t lanes = 8;

// Extremes of a whole block, eight lanes at a time, in a form that compilers turn into vector instructions. False when a
// value is not finite.
template <size_t count, class Value>
bool fast_range(Value value, Range& range) {
    float low[lanes], high[lanes], finite[lanes];
    for (size_t k = 0; k < lanes; ++k) {
        low[k] = high[k] = value(k);
        finite[k] = 0;
    }
    for (size_t i = 0; i < count; i += lanes)
        for (size_t k = 0; k < lanes; ++k) {
            const float v = value(i + k);
            low[k] = v < low[k] ? v : low[k];
            high[k] = v > high[k] ? v : high[k];
            finite[k] += v - v;  // 0, or not a number
        }
    float doubt = 0;
    range = {true, low[0], high[0]};
    for (size_t k = 0; k < lanes; ++k) {
        range.low = std::min(range.low, low[k]);
        range.high = std::max(range.high, high[k]);
        doubt += finite[k];
    }
    return doubt == 0;
}

void widen(Range& range, const Range& by) {
    if (!by.any) return;
    range.low = range.any ? std::min(range.low, by.low) : by.low;
    range.high = range.any ? std::max(range.high, by.high) : by.high;
    range.any = true;
}

}  // namespace

Range TraceSummary::range_of(size_t begin, size_t end) const {
    Range range;
    if (end - begin == block) {
        const auto* floats = reinterpret_cast<const float*>(points_.data() + begin);
        bool good = false;
        if (part_ == Part::real) good = fast_range<block>([floats](size_t i) { return floats[2 * i]; }, range);
        if (part_ == Part::imaginary) good = fast_range<block>([floats](size_t i) { return floats[2 * i + 1]; }, range);
        if (good) return range;
    }
    Extremes found;
    take_points(found, begin, end);
    return {found.any, found.low_value, found.high_value};
}

void TraceSummary::build(std::span<const Complex> points, Part part) {
    points_ = points;
    part_ = part;
    built_ = true;
    all_ = {};
    blocks_.resize((points.size() + block - 1) / block);
    for (size_t k = 0; k < blocks_.size(); ++k) {
        blocks_[k] = range_of(k * block, std::min((k + 1) * block, points.size()));
        widen(all_, blocks_[k]);
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
    // The places are looked up in the one or two blocks that hold the extremes.
    size_t low_block = last, high_block = last;
    for (size_t k = first; k < last; ++k) {
        if (!blocks_[k].any) continue;
        if (low_block == last || blocks_[k].low < blocks_[low_block].low) low_block = k;
        if (high_block == last || blocks_[k].high > blocks_[high_block].high) high_block = k;
    }
    for (const size_t k : {std::min(low_block, high_block), std::max(low_block, high_block)})
        if (k < last) take_points(found, k * block, (k + 1) * block);
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

PlotCache& PlotCache::of_overlay(size_t number) {
    if (overlays_.size() <= number) overlays_.resize(number + 1);
    return overlays_[number];
}

void PlotCache::forget() {
    for (TraceSummary& part : parts_) part.forget();
    for (PlotCache& overlay : overlays_) overlay.forget();
}

}  // namespace zolt
