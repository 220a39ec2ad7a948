// EJ and E6: the current data as plain JCAMP-DX, and the whole data set as JCAMP-DXB or its text twin.
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "common/text.h"
#include "datafile/dxb.h"
#include "datafile/native_file.h"
#include "datafile/slice.h"
#include "import/export.h"
#include "import/export_text.h"
#include "platform/platform.h"
#include "state/dataset.h"

namespace zolt {

namespace {

double finite(float value) { return std::isfinite(value) ? double{value} : 0.0; }

// ------------------------------------------------------------------------------------------------------------------ EJ

const char* data_type(const DataRecord& data) {
    if (data.dims[0].frequency) return "NMR SPECTRUM";
    return data.process_type == "2D_TPPI" ? "NMR TPPI" : "NMR FID";
}

struct Range {
    double first = 0, last = 0;
};

// The X of the first and the last point in Hz: of spectra their shift times the spectrometer frequency, else the edges of
// the sweep width.
Range range_of(const Dimension& d) {
    const Axis axis = d.axis();
    if (!d.frequency || !axis.has_ppm()) return {axis.sw / 2 + axis.offset, axis.offset - axis.sw / 2};
    return {axis.ppm(0) * axis.sf, axis.ppm(axis.points - 1) * axis.sf};
}

// Truncated toward zero; what no 64-bit integer holds becomes the nearest one.
int64_t scaled_integer(double value, double factor) {
    constexpr double most = 9.2e18;
    return static_cast<int64_t>(std::clamp(value / factor, -most, most));
}

void write_plain(ExportText& out, std::span<const Complex> points) {
    float low = points.empty() ? 0 : std::numeric_limits<float>::max(), high = -low;
    for (const Complex point : points) {
        low = std::min(low, static_cast<float>(finite(point.real())));
        high = std::max(high, static_cast<float>(finite(point.real())));
    }
    const double factor = std::max(double{high}, -double{low}) <= 2147483.75 ? 0.001 : 1.0;
    const Dimension& d = show.dims[0];
    const Range x = range_of(d);
    const std::string system = show.source.empty() ? " ZOLT EXPORT" : one_line(show.source);

    out.text("##TITLE=" + one_line(show.title) + "\r\n##JCAMP-DX= 5  $$Exported ZOLT Data File\r\n");
    out.text(format_text("##DATA TYPE= %s\r\n##DATA Class= XYDATA\r\n##ORIGIN= ZOLT EXPORT\r\n", data_type(show)));
    out.text("##OWNER=" + one_line(show.user) + "\r\n##SPECTROMETER/DATA SYSTEM=" + system + "\r\n");
    out.text("##INSTRUMENTAL PARAMETERS= 1H\r\n");
    out.text(format_text("##.OBSERVE FREQUENCY= %f\r\n", double{d.sf}));
    out.text("##.OBSERVE NUCLEUS=" + one_line(d.nucleus) + "\r\n");
    out.text(format_text("##NPOINTS= %d\r\n", static_cast<int>(points.size())));
    out.text("##XUNITS= HZ\r\n##YUNITS= ARBITRARY UNITS\r\n");
    out.text(format_text("##FIRSTX= %-10.4f\r\n##LASTX= %-10.4f\r\n", x.first, x.last));
    out.text(format_text("##XFACTOR= 1.0\r\n##YFACTOR= %f\r\n", factor));
    out.text(format_text("##FIRSTY= %-10.3f\r\n", points.empty() ? 0.0 : finite(points[0].real())));
    out.text(format_text("##MAXY= %-10.3f\r\n##MINY= %-10.3f\r\n", double{high}, double{low}));
    out.text("##XYDATA= (X++(Y..Y))\r\n");

    constexpr size_t on_a_line = 6;
    const double step = points.empty() ? 0 : (x.first - x.last) / static_cast<double>(points.size());
    for (size_t i = 0; i < points.size(); ++i) {
        if (i % on_a_line == 0) out.fixed(x.first - static_cast<double>(i) * step, 4);
        out.text(" ");
        out.integer(scaled_integer(finite(points[i].real()), factor));
        if (i % on_a_line == on_a_line - 1 || i + 1 == points.size()) out.text("\r\n");
    }
    out.text("##END= \r\n");
}

// ------------------------------------------------------------------------------------------------------------------ E6

using UseSlice = std::function<bool(std::span<const Complex> slice)>;

// The whole data set, slice by slice: from memory when all of it is there, else from File A.
struct WholeData {
    DataRecord record;
    File file;
    NativeLayout layout;
    uint64_t slices = 1;

    bool in_memory() const { return show.store.count() == slices; }
    bool each(const UseSlice& use);
};

bool WholeData::each(const UseSlice& use) {
    std::vector<Complex> slice(in_memory() ? 0 : static_cast<size_t>(record.pts1d()));
    for (uint64_t k = 0; k < slices; ++k) {
        if (in_memory()) {
            if (!use(show.store.vector(k))) return false;
        } else if (!read_native_slice(file, layout, k, slice) || !use(slice)) {
            return false;
        }
    }
    return true;
}

// False after its message.
bool open_whole_data(WholeData& data) {
    data.record = show;
    for (size_t d = 1; d < 4; ++d) data.slices *= static_cast<uint64_t>(std::max(show.dims[d].points, 1));
    if (data.in_memory()) return true;
    data.file = open_for_reading(show.file_a);
    DataRecord header;
    const bool read = data.file && read_native_header(data.file, file_facts(show.file_a).size, data.layout, header).empty();
    data.record = with_state_of_slices(show, header);
    uint64_t held = 1;
    for (size_t d = 1; d < 4; ++d) held *= static_cast<uint64_t>(std::max(header.dims[d].points, 1));
    if (read && held == data.slices && data.layout.slice_offset(held) <= file_facts(show.file_a).size) return true;
    refuse(format_text("Could not read file %s!", show.file_a.c_str()));
    return false;
}

bool write_binary(WholeData& data, const DataSummary& summary, ReplacedFile& out) {
    if (!out.write(encode_dxb_header(data.record, summary, true))) return false;
    const NativeForm form{3, ByteOrder::little};
    return data.each([&](std::span<const Complex> slice) { return write_native_slice(out, form, slice); });
}

// Values are written with six decimals; small ones as multiples of a millionth, so that these hold all their digits.
double factor_of(const DataSummary& summary) {
    const auto largest = [](Complex point) { return std::max(std::abs(finite(point.real())), std::abs(finite(point.imag()))); };
    return std::max(largest(summary.smallest), largest(summary.largest)) >= 100 ? 1.0 : 1e-6;
}

struct Page {
    const char* what;
    const char* table;
    float (*part)(Complex point);
};
constexpr Page pages[] = {
    {"Real", "##DATA TABLE=(X++(R..R)),XYDATA\r\n", [](Complex point) { return point.real(); }},
    {"Imaginary", "##DATA TABLE=(X++(I..I)),XYDATA\r\n", [](Complex point) { return point.imag(); }},
};

bool write_text_twin(WholeData& data, const DataSummary& summary, ExportText& out) {
    const double factor = factor_of(summary);
    const Dimension& d = data.record.dims[0];
    const Axis axis = d.axis();
    out.text(encode_jcamp_header(data.record, summary, factor));
    int slice_number = 0, page_number = 0;
    const bool read = data.each([&](std::span<const Complex> slice) {
        ++slice_number;
        for (const Page& page : pages) {
            out.text(format_text("$$ %s data points for slice %d\r\n", page.what, slice_number));
            out.text(format_text("##PAGE= N=%d\r\n", ++page_number));
            out.text(page.table);
            for (size_t i = 0; i < slice.size(); ++i) {
                const auto point = static_cast<double>(i);
                out.fixed(d.frequency ? axis.hz(point) : d.sw > 0 ? point / double{d.sw} : point, 6);
                out.text("  ");
                out.fixed(finite(page.part(slice[i])) / factor, 6);
                out.text("\r\n");
            }
        }
        return out.good();
    });
    out.text(format_text("##END NTUPLES= %s\r\n##END= \r\n", data_type(data.record)));
    return read;
}

}  // namespace

int cmd_ej(Arguments& args) {
    if (args.ask_usage()) return show_reply("EJ [name]");
    const std::string path = export_target(args);
    ExportText out;
    if (path.empty() || !out.open(path)) return 0;
    const WaitCursor waiting;
    write_plain(out, show.cvNMRdata());
    return out.commit() ? 1 : refuse(format_text("Failed trying to save file\n%s\nDisk Full ???", path.c_str()));
}

int cmd_e6(Arguments& args) {
    if (args.ask_usage()) return show_reply("E6 [text] [name]");
    if (!(show.dims[0].sf > 0)) return refuse("Must have a Spectrometer Frequency");
    // A file may be called text: the word is one only in front of a name.
    Arguments after_word = args;
    const bool as_text = same_word(after_word.next(), "text") && !after_word.peek().empty();
    const std::string path = export_target(as_text ? after_word : args);
    if (path.empty()) return 0;

    const WaitCursor waiting;
    WholeData data;
    if (!open_whole_data(data)) return 0;
    DataSummary summary;
    const bool read = data.each([&](std::span<const Complex> slice) {
        summary.add(slice);
        return true;
    });
    if (!read) return refuse(format_text("Could not read file %s!", show.file_a.c_str()));
    ExportText text;
    ReplacedFile binary;
    if (as_text) {
        if (!text.open(path)) return 0;
        if (write_text_twin(data, summary, text) && text.commit()) return 1;
    } else {
        if (!binary.open(path)) return refuse(format_text("Could not open File: %s", path.c_str()));
        if (write_binary(data, summary, binary) && binary.commit()) return 1;
    }
    return refuse(format_text("Failed trying to save file\n%s\nDisk Full ???", path.c_str()));
}

}  // namespace zolt
