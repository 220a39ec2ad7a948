// The rows of the options and the help text.
#include "headless/options.h"

#include <string_view>

namespace zolt {

namespace {

// How many values follow an option.
enum class Takes { nothing, value, all };

// One row an option: its names, what follows it, and what it does with each value.
struct Option {
    std::string_view brief, name;
    Takes takes;
    void (*apply)(Options& options, std::string value);
};

template <Action::Kind kind>
void add(Options& options, std::string value) {
    options.actions.push_back({kind, std::move(value)});
}

const Option table[] = {
    {"-c", "--command", Takes::value, add<Action::Kind::command>},
    {"-k", "--keys", Takes::value, add<Action::Kind::keys>},
    {"-m", "--macro", Takes::value, add<Action::Kind::macro>},
    {"-s", "--stdin", Takes::nothing, add<Action::Kind::lines_of_stdin>},
    {"", "--answer", Takes::value, add<Action::Kind::answer>},
    {"", "--yes", Takes::nothing, add<Action::Kind::default_yes>},
    {"", "--no", Takes::nothing, add<Action::Kind::default_no>},
    {"", "--state", Takes::nothing, add<Action::Kind::state>},
    {"", "--data", Takes::value, add<Action::Kind::data>},
    {"", "--json", Takes::nothing, [](Options& o, std::string) { o.json = true; }},
    {"", "--keep-going", Takes::nothing, [](Options& o, std::string) { o.keep_going = true; }},
    {"", "--root", Takes::value, [](Options& o, std::string value) { o.root = std::move(value); }},
    {"", "--ini", Takes::value, [](Options& o, std::string value) { o.ini = std::move(value); }},
    {"", "--detect", Takes::all, [](Options& o, std::string value) { o.detect.push_back(std::move(value)); }},
    {"", "--version", Takes::nothing, [](Options& o, std::string) { o.version = true; }},
    {"-h", "--help", Takes::nothing, [](Options& o, std::string) { o.help = true; }},
};

}  // namespace

bool read_options(int count, char** arguments, Options& options, std::string& error) {
    for (int i = 1; i < count; ++i) {
        const std::string_view word = arguments[i];
        const Option* option = nullptr;
        for (const Option& row : table)
            if (!word.empty() && (word == row.brief || word == row.name)) option = &row;
        if (option == nullptr) {
            error = "zolt-cli: unknown option " + std::string(word) + " (zolt-cli --help lists them)";
            return false;
        }
        if (option->takes != Takes::nothing && i + 1 >= count) {
            error = "zolt-cli: option " + std::string(word) + " needs a value";
            return false;
        }
        if (option->takes == Takes::nothing) option->apply(options, "");
        if (option->takes == Takes::value) option->apply(options, arguments[++i]);
        while (option->takes == Takes::all && i + 1 < count) option->apply(options, arguments[++i]);
    }
    return true;
}

const char* help_text() {
    return R"(zolt-cli: processes NMR data by typed commands, without a window.

  zolt-cli -c "IM examples/strychnine_1h/10" -c EM -c FT -c PC -c "metafile spectrum.svg"

Options act in the order given; --root, --ini, --json and --keep-going are taken first, wherever they stand.

  -c, --command LINE  carries out a command line
  -k, --keys TEXT     sends keystrokes: \r Enter, \e Escape, \b backspace, \F5 Ctrl+F5,
                      \\ backslash, ^X Ctrl+X, ^^ a caret
  -m, --macro FILE    runs a macro
  -s, --stdin         carries out the lines of standard input
  --answer TEXT       answers the next question (yes, no, cancel), file dialog (a path) or input box (a text)
  --yes, --no         answers further questions (--no at the start); dialogs without an answer are cancelled
  --state             prints the state of the data set
  --data FILE         writes the vectors in memory as pairs of little-endian 32-bit floats
  --json              prints events as JSON lines
  --keep-going        goes on after a line that failed
  --ini FILE          reads FILE instead of ZOLT.INI
  --root DIR          uses DIR as the root folder
  --detect FILE...    tells the format of each file and ends: file, format number, key, name and the step that decided,
                      with tabs between them; - where there is none
  --version, --help

Without anything to do, at a terminal, it prompts for command lines.
Exit status: 0 all lines worked (all files were recognised), 1 one did not (was not), 2 a wrong option.
The command Help lists the commands: zolt-cli -c Help
)";
}

}  // namespace zolt
