// The command table: every keyword once, in its order.
#pragma once

#include <span>

#include "common/arguments.h"

namespace zolt {

using Handler = int (*)(Arguments& args);

/// What a command needs and does, as flags of its row.
enum CommandFlags : unsigned {
    plain = 0,
    needs_data = 1,  ///< refused while no data set is loaded
    redraws = 2,     ///< asks for a redraw when it has done its work
    views = 4,       ///< changes what is shown, not the data
};

struct Command {
    const char* keyword;
    Handler handler;  ///< nullptr: planned, returns 0
    unsigned flags;
    const char* usage;
    const char* summary;
    bool shadowed = false;  ///< a specified double: an earlier row takes the word
};

/// The keyword table; the first match wins.
std::span<const Command> command_table();

/// The two-character commands that are tried when no keyword matched, by the first two characters of the line.
std::span<const Command> fallback_table();

/// The row a typed word reaches, or nullptr.
const Command* find_command(std::string_view word);
const Command* find_fallback(std::string_view line);

}  // namespace zolt
