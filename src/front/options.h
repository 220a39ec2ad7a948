// The options of both programs, read by one table.
#pragma once

#include <string>
#include <vector>

namespace zolt {

/// One thing to do, in the order given on the command line.
struct Action {
    enum class Kind { command, keys, macro, lines_of_stdin, answer, default_yes, default_no, state, data, screenshot } kind;
    std::string text;
};

struct Options {
    std::string root, ini;
    bool json = false, keep_going = false, version = false, help = false, batch = false;
    std::vector<Action> actions;
    std::vector<std::string> detect;  ///< files whose format is to be told, instead of any action
};

enum class Program { headless, desktop };

/// Reads the arguments; false, with the sentence for standard error, for a wrong one.
bool read_options(Program program, int count, char** arguments, Options& options, std::string& error);

/// The program's name as it is typed.
const char* name_of(Program program);
std::string help_text(Program program);

}  // namespace zolt
