// The option --detect: the format of each file.
#pragma once

#include "front/options.h"

namespace zolt {

/// Prints one line for each file; false when one has no format.
bool print_formats(const Options& options);

}  // namespace zolt
