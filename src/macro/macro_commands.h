// Handlers that run macros and control the command log.
#pragma once

#include "common/arguments.h"

namespace zolt {

int cmd_runmacro(Arguments& args);
int cmd_cmdlog(Arguments& args);

/// Runs the macro of this name, looked for in the macro folder and in the current one; false, after its message, when
/// it cannot be started.
bool run_macro(const std::string& name);

/// Runs the macro that ZOLT.INI binds to Ctrl+F<number>.
void run_key_macro(int number);

}  // namespace zolt
