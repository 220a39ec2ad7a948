// The tailer: text sections behind the last slice of native files of types 1 and 2.
#pragma once

#include <string>
#include <string_view>

#include "common/arguments.h"
#include "state/dataset.h"

namespace zolt {

/// Takes the sections of a tailer into the data set. Unknown sections, unknown keys and blank lines are skipped.
void read_tailer(std::string_view text, DataRecord& data);

/// The whole tailer of the data set, ending with END_TAILER. With a tailer that it replaces, sections of that one which
/// the program does not know are kept.
std::string tailer_text(const DataRecord& data, std::string_view replaced = {});

}  // namespace zolt
