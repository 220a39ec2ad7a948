// The lines that the user has entered, for walking back to them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zolt {

/// Keeps a line; a repetition of the newest one is not kept twice. Ends a walk.
void remember_line(std::string_view line);

/// One step of a walk back (or forth) through the lines that begin as the text did when the walk began. False, and the
/// text as it was, at the end.
bool older_line(std::string& text);
bool newer_line(std::string& text);
/// Typing ends a walk.
void end_walk();

const std::vector<std::string>& entered_lines();
void set_entered_lines(std::vector<std::string> lines);

}  // namespace zolt
