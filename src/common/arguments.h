// The arguments of a command: the rest of its line, taken token by token at delimiter sets.
#pragma once

#include <string>
#include <string_view>

namespace zolt {

class Arguments {
public:
    static constexpr std::string_view usual = " \r\n=";

    explicit Arguments(std::string_view rest) : rest_(rest) {}

    /// The next token, "" when there is none. Delimiters before it are skipped and the one behind it is consumed. A
    /// token that begins with a double quote runs to the closing quote, may hold delimiters, and comes without quotes.
    std::string next(std::string_view delimiters = usual);

    /// The next token, left in place.
    std::string peek(std::string_view delimiters = usual) const;

    /// True when the next token is "?" or "/?".
    bool ask_usage(std::string_view delimiters = usual) const;

    std::string_view rest() const { return rest_; }

private:
    std::string_view rest_;
};

/// A path as typed: `\` separates folders as `/` does.
std::string typed_path(std::string_view token);

}  // namespace zolt
