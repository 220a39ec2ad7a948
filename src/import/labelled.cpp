// Reading of labelled parameter files into a list of records.
#include "import/labelled.h"

#include <cmath>

#include "common/file.h"
#include "common/numbers.h"
#include "common/text.h"

namespace zolt {

namespace {

constexpr uint64_t largest_file = 1 << 20;
constexpr size_t longest_line = 2047;
constexpr std::string_view separators = " =,\t\n\r<>";

// Bytes of the UTF-8 character at the start of the text; 0 when there is none.
size_t utf8_length(std::string_view text) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const size_t length = byte(0) < 0x80   ? 1
                          : byte(0) < 0xC2 ? 0
                          : byte(0) < 0xE0 ? 2
                          : byte(0) < 0xF0 ? 3
                          : byte(0) < 0xF5 ? 4
                                           : 0;
    if (length == 0 || text.size() < length) return 0;
    for (size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80) return 0;
    // Over-long forms, surrogates and values beyond the last character.
    if ((byte(0) == 0xE0 && byte(1) < 0xA0) || (byte(0) == 0xED && byte(1) > 0x9F)) return 0;
    if ((byte(0) == 0xF0 && byte(1) < 0x90) || (byte(0) == 0xF4 && byte(1) > 0x8F)) return 0;
    return length;
}

// What stands behind the label's "=", without blanks and the angle brackets of a text.
std::string_view text_behind(std::string_view line) {
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos) return {};
    std::string_view text = trimmed(line.substr(equals + 1));
    if (text.starts_with('<')) text = text.substr(1, text.find('>') == std::string_view::npos ? text.npos : text.find('>') - 1);
    return text;
}

// The next line, of which at most `longest_line` characters count; the rest is a line of its own.
bool take_limited_line(std::string_view& rest, std::string_view& line) {
    const size_t end = rest.substr(0, longest_line).find('\n');
    if (end != std::string_view::npos || rest.size() <= longest_line) return take_line(rest, line);
    line = rest.substr(0, longest_line);
    rest.remove_prefix(longest_line);
    return true;
}

}  // namespace

std::string readable_text(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (size_t at = 0; at < bytes.size();) {
        const size_t length = utf8_length(bytes.substr(at));
        const auto byte = static_cast<unsigned char>(bytes[at]);
        if (length > 1) {
            text += bytes.substr(at, length);
        } else if (length == 0) {
            text += static_cast<char>(0xC0 | (byte >> 6));
            text += static_cast<char>(0x80 | (byte & 0x3F));
        } else {
            const bool control = (byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r') || byte == 0x7F;
            text += control ? ' ' : bytes[at];
        }
        at += length == 0 ? 1 : length;
    }
    return text;
}

std::optional<double> LabelledRecord::element(size_t index) const {
    const auto values = split_fields(following, separators);
    return index < values.size() ? leading_number(values[index]) : std::nullopt;
}

const LabelledRecord* LabelledFile::find(std::string_view label) const {
    for (size_t i = records.size(); i > 0; --i)
        if (records[i - 1].label == label) return &records[i - 1];
    return nullptr;
}

std::optional<double> LabelledFile::number(std::string_view label) const {
    const LabelledRecord* record = find(label);
    const auto value = record != nullptr ? leading_number(record->value) : std::nullopt;
    return value && std::isfinite(*value) ? value : std::nullopt;
}

bool read_labelled(const std::string& path, LabelledFile& file) {
    std::string bytes;
    if (!read_whole_file(path, bytes, largest_file)) return false;
    const std::string content = readable_text(bytes);
    file.records.clear();
    std::string_view rest = content;
    for (std::string_view line; take_limited_line(rest, line);) {
        const auto tokens = split_fields(line, separators);
        if (tokens.empty() || tokens[0].starts_with("$$")) continue;
        if (tokens[0] == "##END") break;
        if (tokens[0].starts_with("##")) {
            file.records.push_back(
                {std::string(tokens[0]), std::string(tokens.size() > 1 ? tokens[1] : ""), std::string(text_behind(line)), {}});
        } else if (!file.records.empty()) {
            file.records.back().following.append(line).append("\n");
        }
    }
    return true;
}

}  // namespace zolt
