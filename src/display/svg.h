// Pictures as SVG 1.1 documents.
#pragma once

#include <string>

#include "display/palette.h"
#include "display/picture.h"

namespace zolt {

/// The picture as a document that stands alone: one user unit is one pixel, coordinates have at most two decimals, texts
/// stay texts. Bytes that XML does not allow are replaced.
std::string svg_text(const Picture& picture, const Palette& palette);

}  // namespace zolt
