// Words of a picture: reading UTF-8 of unknown origin, room a text takes, shortening, isotopes.
#pragma once

#include <string>
#include <string_view>

namespace zolt {

/// Takes the first character off a non-empty text. Bytes that are not UTF-8 come one by one as U+FFFD.
char32_t take_character(std::string_view& text);
void append_character(std::string& text, char32_t character);

/// The first line with anything on it, without blanks at its ends, as valid UTF-8 without control characters.
std::string display_line(std::string_view text);

/// Room that a text takes in pixels, whatever sans-serif font draws it: an estimate on the wide side.
double text_width(std::string_view text, double size);

/// The text, its end replaced by an ellipsis when it would take more than `room` pixels; "" when nothing of it fits.
std::string shortened(std::string_view text, double size, double room);

/// "13C" or "C13" as ¹³C; other names unchanged.
std::string isotope_name(std::string_view nucleus);

}  // namespace zolt
