// The native layout in either byte order, its words being floats or 32-bit integers: header, slices, tailer.
#include "import/native.h"

#include <algorithm>
#include <vector>

#include "common/bytes.h"
#include "common/text.h"
#include "datafile/native_file.h"

namespace zolt {

namespace {

// What stands in the file as an integer becomes a float; the points are in the machine's order already.
void integers_to_floats(std::vector<Complex>& points) {
    for (Complex& point : points)
        point = {static_cast<float>(std::bit_cast<int32_t>(point.real())),
                 static_cast<float>(std::bit_cast<int32_t>(point.imag()))};
}

}  // namespace

bool CDFF_Parm(Translation& t) {
    NativeLayout layout;
    const std::string wrong = read_native_header(t.input, t.input_bytes, layout, t.parameters);
    if (!wrong.empty()) return t.fail(format_text("File %s cannot be imported: %s.", t.path.c_str(), wrong.c_str()));
    const uint64_t rows = t.parameters.all_slices();
    if ((t.input_bytes - layout.header_bytes) / layout.slice_bytes < rows)
        return t.fail(format_text("File %s cannot be imported: it ends before the last of its %llu slices.", t.path.c_str(),
                                  static_cast<unsigned long long>(rows)));
    read_native_tailer(t.input, t.input_bytes, layout, t.parameters);
    read_native_buffers(t.input, t.input_bytes, layout, t.parameters);
    return true;
}

bool CDFF_Data(Translation& t) {
    constexpr uint64_t points_at_a_time = uint64_t{1} << 15;
    NativeLayout layout;
    DataSet again;
    if (!read_native_header(t.input, t.input_bytes, layout, again).empty()) return t.fail("\nError in CDFF_Data Module");
    // Slices that follow one another without anything between them are read several at a time.
    const auto row_points = static_cast<uint64_t>(t.parameters.pts1d());
    const uint64_t rows = t.parameters.all_slices();
    const uint64_t at_a_time = layout.prefix_bytes() > 0 ? 1 : std::clamp<uint64_t>(points_at_a_time / row_points, 1, rows);
    std::vector<Complex> points;
    std::vector<float> part;
    for (uint64_t row = 0; row < rows; row += at_a_time) {
        points.resize(row_points * std::min(at_a_time, rows - row));
        part.resize(points.size());
        if (!read_native_slice(t.input, layout, row, points)) return t.fail("\nError in CDFF_Data Module");
        if (layout.data_type != 0) integers_to_floats(points);
        for (size_t k = 0; k < points.size(); ++k) part[k] = points[k].real();
        const bool real_written = t.real.write(part.data(), part.size() * sizeof(float));
        for (size_t k = 0; k < points.size(); ++k) part[k] = points[k].imag();
        if (!real_written || !t.imaginary.write(part.data(), part.size() * sizeof(float)))
            return t.fail("The temporary files cannot be written.  ZOLT home directory disk full???\n\nError in CDFF_Data Module");
    }
    return true;
}

}  // namespace zolt
