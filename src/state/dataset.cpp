// The one current data set.
#include "state/dataset.h"

#include <algorithm>
#include <string_view>

namespace zolt {

DataSet show;
DataSet show_b;

DataRecord::DataRecord() {
    for (size_t d = 0; d < dims.size(); ++d) dims[d].order = static_cast<int>(d) + 1;
}

int CurrentArrayedLevel() { return show.level; }

void mark_changed() {
    show.changed = true;
    show.display_valid = false;
}

bool is_process_type(std::string_view key) {
    static constexpr std::string_view keys[] = {
        "1D", "2D_MAGNITUDE", "2D_TPPI", "2D_HYPERCOMPLEX", "2D_ECHOANTIECHO", "2D_STATESTPPI", "3D_GENERIC", "4D_GENERIC"};
    return std::find(std::begin(keys), std::end(keys), key) != std::end(keys);
}

}  // namespace zolt
