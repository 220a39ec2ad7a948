// Labels along a line: each as near to its wanted place as its neighbours and the ends allow.
#pragma once

#include <vector>

namespace zolt {

struct SpreadLabel {
    double wanted = 0, width = 0;  ///< centre that is wanted; room along the line, with the gap to its neighbours
    double weight = 0;             ///< what has the least gives way when there is no room for all
    double place = 0;              ///< the centre that it gets
    bool shown = true;
};

/// Gives the labels, which are in order of their wanted places, places between two ends so that none overlap: the sum of the
/// squared distances from the wanted places is as small as can be. Where all of them do not fit, those of the least weight
/// are not shown. Returns the largest distance.
double spread_labels(std::vector<SpreadLabel>& labels, double from, double to);

}  // namespace zolt
