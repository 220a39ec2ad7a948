// The tables of JCAMP-DX files: numbers as plain text (AFFN, PAC) or in the squeezed forms (SQZ, DIF, DUP).
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace zolt {

struct DecodedTable {
    size_t count = 0;   ///< values of the table
    std::string wrong;  ///< "" or what is wrong with it
};

/// Decodes the lines of a table: on each an abscissa, which is passed over, then ordinates. The ordinates times `factor`
/// go to `values`; more than it holds are refused. `squeezed` says that the table is declared to be one of the squeezed
/// forms: "E5" is then a value and no exponent. Forms and check rule after McDonald and Wilks, Appl. Spectrosc. 42 (1988)
/// 151: a line that follows a difference begins with the last ordinate once more.
DecodedTable decode_table(std::string_view lines, bool squeezed, double factor, std::span<float> values);

}  // namespace zolt
