// The typed forms of NO: notes are added, edited, moved, deleted, listed.
#pragma once

#include <string>

#include "common/arguments.h"
#include "display/plot_1d.h"

namespace zolt {

extern const char* const note_usage;

/// All of NO but the bare word.
int note_command(Arguments& args);

/// The line that puts a note (from 1) at a point and a height of the plot, which is kept as the note keeps it, as a share or
/// as an intensity.
std::string move_note_line(const PlotLayout& layout, size_t number, double point, double y_pixel);
/// The line that writes a new note there, as a share of the height.
std::string new_note_line(const PlotLayout& layout, double point, double y_pixel, const std::string& text);

}  // namespace zolt
