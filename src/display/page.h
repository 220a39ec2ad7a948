// The printed page: title and parameters along the top, the plot below, and tables of integrals and peaks when asked for.
#pragma once

#include "display/palette.h"
#include "display/picture.h"
#include "state/dataset.h"

namespace zolt {

/// Pixels of a picture to the inch and to the millimetre of paper.
constexpr double pixels_per_inch = 96, pixels_per_mm = pixels_per_inch / 25.4;

struct PageOptions {
    double width = 297 * pixels_per_mm, height = 210 * pixels_per_mm;  ///< of the sheet, pixels
    double margin = 15 * pixels_per_mm;
    bool parameters = true;
    bool box = false;             ///< a frame around the plot
    bool tables = false;          ///< of integrals and peaks
    double text_size = 32.0 / 3;  ///< of parameters and tables, pixels
    double pen = 0.4 * pixels_per_mm;
};

/// Paper, orientation, margin and parts as the configuration has them.
PageOptions configured_page();

/// The page of what is shown. On a sheet too small for its margins these shrink.
Picture page_picture(const DataSet& data, const PageOptions& options);

/// White ground and black text. Configured colours are kept where they stand out of white paper; without PRINT_COLOR all is
/// black and grey.
Palette print_palette();

}  // namespace zolt
