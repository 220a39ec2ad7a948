// Help while a line is typed: the command words that begin as it does, and the usage of the one it names.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zolt {

/// The words of available commands that begin with `start`, in any case, by length and alphabet; no doubles.
std::vector<std::string> words_beginning(std::string_view start);

/// `line` with its first word completed as far as the commands agree, a blank behind it when only one is left; the line
/// as it was when there is nothing to add.
std::string completed(std::string_view line);

/// One line about what is typed: the usage and purpose of its command, or the words it may become. "" for an empty line.
std::string hint_for(std::string_view line);

}  // namespace zolt
