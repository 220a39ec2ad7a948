// The ordered steps of recognising a foreign file: names with their companions first, then strong marks, weak ones last.
#include <cstdio>
#include <initializer_list>
#include <iterator>

#include "common/numbers.h"
#include "common/text.h"
#include "datafile/dxb.h"
#include "import/bruker.h"
#include "import/tranauto.h"
#include "platform/platform.h"

namespace zolt {

namespace {

constexpr uint32_t native_word = 0x04030201, swapped_native_word = 0x01020304;

// What one step says: a format's number, 0 for "go on", or the reason to stop.
struct Verdict {
    int number = 0;
    std::string stop = {};
};

// ------------------------------------------------------------------------------------------------- names and companions

Verdict bruker_directory(Candidate& file) {
    const int software = xwin_test(file);
    return {software == 1 ? 70 : software == 2 ? 71 : 0};
}

Verdict fid_with_companion(Candidate& file) {
    if (!file.named("fid")) return {};
    if (file.beside("acqus")) return {BRUX_Test(file) ? 27 : 23};
    return {file.beside("procpar") ? 22 : 0};
}

Verdict phasefile_with_companion(Candidate& file) { return {file.named("phasefile") && file.beside("procpar") ? 22 : 0}; }

Verdict processed_1d(Candidate& file) { return {file.named("1r") && (file.beside("acqus") || file.beside("procs")) ? 65 : 0}; }

Verdict ser_file(Candidate& file) {
    if (!file.named("ser")) return {};
    return {BRUU_3D_Test(file) ? 80 : 24};
}

// A set of WinNMR files has one stem; which of them was named, and what else is there, tells its kind.
constexpr struct {
    const char *given, *companion;
    int number;
} winnmr_sets[] = {
    {"ser", "dis", 55}, {"ser", "par", 51}, {"rr", "dis", 56}, {"rr", "par", 52},  {"fid", "aqs", 57}, {"fid", "dis", 53},
    {"fid", "par", 49}, {"1r", "dis", 54},  {"1r", "par", 50}, {"1r", "fqs", 63},  {"1i", "dis", 54},  {"1i", "par", 50},
    {"1i", "fqs", 63},  {"dis", "ser", 55}, {"dis", "rr", 56}, {"par", "ser", 51}, {"par", "rr", 52},  {"aqs", "fid", 57},
    {"aqs", "ser", 60}, {"aqs", "1r", 58},  {"aqs", "1i", 59}, {"fqs", "1r", 63},  {"fqs", "1i", 63},
};

Verdict winnmr_set(Candidate& file) {
    for (const auto& row : winnmr_sets)
        if (file.has_extension(row.given) && !file.twin(row.companion).empty()) return {row.number};
    return {};
}

Verdict chemagnetics_names(Candidate& file) {
    if (file.named("d") && file.beside("pb")) return {35};
    return {file.named("data") && file.beside("proc") && file.beside("acq") ? 36 : 0};
}

Verdict open_for_content(Candidate& file) {
    return file.open() ? Verdict{} : Verdict{0, format_text("Unable to open file pointer for %s.", file.path.c_str())};
}

// ----------------------------------------------------------------------------------------------------- native files, refused

// The binary marker, or the text header of the form that is written by default.
bool is_native(const Candidate& file) { return file.word(0) == native_word || is_dxb_start(file.head); }

Verdict unless_native(const Candidate& file, int number) {
    return is_native(file) ? Verdict{0, "Keyword of translated CDFF file found."} : Verdict{number};
}

Verdict bare_fid(Candidate& file) { return file.named("fid") ? unless_native(file, 22) : Verdict{}; }

Verdict extension(Candidate& file) {
    static constexpr struct {
        const char *given, *companion;
        int number;
    } rows[] = {{"gxd", "gxp", 16}, {"bin", "hdr", 17}, {"mrd", "", 21}, {"pct", "", 30}};
    for (const auto& row : rows)
        if (file.has_extension(row.given) && (*row.companion == '\0' || !file.twin(row.companion).empty()))
            return unless_native(file, row.number);
    return {};
}

Verdict native_keyword(Candidate& file) {
    if (file.word(0) == swapped_native_word) return {15};
    if (!is_native(file)) return {};
    return {file.word(0) == native_word && file.word(3) != 0 ? 39 : 14};
}

// ------------------------------------------------------------------------------------------------------------------- content

// The first of these formats whose own test accepts the file.
Verdict first_accepted(Candidate& file, std::initializer_list<int> numbers) {
    for (const int number : numbers)
        if (format_of_number(number)->test(file)) return {number};
    return {};
}

Verdict strong_content(Candidate& file) {
    return first_accepted(file, {32, 45, 18, 69, 82, 44, 40, 41, 42, 43, 72, 46, 79, 81, 47, 48, 66, 67, 68, 73});
}

Verdict weaker_content(Candidate& file) { return first_accepted(file, {78, 76, 83, 77, 74, 75, 33, 31, 38}); }

Verdict omega_one(Candidate& file) { return first_accepted(file, {9}); }

Verdict galactic(Candidate& file) { return first_accepted(file, {37}); }

Verdict omega_two(Candidate& file) {
    const std::string header = file.twin("hed");
    return {open_for_reading(!header.empty() ? header : file.twin("h")) ? 10 : 0};
}

// ---------------------------------------------------------------------------------------------------- words of old computers

// A word of `bits` bits with its sign extended.
int32_t extended(uint32_t word, int bits) { return static_cast<int32_t>(word << (32 - bits)) >> (32 - bits); }

uint32_t byte_of(const Candidate& file, size_t index) {
    return index < file.head.size() ? static_cast<unsigned char>(file.head[index]) : 0;
}

Verdict aspect_word(Candidate& file) {
    if (file.head.size() < 3) return {};
    switch (static_cast<uint32_t>(extended(byte_of(file, 0) << 16 | byte_of(file, 1) << 8 | byte_of(file, 2), 24))) {
        case 0x004784F5:
            return {11};
        case 0xFFF58447:
            return {file.word(0) == 0x004784F5 && file.head.size() >= 4 ? 29 : 19};
        case 0xFFC20500:
            return {20};
        case 0xFF83934D:
            return {64};
        default:
            return {};
    }
}

constexpr int32_t nt_word = 0x2C72, qe_word = 0x3212, gn_word = 0xE243;

// Whether (2 * length - fixed) / 5 is a power of two.
bool holds_power_of_two(uint64_t length, uint64_t fixed) { return 2 * length > fixed && is_power_of_two((2 * length - fixed) / 5); }

Verdict dexter_or_tmon(const Candidate& file) {
    if (holds_power_of_two(file.bytes, 1760)) return {1};
    if (holds_power_of_two(file.bytes, 2560)) return {2};
    if (!file.may_ask) return {2};
    const Answer answer = platform().question("Dexter or TMON",
                                              "Found the right keyword for an NT file,\nbut the file size is incorrect.\n"
                                              "YES will assumed it is a 2D Dexter file.\nNO will assumed it is a 2D TMON file.\n"
                                              "CANCEL will abort the file import.",
                                              Buttons::yes_no_cancel);
    if (answer == Answer::cancel) return {0, "Import of NT file canceled."};
    return {answer == Answer::yes ? 1 : 2};
}

// Words of 20 bits, two in five bytes.
Verdict nicolet_word(Candidate& file) {
    if (file.head.size() < 3) return {};
    const int32_t word = extended(byte_of(file, 0) << 12 | byte_of(file, 1) << 4 | byte_of(file, 2) >> 4, 20);
    if (word == nt_word) return dexter_or_tmon(file);
    return {word == qe_word ? 4 : word == gn_word ? 3 : 0};
}

// The same words, one in every four bytes.
Verdict nicnet_word(Candidate& file) {
    const auto word = static_cast<int32_t>(file.word(0, ByteOrder::big));
    return {word == nt_word ? 6 : word == qe_word ? 8 : word == gn_word ? 7 : 0};
}

constexpr struct {
    const char* name;
    Verdict (*decide)(Candidate& file);
} steps[] = {
    {"1 Bruker directory", bruker_directory},
    {"2 name fid with acqus or procpar", fid_with_companion},
    {"3 name phasefile with procpar", phasefile_with_companion},
    {"4 name 1r with acqus or procs", processed_1d},
    {"5 name ser", ser_file},
    {"6 WinNMR extensions", winnmr_set},
    {"7 names d and data with their companions", chemagnetics_names},
    {"8 opening of the file", open_for_content},
    {"9 name fid alone", bare_fid},
    {"10 content", strong_content},
    {"11 Aspect word", aspect_word},
    {"12 content, weaker marks", weaker_content},
    {"13 extension", extension},
    {"14 Nicolet word", nicolet_word},
    {"15 NicNet word", nicnet_word},
    {"16 native keyword", native_keyword},
    {"17 Omega header in the file", omega_one},
    {"18 Omega header beside the file", omega_two},
    {"19 spectral file header", galactic},
};
constexpr const char* no_step = "20 nothing fits";

}  // namespace

Detection detect_format(const std::string& path, bool may_ask) {
    Candidate file(path);
    file.may_ask = may_ask;
    for (const auto& step : steps) {
        const Verdict verdict = step.decide(file);
        if (verdict.number != 0 || !verdict.stop.empty()) return {format_of_number(verdict.number), step.name, verdict.stop};
    }
    return {nullptr, no_step, format_text("Unknown data source for %s\n Don't know what to do with it!!!\n", path.c_str())};
}

}  // namespace zolt
