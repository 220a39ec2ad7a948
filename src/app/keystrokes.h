// The keystroke handler: control keys act at once, other characters build the command line, Enter carries it out.
#pragma once

#include "platform/platform.h"

namespace zolt {

void handle_keystroke(int character, LineSource source);

}  // namespace zolt
