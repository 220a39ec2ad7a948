// Parameter stages of processed Bruker data: 1r, the quadrants of 2rr, 3rrr.
#include "import/bruker_processed.h"

#include <algorithm>
#include <limits>

#include "common/text.h"
#include "import/bruker.h"
#include "import/bruker_points.h"
#include "import/bruker_raw.h"
#include "platform/platform.h"

namespace zolt {

namespace {

constexpr int64_t most_points = std::numeric_limits<int32_t>::max();
using Wide = long long;  // for format texts

// The centre of a spectrum in Hz: OFFSET is the shift of its left edge, on the scale of the reference frequency.
double centre_of(double sfo1, double sw, double carrier_offset, const std::optional<Processing>& processing) {
    if (!processing || !processing->left_edge) return referenced_offset(sfo1, carrier_offset, processing);
    return *processing->left_edge * (processing->sf > 0 ? processing->sf : sfo1) - sw / 2;
}

// Points of a dimension as its file has them: SI, or the strip of them that was kept.
struct Extent {
    int64_t points = 1, tile = 1;
};

Extent extent_of(const Processing& processing, bool strip) {
    const int64_t points = strip && processing.strip > 0 ? processing.strip : processing.points;
    return {points, processing.tile > 0 && processing.tile < points ? processing.tile : points};
}

// Counts and tiles, slowest dimension first. False with the message when the file is no whole number of tiles, or shorter.
bool take_extents(Translation& t, std::span<const Processing> processing, bool strip, BrukerPlan& plan) {
    double words = 1;
    for (size_t d = 0; d < processing.size(); ++d) {
        const Extent extent = extent_of(processing[d], strip);
        // Dimension 1 is the last of the counts; a plane's rows are its planes of one row each.
        const size_t place = d == 0 ? 2 : processing.size() == 2 ? 0 : 2 - d;
        plan.counts[place] = extent.points;
        plan.tile[place] = extent.tile;
        if (extent.points < 1 || extent.points > most_points)
            return t.fail(
                format_text("File %s cannot be imported: its processing parameters give %lld points (##$SI) of dimension %zu.",
                            t.path.c_str(), static_cast<Wide>(extent.points), d + 1));
        if (extent.points % extent.tile != 0)
            return t.fail(
                format_text("File %s cannot be imported: its %lld points of dimension %zu are no whole number of tiles of %lld.",
                            t.path.c_str(), static_cast<Wide>(extent.points), d + 1, static_cast<Wide>(extent.tile)));
        words *= static_cast<double>(extent.points);
    }
    if (words * static_cast<double>(t.raw.bytes()) > static_cast<double>(t.input_bytes))
        return t.fail(
            format_text("File %s cannot be imported: it holds %lld words of the %.0f that its processing parameters give.",
                        t.path.c_str(), static_cast<Wide>(t.input_bytes / t.raw.bytes()), words));
    return true;
}

// The points of dimension 1. Where a strip of the spectrum was kept, width and centre are those of the strip.
void take_spectrum_points(Translation& t, const Acquisition& acquisition, const std::optional<Processing>& procs, int64_t points) {
    Dimension& dimension = t.parameters.dims[0];
    dimension.points = static_cast<int32_t>(points);
    if (!procs || procs->strip != points || procs->points <= points) return;
    const double sw = acquisition.sw * static_cast<double>(points) / static_cast<double>(procs->points);
    dimension.sw = float_or_zero(sw);
    dimension.offset = float_or_zero(centre_of(acquisition.sfo1, sw, t.parameters.o1, procs));
}

// The quadrant that holds the imaginary parts, along dimension 1, of the one given.
std::string imaginary_of(const std::string& path) {
    const std::string folder = folder_of(path), name = lower(name_of(path));
    if (name == "3rrr") return find_companion(folder, "3irr");
    if (name == "2ri") return find_companion(folder, "2ii");
    if (name != "2rr") return {};
    const std::string own = find_companion(folder, "2ir");
    // Without transform of dimension 2 there are two parts only, and 2ii is the imaginary one.
    return own.empty() && find_companion(folder, "2ri").empty() ? find_companion(folder, "2ii") : own;
}

void note_quadrants(Translation& t, const BrukerPlan& plan) {
    const bool plane = is_processed_plane(t.path);
    const std::string name = lower(name_of(t.path));
    if (plan.imaginary.empty() && (name == "2rr" || name == "3rrr"))
        t.note(format_text("The imaginary parts are zero: there is no file %s.", plane ? "2ir" : "3irr"));
    if (name == "2rr" && !find_companion(folder_of(t.path), "2ri").empty())
        t.note("The parts that are imaginary in dimension 2 are imported from 2ri.");
}

// Axes of the indirect dimensions of a spectrum.
bool take_axes(Translation& t, std::span<const Processing> processing, bool strip) {
    for (size_t d = 1; d < processing.size(); ++d) {
        Indirect indirect;
        if (!take_indirect(t, d, processing[d], indirect)) return false;
        Dimension& dimension = t.parameters.dims[d];
        const Processing& p = processing[d];
        dimension.points = static_cast<int32_t>(extent_of(p, strip).points);
        dimension.frequency = p.transformed;
        if (!p.transformed) continue;
        // SW_h of an indirect dimension may be left over; the width of the spectrum is what its processing used.
        const double sw = p.sw > 0 ? p.sw : indirect.sw;
        dimension.sw = float_or_zero(sw);
        dimension.offset = float_or_zero(centre_of(indirect.sfo1, sw, indirect.o1, p));
    }
    return true;
}

}  // namespace

bool is_processed_plane(const std::string& path) {
    const std::string name = name_of(path);
    return same_word(name, "2rr") || same_word(name, "2ri") || same_word(name, "2ir") || same_word(name, "2ii");
}

void take_procs_of_spectrum(Translation& t, const Acquisition& acquisition, const std::optional<Processing>& procs) {
    DataSet& data = t.parameters;
    t.raw = acquisition.raw;
    t.raw.doubles = false;
    data.dims[0].frequency = true;
    data.dims[0].offset = float_or_zero(centre_of(acquisition.sfo1, acquisition.sw, data.o1, procs));
    if (!procs) return;
    t.raw.doubles = procs->doubles;
    t.raw.big_endian = procs->big_endian.value_or(t.raw.big_endian);
    if (procs->left_edge) data.o1 = *procs->left_edge * acquisition.sfo1 - acquisition.sw / 2;
    data.title = procs->title;
    if (procs->scale)
        data.comment = cut(format_text("%sNC_proc= %lld", data.comment.c_str(), static_cast<Wide>(*procs->scale)), longest_text);
}

bool BRUU_1R_Parm(Translation& t) {
    const std::string folder = folder_of(t.path);
    Acquisition acquisition;
    if (!find_acqus(t, acquisition)) return false;
    const auto procs = read_processing(find_companion(folder, "procs"));
    take_procs_of_spectrum(t, acquisition, procs);
    const std::string title = read_title(find_companion(folder, "title"));
    if (!title.empty()) t.parameters.title = title;
    const uint64_t points = t.input_bytes / t.raw.bytes();
    if (points < 1 || points > static_cast<uint64_t>(most_points))
        return t.fail(format_text("File %s cannot be imported: it holds %llu points.", t.path.c_str(),
                                  static_cast<unsigned long long>(points)));
    take_spectrum_points(t, acquisition, procs, static_cast<int64_t>(points));
    BrukerPlan plan;
    plan.kind = BrukerPlan::Kind::processed_1d;
    plan.data = t.path;
    plan.imaginary = find_companion(folder, "1i");
    if (!open_for_reading(plan.imaginary)) refuse(format_text("Could not open %s.1i", t.path.c_str()));
    t.plan = std::move(plan);
    return true;
}

bool processed_parameters(Translation& t, size_t indirect_dimensions) {
    static constexpr const char* names[] = {"procs", "proc2s", "proc3s"};
    const std::string folder = folder_of(t.path);
    Acquisition acquisition;
    if (!find_acqus(t, acquisition)) return false;
    std::vector<Processing> processing;
    for (size_t d = 0; d <= indirect_dimensions; ++d) {
        const auto one = read_processing(find_companion(folder, names[d]));
        if (!one) return t.fail(format_text("File error for Bruker %s (Missing]", names[d]));
        processing.push_back(*one);
    }
    take_procs_of_spectrum(t, acquisition, processing[0]);
    const std::string title = read_title(find_companion(folder, "title"));
    if (!title.empty()) t.parameters.title = title;

    BrukerPlan plan;
    plan.kind = BrukerPlan::Kind::processed_nd;
    plan.data = t.path;
    plan.imaginary = imaginary_of(t.path);
    const bool strip = !take_extents(t, processing, false, plan);
    if (strip && !take_extents(t, processing, true, plan)) return false;
    t.message.clear();
    if (!take_axes(t, processing, strip)) return false;
    take_spectrum_points(t, acquisition, processing[0], plan.counts[2]);
    // Rows of a spectrum are no pairs any more, however they were recorded.
    t.parameters.process_type = indirect_dimensions == 2 ? "3D_GENERIC" : processing[1].transformed ? "2D_MAGNITUDE" : "1D";
    if (!processing[1].transformed) t.parameters.array_values = read_array_list(folder_of(acquisition.path));
    note_quadrants(t, plan);
    t.plan = std::move(plan);
    return true;
}

}  // namespace zolt
