// Handlers of integrals.
#pragma once

#include "common/arguments.h"

namespace zolt {

/// ID: regions by their limits, lists, scale, sub-integrals.
int cmd_id(Arguments& args);
/// AI: regions found by the program.
int cmd_ai(Arguments& args);

}  // namespace zolt
