// Each parameter of a procpar is a description line that begins with its name, a value line that begins with the number
// of values, and an enumeration line. Texts stand in double quotes, the second and later ones on lines of their own.
#include "import/varian_procpar.h"

#include <algorithm>
#include <cmath>

#include "common/file.h"
#include "common/numbers.h"
#include "common/text.h"
#include "import/labelled.h"

namespace zolt {

namespace {

constexpr uint64_t largest_file = 16 << 20;
constexpr std::string_view blanks = " ,\t\r\n";

bool begins_name(char c) { return (upper(c) >= 'A' && upper(c) <= 'Z') || c == '_'; }

// The text behind an opening quote, up to its closing one (\" is none), taken off `rest` with that quote. Without a
// closing quote it is the rest of the line.
std::string take_quoted(std::string_view& rest) {
    std::string text;
    for (size_t at = 0; at < rest.size(); ++at) {
        if (rest[at] == '"') {
            rest.remove_prefix(at + 1);
            return text;
        }
        if (rest[at] == '\\' && at + 1 < rest.size() && rest[at + 1] == '"') ++at;
        text += rest[at];
    }
    std::string_view line;
    take_line(rest, line);
    return std::string(line);
}

void skip_blanks(std::string_view& rest) { rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size())); }

// Texts of a value line whose first quote is at the front of `rest`; they may go on over several lines.
void take_texts(std::string_view& rest, int64_t count, ProcparEntry& entry) {
    for (; count > 0 && rest.starts_with('"'); --count) {
        rest.remove_prefix(1);
        entry.texts.push_back(take_quoted(rest));
        if (count > 1) skip_blanks(rest);
    }
    std::string_view remainder;
    take_line(rest, remainder);
}

void take_values(std::string_view& rest, ProcparEntry& entry) {
    if (rest.empty() || begins_name(rest[0])) return;  // the value line is missing
    const std::string_view first = rest.substr(0, rest.find('\n'));
    const int64_t count = integer_or_zero(first);
    if (const size_t quote = first.find('"'); quote != first.npos) {
        rest.remove_prefix(quote);
        take_texts(rest, count, entry);
        return;
    }
    std::string_view line;
    take_line(rest, line);
    const auto fields = split_fields(line, blanks);
    for (size_t i = 1; i < fields.size() && static_cast<int64_t>(i) <= count; ++i)
        entry.numbers.push_back(number_or_zero(fields[i]));
}

}  // namespace

const std::vector<double>& Procpar::numbers(std::string_view name) const {
    static const std::vector<double> none;
    const auto found = entries.find(name);
    return found == entries.end() ? none : found->second.numbers;
}

std::optional<double> Procpar::number(std::string_view name) const {
    const auto& values = numbers(name);
    if (values.empty() || !std::isfinite(values[0])) return {};
    return values[0];
}

std::string Procpar::text(std::string_view name) const {
    const auto found = entries.find(name);
    if (found == entries.end() || found->second.texts.empty()) return {};
    return std::string(trimmed(readable_text(found->second.texts[0])));
}

bool read_procpar(const std::string& path, Procpar& procpar) {
    std::string content;
    if (!read_whole_file(path, content, largest_file)) return false;
    std::string_view rest = content, line;
    while (take_line(rest, line)) {
        const auto fields = split_fields(line, blanks);
        // Enumeration lines begin with their count, texts that were left over with a quote.
        if (fields.empty() || !begins_name(fields[0][0])) continue;
        ProcparEntry entry;
        take_values(rest, entry);
        procpar.entries.insert_or_assign(std::string(fields[0]), std::move(entry));
    }
    return true;
}

std::vector<std::vector<std::string>> array_loops(std::string_view array) {
    std::vector<std::vector<std::string>> loops;
    for (size_t at = 0; at < array.size();) {
        const bool joint = array[at] == '(';
        const std::string_view part = array.substr(at + joint, array.substr(at + joint).find(joint ? ')' : ','));
        at += joint + part.size() + 1;
        std::vector<std::string> names;
        for (const std::string_view name : split_fields(part, blanks)) names.emplace_back(name);
        if (!names.empty()) loops.push_back(std::move(names));
    }
    return loops;
}

}  // namespace zolt
