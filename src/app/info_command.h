// info: what the program knows of the current data set.
#pragma once

#include <string>

#include "common/arguments.h"
#include "state/dataset.h"

namespace zolt {

/// The name of an Arrayed level as the information display has it.
const char* level_name(const DataSet& data);

/// Lines "name<TAB>value"; a line without a tab is a heading.
std::string information_text(const DataSet& data);

int cmd_info(Arguments& args);

}  // namespace zolt
