// Handlers of integrals.
#pragma once

#include "common/arguments.h"

namespace zolt {

/// ID with arguments: regions by their limits, lists, scale, sub-integrals. Without any it begins the sub-routine.
int typed_id(Arguments& args);
/// AI: regions found by the program.
int cmd_ai(Arguments& args);

}  // namespace zolt
