// Pictures as the contents of PDF and PNG files.
#pragma once

#include <string>
#include <vector>

#include "display/palette.h"
#include "display/picture.h"

namespace zolt {

/// A page for every picture, of its size: 96 pixels to the inch. "" when it cannot be made.
std::string pdf_document(const std::vector<Picture>& pages, const Palette& palette);

/// The picture with so many dots for each of its pixels. "" when it would be too large.
std::string png_file(const Picture& picture, const Palette& palette, double dots_per_pixel);

}  // namespace zolt
