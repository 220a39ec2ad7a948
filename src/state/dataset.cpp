// The one current data set.
#include "state/dataset.h"

#include <algorithm>
#include <string_view>

namespace zolt {

DataSet show;
DataSet show_b;

void History::append(std::string_view line) {
    constexpr size_t longest = 256 << 10;
    // An entry must not look like a label of the file around it.
    text += (line.starts_with("##") ? " " : "") + std::string(line) + "\r\n";
    // Seldom, so that each entry costs its own length.
    if (text.size() > 2 * longest) text.erase(0, text.find('\n', text.size() - longest) + 1);
}

DataRecord::DataRecord() {
    for (size_t d = 0; d < dims.size(); ++d) dims[d].order = static_cast<int>(d) + 1;
}

uint64_t DataRecord::all_slices() const {
    uint64_t all = 1;
    for (size_t d = 1; d < dims.size(); ++d) {
        const auto points = static_cast<uint64_t>(std::max(dims[d].points, 1));
        if (all > UINT64_MAX / points) return UINT64_MAX;
        all *= points;
    }
    return all;
}

const Dimension& DataRecord::direct() const {
    const auto found = std::find_if(dims.begin(), dims.end(), [](const Dimension& d) { return d.order == 1; });
    return found != dims.end() ? *found : dims[0];
}

bool DataRecord::possible_delay(double delay) const {
    return delay > 0 && std::any_of(dims.begin(), dims.end(), [delay](const Dimension& d) { return delay <= d.points; });
}

int CurrentArrayedLevel() { return show.level; }

void mark_changed() {
    show.changed = true;
    show.display_valid = false;
    show.mark_integrals_stale();
    show.mark_peaks_stale(PeaksStale::points);
}

bool has_pairs(std::string_view process_type) {
    static constexpr std::string_view keys[] = {"2D_TPPI", "2D_HYPERCOMPLEX", "2D_ECHOANTIECHO", "2D_STATESTPPI"};
    return std::find(std::begin(keys), std::end(keys), process_type) != std::end(keys);
}

bool is_process_type(std::string_view key) {
    static constexpr std::string_view keys[] = {
        "1D", "2D_MAGNITUDE", "2D_TPPI", "2D_HYPERCOMPLEX", "2D_ECHOANTIECHO", "2D_STATESTPPI", "3D_GENERIC", "4D_GENERIC"};
    return std::find(std::begin(keys), std::end(keys), key) != std::end(keys);
}

}  // namespace zolt
