// The options of zolt-cli.
#pragma once

#include <string>
#include <vector>

namespace zolt {

/// One thing to do, in the order given on the command line.
struct Action {
    enum class Kind { command, keys, macro, lines_of_stdin, answer, default_yes, default_no, state, data } kind;
    std::string text;
};

struct Options {
    std::string root, ini;
    bool json = false, keep_going = false, version = false, help = false;
    std::vector<Action> actions;
    std::vector<std::string> detect;  ///< files whose format is to be told, instead of any action
};

/// Reads the arguments; false, with the sentence for standard error, for a wrong one.
bool read_options(int count, char** arguments, Options& options, std::string& error);

const char* help_text();

}  // namespace zolt
