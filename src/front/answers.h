// Answers given beforehand by options, for questions and dialogs that nobody is asked.
#pragma once

#include <deque>
#include <optional>
#include <string>

#include "platform/platform.h"

namespace zolt {

struct Answers {
    std::deque<std::string> queue;  ///< first in, first out
    Answer otherwise = Answer::no;  ///< of a question when the queue is empty; dialogs are then cancelled

    std::optional<std::string> next();
    /// The answer of a question; one without a Cancel button has no third answer.
    Answer to_question(Buttons buttons, const std::optional<std::string>& given) const;
};

}  // namespace zolt
