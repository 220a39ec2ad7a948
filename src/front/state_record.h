// The state record that --state prints.
#pragma once

#include <nlohmann/json_fwd.hpp>

namespace zolt {

nlohmann::ordered_json state_record();

}  // namespace zolt
