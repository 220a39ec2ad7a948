// The icons: lines of one width in one colour, drawn by us.
#pragma once

#include <QIcon>
#include <string_view>

namespace zolt {

/// An icon by the name that the menu table gives; an empty one for an unknown name.
QIcon icon(std::string_view name);
/// The sign of the program.
QIcon program_icon();

}  // namespace zolt
