// What the parameter stages of raw and of processed Bruker data share.
#pragma once

#include <optional>

#include "import/bruker_parameters.h"

namespace zolt {

/// The points of a row: TD, but no more than the `bytes` of the data file hold, two words each; the kind of the words and
/// the group delay. `words` becomes what a row has of them. False with the message.
bool take_row(Translation& t, Acquisition& acquisition, uint64_t bytes);

/// Everything about dimension `d` but its count. The mode of the processing stands in for one that was not recorded.
bool take_indirect(Translation& t, size_t d, const std::optional<Processing>& processing, Indirect& indirect);

/// The key of data whose dimension 2 was recorded so.
const char* process_type_of(IndirectMode mode);

/// Parameter stage of a `ser` of one or two indirect dimensions.
bool ser_parameters(Translation& t, size_t indirect_dimensions);

}  // namespace zolt
