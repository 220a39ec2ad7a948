// Stages of the JEOL Delta translator: .jdf files of one and two dimensions.
#pragma once

#include <string>

#include "import/format.h"

namespace zolt {

/// Parameters from the header and the parameter section.
bool JEOL_DELTA_Parm(Translation& t);
/// Points of the valid range into the temporary files: rows of dimension 1, the two parts of a pair one after the other.
bool JEOL_DELTA_Data(Translation& t);

/// The delay of the digital filter in points, from the parameters `orders` (first entry: number of stages) and `factors`
/// as blank-separated lists: half the sum over stages of (order - 1) / (product of the factors from that stage on).
/// 0 when they do not fit together.
double jeol_filter_delay(const std::string& orders, const std::string& factors);

}  // namespace zolt
