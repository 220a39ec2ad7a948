// One row for each section: its keywords, the reader of its lines, its text.
#include "datafile/sections.h"

#include <algorithm>
#include <span>

#include "common/numbers.h"
#include "common/text.h"
#include "datafile/integrals.h"
#include "datafile/peaklist.h"
#include "datafile/placed.h"

namespace zolt {

namespace {

constexpr std::string_view separators = "\t\r\n=";
constexpr size_t longest_text = 127;
constexpr size_t longest_path = 4096;

// The keyword that a line consists of or begins with, its prefix aside.
std::string_view keyword_of(std::string_view line) {
    if (line.starts_with("##$")) line.remove_prefix(3);
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

// ------------------------------------------------------------------------------------------------------- INFORMATION

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
        if (same_word(key, row.key)) *row.text = cut(value, row.text == &data.path ? longest_path : longest_text);
    if (same_word(key, "Nucleus")) read_nuclei(value, data);
}

std::string information_section(const DataRecord& data) {
    const auto nucleus = [&](size_t d) {
        return data.dims[d].nucleus.empty() ? std::string("n/a") : one_line(data.dims[d].nucleus);
    };
    const auto line = [](const char* key, const std::string& value) { return std::string(key) + "=" + one_line(value) + "\r\n"; };
    std::string text = "INFORMATION\r\n";
    text += line("User", data.user) + line("Date", data.date);
    text += line("Name1", data.names[0]) + line("Name2", data.names[1]) + line("Name3", data.names[2]);
    text += line("Comment", data.comment) + line("Formula", data.formula);
    text += line("Nucleus", nucleus(0) + ", " + nucleus(1) + ", " + nucleus(2) + ", " + nucleus(3));
    return text + line("Path", data.path) + "END_INFORMATION\r\n";
}

// --------------------------------------------------------------------------------------------------------- FID_STATE

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

std::string fid_state_section(const DataRecord& data) {
    const auto& d = data.dims;
    if (data.group_delay == 0 && std::none_of(d.begin(), d.end(), [](const Dimension& one) { return one.sense < 0; })) return {};
    return format_text("FID_STATE\r\nSENSE=%d, %d, %d, %d\r\n", d[0].sense, d[1].sense, d[2].sense, d[3].sense) +
           format_text("GROUP_DELAY=%.17g\r\nEND_FID_STATE\r\n", data.group_delay);
}

// ----------------------------------------------------------------------------------------------------------- CMD_LOG

void read_log_line(std::string_view line, DataRecord& data) { data.command_log.append(line); }

std::string log_section(const DataRecord& data) {
    const std::string& text = data.command_log.text;
    return text.empty() ? "" : "##$CMD_LOG\r\n" + text + "##$END_CMD_LOG\r\n";
}

}  // namespace

struct Section {
    const char* keyword;
    const char* end;
    void (*read_line)(std::string_view line, DataRecord& data);
    std::string (*tailer)(const DataRecord& data);
    std::string (*header)(const DataRecord& data);  ///< nullptr: a JCAMP-DXB header says it in labels of its own
};

namespace {

// In the order in which they are written; PEAKLIST's lines need the reader's memory of their columns.
constexpr Section sections[] = {
    {"INFORMATION", "END_INFORMATION", read_information_line, information_section, nullptr},
    {"PEAKLIST", "END_PEAKLIST", nullptr, [](const DataRecord& d) { return peaklist_section(d, false); },
     [](const DataRecord& d) { return peaklist_section(d, true); }},
    {"INTEGRALS", "END_INTEGRALS", read_integrals_line, [](const DataRecord& d) { return integrals_section(d, false); },
     [](const DataRecord& d) { return integrals_section(d, true); }},
    {"MO_LIST", "END_MO_LIST", read_meta_object_line, [](const DataRecord& d) { return meta_objects_section(d, MetaForm::tailer); },
     [](const DataRecord& d) { return meta_objects_section(d, MetaForm::prefixed); }},
    {"NOTES", "END_NOTES", read_note_line, [](const DataRecord& d) { return notes_section(d, false); },
     [](const DataRecord& d) { return notes_section(d, true); }},
    {"FID_STATE", "END_FID_STATE", read_fid_state_line, fid_state_section, nullptr},
    {"CMD_LOG", "END_CMD_LOG", read_log_line, log_section, log_section},
};

const Section* section_of(std::string_view keyword) {
    const auto row =
        std::find_if(std::begin(sections), std::end(sections), [&](const Section& s) { return same_word(keyword, s.keyword); });
    return row != std::end(sections) ? row : nullptr;
}

// Lines of a list stand behind "##$" or "##$ " in a header.
std::string_view without_prefix(std::string_view line) { return line.starts_with("##$") ? line.substr(3) : line; }

}  // namespace

bool SectionReader::take(std::string_view line) {
    // A label of the header's own ends a section that lacks its end.
    if (line.starts_with("##") && !line.starts_with("##$")) {
        section_ = nullptr;
        return false;
    }
    const std::string_view keyword = keyword_of(line);
    if (section_ == nullptr) {
        if (read_buffer_line(line, data_)) return true;
        section_ = section_of(keyword);
        peaks_2d_ = false;
        return section_ != nullptr;
    }
    if (same_word(keyword, section_->end)) {
        section_ = nullptr;
    } else if (section_->read_line == nullptr) {
        read_peaklist_line(without_prefix(line), data_, peaks_2d_);
    } else {
        section_->read_line(section_->read_line == read_log_line ? line : without_prefix(line), data_);
    }
    return true;
}

std::string tailer_sections(const DataRecord& data) {
    std::string text;
    for (const Section& row : sections) {
        if (same_word(row.keyword, "CMD_LOG")) text += buffer_lines(data);
        text += row.tailer(data);
    }
    return text;
}

std::string header_sections(const DataRecord& data) {
    std::string text;
    for (const Section& row : sections) {
        if (same_word(row.keyword, "CMD_LOG")) text += buffer_lines(data);
        if (row.header != nullptr) text += row.header(data);
    }
    return text;
}

namespace {

// What was done to the data is not what was made of them.
std::string annotations(const DataRecord& data) {
    std::string text;
    for (const Section& row : sections)
        if (!same_word(row.keyword, "CMD_LOG")) text += row.tailer(data);
    return text;
}

}  // namespace

void annotations_saved(DataRecord& data) { data.annotations_in_file = annotations(data); }

void mark_saved(DataRecord& data) {
    data.changed = false;
    annotations_saved(data);
}

bool is_unsaved(const DataRecord& data) {
    if (!data.loaded || data.changed) return data.loaded;
    return data.all_slices() == 1 && data.annotations_in_file != annotations(data);
}

void remove_section(std::string& tailer, std::string_view keyword, std::string_view end) {
    std::string kept;
    bool inside = false;
    std::string_view rest = tailer;
    while (!rest.empty()) {
        const size_t length = std::min(rest.find('\n'), rest.size() - 1) + 1;
        const std::string_view line = rest.substr(0, length), word = keyword_of(line);
        rest.remove_prefix(length);
        // A section without an end reaches as far as the tailer.
        if (same_word(word, "END_TAILER")) inside = false;
        if (!inside) inside = same_word(word, keyword);
        if (!inside)
            kept += line;
        else if (same_word(word, end))
            inside = false;
    }
    tailer = std::move(kept);
}

std::string updated_tailer(std::string_view tailer, const DataRecord& data) {
    std::string other(tailer);
    for (const Section& row : sections) remove_section(other, row.keyword, row.end);
    std::string kept;
    std::string_view rest = other;
    for (std::string_view line; take_line(rest, line);) {
        if (same_word(keyword_of(line), "END_TAILER")) break;
        if (!keyword_of(line).empty() && !same_word(pair_of(line).key, "##$BUFFER")) kept += std::string(line) + "\r\n";
    }
    return tailer_sections(data) + kept;
}

}  // namespace zolt
