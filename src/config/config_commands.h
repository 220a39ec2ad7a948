// Handlers of the configuration and the paths.
#pragma once

#include "common/arguments.h"

namespace zolt {

int cmd_zoltini(Arguments& args);
int cmd_whichpath(Arguments& args);

}  // namespace zolt
