// What a data set carries besides its points: integrals, peaks, placed objects, data buffers.
#pragma once

#include <array>
#include <complex>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zolt {

struct Integral {
    int32_t start = 0, end = 0;  ///< points
    float value = 0;             ///< without the list's relative scale
    int32_t label = 0;           ///< position of the label
    bool operator==(const Integral&) const = default;
};

struct Peak {
    double point = 0, hz = 0, ppm = 0, intensity = 0;
    std::string label;
    double point_2 = -1, ppm_2 = 0;     ///< along dimension 2; a point below 0: a peak of a 1D spectrum
    double area = 0;                    ///< of a 2D peak
    double offset_x = 0, offset_y = 0;  ///< of the label from its usual place
    int horizontal = 0;                 ///< 1: the label is written horizontally
    bool operator==(const Peak&) const = default;
};

/// The axis that the peak list belongs to; 0 points: not noted yet, as when the list was read from a file.
struct PeakOrigin {
    int32_t points = 0;
    bool frequency = false;
    float sf = 0, sw = 0, offset = 0;
    bool operator==(const PeakOrigin&) const = default;
};

/// What of the peak list no longer is that of the data: its heights, after another slice was selected, or everything.
enum class PeaksStale { no, heights, points };

/// A drawing of a file of its own, placed on the plot.
struct MetaObject {
    std::string file;
    int32_t shown = 0, screen_x = 0, screen_y = 0, plot_x = 0, plot_y = 0;
    double x0 = 0, y0 = 0, width = 0, height = 0;
    bool operator==(const MetaObject&) const = default;
};

/// A text on the plot.
struct Note {
    enum class Unit { ppm, hz, seconds, points } unit = Unit::ppm;  ///< of x
    double x = 0;
    double y = 0;
    bool y_is_share = true;  ///< y is a share of the plot's height, 0 at the axis and 1 at the top; else an intensity
    std::string text;
    bool operator==(const Note&) const = default;
};

/// The colour of an overlay that nobody has chosen another for, safe for colour-blind eyes; 0 is File B, 1 to 5 the buffers.
constexpr std::array<int, 3> usual_overlay_colour(int number) {
    constexpr std::array<std::array<int, 3>, 6> colours{
        {{213, 94, 0}, {0, 158, 115}, {204, 121, 167}, {86, 180, 233}, {230, 159, 0}, {21, 70, 127}}};
    return colours[static_cast<size_t>(number < 0 ? 0 : number % 6)];
}

/// A spectrum kept in memory for comparison, with its axis and its looks.
struct DataBuffer {
    int number = 0;  ///< 1 for B1, 2 for B2
    std::string comment;
    double sf = 0;                                         ///< MHz
    double start_ppm = 0, end_ppm = 0, ppm_per_point = 0;  ///< of the first and the last point, and between points; 0 of an FID
    std::string nucleus;                                   ///< no file of ours keeps it
    std::array<int, 3> color{0, 0, 255};
    int screen_pen = 1, print_pen = 1;
    double amplitude = 1, scale = 1, dc = 0, offset_y = 0;
    bool shown = true, transparent = true;
    std::vector<std::complex<float>> points;
    int64_t promised_points = 0;  ///< what a file's description says; read once the file is known to hold them
    bool operator==(const DataBuffer&) const = default;
};

/// What was done to the data, as the command log has it; lines with CR LF, at least the last 256 KB of them. Two states of a
/// data set do not differ by how they came about.
struct History {
    std::string text;

    void append(std::string_view line);
    bool operator==(const History&) const { return true; }
};

}  // namespace zolt
