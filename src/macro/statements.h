// The statements that act at once: DO, SET and ASK, a table of keywords each.
#pragma once

#include <string>

#include "common/arguments.h"

namespace zolt {

/// How a statement ended: the macro goes on, ends with an error, or was aborted by its user.
enum class Outcome { done, error, aborted };

/// An error, with the reason in the reply line.
Outcome statement_error(const std::string& reason);

Outcome do_statement(Arguments& args);
Outcome set_statement(Arguments& args);
Outcome ask_statement(Arguments& args);

/// A file name as a SET or ASK statement gives it: relative to the folder where such files are.
std::string file_of_keyword(std::string_view keyword, const std::string& name);

/// The next token of a statement.
inline std::string next_token(Arguments& args) { return args.next(" (),\t\r\n="); }
/// The rest of the line as one text.
std::string rest_of_line(Arguments& args);

}  // namespace zolt
