// The files that a pattern with * and ? matches, in the order in which people number them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zolt {

/// Every ordinary file that matches, ordered by name with numbers compared as numbers.
std::vector<std::string> files_matching(const std::string& pattern);

/// True when a comes before b: spec2 before spec10, letters without regard to case.
bool numbers_in_order(std::string_view a, std::string_view b);

}  // namespace zolt
