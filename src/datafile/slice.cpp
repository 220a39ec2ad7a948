// Reading one slice of a larger file, and the selection of File A's.
#include "datafile/slice.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "common/text.h"
#include "datafile/native_file.h"
#include "platform/platform.h"

namespace zolt {

namespace {

bool no_such_slice(int64_t k) { return fail(format_text("No such slice number %ld", static_cast<long>(k))); }

// A slice comes as it stands in the file, whatever was done to the one before it.
void take_state_of_file(const DataSet& file, DataSet& data) {
    Dimension& dimension = data.dims[0];
    dimension.points = file.dims[0].points;
    dimension.domain_code = file.dims[0].domain_code;
    dimension.frequency = file.dims[0].frequency;
    dimension.sense = file.dims[0].sense;
    dimension.phase_totals = {};
    data.group_delay = file.group_delay;
}

}  // namespace

DataRecord with_state_of_slices(DataRecord data, const DataRecord& file) {
    data.group_delay = file.group_delay;
    for (size_t d = 0; d < data.dims.size(); ++d) {
        data.dims[d].points = file.dims[d].points;
        data.dims[d].domain_code = file.dims[d].domain_code;
        data.dims[d].frequency = file.dims[d].frequency;
        data.dims[d].sense = file.dims[d].sense;
    }
    return data;
}

bool get_slice(File& file, uint64_t size, int64_t k, DataSet& data) {
    if (CurrentArrayedLevel() != 0) return fail("get_slice used in error in Arrayed Mode");
    if (k < 0 || k >= data.dims[1].points) return no_such_slice(k);
    NativeLayout layout;
    DataSet header;
    const std::string wrong = read_native_header(file, size, layout, header);
    if (!wrong.empty()) return fail(format_text("Trouble loading slice #%d of file %s", static_cast<int>(k), data.file_a.c_str()));
    read_native_tailer(file, size, layout, header);
    const uint64_t plane =
        static_cast<uint64_t>(data.slice_4) * static_cast<uint64_t>(header.dims[2].points) + static_cast<uint64_t>(data.slice_3);
    const uint64_t index = plane * static_cast<uint64_t>(header.dims[1].points) + static_cast<uint64_t>(k);
    if (index >= layout.slices_in(size))
        return fail(format_text("Can't find slice = %d\nFor Data Set: %s\nwhich has\nPts1D = %d\nPts2D = %d", static_cast<int>(k),
                                data.file_a.c_str(), header.dims[0].points, header.dims[1].points));
    VectorStore vector;
    if (!vector.allocate(1, static_cast<size_t>(header.pts1d())))
        return fail("Module Slice in get_slice, memory allocation failure!");
    if (!read_native_slice(file, layout, index, vector.all()))
        return fail(format_text("Trouble loading slice #%d of file %s", static_cast<int>(k), data.file_a.c_str()));
    data.store = std::move(vector);
    data.selected = 0;
    data.slice = static_cast<int32_t>(k);
    take_state_of_file(header, data);
    return true;
}

namespace {

// Index in the store of slice k of the selected plane and cube: levels 1 and 2 hold one plane, level 3 one cube.
int64_t index_in_memory(int64_t k) {
    int64_t plane = 0;
    if (show.level >= 3) plane = show.slice_3;
    if (show.level == 4) plane += int64_t{show.slice_4} * show.dims[2].points;
    return plane * show.dims[1].points + k;
}

bool read_slice_of_file(int64_t k) {
    File file = open_for_reading(show.file_a);
    if (!file) return fail(format_text("Trouble loading slice #%d of file %s", static_cast<int>(k), show.file_a.c_str()));
    if (!get_slice(file, file_facts(show.file_a).size, k, show)) return false;
    show.changed = false;
    return true;
}

}  // namespace

void select_in_memory(int64_t k) {
    const auto last = static_cast<int64_t>(show.store.count()) - 1;
    const int64_t slice = std::clamp<int64_t>(k, 0, std::max(show.dims[1].points - 1, 0));
    show.selected = static_cast<size_t>(std::clamp<int64_t>(index_in_memory(slice), 0, std::max<int64_t>(last, 0)));
    show.slice = static_cast<int32_t>(slice);
}

bool set_sliceA(int64_t k) {
    if (k < 0 || k >= show.dims[1].points) return no_such_slice(k);
    if (CurrentArrayedLevel() == 0) {
        if (!read_slice_of_file(k)) return false;
    } else {
        select_in_memory(k);
    }
    show.display_valid = false;
    show.mark_integrals_stale();
    show.mark_peaks_stale(PeaksStale::heights);
    return true;
}

bool set_planeA(int64_t plane, int64_t cube) {
    const int level = CurrentArrayedLevel();
    // The lower levels hold one plane, level 3 one cube.
    if (level == 1 || level == 2 || (level == 3 && cube != show.slice_4))
        return fail(format_text("Plane not supported in Arrayed mode level %d", level));
    if (plane < 0 || plane >= show.dims[2].points || cube < 0 || cube >= show.dims[3].points)
        return fail(format_text("There is no plane %lld of cube %lld: the data set has %d planes in %d cubes.",
                                static_cast<long long>(plane + 1), static_cast<long long>(cube + 1), show.dims[2].points,
                                show.dims[3].points));
    const auto before = std::pair(show.slice_3, show.slice_4);
    show.slice_3 = static_cast<int32_t>(plane);
    show.slice_4 = static_cast<int32_t>(cube);
    if (set_sliceA(show.slice)) return true;
    std::tie(show.slice_3, show.slice_4) = before;
    return false;
}

}  // namespace zolt
