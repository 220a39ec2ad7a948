// The queue, and what its words mean to a question.
#include "front/answers.h"

#include "common/text.h"

namespace zolt {

std::optional<std::string> Answers::next() {
    if (queue.empty()) return std::nullopt;
    std::string answer = queue.front();
    queue.pop_front();
    return answer;
}

Answer Answers::to_question(Buttons buttons, const std::optional<std::string>& given) const {
    Answer answer = otherwise;
    if (given)
        answer = same_word(*given, "yes") || same_word(*given, "y") ? Answer::yes
                 : same_word(*given, "cancel")                      ? Answer::cancel
                                                                    : Answer::no;
    return answer == Answer::cancel && buttons == Buttons::yes_no ? Answer::no : answer;
}

}  // namespace zolt
