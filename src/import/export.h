// Handlers that export the current data set as text or JCAMP-DX.
#pragma once

#include <string>

#include "common/arguments.h"

namespace zolt {

int cmd_ej(Arguments& args);
int cmd_e6(Arguments& args);
int cmd_e1(Arguments& args);
int cmd_e2(Arguments& args);
int cmd_e3(Arguments& args);
int cmd_e4(Arguments& args);
int cmd_e5(Arguments& args);

/// The absolute path that an export goes to: the next argument, else asked for in a dialog. "" when none is given, or
/// the file there may not be replaced; the user has then been told.
std::string export_target(Arguments& args);

}  // namespace zolt
