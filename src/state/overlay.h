// The spectra beside File A, to be compared with it or added to it: File B and the data buffers, with how they are drawn
// and how their points stand on those of File A.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "state/dataset.h"

namespace zolt {

/// How a spectrum is drawn beside File A: as factor * value + constant, in the intensities of File A.
struct OverlayLook {
    bool shown = true;
    double factor = 1, constant = 0;
    std::array<int, 3> color = usual_overlay_colour(0);
};

/// How File B is drawn; it stays from one File B to the next.
extern OverlayLook look_b;

/// A spectrum beside File A.
struct Companion {
    int number = 0;       ///< 0: File B, else the data buffer of this number
    std::string label;    ///< "File B", "B1"
    std::string name;     ///< of its file, or the comment of the buffer
    std::string nucleus;  ///< "" where it is not known
    std::span<const Complex> points;
    bool frequency = true;
    bool has_ppm = false;
    double first_ppm = 0, ppm_step = 0;  ///< of the first point, and from one point to the next
    double first_hz = 0, hz_step = 0;
    double width = 0;  ///< sweep width in Hz; 0 where it is not known
    OverlayLook look;
};

/// The companion of a number; nothing where File B or the buffer does not hold points.
std::optional<Companion> companion_of(const DataRecord& data, int number);
/// File B, then the buffers.
std::vector<Companion> companions_of(const DataRecord& data);
/// The number that "B", "B1", "B2" stand for.
std::optional<int> companion_number(std::string_view word);

/// Point p of the companion stands at point start + step * p of File A, unless there is a refusal: a sentence that says why
/// the two cannot be compared.
struct Alignment {
    double start = 0, step = 1;
    std::string refusal;

    /// Equal axes that are apart by whole points but for roundings: exactly by whole points.
    void take_roundings_out();
};

/// Spectra are aligned by their shifts, by Hz where one of them has none; FIDs by time, by points where a width is not known.
Alignment align(const DataSet& data, const Companion& other);

/// The companions that are drawn over the data set.
std::vector<Companion> drawn_companions(const DataSet& data);

/// The largest value of the real parts; 0 where none is above 0.
double tallest(std::span<const Complex> points);

}  // namespace zolt
