// The prompt by GNU readline.
#include "headless/prompt.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <readline/history.h>
#include <readline/readline.h>

#include "app/commands.h"
#include "common/text.h"

namespace zolt {

namespace {

// The keyword with this number that begins as the typed text does; readline asks for 0, 1, 2 … and frees each.
char* next_keyword(const char* typed, int number) {
    static size_t next = 0;
    if (number == 0) next = 0;
    for (const auto table = command_table(); next < table.size();) {
        const Command& command = table[next++];
        if (command.handler != nullptr && !command.shadowed && starts_with_word(command.keyword, typed))
            return strdup(command.keyword);
    }
    return nullptr;
}

// Command words at the start of the line, file names behind it.
char** complete(const char* typed, int start, int /*end*/) {
    return start == 0 ? rl_completion_matches(typed, next_keyword) : nullptr;
}

}  // namespace

namespace {

bool read_text(const char* prompt, std::string& text) {
    rl_readline_name = "zolt";
    rl_attempted_completion_function = complete;
    char* typed = readline(prompt);
    take_interrupt();  // pressed at the prompt, it has dropped the line
    if (typed == nullptr) return false;
    text = typed;
    std::free(typed);
    return true;
}

}  // namespace

bool read_prompt_line(const char* prompt, std::string& line) {
    if (!read_text(prompt, line)) return false;
    const HIST_ENTRY* previous = history_length > 0 ? history_get(history_base + history_length - 1) : nullptr;
    if (!line.empty() && (previous == nullptr || line != previous->line)) add_history(line.c_str());
    return true;
}

namespace {

volatile std::sig_atomic_t interrupted = 0;

void note_interrupt(int signal) {
    if (interrupted != 0) std::signal(signal, SIG_DFL);
    interrupted = 1;
}

}  // namespace

void catch_interrupts() { std::signal(SIGINT, note_interrupt); }

bool interrupt_waiting() { return interrupted != 0; }

bool take_interrupt() {
    const bool waiting = interrupted != 0;
    interrupted = 0;
    return waiting;
}

bool read_prompt_answer(const std::string& prompt, std::string& answer) { return read_text(prompt.c_str(), answer); }

}  // namespace zolt
