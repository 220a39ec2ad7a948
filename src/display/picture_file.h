// Picture files: their formats by the extension of the name, and writing them whole.
#pragma once

#include <string>
#include <vector>

#include "display/palette.h"
#include "display/picture.h"

namespace zolt {

/// The absolute path of a picture named by the user, with the first of the extensions where it has none. "" after its
/// message: a folder, another extension, or a format that this front end does not paint.
std::string picture_target(const std::string& name, const std::vector<std::string>& extensions);

/// Writes the pictures in the format of the path's extension; SVG and PNG take the first one. False after its message.
bool write_pictures(const std::string& path, const std::vector<Picture>& pages, const Palette& palette, double dots_per_pixel);

}  // namespace zolt
