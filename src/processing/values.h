// How the processing commands read numbers and dimensions from their arguments, and how a stored value is set.
#pragma once

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "common/arguments.h"
#include "common/numbers.h"
#include "common/text.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

/// A dimension (1 to 4) as messages name it.
constexpr const char* ordinal(int dimension) {
    constexpr const char* names[] = {"1st", "2nd", "3rd", "4th"};
    return names[dimension - 1];
}

/// 1 to 4 for the words 1D to 4D, 0 for any other word.
inline int dimension_word(std::string_view word) {
    const bool is_dimension = word.size() == 2 && word[0] >= '1' && word[0] <= '4' && upper(word[1]) == 'D';
    return is_dimension ? word[0] - '0' : 0;
}

/// The dimension that the next argument names, which is then taken; 1 when it names none.
inline int take_dimension(Arguments& args) {
    const int dimension = dimension_word(args.peek());
    if (dimension != 0) args.next();
    return dimension != 0 ? dimension : 1;
}

/// The number that an argument begins with; nothing when it begins with none, or with one that no float holds.
inline std::optional<float> number_argument(std::string_view word) {
    const auto value = leading_number(word);
    // Written so that a value which is not a number fails, too.
    if (!value || !(std::abs(*value) <= double{std::numeric_limits<float>::max()})) return std::nullopt;
    return static_cast<float>(*value);
}

inline int not_a_number(const std::string& word) { return show_reply(format_text("  - %s is not a number.", word.c_str())); }

/// Sets a value that later commands use when they are given none: from the argument, or without one from the dialog
/// "ProcessBox" (a cancel keeps the value). Result as of a command handler.
inline int set_stored_value(float& value, const char* keyword, const char* prompt, Arguments& args) {
    if (args.ask_usage()) return show_reply(format_text("  - USAGE:  %s   [Value]", keyword));
    std::string word = args.next();
    const bool from_box = word.empty();
    if (from_box) {
        const auto answer = platform().process_box(prompt, format_text("%f", static_cast<double>(value)));
        if (!answer) return 2;
        word = *answer;
    }
    const auto number = number_argument(word);
    if (!number) return not_a_number(word);
    value = *number;
    if (from_box) session.log_line = format_text("%s %f", keyword, static_cast<double>(value));
    return 1;
}

}  // namespace zolt
