// Where the points of Bruker data stand in their files, and the stages that read them.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "import/format.h"

namespace zolt {

/// What a parameter stage of the Bruker family leaves for the data stage in Translation::plan, beside the kind
/// of words in Translation::raw.
struct BrukerPlan {
    enum class Kind { raw, processed_1d, processed_nd };

    Kind kind = Kind::raw;
    std::string data;       ///< the file of the points; of their real parts where these stand alone
    std::string imaginary;  ///< of processed data: the file of the imaginary parts, "" for zeros

    /// Raw data: pairs, row after row.
    uint64_t start = 0, pitch = 0;  ///< bytes in front of the first row, and from one row to the next
    /// Of a sparse grid: its recorded rows and their rows in the file, in the order of the grid.
    std::vector<std::pair<int64_t, int64_t>> recorded;
    bool inner_is_third = false;  ///< dimension 3 runs faster than dimension 2 in the file
    bool in_order() const { return recorded.empty() && !inner_is_third; }

    /// Processed data of more dimensions: counts and edges of the tiles, slowest dimension first.
    std::array<int64_t, 3> counts{1, 1, 1}, tile{1, 1, 1};
};

/// Points of a `fid` or `ser`: pairs of words. What the file ends before is zero, with a message.
bool BRUUData(Translation& t, const BrukerPlan& plan);
/// Points of a `1r` and the `1i` beside it.
bool BRUU_1R_Data(Translation& t, const BrukerPlan& plan);
/// Points of a `2rr` or `3rrr` and one quadrant of imaginary parts, tiles put in order.
bool BRUU_2RR_Data(Translation& t, const BrukerPlan& plan);

}  // namespace zolt
