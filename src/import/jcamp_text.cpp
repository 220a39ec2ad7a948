// Splitting JCAMP-DX text at its labels.
#include "import/jcamp_text.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "common/numbers.h"
#include "common/text.h"
#include "import/labelled.h"

namespace zolt {

namespace {

constexpr bool skipped(char c) { return c == ' ' || c == '-' || c == '_' || c == '\t'; }

// A carriage return alone ends a line as well.
void unify_line_ends(std::span<char> bytes) {
    for (size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] == '\r' && (i + 1 == bytes.size() || bytes[i + 1] != '\n')) bytes[i] = '\n';
}

std::string_view without_comment(std::string_view line) { return trimmed(line.substr(0, line.find("$$"))); }

// Where the label of the line at `at` begins; npos when the line has none.
size_t label_in_line(std::string_view text, size_t at) {
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
    return text.substr(at).starts_with("##") ? at : std::string_view::npos;
}

// Start of the next line that has a label, and the label in it.
struct Label {
    size_t line, label;
};
Label next_label(std::string_view text, size_t line) {
    while (line < text.size()) {
        const size_t label = label_in_line(text, line);
        if (label != std::string_view::npos) return {line, label};
        const size_t end = text.find('\n', line);
        line = end == std::string_view::npos ? text.size() : end + 1;
    }
    return {text.size(), text.size()};
}

}  // namespace

std::string folded(std::string_view text) {
    std::string out;
    for (const char c : text)
        if (!skipped(c)) out += upper(c);
    return out;
}

float usable(double value) { return std::abs(value) <= std::numeric_limits<float>::max() ? static_cast<float>(value) : 0; }

bool JcampRecord::is(std::string_view wanted) const {
    size_t matched = 0;
    for (const char c : label) {
        if (skipped(c)) continue;
        if (matched == wanted.size() || upper(c) != wanted[matched]) return false;
        ++matched;
    }
    return matched == wanted.size();
}

std::string_view JcampRecord::value() const { return without_comment(body.substr(0, body.find('\n'))); }

std::string JcampRecord::text() const {
    std::string_view text = value();
    if (text.starts_with('<')) text = text.substr(1, text.find('>') == std::string_view::npos ? text.npos : text.find('>') - 1);
    return std::string(cut(readable_text(trimmed(text)), longest_jcamp_text));
}

std::vector<std::string_view> JcampRecord::list() const {
    std::vector<std::string_view> fields;
    for (std::string_view rest = value();;) {
        const size_t comma = rest.find(',');
        fields.push_back(trimmed(rest.substr(0, comma)));
        if (comma == std::string_view::npos) return fields;
        rest.remove_prefix(comma + 1);
    }
}

std::optional<double> JcampRecord::element(size_t index) const {
    std::string_view rest = body, line;
    for (take_line(rest, line); take_line(rest, line);) {
        const auto fields = split_fields(without_comment(line), " \t,");
        if (index < fields.size()) return leading_number(fields[index]);
        index -= fields.size();
    }
    return std::nullopt;
}

std::vector<JcampRecord> split_records(std::string_view text) {
    std::vector<JcampRecord> records;
    for (Label at = next_label(text, 0); at.label < text.size();) {
        const size_t line_end = std::min(text.find('\n', at.label), text.size());
        const Label next = next_label(text, line_end < text.size() ? line_end + 1 : line_end);
        const std::string_view line = text.substr(at.label + 2, line_end - at.label - 2);
        const size_t equals = std::min(line.find('='), line.size());
        const size_t body = at.label + 2 + std::min(equals + 1, line.size());
        records.push_back({trimmed(line.substr(0, equals)), text.substr(body, next.line - body)});
        at = next;
    }
    return records;
}

bool read_jcamp_text(Translation& t, JcampText& text) {
    if (!text.bytes.allocate(t.input_bytes))
        return t.fail(format_text("There is no memory for the text of file %s.", t.path.c_str()));
    if (!t.input.seek(0)) return t.fail("Can't move file pointer to desired location\nin data input file.\n");
    if (!t.input.read(text.bytes.data(), text.bytes.size()))
        return t.fail(format_text("Error reading file for %s.", t.path.c_str()));
    unify_line_ends(text.bytes.span());
    std::string_view all(text.bytes.data(), text.bytes.size());
    if (all.starts_with("\xEF\xBB\xBF")) all.remove_prefix(3);
    text.records = split_records(all);
    return true;
}

const JcampRecord* JcampBlock::find(std::string_view label, size_t index) const {
    for (const JcampRecord& record : *this)
        if (record.is(label) && index-- == 0) return &record;
    return nullptr;
}

std::optional<double> JcampBlock::number(std::string_view label, size_t index) const {
    const JcampRecord* record = find(label, index);
    const auto value = record != nullptr ? leading_number(record->value()) : std::nullopt;
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::string JcampBlock::text(std::string_view label, size_t index) const {
    const JcampRecord* record = find(label, index);
    return record != nullptr ? record->text() : "";
}

std::string JcampBlock::data_type() const { return folded(text("DATATYPE")); }

bool JcampBlock::is_nmr() const {
    static constexpr const char* kinds[] = {"NMRFID", "NMRSPECTRUM", "NMRTPPI"};
    const std::string type = data_type();
    return std::any_of(std::begin(kinds), std::end(kinds), [&](const char* kind) { return type.find(kind) != std::string::npos; });
}

std::vector<JcampBlock> blocks_of(const JcampText& text) {
    std::vector<JcampBlock> blocks;
    const JcampRecord* const end = text.records.data() + text.records.size();
    for (const JcampRecord& record : text.records) {
        if (!blocks.empty() && !record.is("TITLE")) continue;
        if (!blocks.empty()) blocks.back().end_ = &record;
        blocks.push_back({&record, end});
    }
    return blocks;
}

}  // namespace zolt
