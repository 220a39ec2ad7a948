// One row for each word in braces.
#include "macro/expansion.h"

#include "common/file.h"
#include "common/numbers.h"
#include "common/text.h"
#include "datafile/file_c.h"
#include "macro/registers.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

std::string macro_value(std::string_view keyword) {
    const auto found = session.macro_values.find(keyword);
    return found != session.macro_values.end() ? found->second : std::string();
}

namespace {

// A name that the macro has set goes before that of the open file.
std::string name_or(std::string_view keyword, const std::string& open_file) {
    const std::string set = macro_value(keyword);
    return set.empty() ? open_file : set;
}

struct Word {
    std::string_view name;
    std::string (*value)(const LineContext& context);
};

constexpr Word words[] = {
    {"FILEA", [](const LineContext&) { return name_or("FILEA", show.file_a); }},
    {"FILEB", [](const LineContext&) { return name_or("FILEB", show.file_b); }},
    {"FILEC", [](const LineContext&) { return name_or("FILEC", file_c.name); }},
    {"IMPORT", [](const LineContext&) { return macro_value("FILEIMPORT"); }},
    {"EXPORT", [](const LineContext&) { return macro_value("EXPORTFILE"); }},
    {"SLICE", [](const LineContext&) { return std::to_string(int64_t{show.slice} + 1); }},
    {"LB", [](const LineContext&) { return number_text(show.lb()); }},
    {"SF", [](const LineContext&) { return number_text(show.dims[0].sf); }},
    {"SW", [](const LineContext&) { return number_text(show.dims[0].sw); }},
    {"POINTS", [](const LineContext&) { return std::to_string(show.dims[0].points); }},
    {"LEVEL", [](const LineContext&) { return std::to_string(CurrentArrayedLevel()); }},
    {"RESULT", [](const LineContext&) { return std::to_string(session.last_result); }},
    {"LINE", [](const LineContext& context) { return std::to_string(context.line); }},
    {"FILE", [](const LineContext& context) { return context.file; }},
    {"NAME", [](const LineContext& context) { return name_of(without_extension(context.file)); }},
};

// {INT 3}: the value of the third integral, from 1.
bool integral_value(std::string_view word, std::string& value) {
    if (!starts_with_word(word, "INT ")) return false;
    const int64_t number = integer_or_zero(word.substr(4));
    if (number < 1 || number > static_cast<int64_t>(show.integrals.size())) return false;
    value = number_text(double{show.integrals[static_cast<size_t>(number) - 1].value} * double{show.rel_value});
    return true;
}

bool value_of(std::string_view word, const LineContext& context, std::string& value) {
    for (const Word& row : words)
        if (same_word(row.name, word)) {
            value = row.value(context);
            return true;
        }
    if (const double* place = register_named(word)) {
        value = number_text(*place);
        return true;
    }
    return integral_value(word, value);
}

}  // namespace

std::string expanded(std::string_view line, const LineContext& context) {
    std::string out;
    for (size_t at = 0; at < line.size();) {
        const size_t brace = std::min(line.find('{', at), line.size());
        out += line.substr(at, brace - at);
        at = brace;
        if (at == line.size()) break;
        const size_t end = line.find('}', at);
        std::string value;
        if (line.substr(at).starts_with("{{")) {
            out += '{';
            at += 2;
        } else if (end != std::string_view::npos && value_of(line.substr(at + 1, end - at - 1), context, value)) {
            out += value;
            at = end + 1;
        } else {
            out += line[at++];
        }
    }
    return out;
}

}  // namespace zolt
