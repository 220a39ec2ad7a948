// Bruker data: finding and reading the parameter files, and the points of a 1D FID.
#include "import/bruker.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <ctime>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

#include "common/bytes.h"
#include "common/numbers.h"
#include "common/text.h"
#include "import/bruker_delay.h"
#include "import/labelled.h"

namespace zolt {

namespace {

constexpr size_t longest_text = 127;

// ------------------------------------------------------------------------------------------------ the parameter files

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

// acqus (acqu2s, acqu3s) of the data in a folder: beside them, above pdata, else in subfolders 1 to 9; "" without one.
std::string parameter_file(const std::string& folder, const std::string& name, bool in_subfolders) {
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

// ------------------------------------------------------------------------------------------------------------- values

// Texts may hold anything that reads as a number; what is none of use counts as not given.
double finite(double value) { return std::isfinite(value) ? value : 0; }

float usable(double value) { return std::abs(value) <= std::numeric_limits<float>::max() ? static_cast<float>(value) : 0; }

float positive(double value) { return value > 0 ? usable(value) : 0; }

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

// What acqus says beside the parameters of the data set.
struct Acquisition {
    std::optional<int64_t> words;  ///< TD
    double sfo1 = 0;               ///< in the full precision of its text, for the offset
    RawWords raw;
    DigitalFilter filter;
};

struct AcquisitionLabel {
    const char* label;
    void (*take)(const LabelledRecord& record, Acquisition& acquisition, DataSet& data);
};

// One row a record, taken in the order in which the file has them.
constexpr AcquisitionLabel acqus_labels[] = {
    {"##ORIGIN", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.raw.from_24_bits = r.value == "UXNMR/P"; }},
    {"##OWNER", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.owner = cut(r.value, longest_text); }},
    {"##$D", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.d1 = finite(r.element(1).value_or(d.d1)); }},
    {"##$P", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.p1 = finite(r.element(1).value_or(d.p1)); }},
    {"##$DATE", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.date = date_text(integer_or_zero(r.value)); }},
    {"##$DIGMOD", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.filter.digital = integer_or_zero(r.value) != 0; }},
    {"##$DECIM", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.filter.decimation = number_or_zero(r.value); }},
    {"##$DSPFVS", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.filter.firmware = integer_or_zero(r.value); }},
    {"##$GRPDLY", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.filter.stated_delay = number_or_zero(r.value); }},
    {"##$BYTORDA", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.raw.big_endian = integer_or_zero(r.value) != 0; }},
    {"##$DTYPA", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.raw.doubles = integer_or_zero(r.value) == 2; }},
    {"##$TD", [](const LabelledRecord& r, Acquisition& a, DataSet&) { a.words = integer_or_zero(r.value); }},
    {"##$NS",
     [](const LabelledRecord& r, Acquisition&, DataSet& d) {
         d.scans = static_cast<int32_t>(std::clamp<int64_t>(integer_or_zero(r.value), 0, std::numeric_limits<int32_t>::max()));
     }},
    {"##$SFO1",
     [](const LabelledRecord& r, Acquisition& a, DataSet& d) {
         a.sfo1 = finite(number_or_zero(r.value));
         d.dims[0].sf = positive(a.sfo1);
     }},
    {"##$SW_h", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.dims[0].sw = positive(number_or_zero(r.value)); }},
    {"##$O1", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.o1 = finite(number_or_zero(r.value)); }},
    {"##$O2", [](const LabelledRecord& r, Acquisition&, DataSet& d) { d.o2 = finite(number_or_zero(r.value)); }},
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

void take_acqus(const LabelledFile& file, Acquisition& acquisition, DataSet& data) {
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
    data.dims[0].offset = usable(data.o1);
}

// -------------------------------------------------------------------------------------------------- pdata/1 of a FID

// Referencing, phases and line broadening that the operator chose for the stored spectrum.
void take_procs(const LabelledFile& procs, const Acquisition& acquisition, DataSet& data) {
    const auto reference = procs.number("##$SF");
    if (reference && *reference > 0 && acquisition.sfo1 > 0) data.dims[0].offset = usable((acquisition.sfo1 - *reference) * 1e6);
    if (const auto zero_order = procs.number("##$PHC0")) data.phase[0] = usable(0 - *zero_order);
    if (const auto first_order = procs.number("##$PHC1")) data.phase[1] = usable(0 - *first_order);
    data.lb() = positive(procs.number("##$LB").value_or(0));
}

std::string title_of(const std::string& folder) {
    constexpr uint64_t largest_title = 1 << 20;
    std::string bytes;
    if (!read_whole_file(find_companion(folder, "title"), bytes, largest_title)) return {};
    const std::string text = readable_text(bytes);
    std::string_view rest = text, line;
    take_line(rest, line);
    return std::string(cut(trimmed(line), longest_text));
}

bool take_points(Translation& t, const Acquisition& acquisition, const std::string& acqus) {
    if (!acquisition.words)
        return t.fail(
            format_text("File %s cannot be imported: %s gives no number of points (##$TD).", t.path.c_str(), acqus.c_str()));
    const auto held = static_cast<int64_t>(t.input_bytes / acquisition.raw.bytes());
    const int64_t points = std::min(*acquisition.words, held) / 2;
    if (points < 1 || points > std::numeric_limits<int32_t>::max())
        return t.fail(format_text("File %s cannot be imported: it holds %lld words of the %lld that %s gives.", t.path.c_str(),
                                  static_cast<long long>(held), static_cast<long long>(*acquisition.words), acqus.c_str()));
    t.parameters.dims[0].points = static_cast<int32_t>(points);
    // A delay beyond the data is no delay of these data.
    const double delay = group_delay(acquisition.filter);
    t.parameters.group_delay = delay <= static_cast<double>(points) ? delay : 0;
    return true;
}

// ------------------------------------------------------------------------------------------------------------- points

uint32_t reversed(uint32_t word) { return __builtin_bswap32(word); }

float integer_word(const char* at, const RawWords& raw) {
    auto word = load_word<uint32_t>(at, ByteOrder::little);
    // Both reversals happen where both apply: the sign is extended between them, and files written so exist.
    if (raw.from_24_bits) word = static_cast<uint32_t>(static_cast<int32_t>(reversed(word) << 8) >> 8);
    if (raw.big_endian) word = reversed(word);
    return static_cast<float>(static_cast<int32_t>(word));
}

float double_word(const char* at, const RawWords& raw) {
    uint64_t word = 0;
    std::memcpy(&word, at, 8);
    if (raw.big_endian != (machine_order == ByteOrder::big)) word = __builtin_bswap64(word);
    return static_cast<float>(std::bit_cast<double>(word));
}

// One loop a kind of word, so that the conversion is compiled into it.
template <float (*value)(const char* at, const RawWords& raw)>
void split_words(const char* at, size_t points, const RawWords& raw, float* re, float* im) {
    const size_t step = raw.bytes();
    for (size_t i = 0; i < points; ++i, at += 2 * step) {
        re[i] = value(at, raw);
        im[i] = value(at + step, raw);
    }
}

}  // namespace

int xwin_test(const Candidate& file) {
    static constexpr std::string_view names[] = {"fid", "ser", "1r", "2rr", "2ri", "2ir", "2ii", "3rrr"};
    if (std::none_of(std::begin(names), std::end(names), [&](std::string_view name) { return file.named(name); })) return 0;
    File acqus = open_for_reading(parameter_file(file.folder, "acqus", false));
    std::array<char, 512> start{};
    if (!acqus) return 0;
    const std::string lines = upper({start.data(), std::fread(start.data(), 1, start.size(), acqus.stream())});
    if (lines.find("TOPSPIN") != std::string::npos) return 2;
    return lines.find("XWIN-NMR") != std::string::npos ? 1 : 0;
}

bool BRUX_Test(Candidate& file) {
    std::array<char, 4> start{};
    return open_for_reading(file.path).read(start.data(), start.size()) && same_word({start.data(), start.size()}, "A000");
}

bool BRUU_3D_Test(Candidate& file) { return !parameter_file(file.folder, "acqu3s", true).empty(); }

bool BRUU_Parm(Translation& t) {
    const std::string acqus = parameter_file(folder_of(t.path), "acqus", true);
    LabelledFile file;
    if (acqus.empty()) return t.fail("File error for Bruker acqus (Missing]");
    if (!read_labelled(acqus, file)) return t.fail(format_text("File %s cannot be read as a parameter file.", acqus.c_str()));
    Acquisition acquisition;
    take_acqus(file, acquisition, t.parameters);
    t.raw = acquisition.raw;

    const std::string processed = folder_of(acqus) + "/pdata/1";
    const std::string procs = find_companion(processed, "procs");
    if (!procs.empty() && read_labelled(procs, file)) take_procs(file, acquisition, t.parameters);
    t.parameters.title = title_of(processed);
    return take_points(t, acquisition, acqus);
}

bool XWIN_Parm(Translation& t) {
    Candidate file(t.path);
    const bool plane = file.named("2rr") || file.named("2ri") || file.named("2ir") || file.named("2ii");
    const int number = file.named("1r")    ? 65
                       : file.named("ser") ? (BRUU_3D_Test(file) ? 80 : 24)
                       : plane             ? 24
                                           : (file.named("3rrr") ? 80 : 23);
    return number == 23 ? BRUU_Parm(t) : t.fail(not_importable(*format_of_number(number)));
}

bool BRUUData(Translation& t) {
    constexpr const char* module = "\nError in BRUUData Module";
    if (!t.input.seek(0)) return t.fail(std::string("Can't move file pointer to desired location\nin data input file.\n") + module);
    if (!t.real.seek(0))
        return t.fail(std::string("Can't move file pointer to desired location\nin data temporary file 1.\n") + module);
    if (!t.imaginary.seek(0))
        return t.fail(std::string("Can't move file pointer to desired location\nin temporary file 2.\n") + module);

    constexpr size_t points_at_a_time = size_t{1} << 16;
    const auto points = static_cast<size_t>(t.parameters.dims[0].points);
    const size_t most = std::min(points, points_at_a_time);
    std::vector<char> words(2 * most * t.raw.bytes());
    std::vector<float> re(most), im(most);
    for (size_t done = 0; done < points;) {
        const size_t count = std::min(most, points - done);
        if (!t.input.read(words.data(), 2 * count * t.raw.bytes()))
            return t.fail(format_text("File %s ends before its last point.\n%s", t.path.c_str(), module));
        const auto split = t.raw.doubles ? split_words<double_word> : split_words<integer_word>;
        split(words.data(), count, t.raw, re.data(), im.data());
        if (!t.real.write(re.data(), count * sizeof(float)) || !t.imaginary.write(im.data(), count * sizeof(float)))
            return t.fail(format_text("The temporary files cannot be written.  ZOLT home directory disk full???\n%s", module));
        done += count;
    }
    return true;
}

}  // namespace zolt
