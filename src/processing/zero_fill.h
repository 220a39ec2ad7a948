// Zero filling of the whole data set.
#pragma once

#include <cstddef>

#include "state/columns.h"

namespace zolt {

/// Appends zeros to every vector: to twice the count when it is a power of two, else to the next power of two; one point
/// becomes two. True when done; otherwise a message has been shown and the data set is as it was.
bool zero_fill();

/// Appends zeros to every vector up to this many points, at any level. True when done; otherwise as above.
bool zero_fill_to(size_t points);

/// Appends vectors of zeros along dimension 2, 3 or 4, up to `length` places. True when done; otherwise as above.
bool zero_fill_along(int dimension, const Along& along, size_t length);

}  // namespace zolt
