// Patterns by glob, sorted by us: its own order depends on the locale.
#include "macro/file_pattern.h"

#include <algorithm>

#include <glob.h>

#include "common/file.h"
#include "common/text.h"

namespace zolt {

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Takes the digits off the front, without zeros that lead.
std::string_view take_number(std::string_view& text) {
    while (text.size() > 1 && text[0] == '0' && is_digit(text[1])) text.remove_prefix(1);
    size_t length = 0;
    while (length < text.size() && is_digit(text[length])) ++length;
    const std::string_view number = text.substr(0, length);
    text.remove_prefix(length);
    return number;
}

}  // namespace

bool numbers_in_order(std::string_view a, std::string_view b) {
    std::string_view left = a, right = b;
    while (!left.empty() && !right.empty()) {
        if (is_digit(left[0]) && is_digit(right[0])) {
            const std::string_view m = take_number(left), n = take_number(right);
            if (m.size() != n.size()) return m.size() < n.size();
            if (m != n) return m < n;
            continue;
        }
        const char c = upper(left[0]), d = upper(right[0]);
        if (c != d) return static_cast<unsigned char>(c) < static_cast<unsigned char>(d);
        left.remove_prefix(1);
        right.remove_prefix(1);
    }
    if (left.empty() != right.empty()) return left.empty();
    return a < b;
}

std::vector<std::string> files_matching(const std::string& pattern) {
    std::vector<std::string> files;
    glob_t found = {};
    if (::glob(pattern.c_str(), GLOB_NOSORT | GLOB_NOESCAPE, nullptr, &found) == 0)
        for (size_t i = 0; i < found.gl_pathc; ++i)
            if (file_facts(found.gl_pathv[i]).regular) files.emplace_back(found.gl_pathv[i]);
    ::globfree(&found);
    std::sort(files.begin(), files.end(), numbers_in_order);
    return files;
}

}  // namespace zolt
