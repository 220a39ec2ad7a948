// A picture as a list of records in device units: strokes, fills and texts. The desktop paints them, SVG export writes
// them, tests read them.
#pragma once

#include <string>
#include <variant>
#include <vector>

namespace zolt {

struct Point {
    double x = 0, y = 0;  ///< x to the right, y downward, in pixels
};

enum class Anchor { start, middle, end };

/// What a record is drawn in; a palette maps it to a colour of the appearance in use.
enum class Ink {
    background,
    axis,
    grid,
    real_trace,
    imaginary_trace,
    integral,
    peak,
    cursor,
    text,
    overlay_1,  ///< File B; the data buffers B1 to B5 follow
    overlay_2,
    overlay_3,
    overlay_4,
    overlay_5,
    overlay_6
};
constexpr int ink_count = static_cast<int>(Ink::overlay_6) + 1;

/// An open polyline with round joins.
struct Stroke {
    std::vector<Point> points;
    Ink ink = Ink::axis;
    double width = 1;
    bool round_ends = false;  ///< a stroke of one place twice is then a dot; flat ends draw nothing of it
};

struct Fill {
    std::vector<Point> outline;  ///< closed by itself
    Ink ink = Ink::background;
};

struct Text {
    Point at;          ///< on the baseline
    std::string text;  ///< UTF-8, one line
    Ink ink = Ink::text;
    double size = 11;
    Anchor anchor = Anchor::start;
    double angle = 0;  ///< degrees, counter-clockwise, about `at`
    bool bold = false;
};

using PictureRecord = std::variant<Stroke, Fill, Text>;

struct Picture {
    double width = 0, height = 0;
    std::string title;                   ///< what the picture shows, in words, for readers that do not see it
    std::vector<PictureRecord> records;  ///< painted in order
};

}  // namespace zolt
