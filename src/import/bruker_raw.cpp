// Parameter stages of raw Bruker data: points, rows and their places in the file.
#include "import/bruker_raw.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "common/text.h"
#include "import/bruker.h"
#include "import/bruker_points.h"

namespace zolt {

namespace {

constexpr int64_t most_points = std::numeric_limits<int32_t>::max();
constexpr uint64_t block_bytes = 1024;  // rows of a ser begin on blocks of a disk of its time

using Wide = long long;  // for format texts

// ------------------------------------------------------------------------------------------------------ rows of a file

// Bytes of a row, with the word that an odd count has too many.
uint64_t row_bytes_of(const Translation& t, const Acquisition& acquisition) {
    return static_cast<uint64_t>(acquisition.words.value_or(0)) * t.raw.bytes();
}

// Bytes from one row to the next: rows fill whole blocks, except in files too short for it.
uint64_t row_pitch(uint64_t row_bytes, uint64_t rows, uint64_t file_bytes) {
    const uint64_t whole = (row_bytes + block_bytes - 1) / block_bytes * block_bytes;
    // A file that was cut off may hold fewer rows; whole blocks that are no whole packed rows give it away.
    const bool cut_off = file_bytes >= whole && file_bytes % block_bytes == 0 && file_bytes % row_bytes != 0;
    return whole * (rows - 1) + row_bytes <= file_bytes || cut_off ? whole : row_bytes;
}

// A grid of that many rows may be made from this file. Sparse and unfinished data are smaller than their grid, but a grid
// of any size may stand in a broken text.
bool check_grid(Translation& t, int64_t rows, uint64_t file_bytes, const std::string& said_by) {
    if (rows < 1)
        return t.fail(
            format_text("File %s cannot be imported: %s gives no number of rows (##$TD).", t.path.c_str(), said_by.c_str()));
    const double bytes = static_cast<double>(rows) * t.parameters.dims[0].points * 8;
    const double most = std::max(16.0 * (1 << 20), 64.0 * static_cast<double>(file_bytes));
    return (rows <= most_points && bytes <= most) ||
           t.fail(format_text("File %s cannot be imported: its %llu bytes are far from the %lld rows that %s gives.",
                              t.path.c_str(), static_cast<unsigned long long>(file_bytes), static_cast<Wide>(rows),
                              said_by.c_str()));
}

// ------------------------------------------------------------------------------------------------ indirect dimensions

// Rows that belong to one point of the dimension's grid.
int64_t rows_per_point(IndirectMode mode) { return mode >= IndirectMode::states ? 2 : 1; }

// The two widths that acqu2s states: the one in Hz is often left over from an earlier experiment.
void compare_widths(Translation& t, const Indirect& indirect) {
    const double hz = indirect.sw, of_ppm = indirect.sw_of_ppm;
    if (of_ppm <= 0 || std::abs(hz - of_ppm) <= 0.01 * of_ppm) return;
    t.parameters.other_sw2 = of_ppm;
    t.note(format_text("SW2 is %g Hz, SW_h of acqu2s; its SW x SFO1 gives %g Hz.", hz, of_ppm));
}

// ---------------------------------------------------------------------------------------------------- order of the rows

// An indirect dimension of a sparse grid: its points (of `per_point` rows each).
struct GridEdge {
    int64_t points = 1, per_point = 1;
    int64_t rows() const { return points * per_point; }
};

// The recorded rows of a grid of inner x outer points. One point's rows stand together in the file, those of the inner
// dimension first.
std::vector<std::pair<int64_t, int64_t>> recorded_rows(const std::vector<int64_t>& indices, size_t columns, const GridEdge& inner,
                                                       const GridEdge& outer) {
    std::vector<std::pair<int64_t, int64_t>> recorded;
    int64_t row = 0;
    for (size_t at = 0; at < indices.size(); at += columns) {
        const int64_t first = indices[at] * inner.per_point, second = columns > 1 ? indices[at + 1] * outer.per_point : 0;
        for (int64_t o = 0; o < outer.per_point; ++o)
            for (int64_t i = 0; i < inner.per_point; ++i) recorded.emplace_back((second + o) * inner.rows() + first + i, row++);
    }
    std::sort(recorded.begin(), recorded.end());
    return recorded;
}

int64_t largest_of(const std::vector<int64_t>& indices, size_t column, size_t columns) {
    int64_t largest = 0;
    for (size_t i = column; i < indices.size(); i += columns) largest = std::max(largest, indices[i]);
    return largest;
}

GridEdge edge_of(const Indirect& indirect, int64_t largest_index) {
    const int64_t per_point = rows_per_point(indirect.mode);
    const int64_t stated = std::clamp<int64_t>(indirect.full_rows, 0, most_points) / per_point;
    return {std::max(stated, largest_index + 1), per_point};
}

// Rows that a sparse list names are placed on the full grid. Sets the counts of dimensions 2 and 3.
bool place_sparse_rows(Translation& t, const std::string& list, std::span<const Indirect> indirect, uint64_t row_bytes,
                       uint64_t bytes, BrukerPlan& plan) {
    const size_t columns = indirect.size();
    std::vector<int64_t> indices;
    if (!read_sampling_list(t, list, columns, indices)) return false;
    const auto fits = [&](size_t column, const Indirect& dimension) {
        const GridEdge edge = edge_of(dimension, 0);
        return dimension.full_rows <= 0 || largest_of(indices, column, columns) < edge.points;
    };
    // The columns are those of dimensions 2 and 3, but the other way round where only that fits their grids.
    if (columns == 2 && !(fits(0, indirect[0]) && fits(1, indirect[1])) && fits(1, indirect[0]) && fits(0, indirect[1]))
        for (size_t i = 0; i < indices.size(); i += 2) std::swap(indices[i], indices[i + 1]);
    const GridEdge inner = edge_of(indirect[0], largest_of(indices, 0, columns));
    const GridEdge outer = columns == 2 ? edge_of(indirect[1], largest_of(indices, 1, columns)) : GridEdge{};
    const double all = static_cast<double>(inner.rows()) * static_cast<double>(outer.rows());
    if (!check_grid(t, all < 1e15 ? inner.rows() * outer.rows() : most_points, bytes, list)) return false;
    plan.recorded = recorded_rows(indices, columns, inner, outer);
    t.parameters.dims[1].points = static_cast<int32_t>(inner.rows());
    t.parameters.dims[2].points = static_cast<int32_t>(outer.rows());
    const size_t recorded = plan.recorded.size();
    t.note(format_text("Sparse sampling: %lld rows recorded, placed on the full grid of %lld by %s; the others are zero.",
                       static_cast<Wide>(recorded), static_cast<Wide>(inner.rows() * outer.rows()), name_of(list).c_str()));
    plan.pitch = row_pitch(row_bytes, recorded, bytes);
    return true;
}

// Every row of the grid stands in the file. Sets the counts of dimensions 2 and 3.
bool place_all_rows(Translation& t, const Acquisition& acquisition, std::span<const Indirect> indirect, uint64_t row_bytes,
                    uint64_t bytes, BrukerPlan& plan) {
    int64_t rows = 1;
    for (size_t i = 0; i < indirect.size(); ++i) {
        if (!check_grid(t, indirect[i].rows, bytes, indirect[i].path)) return false;
        rows *= indirect[i].rows;
        t.parameters.dims[i + 1].points = static_cast<int32_t>(indirect[i].rows);
        if (!check_grid(t, rows, bytes, indirect[i].path)) return false;
    }
    plan.inner_is_third = indirect.size() == 2 && acquisition.inner_is_third;
    plan.pitch = row_pitch(row_bytes, static_cast<uint64_t>(rows), bytes);
    return true;
}

// What the operator chose for the stored spectrum, and the title. True when the phases are among it.
bool take_pdata(Translation& t, const Acquisition& acquisition) {
    const std::string folder = folder_of(acquisition.path) + "/pdata/1";
    const auto procs = read_processing(find_companion(folder, "procs"));
    take_processing_of_fid(procs, acquisition, t.parameters);
    const std::string title = read_title(find_companion(folder, "title"));
    if (!title.empty()) t.parameters.title = title;
    return procs && procs->zero_order;
}

// The place of an X32 data file's points: behind a header, whose length is what the file holds beyond them.
void skip_header(const Acquisition& acquisition, Translation& t) {
    auto& plan = *std::any_cast<BrukerPlan>(&t.plan);
    const uint64_t rows = static_cast<uint64_t>(t.parameters.dims[1].points);
    const uint64_t row_bytes = row_bytes_of(t, acquisition);
    plan.pitch = row_bytes;
    if (row_bytes <= t.input_bytes / rows) plan.start = t.input_bytes - row_bytes * rows;
}

bool multi_dimensional(Translation& t, size_t indirect_dimensions, Acquisition& acquisition) {
    if (!find_acqus(t, acquisition) || !take_row(t, acquisition, t.input_bytes)) return false;
    const bool phased = take_pdata(t, acquisition);
    BrukerPlan plan;
    plan.data = t.path;
    const std::string pdata = folder_of(acquisition.path) + "/pdata/1";
    Indirect indirect[2];
    std::optional<Processing> processing[2];
    for (size_t i = 0; i < indirect_dimensions; ++i) {
        processing[i] = read_processing(find_companion(pdata, i == 0 ? "proc2s" : "proc3s"));
        if (!take_indirect(t, i + 1, processing[i], indirect[i])) return false;
    }
    const std::span<const Indirect> used(indirect, indirect_dimensions);
    const uint64_t row_bytes = row_bytes_of(t, acquisition);
    const std::string list = find_companion(folder_of(acquisition.path), "nuslist");
    const bool sparse = !list.empty() && acquisition.sampling.value_or(2) == 2;
    if (sparse ? !place_sparse_rows(t, list, used, row_bytes, t.input_bytes, plan)
               : !place_all_rows(t, acquisition, used, row_bytes, t.input_bytes, plan))
        return false;

    DataSet& data = t.parameters;
    compare_widths(t, indirect[0]);
    data.array_values = sparse ? std::vector<double>() : read_array_list(folder_of(acquisition.path));
    const bool series = !sparse && (!data.array_values.empty() || (processing[0] && !processing[0]->transformed));
    data.process_type = indirect_dimensions == 2 ? "3D_GENERIC" : series ? "1D" : process_type_of(indirect[0].mode);
    // Echo and anti-echo are put together a quarter turn away from the phase that the operator saw.
    if (indirect[0].mode == IndirectMode::echo_antiecho && phased) data.phase[0] += 90;
    t.plan = std::move(plan);
    return true;
}

bool one_dimensional(Translation& t, Acquisition& acquisition) {
    if (!find_acqus(t, acquisition) || !take_row(t, acquisition, t.input_bytes)) return false;
    take_pdata(t, acquisition);
    BrukerPlan plan;
    plan.data = t.path;
    t.plan = std::move(plan);
    return true;
}

}  // namespace

bool take_row(Translation& t, Acquisition& acquisition, uint64_t bytes) {
    if (!acquisition.words)
        return t.fail(format_text("File %s cannot be imported: %s gives no number of points (##$TD).", t.path.c_str(),
                                  acquisition.path.c_str()));
    const auto held = static_cast<int64_t>(bytes / acquisition.raw.bytes());
    const int64_t words = std::min(*acquisition.words, held), points = words / 2;
    if (points < 1 || points > most_points)
        return t.fail(format_text("File %s cannot be imported: it holds %lld words of the %lld that %s gives.", t.path.c_str(),
                                  static_cast<Wide>(held), static_cast<Wide>(*acquisition.words), acquisition.path.c_str()));
    acquisition.words = words;
    t.parameters.dims[0].points = static_cast<int32_t>(points);
    // A delay beyond the data is no delay of these data.
    const double delay = group_delay(acquisition.filter);
    t.parameters.group_delay = delay <= static_cast<double>(points) ? delay : 0;
    t.raw = acquisition.raw;
    return true;
}

bool take_indirect(Translation& t, size_t d, const std::optional<Processing>& processing, Indirect& indirect) {
    if (!find_indirect(t, d, indirect)) return false;
    if (indirect.mode == IndirectMode::unknown && processing) indirect.mode = processing->mode;
    Dimension& dimension = t.parameters.dims[d];
    const bool sequential = indirect.mode == IndirectMode::qseq || indirect.mode == IndirectMode::tppi;
    dimension.domain_code = sequential ? domain_sequential : domain_complex;
    dimension.offset = float_or_zero(referenced_offset(indirect.sfo1, indirect.o1, processing));
    if (processing) dimension.advice = advice_of(*processing);
    return true;
}

const char* process_type_of(IndirectMode mode) {
    switch (mode) {
        case IndirectMode::unknown:
            return "1D";
        case IndirectMode::qf:
            return "2D_MAGNITUDE";
        case IndirectMode::qseq:
        case IndirectMode::tppi:
            return "2D_TPPI";
        case IndirectMode::states:
            return "2D_HYPERCOMPLEX";
        case IndirectMode::states_tppi:
            return "2D_STATESTPPI";
        case IndirectMode::echo_antiecho:
            return "2D_ECHOANTIECHO";
    }
    return "1D";
}

bool BRUU_Parm(Translation& t) {
    Acquisition acquisition;
    return one_dimensional(t, acquisition);
}

bool ser_parameters(Translation& t, size_t indirect_dimensions) {
    Acquisition acquisition;
    return multi_dimensional(t, indirect_dimensions, acquisition);
}

bool BRUX_Parm_1D(Translation& t) {
    Acquisition acquisition;
    if (!one_dimensional(t, acquisition)) return false;
    skip_header(acquisition, t);
    return true;
}

bool BRUX_Parm_2D(Translation& t) {
    Acquisition acquisition;
    if (!multi_dimensional(t, 1, acquisition)) return false;
    skip_header(acquisition, t);
    return true;
}

}  // namespace zolt
