// How the rows of a Varian or Agilent file make up the dimensions, and the rows of a pair its two parts.
#pragma once

#include <array>
#include <complex>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "import/varian_procpar.h"
#include "state/vectors.h"

namespace zolt {

/// A = c[0] S1 + c[1] S2 and B = c[2] S1 + c[3] S2 for the rows S1, S2 of a pair.
using Combination = std::array<std::complex<float>, 4>;

struct RowPlan {
    std::array<int32_t, 3> points{1, 1, 1};  ///< of dimensions 1 (not used) to 3
    std::array<size_t, 3> axis{0, 1, 2};     ///< which indirect axis of procpar describes each dimension
    std::string process_type = "1D";
    int sense = 1;                           ///< of dimension 2
    bool series = false;                     ///< the rows differ in a parameter that is no evolution time
    std::vector<double> values;              ///< the values of that parameter, one a row
    std::optional<Combination> combination;  ///< where the rows cannot stay as they are
};

/// Dimensions and process type of `rows` rows.
RowPlan plan_rows(const Procpar& procpar, uint64_t rows);

/// Replaces S1 by A and S2 by B.
void combine_rows(const Combination& c, std::span<Complex> first, std::span<Complex> second);

}  // namespace zolt
