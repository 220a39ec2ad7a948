// QUESTION: the block of its text and buttons, and the box that shows it.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>

#include "macro/script.h"

namespace zolt {

struct Question {
    std::string text;
    std::array<std::string, 3> actions = {"ABORT", "ABORT", "ABORT"};  ///< of Yes, No and Cancel
};

/// Reads the block behind a QUESTION line, through END_QUESTION or 19 lines. False when a button line names no action:
/// the question is then not to be shown.
bool read_question(Script& script, Question& question, const std::function<std::string(std::string_view)>& expand);

/// Shows the question; the action of the chosen button.
std::string ask_question(const Question& question);

}  // namespace zolt
