// Tokens of a command line, quoted ones included.
#include "common/arguments.h"

#include <algorithm>

namespace zolt {

std::string Arguments::next(std::string_view delimiters) {
    const size_t first = rest_.find_first_not_of(delimiters);
    if (first == std::string_view::npos) {
        rest_ = {};
        return {};
    }
    rest_.remove_prefix(first);
    std::string token;
    size_t end = 0;
    if (rest_[0] == '"') {
        rest_.remove_prefix(1);
        end = rest_.find('"');
    } else {
        end = rest_.find_first_of(delimiters);
    }
    token = rest_.substr(0, end);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    return token;
}

std::string Arguments::peek(std::string_view delimiters) const { return Arguments(*this).next(delimiters); }

bool Arguments::ask_usage(std::string_view delimiters) const {
    const std::string token = peek(delimiters);
    return token == "?" || token == "/?";
}

std::string typed_path(std::string_view token) {
    std::string path(token);
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

}  // namespace zolt
