// Handlers that save data sets, set how they are saved, and select their slices.
#pragma once

#include "common/arguments.h"

namespace zolt {

int cmd_savefile(Arguments& args);
int cmd_savefileb(Arguments& args);
int cmd_header(Arguments& args);
int cmd_slice(Arguments& args);

}  // namespace zolt
