// The parameters of a data set as names and values for people: what reports and printed pages show.
#pragma once

#include <string>
#include <vector>

#include "state/dataset.h"

namespace zolt {

struct NamedValue {
    std::string name, value;
};

/// Of the experiment as a whole; parameters that are not set are left out, as are title, comment and file.
std::vector<NamedValue> experiment_values(const DataRecord& data);
/// Of one dimension, by names out of this list.
inline constexpr const char* dimension_value_names[] = {"Nucleus", "SF", "SW", "Offset", "Points", "Domain", "Phase"};
std::vector<NamedValue> dimension_values(const Dimension& dimension);

}  // namespace zolt
