// The JEOL Delta file: its header and its parameter section.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "common/bytes.h"
#include "common/file.h"

namespace zolt {

/// How the values of an axis were taken, by the header's code.
enum class DeltaAxis { none, real, tppi, complex, real_complex, envelope };

/// Base units of axes and parameters that matter here, by their codes.
enum DeltaUnit { delta_hertz = 13, delta_ppm = 26, delta_second = 28 };

struct DeltaDimension {
    DeltaAxis kind = DeltaAxis::none;
    int unit = 0;
    double scale = 1;              ///< of the unit: 1e-3 for milliseconds
    bool listed = false;           ///< its positions are a list of values
    uint32_t points = 0;           ///< stored
    uint32_t first = 0, last = 0;  ///< valid ones
    double start = 0, stop = 0;    ///< positions of the valid ends, in the unit
    double frequency = 0;          ///< MHz
    double zero_point = 0;         ///< carrier above 0 ppm, as a fraction of the width
    uint32_t list_start = 0, list_bytes = 0;
    std::string title;

    uint64_t used() const { return uint64_t{last} - first + 1; }
};

struct DeltaHeader {
    ByteOrder order = ByteOrder::big;  ///< of parameters, lists and data
    int dimensions = 0;
    int format = 0;  ///< 1: 1D, 2: 2D, 12: small 2D
    bool doubles = true;
    std::array<DeltaDimension, 2> dims;
    std::string title, author, comment, date;
    uint32_t param_start = 0, param_bytes = 0;
    uint64_t data_start = 0;

    size_t word_bytes() const { return doubles ? 8 : 4; }
    /// Edge of the square tiles that sections are cut into; 0 for one piece.
    uint32_t tile_edge() const { return format == 2 ? 32 : format == 12 ? 4 : 0; }
    /// Rows of real parts, or of real and imaginary ones.
    bool complex_rows() const;
    /// The second dimension has two parts as well.
    bool paired() const { return dimensions == 2 && dims[1].kind == DeltaAxis::complex; }
    uint64_t sections() const { return (complex_rows() ? 2 : 1) * (paired() ? 2 : 1); }
};

double load_double(const char* from, ByteOrder order);

/// True for the eight bytes that such a file begins with, in either byte order.
bool is_delta_mark(std::string_view bytes);

/// False when the file ends within its header or does not begin with the mark.
bool read_delta_header(File& file, DeltaHeader& header);

/// A parameter: a number in units without prefix, or a text.
struct DeltaParameter {
    double number = 0;
    int unit = 0;
    std::string text;
};

/// By name, in lower case.
struct DeltaParameters {
    std::map<std::string, DeltaParameter, std::less<>> entries;

    std::optional<double> number(std::string_view name) const;
    std::string text(std::string_view name) const;
};

/// Takes the parameters at the place where the open file stands; at most as many as `room` bytes hold. False when there
/// are none.
bool read_delta_parameters(File& file, ByteOrder order, uint64_t room, DeltaParameters& parameters);

}  // namespace zolt
