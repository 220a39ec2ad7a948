// Handlers that bring files into the program.
#pragma once

#include "common/arguments.h"

namespace zolt {

/// IM [file] [-KEY] [SR0 | SR1] [SPECIAL_NAME name]: translates a foreign file and makes the result File A.
int cmd_import(Arguments& args);
/// GA [file]: makes a native file File A; a foreign one is offered to the import.
int cmd_getfile(Arguments& args);
int cmd_getfileb(Arguments& args);
int cmd_zz(Arguments& args);
/// IE [A | B]: opens the file whose name has the next number.
int cmd_incrementext(Arguments& args);

}  // namespace zolt
