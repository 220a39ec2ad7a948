// Small text tools: ASCII comparison and folding, splitting at delimiter sets, locale-free printf.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zolt {

/// True when both words are equal, ASCII letters compared without regard to case.
bool same_word(std::string_view a, std::string_view b);
/// True when `text` begins with `start`, ignoring ASCII case.
bool starts_with_word(std::string_view text, std::string_view start);

char upper(char c);
std::string upper(std::string_view text);
std::string lower(std::string_view text);

/// Without blanks, tabs and line ends at both ends.
std::string_view trimmed(std::string_view text);

/// Fields between runs of any of `delimiters`; empty fields are dropped.
std::vector<std::string_view> split_fields(std::string_view text, std::string_view delimiters);

/// Takes the next line (LF or CR LF, without its end) off the front of `text`; false at the end.
bool take_line(std::string_view& text, std::string_view& line);

/// The text with blanks for its line ends and other control characters, so that it fits a line of a file.
std::string one_line(std::string text);

/// At most `length` bytes of the text, never cutting an UTF-8 character in two.
std::string_view cut(std::string_view text, size_t length);

/// printf into a string; numbers always in the C locale.
[[gnu::format(printf, 1, 2)]] std::string format_text(const char* format, ...);

}  // namespace zolt
