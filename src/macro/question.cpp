// Reads question blocks and asks.
#include "macro/question.h"

#include "common/arguments.h"
#include "common/text.h"
#include "platform/platform.h"

namespace zolt {

namespace {
constexpr std::string_view button_words[] = {"YES_BUTTON", "NO_BUTTON", "CANCEL_BUTTON"};
constexpr std::string_view button_delimiters = " \r\n";
}  // namespace

bool read_question(Script& script, Question& question, const std::function<std::string(std::string_view)>& expand) {
    std::string_view piece;
    for (int count = 1; count <= question_lines && script.next(piece); ++count) {
        const std::string line = expand(piece);
        Arguments args(line);
        const std::string word = args.next(button_delimiters);
        if (same_word(word, "END_QUESTION")) break;
        size_t button = 0;
        while (button < std::size(button_words) && !same_word(word, button_words[button])) ++button;
        if (button < std::size(button_words)) {
            question.actions[button] = args.next(button_delimiters);
            if (question.actions[button].empty()) return false;
        } else {
            question.text += (question.text.empty() ? "" : "\n") + line;
        }
    }
    return true;
}

std::string ask_question(const Question& question) {
    switch (platform().question("Macro Question", question.text, Buttons::yes_no_cancel)) {
        case Answer::yes:
            return question.actions[0];
        case Answer::no:
            return question.actions[1];
        case Answer::cancel:
            break;
    }
    return question.actions[2];
}

}  // namespace zolt
