// Handlers that belong to the program itself.
#pragma once

#include "common/arguments.h"

namespace zolt {

int cmd_1d(Arguments& args);
int cmd_ex(Arguments& args);
int cmd_expertmode(Arguments& args);
int cmd_un(Arguments& args);
int cmd_uf(Arguments& args);

}  // namespace zolt
