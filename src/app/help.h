// Help from the command table.
#pragma once

#include <string_view>

#include "common/arguments.h"

namespace zolt {

/// Replies with the commands that begin as an unknown word does, if there are any.
void suggest_commands(std::string_view word);

int cmd_help(Arguments& args);

}  // namespace zolt
