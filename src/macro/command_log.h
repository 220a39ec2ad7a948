// The command log: command lines that worked and the lines of macros, in the file ZOLT.LOG of the data directory.
#pragma once

#include <string>
#include <string_view>

namespace zolt {

/// Appends an entry to the log while it is on. A log that cannot be written is reported once and switched off.
void append_to_command_log(std::string_view line);

/// The file of the log: the one set, else ZOLT.LOG in the data directory.
std::string command_log_path();
/// Logs to this file from now on; "" is the usual one again.
void set_command_log_path(const std::string& path);
/// Empties the log; false when its file cannot be written.
bool clear_command_log();
/// The last entries of the file, at most `limit` bytes.
std::string command_log_text(size_t limit);

/// The section that carries the log into a data file, from ##$CMD_LOG through ##$END_CMD_LOG: the entries of this run,
/// the last 256 KB of them; "" when there are none.
std::string command_log_section();

/// Forgets the entries of this run and the file that was chosen (for a fresh start).
void reset_command_log();

}  // namespace zolt
