// Tables on the printed page: as many blocks of rows side by side as they need.
#pragma once

#include <string>
#include <vector>

#include "display/picture.h"
#include "state/dataset.h"

namespace zolt {

struct PageTable {
    std::vector<std::string> heads;
    std::vector<std::vector<std::string>> rows;  ///< a text for every head
    bool last_is_text = false;                   ///< the last column is no number: it is not set to the right
};

/// Integrals and peaks of the data set, those that there are.
std::vector<PageTable> page_tables(const DataSet& data);

/// The height that the tables take side by side in a width, at most `most`.
double tables_height(const std::vector<PageTable>& tables, double width, double most, double size);

/// Adds the tables below `top`. Where they do not fit, the last row tells how many are left out.
void add_tables(Picture& picture, const std::vector<PageTable>& tables, const Point& at, double width, double height, double size);

}  // namespace zolt
