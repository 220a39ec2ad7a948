// Usage and summaries of the rows, and what an unknown word may have meant.
#include "app/help.h"

#include <string>

#include "app/commands.h"
#include "common/text.h"
#include "platform/platform.h"

namespace zolt {

namespace {

std::string usage_and_summary(const Command& command) { return std::string("  - ") + command.usage + ": " + command.summary; }

// A command's aliases share handler and usage: one line for all.
template <class Use>
void each_available(Use use) {
    const Command* previous = nullptr;
    for (const auto table : {command_table(), fallback_table()})
        for (const Command& command : table) {
            if (command.handler == nullptr || command.shadowed) continue;
            if (previous == nullptr || previous->summary != command.summary) use(command);
            previous = &command;
        }
}

}  // namespace

void suggest_commands(std::string_view word) {
    std::string found;
    int count = 0;
    for (const Command& command : command_table())
        if (command.handler != nullptr && !command.shadowed && starts_with_word(command.keyword, word) && ++count <= 8)
            found += (found.empty() ? "" : ", ") + std::string(command.keyword);
    if (count > 0)
        platform().reply(format_text("  - There is no command %s. Beginning so: %s", std::string(word).c_str(), found.c_str()));
}

int cmd_help(Arguments& args) {
    const std::string word = args.next();
    if (word.empty() || word == "?" || word == "/?") {
        std::string all = "Commands (Help and a word tells more of one; NAME ? shows its usage):";
        each_available([&](const Command& command) { all += "\n" + usage_and_summary(command); });
        return show_reply(all);
    }
    const Command* command = find_command(word);
    if (command == nullptr) command = find_fallback(word);
    if (command == nullptr) {
        suggest_commands(word);
        return 0;
    }
    if (command->handler == nullptr) return show_reply(format_text("  - %s is planned, but not there yet.", command->keyword));
    return show_reply(usage_and_summary(*command));
}

}  // namespace zolt
