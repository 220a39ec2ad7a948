// Answers from the queue, everything else into events.
#include "headless/platform_headless.h"

#include "common/text.h"
#include "front/events.h"
#include "headless/prompt.h"

namespace zolt {

std::optional<std::string> HeadlessPlatform::next_answer(std::string_view prompt) {
    if (answers.queue.empty() && interactive) {
        std::string typed;
        return read_prompt_answer(std::string(prompt) + " ", typed) && !typed.empty() ? std::optional(typed) : std::nullopt;
    }
    return answers.next();
}

void HeadlessPlatform::message(std::string_view caption, Icon icon, std::string_view text) { print_message(caption, icon, text); }

Answer HeadlessPlatform::question(std::string_view caption, std::string_view text, Buttons buttons) {
    const char* choices = buttons == Buttons::yes_no ? "[yes/no]" : "[yes/no/cancel]";
    const Answer answer = answers.to_question(buttons, next_answer(std::string(trimmed(text)) + " " + choices));
    // Who has just answered need not read it again.
    if (!interactive || json_output()) print_question(caption, text, buttons, answer);
    return answer;
}

std::optional<std::string> HeadlessPlatform::file_dialog(FileChoice choice, std::string_view title) {
    const auto answer = next_answer(std::string(title) + ":");
    if (!interactive || json_output()) print_dialog(choice == FileChoice::open ? "open" : "save", title, answer);
    return answer;
}

std::optional<std::string> HeadlessPlatform::input_box(std::string_view title, std::string_view prompt,
                                                       std::string_view /*initial*/) {
    const auto answer = next_answer(prompt.empty() ? title : prompt);
    if (!interactive || json_output()) print_dialog("input", prompt.empty() ? title : prompt, answer);
    return answer;
}

std::optional<std::string> HeadlessPlatform::process_box(std::string_view prompt, std::string_view initial) {
    const auto answer = next_answer(std::string(prompt) + " (" + std::string(initial) + "):");
    if (!interactive || json_output()) print_dialog("box", "ProcessBox", answer);
    return answer;
}

void HeadlessPlatform::status(int pane, std::string_view text) { print_status(pane, text); }
void HeadlessPlatform::reply(std::string_view text) { print_reply(text); }
void HeadlessPlatform::beep() { print_beep(); }
void HeadlessPlatform::wait_cursor(bool /*on*/) {}
bool HeadlessPlatform::progress(double /*fraction*/) { return true; }
void HeadlessPlatform::redraw() {}
void HeadlessPlatform::clipboard(std::string_view text) { print_clipboard(text); }
void HeadlessPlatform::character_posted(int character) { print_post(character); }
bool HeadlessPlatform::message_waiting() { return interrupt_waiting(); }

void HeadlessPlatform::line_done(std::string_view text, int result, LineSource source) {
    if (result == 0) all_lines_worked = false;
    print_line(text, result, source);
}

void HeadlessPlatform::close_requested() {
    closing = true;
    print_close();
}

}  // namespace zolt
