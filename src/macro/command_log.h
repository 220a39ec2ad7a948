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
/// Empties the log and the history of the data set; false when its file cannot be written.
bool clear_command_log();
/// The last entries of the file, at most `limit` bytes.
std::string command_log_text(size_t limit);

/// Forgets the file that was chosen (for a fresh start).
void reset_command_log();

}  // namespace zolt
