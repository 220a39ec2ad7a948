// Each note is centred above its place; none is cut at the edges of the sheet.
#include "display/plot_notes.h"

#include <algorithm>

#include "display/lettering.h"

namespace zolt {

namespace {

constexpr double edge = 4;  // pixels that a note keeps from the edge of the sheet

}  // namespace

std::optional<double> point_of_note(const DataSet& data, const Note& note) {
    Axis axis = data.dims[0].axis();
    axis.points = static_cast<double>(data.cvNMRdata().size());
    const bool frequency = data.dims[0].frequency;
    switch (note.unit) {
        case Note::Unit::ppm:
            if (frequency && axis.has_ppm() && axis.sw > 0) return axis.point_of_ppm(note.x);
            break;
        case Note::Unit::hz:
            if (frequency && axis.sw > 0) return axis.point_of_hz(note.x);
            break;
        case Note::Unit::seconds:
            if (!frequency && axis.sw > 0) return note.x * axis.sw;
            break;
        case Note::Unit::points:
            return note.x;
    }
    return std::nullopt;
}

std::optional<Point> place_of_note(const PlotLayout& layout, const DataSet& data, const Note& note) {
    const auto point = point_of_note(data, note);
    constexpr double rounding = 0.5;  // points; the ends of the axis are written with few decimals
    if (!point || *point < layout.first - rounding || *point > layout.last + rounding) return std::nullopt;
    const double y = note.y_is_share ? layout.bottom - note.y * (layout.bottom - layout.top) : layout.y(note.y);
    const double half = text_width(note.text, note_size) / 2;
    const double leftmost = half + edge, rightmost = std::max(layout.width - half - edge, leftmost);
    // A tall peak may leave the plot; what was written at it stays readable.
    return Point{std::clamp(layout.x(*point), leftmost, rightmost),
                 std::clamp(y, std::min(layout.top + note_size, layout.bottom), layout.bottom - edge)};
}

void add_notes(Picture& picture, const PlotLayout& layout, const DataSet& data) {
    for (const Note& note : data.notes) {
        const std::string text = shortened(display_line(note.text), note_size, layout.width - 2 * edge);
        const auto at = place_of_note(layout, data, note);
        if (at && !text.empty()) picture.records.emplace_back(Text{*at, text, Ink::text, note_size, Anchor::middle, 0, false});
    }
}

}  // namespace zolt
