// The native layout in either byte order, its words being floats or 32-bit integers: header, slices, tailer.
#include "import/native.h"

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
    NativeLayout layout;
    DataSet again;
    if (!read_native_header(t.input, t.input_bytes, layout, again).empty()) return t.fail("\nError in CDFF_Data Module");
    std::vector<Complex> points(static_cast<size_t>(t.parameters.pts1d()));
    std::vector<float> part(points.size());
    const uint64_t rows = t.parameters.all_slices();
    for (uint64_t row = 0; row < rows; ++row) {
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
