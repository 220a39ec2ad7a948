// Where an axis has its ticks and what they are labelled with.
#pragma once

#include <string>
#include <vector>

namespace zolt {

struct Tick {
    double value = 0;
    bool major = false;
    std::string label;  ///< of a major tick, with just the decimals its step needs
};

/// The ticks of a linear axis between two ends (in either order) that is `length` pixels long, by rising value. Major
/// ones stand at multiples of 1, 2 or 5 times a power of ten, so far apart that labels of `size` pixels stay clear of
/// one another; four or nine minor ones lie between two of them. None without a finite range, or when the range is so
/// small beside its values that rounding would show.
std::vector<Tick> axis_ticks(double one_end, double other_end, double length, double size);

}  // namespace zolt
