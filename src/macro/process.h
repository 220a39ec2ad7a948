// Process: the commands that a data set calls for, from FID to spectrum.
#pragma once

#include <string>
#include <vector>

#include "common/arguments.h"
#include "state/dataset.h"

namespace zolt {

/// The command lines that take a data set from its FIDs to its spectrum: windows, zero filling, transforms and phases along
/// every dimension, put together as its process type and its own files ask for. Empty for spectra.
std::vector<std::string> processing_lines(const DataRecord& data);

int cmd_process(Arguments& args);

}  // namespace zolt
