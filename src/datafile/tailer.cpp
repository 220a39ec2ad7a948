// The sections of the tailer: one row each, with the reader of its lines.
#include "datafile/tailer.h"

#include <algorithm>

#include "common/numbers.h"
#include "common/text.h"

namespace zolt {

namespace {

constexpr std::string_view separators = "\t\r\n=";
constexpr size_t longest_text = 127;

std::string_view first_token(std::string_view line) {
    const auto fields = split_fields(line, separators);
    return fields.empty() ? std::string_view{} : trimmed(fields[0]);
}

// key=value; the value is all behind the first "=", so that a text may hold the sign itself.
struct Pair {
    std::string_view key, value;
};

Pair pair_of(std::string_view line) {
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos) return {trimmed(line), {}};
    return {trimmed(line.substr(0, equals)), line.substr(equals + 1)};
}

void read_nuclei(std::string_view value, DataRecord& data) {
    const auto names = split_fields(value, ",");
    for (size_t d = 0; d < names.size() && d < data.dims.size(); ++d) {
        const std::string_view name = trimmed(names[d]);
        data.dims[d].nucleus = same_word(name, "n/a") ? "" : std::string(cut(name, longest_text));
    }
}

void read_information_line(std::string_view line, DataRecord& data) {
    if (line.find('=') == std::string_view::npos) return;
    const auto [key, value] = pair_of(line);
    const struct {
        const char* key;
        std::string* text;
    } texts[] = {{"User", &data.user},      {"Date", &data.date},       {"Name1", &data.names[0]},  {"Name2", &data.names[1]},
                 {"Name3", &data.names[2]}, {"Comment", &data.comment}, {"Formula", &data.formula}, {"Path", &data.path}};
    for (const auto& row : texts)
        if (same_word(key, row.key)) *row.text = cut(value, longest_text * (row.text == &data.path ? 32 : 1));
    if (same_word(key, "Nucleus")) read_nuclei(value, data);
}

// What an FID still waits for: SENSE=-1, 1, 1, 1 and GROUP_DELAY=67.98.
void read_fid_state_line(std::string_view line, DataRecord& data) {
    const auto [key, value] = pair_of(line);
    if (same_word(key, "SENSE")) {
        const auto senses = split_fields(value, ", \t");
        for (size_t d = 0; d < senses.size() && d < data.dims.size(); ++d)
            data.dims[d].sense = integer_or_zero(senses[d]) < 0 ? -1 : 1;
    } else if (same_word(key, "GROUP_DELAY")) {
        const double delay = number_or_zero(value);
        data.group_delay = data.possible_delay(delay) ? delay : 0;
    }
}

bool fid_state_pending(const DataRecord& data) {
    return data.group_delay != 0 || std::any_of(data.dims.begin(), data.dims.end(), [](const Dimension& d) { return d.sense < 0; });
}

// The sections a reader knows, in the order in which their keywords are compared.
struct Section {
    const char* keyword;
    const char* end;
    void (*read_line)(std::string_view line, DataRecord& data);
};

constexpr Section sections[] = {
    {"INFORMATION", "END_INFORMATION", read_information_line},
    {"FID_STATE", "END_FID_STATE", read_fid_state_line},
};

}  // namespace

void read_tailer(std::string_view text, DataRecord& data) {
    const Section* section = nullptr;
    for (std::string_view line; take_line(text, line);) {
        const std::string_view token = first_token(line);
        if (same_word(token, "END_TAILER")) return;
        if (section != nullptr) {
            if (same_word(token, section->end))
                section = nullptr;
            else
                section->read_line(line, data);
            continue;
        }
        for (const Section& row : sections)
            if (same_word(token, row.keyword)) section = &row;
    }
}

std::string tailer_text(const DataRecord& data) {
    const auto nucleus = [&](size_t d) { return data.dims[d].nucleus.empty() ? std::string("n/a") : data.dims[d].nucleus; };
    const auto line = [](const char* key, std::string_view value) { return std::string(key) + "=" + std::string(value) + "\r\n"; };
    std::string text = "INFORMATION\r\n";
    text += line("User", data.user) + line("Date", data.date);
    text += line("Name1", data.names[0]) + line("Name2", data.names[1]) + line("Name3", data.names[2]);
    text += line("Comment", data.comment) + line("Formula", data.formula);
    text += line("Nucleus", nucleus(0) + ", " + nucleus(1) + ", " + nucleus(2) + ", " + nucleus(3));
    text += line("Path", data.path) + "END_INFORMATION\r\n";
    if (fid_state_pending(data)) {
        text += "FID_STATE\r\n";
        text +=
            format_text("SENSE=%d, %d, %d, %d\r\n", data.dims[0].sense, data.dims[1].sense, data.dims[2].sense, data.dims[3].sense);
        text += format_text("GROUP_DELAY=%.17g\r\n", data.group_delay);
        text += "END_FID_STATE\r\n";
    }
    return text + "END_TAILER\r\n";
}

}  // namespace zolt
