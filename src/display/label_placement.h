// Labels along one line: as near to their places as they fit, none over another.
#pragma once

#include <optional>
#include <span>
#include <vector>

namespace zolt {

struct LabelWish {
    double place = 0;   ///< where its middle would be best
    double width = 0;   ///< room that it takes
    double weight = 0;  ///< of two that do not both fit, the heavier one stays
};

/// The middles of labels in order of their wished places, all of them between `left` and `right`, apart by their widths, with
/// the least sum of squared distances from their places (isotonic regression by pooling adjacent violators; Ayer et al.,
/// Ann. Math. Stat. 26 (1955) 641). Where they do not all fit, or one would stand further off than `farthest`, the lightest of
/// those that crowd it gets none.
std::vector<std::optional<double>> place_labels(std::span<const LabelWish> wishes, double left, double right, double farthest);

}  // namespace zolt
