// The command log: every command line that worked, one a line, in the file ZOLT.LOG.
#pragma once

#include <string_view>

namespace zolt {

/// Appends a line to the log while it is on. A log that cannot be written is reported once and switched off.
void append_to_command_log(std::string_view line);

}  // namespace zolt
