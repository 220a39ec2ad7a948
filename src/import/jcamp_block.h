// What one block of a JCAMP-DX file says of its points: tables, columns, axes and the parameters around them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "import/jcamp_text.h"
#include "state/dataset.h"

namespace zolt {

/// A column of the tables.
struct JcampColumn {
    std::string symbol, unit;  ///< folded
    double factor = 1;
    std::optional<double> first = {}, last = {};
    std::optional<int64_t> points = {};
    bool squeezed = false;
};

/// One table: real or imaginary parts of a row.
struct JcampTable {
    const JcampRecord* record = nullptr;
    std::string variable, column;     ///< symbols of what runs along the row and of what stands in it
    std::optional<double> page = {};  ///< where the row stands along dimension 2
};

/// Everything needed to read the points of a block.
struct JcampLayout {
    JcampBlock block;
    JcampColumn x, y, imaginary, page;  ///< x runs along the rows, page from row to row
    std::vector<JcampTable> real_rows, imaginary_rows;
    bool spectrum = false, bruker = false;
    bool own = false;          ///< the text twin of a native file: its labels say everything
    bool descending_x = true;  ///< the rows of spectra run from high to low frequency
    bool descending_page = true;
    int64_t points = 0;  ///< of a row as declared, 0 when nothing is
};

/// Finds tables and columns. An empty text on success, else why the block cannot be imported.
std::string read_layout(const JcampBlock& block, JcampLayout& layout);

/// Takes the parameters of the block, but for its axes, into the data set.
void take_parameters(const JcampLayout& layout, DataSet& data);

/// Sets counts, widths and offsets of dimensions 1 and 2 for rows of `points` points, and the group delay.
void set_axes(const JcampLayout& layout, int64_t points, DataSet& data);

}  // namespace zolt
