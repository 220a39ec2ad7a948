// Marks and words by which files are recognised. Where a mark is short or a common word, only its own place counts.
#include "import/detect_content.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "common/text.h"

namespace zolt {

namespace {

constexpr size_t whole_head = std::string::npos;

bool begins(const Candidate& file, std::string_view mark) { return file.head.starts_with(mark); }

bool holds(std::string_view head, std::string_view mark, size_t within = whole_head) {
    return head.substr(0, within).find(mark) != std::string_view::npos;
}

bool has_mark_at(const Candidate& file, size_t offset, std::string_view mark) {
    return file.head.size() >= offset && std::string_view(file.head).substr(offset).starts_with(mark);
}

bool is_text(std::string_view head) {
    return !head.empty() && std::none_of(head.begin(), head.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x80 || (byte < ' ' && c != '\t' && c != '\n' && c != '\r' && c != '\f');
    });
}

// The text begins with these words, whatever separates them.
bool begins_with_words(std::string_view text, std::initializer_list<std::string_view> words, std::string_view separators) {
    const auto fields = split_fields(text.substr(0, 256), separators);
    return fields.size() >= words.size() && std::equal(words.begin(), words.end(), fields.begin(), same_word);
}

bool has_word(std::string_view text, std::string_view word, std::string_view separators) {
    const auto fields = split_fields(text, separators);
    return std::any_of(fields.begin(), fields.end(), [&](std::string_view field) { return same_word(field, word); });
}

}  // namespace

// ------------------------------------------------------------------------------------------ instruments and their programs

bool ANALOGIC_test(Candidate& file) {
    if (file.twin("anm").empty()) return false;
    return !is_text(file.head) || holds(upper(file.head), "ANALOGIC");
}

bool ATI_test(Candidate& file) { return is_text(file.head) && begins_with_words(file.head, {"ATI"}, " :,\t\n\r"); }

bool HITACHI_test(Candidate& file) { return !file.twin("prm").empty(); }

bool OMEGA_ONE_test(Candidate& file) {
    constexpr std::string_view separators = "=,\t\n\r<> ";
    return has_word(file.head, "block_size", separators) && has_word(file.head, "groupnum", separators);
}

bool LYBRICS_test(Candidate& file) {
    if (begins(file, "KEYS")) return true;
    std::string_view rest = file.head, line;
    while (is_text(file.head) && take_line(rest, line))
        if (begins_with_words(line, {"KEYS"}, " \t:=")) return line.find("KEYS") != std::string_view::npos;
    return false;
}

namespace {

// Type or creator of a Macintosh file: at the start of the bare data, or behind the name in a MacBinary head.
bool has_mac_tag(const Candidate& file, std::string_view tag) {
    if (has_mark_at(file, 0, tag) || has_mark_at(file, 4, tag)) return true;
    return has_mark_at(file, 0, {"\0", 1}) && (has_mark_at(file, 65, tag) || has_mark_at(file, 69, tag));
}

}  // namespace

// The older program's files carry no creator of their own.
bool MACFID1_test(Candidate& file) {
    for (const char* creator : {"MFD2", "MNMR", "MNM5"})
        if (has_mac_tag(file, creator)) return false;
    return has_mac_tag(file, "NDAT") || has_mac_tag(file, "TDAT");
}

bool MACFID2_test(Candidate& file) { return has_mac_tag(file, "MFD2"); }

bool MACNMR1_test(Candidate& file) { return has_mac_tag(file, "MNMR"); }

bool MACNMR2_test(Candidate& file) { return has_mac_tag(file, "MNM5"); }

// "TNT1.008" stands in front of the tag.
bool NTNMR_test(Candidate& file) { return begins(file, "TMAG") || has_mark_at(file, 8, "TMAG"); }

bool NMRI_test(Candidate& file) {
    return starts_with_word(file.head, "NMRI") || holds(upper(file.head).substr(0, 512), "NEW METHODS RESEARCH");
}

namespace {

// A matrix file: 4096 words of header that begin with the number of dimensions d and a 1. Word 20 + d is the first of the
// point counts, word 20 + 4 d of the brick sizes.
bool is_felix_matrix(const Candidate& file, ByteOrder order) {
    constexpr uint64_t header_bytes = 4 * 4096, most_dimensions = 6;
    const uint32_t dimensions = file.word(0, order);
    if (dimensions < 1 || dimensions > most_dimensions || file.word(1, order) != 1 || file.bytes < header_bytes) return false;
    uint64_t room = (file.bytes - header_bytes) / 4;
    for (uint32_t d = 0; d < dimensions; ++d) {
        const uint32_t points = file.word(20 + dimensions + d, order), brick = file.word(20 + 4 * dimensions + d, order);
        if (points < 1 || points > room || brick < 1 || brick > points) return false;
        room /= points;
    }
    return true;
}

}  // namespace

bool FLX_AII_test(Candidate& file) { return is_felix_matrix(file, ByteOrder::little); }

bool IRIS_FELIX_test(Candidate& file) { return is_felix_matrix(file, ByteOrder::big); }

// The parameter file begins with a comment: "! this file ..."
bool AZARA_test(Candidate& file) { return is_text(file.head) && begins_with_words(file.head, {"this", "file"}, " !#\t\n\r,=:"); }

// -------------------------------------------------------------------------------------------------------------------- JEOL

bool FXQ_test(Candidate& file) { return file.has_extension("fxq") || begins(file, "FXQ"); }

bool JEOL_LAMBDA_test(Candidate& file) { return holds(file.head, "JEOLUSF001", 512); }

bool JEOL_ALS_test(Candidate& file) { return holds(file.head, "WIN NMR VERSION", 512); }

bool JEOL_ALPHA_test(Candidate& file) { return holds(file.head, "NFT1", 16) || holds(file.head, "DT01", 16); }

bool JEOL_DELTA_Test(Candidate& file) { return begins(file, "JEOL.NMR") || begins(file, "RMN.LOEJ"); }

// ---------------------------------------------------------------------------------------------------------- medical scanners

// The logo of raw scanner files stands in their first hundred bytes; texts about such files name it later.
bool GEMS_test(Candidate& file) { return holds(file.head, "GE_MED_NMR", 128) || holds(file.head, "INVALIDNMR", 128); }

bool GE_MEDI_test(Candidate& file) { return holds(file.head, "GE MEDI", 4096); }

bool PHIL_test(Candidate& file) { return holds(file.head, "ACR-NEMA", 1024); }

bool ARC_NEMA_test(Candidate& file) { return PHIL_test(file) && !file.twin("mag").empty(); }

namespace {

bool is_gyroscan_text(std::string_view head) { return holds(head, "GYROSCAN", 4096); }

bool is_descriptor(std::string_view head) { return begins_with_words(head, {"DATA", "DESCRIPTOR", "FILE"}, " \t\r\n,:="); }

}  // namespace

// Either of the pair .SPAR and .SDAT may be named; only the text tells what both are.
bool PHILIPS2_test(Candidate& file) {
    if (is_gyroscan_text(file.head) || (file.has_extension("spar") && holds(file.head, "CAUTION", 4096))) return true;
    return file.has_extension("sdat") && is_gyroscan_text(file.head_of_twin("spar"));
}

bool DDF_test(Candidate& file) {
    return is_descriptor(file.head) || (file.has_extension("raw") && is_descriptor(file.head_of_twin("ddf")));
}

namespace {
constexpr std::string_view rda_start = ">>> Begin of header <<<";
}

bool SIEMENS_test(Candidate& file) { return holds(file.head, "SIEMENS", 4096) && !holds(file.head, rda_start); }

bool SIEMENS_RDA_test(Candidate& file) { return file.has_extension("rda") && holds(file.head, rda_start); }

bool ELCINT_test(Candidate& file) {
    const std::string head = upper(file.head).substr(0, 1024);
    return holds(head, "ELSCINT") || holds(head, "ELCINT");
}

// --------------------------------------------------------------------------------------------------------- exchange formats

namespace {

// A label as the standard compares it: letters and digits in upper case.
std::string plain_label(std::string_view label) {
    std::string plain;
    for (const char c : label)
        if (c != ' ' && c != '-' && c != '/' && c != '_' && c != '\t') plain += upper(c);
    return plain;
}

// Labels that only files with data have; parameter files of instruments use the same syntax.
bool tells_of_data(const std::string& label, std::string_view value) {
    static constexpr std::string_view labels[] = {"DATACLASS", "XYDATA", "XYPOINTS", "NTUPLES", "PEAKTABLE", "DATATABLE", "PAGE"};
    if (std::find(std::begin(labels), std::end(labels), label) != std::end(labels)) return true;
    const std::string type = upper(value);
    return label == "DATATYPE" && (type.find("NMR") != std::string::npos || trimmed(type) == "LINK");
}

}  // namespace

bool JCAMP_file_test(Candidate& file) {
    bool standard = false, data = false;
    // Old Macintosh programs end lines with a carriage return alone.
    for (const std::string_view field : split_fields(file.head, "\r\n")) {
        const std::string_view line = trimmed(field);
        if (!line.starts_with("##")) continue;
        const size_t equals = std::min(line.find('='), line.size());
        const std::string label = plain_label(line.substr(2, equals - 2));
        standard |= label == "JCAMPDX";
        data |= tells_of_data(label, line.substr(std::min(equals + 1, line.size())));
    }
    return standard && data;
}

bool GAML_test(Candidate& file) { return holds(file.head, "?xml version") && holds(file.head, "GAML version"); }

namespace {

// A header whose counts fit the file. The version alone is one byte, which many other files have by chance.
bool is_spectral_header(const Candidate& file) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(file.head[i]); };
    constexpr unsigned last_experiment = 13, old_version = 0x4D, big_endian_version = 0x4C;
    constexpr unsigned sixteen_bits = 0x01, own_x_values = 0x80;
    if (file.head.size() < 256 || byte(2) > last_experiment) return false;
    const ByteOrder order = byte(1) == big_endian_version ? ByteOrder::big : ByteOrder::little;
    const bool old = byte(1) == old_version;
    if (!old && file.head.size() < 512) return false;
    const char* count = file.head.data() + 4;
    const double points =
        old ? static_cast<double>(load_word<float>(count, order)) : static_cast<double>(load_word<int32_t>(count, order));
    if ((byte(0) & own_x_values) != 0) return points >= 0;
    const double smallest = (old ? 256.0 : 512.0) + points * ((byte(0) & sixteen_bits) != 0 ? 2 : 4);
    return points >= 1 && std::floor(points) == points && smallest <= static_cast<double>(file.bytes);
}

}  // namespace

bool GALACTIC_test(Candidate& file) {
    static constexpr std::string_view versions = "\x4B\x4C\x4D";
    if (file.head.size() < 2 || versions.find(file.head[1]) == std::string_view::npos) return false;
    return file.has_extension("spc") || is_spectral_header(file);
}

}  // namespace zolt
