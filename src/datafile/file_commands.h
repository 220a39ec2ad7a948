// Handlers that save data sets and set how they are saved.
#pragma once

#include "common/arguments.h"

namespace zolt {

int cmd_savefile(Arguments& args);
int cmd_savefileb(Arguments& args);
int cmd_header(Arguments& args);

}  // namespace zolt
