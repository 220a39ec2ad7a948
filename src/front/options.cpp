// The rows of the options and the help text.
#include "front/options.h"

#include <string_view>

#include "common/text.h"

namespace zolt {

namespace {

// How many values follow an option.
enum class Takes { nothing, value, all };

// One row an option: its names, what follows it, and what it does with each value.
struct Option {
    std::string_view brief, name;
    Takes takes;
    void (*apply)(Options& options, std::string value);
    bool desktop_only = false;
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
    {"", "--batch", Takes::nothing, [](Options& o, std::string) { o.batch = true; }, true},
    {"", "--screenshot", Takes::value, add<Action::Kind::screenshot>, true},
    {"-h", "--help", Takes::nothing, [](Options& o, std::string) { o.help = true; }},
};

}  // namespace

const char* name_of(Program program) { return program == Program::headless ? "zolt-cli" : "zolt"; }

bool read_options(Program program, int count, char** arguments, Options& options, std::string& error) {
    for (int i = 1; i < count; ++i) {
        const std::string_view word = arguments[i];
        const Option* option = nullptr;
        for (const Option& row : table)
            if (!word.empty() && (program == Program::desktop || !row.desktop_only) && (word == row.brief || word == row.name))
                option = &row;
        if (option == nullptr) {
            error = format_text("%s: unknown option %s (%s --help lists them)", name_of(program), arguments[i], name_of(program));
            return false;
        }
        if (option->takes != Takes::nothing && i + 1 >= count) {
            error = format_text("%s: option %s needs a value", name_of(program), arguments[i]);
            return false;
        }
        if (option->takes == Takes::nothing) option->apply(options, "");
        if (option->takes == Takes::value) option->apply(options, arguments[++i]);
        while (option->takes == Takes::all && i + 1 < count) option->apply(options, arguments[++i]);
    }
    return true;
}

std::string help_text(Program program) {
    const bool headless = program == Program::headless;
    std::string text =
        headless ? R"(zolt-cli: processes NMR data by typed commands, without a window.

  zolt-cli -c "IM examples/strychnine_1h/10" -c EM -c FT -c PC -c "metafile spectrum.svg"

)"
                 : R"(zolt: processes NMR data, in a window. What the options ask for is done first; the window then stays.

  zolt -c "IM examples/strychnine_1h/10" -c EM -c FT -c PC

)";
    text += R"(Options act in the order given; --root, --ini, --json and --keep-going are taken first, wherever they stand.

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
)";
    text += headless ? R"(
Without anything to do, at a terminal, it prompts for command lines.
)"
                     : R"(
  --batch             ends when everything is done; questions are answered by --answer, --yes and --no alone
  --screenshot FILE   writes what the window shows as a PNG picture, in its turn among -c and -k

Without a screen, QT_QPA_PLATFORM=offscreen draws into memory.
)";
    text += format_text(R"(Exit status: 0 all lines worked (all files were recognised), 1 one did not (was not), 2 a wrong option.
The command Help lists the commands: %s -c Help
)",
                        name_of(program));
    return text;
}

}  // namespace zolt
