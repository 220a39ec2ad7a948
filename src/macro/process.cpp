// The lines of Process, written from the data set's record, and their run as a macro.
#include "macro/process.h"

#include <algorithm>

#include "common/file.h"
#include "common/numbers.h"
#include "common/text.h"
#include "config/paths.h"
#include "datafile/arrayed.h"
#include "macro/stepper.h"
#include "platform/platform.h"

namespace zolt {

namespace {

constexpr uint64_t least_indirect_points = 1024;

using Lines = std::vector<std::string>;

// " 2D" and so on behind a command; nothing for dimension 1.
std::string word_of(int dimension) { return dimension > 1 ? format_text(" %dD", dimension) : ""; }

std::string number(double value) { return format_text("%.9g", value); }

// The usual line broadening: narrow lines of protons, the broader ones of other nuclei.
double usual_broadening(const std::string& nucleus) { return nucleus.empty() || nucleus == "1H" ? 0.3 : 1; }

void add_window(Lines& lines, const DataRecord& data, int dimension, bool series) {
    const Dimension& d = data.dims[static_cast<size_t>(dimension - 1)];
    const std::string word = word_of(dimension);
    switch (d.advice.window) {
        case Apodization::none:
            return;
        case Apodization::exponential:
            // Along dimensions 3 and 4 the value cannot be typed.
            if (d.advice.lb != 0 && dimension <= 2) lines.push_back("EM" + word + " " + number(d.advice.lb));
            return;
        case Apodization::sine:
        case Apodization::sine_squared:
            lines.push_back("SineBell" + word + " " + number(d.advice.bell_offset) + " 1 " +
                            (d.advice.window == Apodization::sine ? "1" : "2"));
            return;
        case Apodization::unknown:
            break;
    }
    if (data.all_slices() == 1 || series)
        lines.push_back("EM " + number(data.lb() > 0 ? double{data.lb()} : usual_broadening(d.nucleus)));
    else
        lines.push_back("COSINE" + word + " 2");
}

// To the size that the data set's files ask for, else to twice the next power of two.
void add_zero_fill(Lines& lines, const DataRecord& data, int dimension, uint64_t points) {
    const ProcessingAdvice& advice = data.dims[static_cast<size_t>(dimension - 1)].advice;
    uint64_t wanted = advice.points > 0 ? static_cast<uint64_t>(advice.points) : 2 * next_power_of_two(points);
    if (dimension > 1 && advice.points <= 0) wanted = std::max(wanted, least_indirect_points);
    const uint64_t filled = next_power_of_two(std::max(wanted, points));
    if (filled > points)
        lines.push_back("ZeroFill" + word_of(dimension) + format_text(" %llu", static_cast<unsigned long long>(filled)));
}

// The operator's phases where they are known, else those that the program finds.
void add_phase(Lines& lines, const DataRecord& data) {
    const bool known = data.dims[0].advice.phased || data.phase[0] != 0 || data.phase[1] != 0;
    lines.push_back(known ? "PC " + number(double{data.phase[0]}) + " " + number(double{data.phase[1]}) : "AP");
}

void add_dimension_1(Lines& lines, const DataRecord& data, bool series, bool phases) {
    const bool real = data.dims[0].domain_code == domain_real;
    add_window(lines, data, 1, series);
    add_zero_fill(lines, data, 1, static_cast<uint64_t>(data.pts1d()));
    if (real && data.dims[0].advice.points > 0) lines.push_back("ZeroFill");  // half of the points are spectrum
    lines.push_back("FT");
    if (phases) add_phase(lines, data);
}

void add_phase_along(Lines& lines, const DataRecord& data, int dimension) {
    const ProcessingAdvice& advice = data.dims[static_cast<size_t>(dimension - 1)].advice;
    if (advice.phased && (advice.phase[0] != 0 || advice.phase[1] != 0))
        lines.push_back("PhaseDim" + word_of(dimension) + " " + number(double{advice.phase[0]}) + " " +
                        number(double{advice.phase[1]}));
}

// Pairs of slices, put together and transformed along dimension 2, and back to pairs.
void add_pairs(Lines& lines, const DataRecord& data) {
    const std::string& key = data.process_type;
    add_dimension_1(lines, data, false, true);
    if (key == "2D_ECHOANTIECHO") lines.push_back("EchoAntiEcho");
    lines.push_back("SwitchAB ArBr");
    // The phase was stepped between the increments; that of TPPI undoes the signs which the sequential transform gives.
    if (key == "2D_STATESTPPI" || key == "2D_TPPI") lines.push_back("AlternateSign 2D");
    add_window(lines, data, 2, false);
    add_zero_fill(lines, data, 2, static_cast<uint64_t>(data.dims[1].points / 2));
    lines.push_back(key == "2D_TPPI" ? "FT sequential 2D" : "FT complex 2D");
    add_phase_along(lines, data, 2);
    lines.push_back("SwitchAB ArBr");
}

// Magnitudes of complex transforms along every dimension.
void add_magnitude(Lines& lines, const DataRecord& data) {
    add_dimension_1(lines, data, false, false);
    for (int d = 2; d <= 4; ++d) {
        const int32_t points = data.dims[static_cast<size_t>(d - 1)].points;
        if (points < 2) continue;
        add_window(lines, data, d, false);
        add_zero_fill(lines, data, d, static_cast<uint64_t>(points));
        lines.push_back("FT complex" + word_of(d));
    }
    lines.push_back("MC");
}

}  // namespace

std::vector<std::string> processing_lines(const DataRecord& data) {
    Lines lines;
    if (data.dims[0].frequency) return lines;
    static constexpr const char* words[] = {"off", "complex", "pairwise", "3D", "4D"};
    const ArrayedLevel level = level_of_type(data.process_type);
    if (data.all_slices() > 1 && data.level == non_arrayed) lines.push_back(std::string("AR ") + words[level]);
    // Of two widths that contradict one another the one in ppm is what the axis was set up with.
    if (data.other_sw2 > 0) lines.push_back("SW2 " + number(data.other_sw2));
    if (data.process_type == "1D")
        add_dimension_1(lines, data, data.all_slices() > 1, true);
    else if (level == pairwise_arrayed)
        add_pairs(lines, data);
    else
        add_magnitude(lines, data);
    return lines;
}

int cmd_process(Arguments& args) {
    const bool listed = args.ask_usage();
    if (!show.loaded) return show_reply("Process or AutoProcess [?]");
    const Lines lines = processing_lines(show);
    if (lines.empty()) return refuse("Process begins with FIDs: these data are a spectrum along dimension 1.");
    if (show.level != non_arrayed && show.level != level_of_type(show.process_type))
        return refuse(format_text("Process of %s data works in another Arrayed mode.\nLeave this one with AR off.",
                                  show.process_type.c_str()));
    std::string text = "ZOLTMACRO\r\n";
    for (const std::string& line : lines) text += line + "\r\n";
    if (listed) return show_reply(text);
    const std::string path = scratch_folder() + "/Process.mac";
    ReplacedFile file;
    if (!file.open(path) || !file.write(text) || !file.commit())
        return refuse(format_text("Could not open File: %s", path.c_str()));
    return run_own_macro(path) ? 1 : 0;
}

}  // namespace zolt
