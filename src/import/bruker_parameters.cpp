// Reading of acqus, procs and their relatives, of title, sampling list and array lists.
#include "import/bruker_parameters.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <limits>

#include "common/numbers.h"
#include "common/text.h"

namespace zolt {

namespace {

// `name` of a folder, else its twin without the "s" (the parameters as set, not as run).
std::string status_or_setup_file(const std::string& folder, const std::string& name) {
    const std::string found = find_companion(folder, name);
    return found.empty() ? find_companion(folder, name.substr(0, name.size() - 1)) : found;
}

// The experiment folder of data that stand in EXP/pdata or EXP/pdata/N; "" for other folders.
std::string experiment_above(const std::string& folder) {
    if (same_word(name_of(folder), "pdata")) return folder_of(folder);
    if (same_word(name_of(folder_of(folder)), "pdata")) return folder_of(folder_of(folder));
    return {};
}

// ------------------------------------------------------------------------------------------------------------- values

double number_of(const LabelledFile& file, std::string_view label) { return file.number(label).value_or(0); }

std::optional<int64_t> integer_of(const LabelledFile& file, std::string_view label) {
    const LabelledRecord* record = file.find(label);
    if (record == nullptr || record->value.empty()) return std::nullopt;
    return integer_or_zero(record->value);
}

// The conventional form of a time, "Mon Mar  3 14:20:30 2003", in any locale. 0 stands for now.
std::string date_text(int64_t seconds) {
    static constexpr const char* days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const time_t when = seconds == 0 ? std::time(nullptr) : static_cast<time_t>(seconds);
    std::tm local = {};
    if (::localtime_r(&when, &local) == nullptr) return {};
    return format_text("%s %s %2d %02d:%02d:%02d %ld", days[local.tm_wday], months[local.tm_mon], local.tm_mday, local.tm_hour,
                       local.tm_min, local.tm_sec, 1900L + local.tm_year);
}

// -------------------------------------------------------------------------------------------------------------- acqus

struct AcquisitionLabel {
    const char* label;
    void (*take)(const LabelledRecord& record, Acquisition& acquisition, DataSet& data);
};

// One row a record, taken in the order in which the file has them.
constexpr AcquisitionLabel acqus_labels[] = {
    {"##ORIGIN", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.raw.from_24_bits = r.value == "UXNMR/P"; }},
    {"##OWNER", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.owner = cut(r.value, longest_text); }},
    {"##$D", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.d1 = finite_or_zero(r.element(1).value_or(d.d1)); }},
    {"##$P", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.p1 = finite_or_zero(r.element(1).value_or(d.p1)); }},
    {"##$DATE", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.date = date_text(integer_or_zero(r.value)); }},
    {"##$DIGMOD", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.filter.digital = integer_or_zero(r.value) != 0; }},
    {"##$DECIM", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.filter.decimation = number_or_zero(r.value); }},
    {"##$DSPFVS", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.filter.firmware = integer_or_zero(r.value); }},
    {"##$GRPDLY", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.filter.stated_delay = number_or_zero(r.value); }},
    {"##$BYTORDA", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.raw.big_endian = integer_or_zero(r.value) != 0; }},
    {"##$DTYPA", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.raw.doubles = integer_or_zero(r.value) == 2; }},
    {"##$TD", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.words = integer_or_zero(r.value); }},
    {"##$FnTYPE", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.sampling = integer_or_zero(r.value); }},
    {"##$AQSEQ", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.inner_is_third = integer_or_zero(r.value) == 1; }},
    {"##$NS",
     [](const LabelledRecord& r, Acquisition&, DataSet& d) {
         d.scans = static_cast<int32_t>(std::clamp<int64_t>(integer_or_zero(r.value), 0, std::numeric_limits<int32_t>::max()));
     }},
    {"##$SFO1",
     [](const LabelledRecord& r, Acquisition& a, DataSet& d) {
         a.sfo1 = finite_or_zero(number_or_zero(r.value));
         d.dims[0].sf = positive_or_zero(a.sfo1);
     }},
    {"##$SW_h",
     [](const LabelledRecord& r, Acquisition& a, DataSet& d) {
         a.sw = finite_or_zero(number_or_zero(r.value));
         d.dims[0].sw = positive_or_zero(a.sw);
     }},
    {"##$O1", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.o1 = finite_or_zero(number_or_zero(r.value)); }},
    {"##$O2", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.o2 = finite_or_zero(number_or_zero(r.value)); }},
    {"##$NUC1", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.dims[0].nucleus = cut(r.text, longest_text); }},
    {"##$INSTRUM", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.comment = cut(r.value + ", ", longest_text); }},
    {"##$SOLVENT",
     [](const LabelledRecord& r, Acquisition&, DataSet& d) {
         d.comment = cut(d.comment + r.value + ", ", longest_text);
         d.solvent = cut(r.text, longest_text);
     }},
    {"##$PULPROG",
     [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.experiment = cut(d.experiment + r.value, longest_text); }},
};

void take_aq_mod(std::string_view value, DataSet& data) {
    const int64_t mode = integer_or_zero(value);
    data.dims[0].domain_code = mode >= 0 && mode <= 2 ? static_cast<int>(mode) : 1;
}

IndirectMode mode_of(int64_t fn_mode) {
    return fn_mode >= 1 && fn_mode <= 6 ? static_cast<IndirectMode>(fn_mode) : IndirectMode::unknown;
}

// ------------------------------------------------------------------------------------------------------- lists of values

// "0.5", "500m", "10s" or "20u" of a list; nothing for a word that begins with no number.
std::optional<double> listed_value(std::string_view word) {
    const auto value = leading_number(word);
    if (!value || !std::isfinite(*value)) return std::nullopt;
    const char unit = word.back();
    return *value * (unit == 'm' ? 1e-3 : unit == 'u' ? 1e-6 : unit == 'n' ? 1e-9 : 1);
}

}  // namespace

std::string experiment_file(const std::string& folder, const std::string& name, bool in_subfolders) {
    const std::string beside = status_or_setup_file(folder, name);
    if (!beside.empty()) return beside;
    const std::string experiment = experiment_above(folder);
    if (!experiment.empty()) return status_or_setup_file(experiment, name);
    for (int n = 1; n <= 9 && in_subfolders; ++n) {
        const std::string found = status_or_setup_file(format_text("%s/%d", folder.c_str(), n), name);
        if (!found.empty()) return found;
    }
    return {};
}

bool read_acqus(Translation& t, const std::string& path, Acquisition& acquisition) {
    LabelledFile file;
    if (!read_labelled(path, file)) return t.fail(format_text("File %s cannot be read as a parameter file.", path.c_str()));
    DataSet& data = t.parameters;
    acquisition.path = path;
    data.dims[0].domain_code = domain_sequential;
    // A comment typed before the import stays in front of the solvent, until the file names its instrument.
    data.comment = show.comment;
    for (const LabelledRecord& record : file.records) {
        if (record.value.empty()) continue;
        if (same_word(record.label, "##$AQ_mod")) take_aq_mod(record.value, data);
        for (const AcquisitionLabel& row : acqus_labels)
            if (record.label == row.label) row.take(record, acquisition, data);
    }
    if (data.user.empty()) data.user = data.owner;
    data.dims[0].offset = float_or_zero(data.o1);
    return true;
}

bool find_acqus(Translation& t, Acquisition& acquisition) {
    const std::string path = experiment_file(folder_of(t.path), "acqus", true);
    return path.empty() ? t.fail("File error for Bruker acqus (Missing]") : read_acqus(t, path, acquisition);
}

bool find_indirect(Translation& t, size_t d, Indirect& indirect) {
    const std::string name = d == 1 ? "acqu2s" : "acqu3s";
    indirect.path = experiment_file(folder_of(t.path), name, true);
    if (indirect.path.empty()) return t.fail(format_text("File error for Bruker %s (Missing]", name.c_str()));
    LabelledFile file;
    if (!read_labelled(indirect.path, file))
        return t.fail(format_text("File %s cannot be read as a parameter file.", indirect.path.c_str()));
    indirect.rows = integer_of(file, "##$TD").value_or(0);
    indirect.full_rows = integer_of(file, "##$NusTD").value_or(0);
    indirect.sfo1 = number_of(file, "##$SFO1");
    indirect.o1 = number_of(file, "##$O1");
    indirect.sw = number_of(file, "##$SW_h");
    indirect.sw_of_ppm = finite_or_zero(number_of(file, "##$SW") * indirect.sfo1);
    indirect.mode = mode_of(integer_of(file, "##$FnMODE").value_or(0));
    if (const LabelledRecord* nucleus = file.find("##$NUC1")) indirect.nucleus = cut(nucleus->text, longest_text);

    LabelledFile set_up;
    if (indirect.full_rows <= 0 && read_labelled(find_companion(folder_of(indirect.path), name.substr(0, 5)), set_up))
        indirect.full_rows = integer_of(set_up, "##$TD").value_or(0);

    Dimension& dimension = t.parameters.dims[d];
    dimension.sf = positive_or_zero(indirect.sfo1);
    dimension.sw = positive_or_zero(indirect.sw);
    dimension.nucleus = indirect.nucleus;
    return true;
}

std::optional<Processing> read_processing(const std::string& path) {
    LabelledFile file;
    if (path.empty() || !read_labelled(path, file)) return std::nullopt;
    Processing p;
    p.sf = std::max(0.0, number_of(file, "##$SF"));
    p.sw = std::max(0.0, number_of(file, "##$SW_p"));
    p.zero_order = file.number("##$PHC0");
    p.first_order = file.number("##$PHC1");
    p.lb = number_of(file, "##$LB");
    p.window = integer_of(file, "##$WDW");
    p.bell_shift = number_of(file, "##$SSB");
    p.left_edge = file.number("##$OFFSET");
    p.points = integer_of(file, "##$SI").value_or(0);
    p.strip = integer_of(file, "##$STSI").value_or(0);
    p.tile = integer_of(file, "##$XDIM").value_or(0);
    if (const auto order = integer_of(file, "##$BYTORDP")) p.big_endian = *order != 0;
    p.doubles = integer_of(file, "##$DTYPP").value_or(0) == 2;
    p.transformed = integer_of(file, "##$FT_mod").value_or(1) != 0 && integer_of(file, "##$FTSIZE").value_or(1) != 0;
    p.scale = integer_of(file, "##$NC_proc");
    // MC2 counts as FnMODE does, from 0 on.
    if (const auto mc2 = integer_of(file, "##$MC2")) p.mode = *mc2 >= 0 && *mc2 < 6 ? mode_of(*mc2 + 1) : IndirectMode::unknown;
    if (const LabelledRecord* title = file.find("##$TI"))
        p.title = cut(std::string_view(title->text).substr(0, title->text.find('<')), longest_text);
    return p;
}

std::string read_title(const std::string& path) {
    constexpr uint64_t largest_title = 1 << 20;
    std::string bytes;
    if (path.empty() || !read_whole_file(path, bytes, largest_title)) return {};
    const std::string text = readable_text(bytes);
    std::string_view rest = text, line;
    take_line(rest, line);
    return std::string(cut(trimmed(line), longest_text));
}

double referenced_offset(double sfo1, double carrier_offset, const std::optional<Processing>& processing) {
    if (processing && processing->sf > 0 && sfo1 > 0) return (sfo1 - processing->sf) * 1e6;
    return carrier_offset;
}

ProcessingAdvice advice_of(const Processing& procs) {
    constexpr int64_t none = 0, exponential = 1, sine = 3, sine_squared = 4;
    ProcessingAdvice advice;
    advice.points = count_or_zero(static_cast<double>(procs.points));
    advice.lb = procs.lb;
    // A shift of 2 begins at the top of the bell, 3 a third of half a period behind its start; below 2 there is none.
    advice.bell_offset = procs.bell_shift >= 2 ? 1 / procs.bell_shift : 0;
    if (procs.window == none) advice.window = Apodization::none;
    if (procs.window == exponential) advice.window = Apodization::exponential;
    if (procs.window == sine) advice.window = Apodization::sine;
    if (procs.window == sine_squared) advice.window = Apodization::sine_squared;
    advice.phased = procs.zero_order.has_value();
    advice.phase = {float_or_zero(0 - procs.zero_order.value_or(0)), float_or_zero(0 - procs.first_order.value_or(0))};
    return advice;
}

void take_processing_of_fid(const std::optional<Processing>& procs, const Acquisition& acquisition, DataSet& data) {
    data.dims[0].offset = float_or_zero(referenced_offset(acquisition.sfo1, data.o1, procs));
    if (!procs) return;
    if (procs->zero_order) data.phase[0] = float_or_zero(0 - *procs->zero_order);
    if (procs->first_order) data.phase[1] = float_or_zero(0 - *procs->first_order);
    data.lb() = positive_or_zero(procs->lb);
    data.dims[0].advice = advice_of(*procs);
    data.title = procs->title;
}

std::vector<double> read_array_list(const std::string& folder) {
    constexpr uint64_t largest_list = 1 << 20;
    std::string bytes;
    for (const char* name : {"vdlist", "vclist", "vplist", "difflist", "valist"}) {
        const std::string path = find_companion(folder, name);
        if (path.empty() || !read_whole_file(path, bytes, largest_list)) continue;
        std::vector<double> values;
        std::string_view rest = bytes, line;
        // One value a line; a line that begins with a word (the unit of a power list, a remark) holds none.
        while (take_line(rest, line)) {
            const auto words = split_fields(line, " \t\r\n");
            if (const auto value = words.empty() ? std::nullopt : listed_value(words[0])) values.push_back(*value);
        }
        if (!values.empty()) return values;
    }
    return {};
}

bool read_sampling_list(Translation& t, const std::string& path, size_t columns, std::vector<int64_t>& indices) {
    constexpr uint64_t largest_list = 1 << 22;
    const auto refuse_line = [&](size_t number) {
        return t.fail(format_text("File %s cannot be read as a list of %zu indices a line: see its line %zu.", path.c_str(),
                                  columns, number));
    };
    std::string bytes;
    if (!read_whole_file(path, bytes, largest_list)) return t.fail(format_text("File %s cannot be read.", path.c_str()));
    std::string_view rest = bytes, line;
    for (size_t number = 1; take_line(rest, line); ++number) {
        const auto words = split_fields(line, " \t\r\n,");
        if (words.empty() || words[0].starts_with('#')) continue;
        if (words.size() < columns) return refuse_line(number);
        for (size_t c = 0; c < columns; ++c) {
            const auto index = leading_number(words[c]);
            if (!index || !(*index >= 0 && *index < 1e9) || *index != std::floor(*index)) return refuse_line(number);
            indices.push_back(static_cast<int64_t>(*index));
        }
    }
    return !indices.empty() || t.fail(format_text("File %s lists no point of the grid.", path.c_str()));
}

}  // namespace zolt
