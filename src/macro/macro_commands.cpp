// RunMacro, cmdlog, and the macros of the keys Ctrl+F1 to Ctrl+F12.
#include "macro/macro_commands.h"

#include "common/file.h"
#include "common/text.h"
#include "config/paths.h"
#include "config/settings.h"
#include "macro/command_log.h"
#include "macro/stepper.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr const char* log_usage = "cmdlog <on / off / clear / show / file NAME>";
constexpr size_t shown_log = 64 << 10;

int switch_log(bool on) {
    session.log_on = on;
    platform().reply(on ? "  - Command log is on: " + command_log_path() : "  - Command log is off");
    return 1;
}

int show_log() {
    std::string text = command_log_text(shown_log);
    while (text.ends_with('\n') || text.ends_with('\r')) text.pop_back();
    return show_reply(text.empty() ? "  - The command log is empty: " + command_log_path() : text);
}

int set_log_file(Arguments& args) {
    const std::string name = typed_path(args.next());
    if (name.empty()) return show_reply("  - Command log: " + command_log_path());
    const std::string path = absolute_path(name.starts_with('/') ? name : data_path(true) + "/" + name);
    const FileFacts facts = file_facts(path);
    if ((facts.exists && !facts.regular) || is_read_only(path) || !file_facts(folder_of(path)).folder)
        return refuse("The command log cannot be written to\n" + path);
    set_command_log_path(path);
    platform().reply("  - Command log: " + path);
    return 1;
}

}  // namespace

int cmd_cmdlog(Arguments& args) {
    session.no_log = true;
    const std::string word = args.next();
    if (same_word(word, "on")) return switch_log(true);
    if (same_word(word, "off")) return switch_log(false);
    if (same_word(word, "clear")) return clear_command_log() ? 1 : refuse("Could not open File: " + command_log_path());
    if (same_word(word, "show")) return show_log();
    if (same_word(word, "file")) return set_log_file(args);
    return show_reply(format_text("%s    it is %s", log_usage, session.log_on ? "on" : "off"));
}

bool run_macro(const std::string& name) {
    const std::string path = find_macro(name, "");
    if (!path.empty()) return StartMacro(path);
    const std::string typed = typed_path(name);
    const char* text = file_facts(typed).exists ? "Could not run macro:\n%s" : "Could not open macro:\n%s";
    refuse(format_text(text, typed.c_str()));
    return false;
}

int cmd_runmacro(Arguments& args) {
    if (args.ask_usage()) return show_reply("RU or run or RunMacro [name]");
    std::string name = args.next();
    if (name.empty()) name = platform().file_dialog(FileChoice::open, "Open Macro File").value_or("");
    return !name.empty() && run_macro(name) ? 1 : 0;
}

void run_key_macro(int number) {
    const std::string name = setting_text(numbered_key("Macro_", number));
    if (name.empty())
        refuse(format_text("No macro name in Control-F%d location", number));
    else
        run_macro(name);
}

}  // namespace zolt
