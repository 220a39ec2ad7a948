// Zero filling of the whole data set.
#pragma once

namespace zolt {

/// Appends zeros to every vector: to twice the count when it is a power of two, else to the next power of two; one point
/// becomes two. True when done; otherwise a message has been shown and the data set is as it was.
bool zero_fill();

}  // namespace zolt
