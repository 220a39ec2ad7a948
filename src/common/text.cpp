// ASCII folding and splitting; printf in the C locale.
#include "common/text.h"

#include <algorithm>
#include <clocale>
#include <cstdarg>
#include <cstdio>

#include <locale.h>

namespace zolt {

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

static char lower_char(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool starts_with_word(std::string_view text, std::string_view start) {
    if (text.size() < start.size()) return false;
    for (size_t i = 0; i < start.size(); ++i)
        if (upper(text[i]) != upper(start[i])) return false;
    return true;
}

bool same_word(std::string_view a, std::string_view b) { return a.size() == b.size() && starts_with_word(a, b); }

std::string upper(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = upper(c);
    return out;
}

std::string lower(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = lower_char(c);
    return out;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string_view> split_fields(std::string_view text, std::string_view delimiters) {
    std::vector<std::string_view> fields;
    for (size_t at = text.find_first_not_of(delimiters); at != std::string_view::npos;) {
        const size_t end = text.find_first_of(delimiters, at);
        fields.push_back(text.substr(at, end - at));
        at = end == std::string_view::npos ? end : text.find_first_not_of(delimiters, end);
    }
    return fields;
}

bool take_line(std::string_view& text, std::string_view& line) {
    if (text.empty()) return false;
    const size_t end = text.find('\n');
    line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return true;
}

std::string one_line(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return text;
}

std::string_view cut(std::string_view text, size_t length) {
    if (text.size() <= length) return text;
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) --length;
    return text.substr(0, length);
}

namespace {
// A GUI toolkit may set the process's locale at start-up; numbers in files and commands must not follow it.
class CLocale {
public:
    CLocale() : previous_(uselocale(c_locale())) {}
    ~CLocale() { uselocale(previous_); }
    CLocale(const CLocale&) = delete;
    CLocale& operator=(const CLocale&) = delete;

private:
    static locale_t c_locale() {
        static const locale_t c = newlocale(LC_ALL_MASK, "C", nullptr);
        return c;
    }
    locale_t previous_;
};
}  // namespace

std::string format_text(const char* format, ...) {
    const CLocale numbers_in_c;
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string out(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    if (length > 0) std::vsnprintf(out.data(), out.size() + 1, format, again);
    va_end(again);
    return out;
}

}  // namespace zolt
