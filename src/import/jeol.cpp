// JEOL Delta data: what header and parameters mean for the data set, and the points out of their tiles.
#include "import/jeol.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>
#include <vector>

#include "common/bytes.h"
#include "common/numbers.h"
#include "common/text.h"
#include "import/jeol_file.h"
#include "import/quantities.h"

namespace zolt {

namespace {

constexpr const char* parameter_stage = "JEOL_DELTA_Parm";
constexpr const char* data_stage = "JEOL_DELTA_Data";

bool refuse_file(Translation& t, const std::string& why, const char* stage) {
    return t.fail(format_text("File %s cannot be imported: %s.\n", t.path.c_str(), why.c_str()) + stage_line(stage));
}

// -------------------------------------------------------------------------------------------------------- the sections

// How the sections of the file are laid out: each holds one part of all points, row after row of tiles.
struct Sections {
    uint64_t tile_width = 0, tile_height = 0;  ///< of a tile; a 1D section is one tile
    uint64_t across = 0, down = 0;             ///< tiles of a section
    uint64_t count = 0;

    uint64_t band_values() const { return across * tile_width * tile_height; }
    uint64_t values() const { return band_values() * down; }
};

uint64_t tiles(uint64_t points, uint64_t edge) { return (points + edge - 1) / edge; }

Sections sections_of(const DeltaHeader& header) {
    const uint64_t edge = header.tile_edge();
    if (edge == 0) return {header.dims[0].points, 1, 1, 1, header.sections()};
    return {edge, edge, tiles(header.dims[0].points, edge), tiles(header.dims[1].points, edge), header.sections()};
}

bool valid_range(const DeltaDimension& d) { return d.points > 0 && d.first <= d.last && d.last < d.points; }

// The header as the stages need it: counts that the file can hold.
bool read_header(Translation& t, DeltaHeader& header, const char* stage) {
    if (!read_delta_header(t.input, header)) return refuse_file(t, "it has no complete header of a Delta file", stage);
    const bool flat = header.dimensions == 1 && header.format == 1;
    if (!flat && !(header.dimensions == 2 && header.tile_edge() > 0))
        return refuse_file(t,
                           format_text("its header gives %d dimensions in layout %d; only 1D and 2D data can be read",
                                       header.dimensions, header.format),
                           stage);
    if (flat) {
        header.dims[1] = DeltaDimension();
        header.dims[1].points = 1;
    }
    if (!valid_range(header.dims[0]) || !valid_range(header.dims[1]))
        return refuse_file(t, "the counts of its header contradict one another", stage);
    const Sections s = sections_of(header);
    const uint64_t words = header.data_start < t.input_bytes ? (t.input_bytes - header.data_start) / header.word_bytes() : 0;
    // One division at a time: products of absurd counts do not fit 64 bits.
    if (words / s.count / s.down / s.across / s.tile_height < s.tile_width)
        return refuse_file(
            t,
            format_text("its %llu bytes are too few for %u by %u points", static_cast<unsigned long long>(t.input_bytes),
                        header.dims[0].points, header.dims[1].points),
            stage);
    return true;
}

// -------------------------------------------------------------------------------------------------------------- axes

void take_axis(const DeltaDimension& axis, char letter, const DeltaParameters& p, Dimension& dimension) {
    const auto named = [&](const char* what) { return format_text("%c_%s", letter, what); };
    dimension.sf = positive_or_zero(axis.frequency > 0 ? axis.frequency : p.number(named("freq")).value_or(0) / 1e6);
    const std::string nucleus = p.text(named("domain"));
    dimension.nucleus = nucleus_name(nucleus.empty() ? axis.title : nucleus);
    const double sf = dimension.sf, start = axis.start * axis.scale, stop = axis.stop * axis.scale;
    dimension.frequency = axis.unit == delta_ppm || axis.unit == delta_hertz;
    if (axis.unit == delta_hertz && start > stop) {
        dimension.sw = positive_or_zero(start - stop);
        dimension.offset = float_or_zero((start + stop) / 2);
        return;
    }
    // Shifts count in parts of what stands for 0 ppm, which lies below the carrier by the carrier's own shift.
    const bool shifts = axis.unit == delta_ppm && start > stop;
    const double width = p.number(named("sweep")).value_or(0);
    const double carrier =
        shifts ? (start + stop) / 2 : p.number(named("offset")).value_or(sf > 0 ? axis.zero_point * width / sf : 0);
    const double reference = sf / (1 + carrier * 1e-6);
    dimension.sw = positive_or_zero(shifts ? (start - stop) * reference : width);
    dimension.offset = float_or_zero(carrier * reference);
}

// Positions of a dimension that is neither time nor frequency: its list, or evenly spaced ones.
std::vector<double> positions(File& file, uint64_t file_bytes, const DeltaHeader& header, const DeltaDimension& axis) {
    std::vector<double> values(axis.used());
    const uint64_t bytes = 8 * uint64_t{axis.points};
    if (axis.listed && axis.list_bytes >= bytes && axis.list_start < file_bytes && file_bytes - axis.list_start >= bytes) {
        std::vector<char> words(8 * axis.used());
        if (!file.seek(axis.list_start + 8 * uint64_t{axis.first}) || !file.read(words.data(), words.size())) return {};
        for (size_t i = 0; i < values.size(); ++i) values[i] = axis.scale * load_double(words.data() + 8 * i, header.order);
        return values;
    }
    const double step = values.size() > 1 ? (axis.stop - axis.start) / static_cast<double>(values.size() - 1) : 0;
    for (size_t i = 0; i < values.size(); ++i) values[i] = axis.scale * (axis.start + static_cast<double>(i) * step);
    return values;
}

void take_second_dimension(Translation& t, const DeltaHeader& header, const DeltaParameters& p) {
    const DeltaDimension& axis = header.dims[1];
    Dimension& dimension = t.parameters.dims[1];
    dimension.points = static_cast<int32_t>(axis.used() * (header.paired() ? 2 : 1));
    const bool evolves = !axis.listed && (axis.unit == delta_second || axis.unit == delta_ppm || axis.unit == delta_hertz);
    if (!evolves) {
        dimension.axis_unit = unit_points;
        t.parameters.array_values = positions(t.input, t.input_bytes, header, axis);
        return;
    }
    take_axis(axis, 'y', p, dimension);
    t.parameters.process_type = header.paired() ? "2D_HYPERCOMPLEX" : axis.kind == DeltaAxis::tppi ? "2D_TPPI" : "2D_MAGNITUDE";
    if (axis.kind == DeltaAxis::tppi) dimension.domain_code = domain_sequential;
}

void take_texts(const DeltaHeader& header, const DeltaParameters& p, DataSet& data) {
    data.title = cut(header.title, longest_text);
    data.comment = cut(header.comment.empty() ? header.title : header.comment, longest_text);
    data.user = data.owner = cut(header.author, longest_text);
    data.date = header.date;
    data.experiment = cut(p.text("experiment"), longest_text);
    data.solvent = cut(p.text("solvent"), longest_text);
    data.scans = count_or_zero(p.number("scans").value_or(0));
    data.d1 = finite_or_zero(p.number("relaxation_delay").value_or(0));
    data.p1 = 1e6 * finite_or_zero(p.number("x_pulse").value_or(p.number("x_90_width").value_or(0)));
}

// ------------------------------------------------------------------------------------------------------------- points

// Band `index` (a row of tiles) of a section as floats, row after row.
bool read_band(File& file, const DeltaHeader& header, const Sections& s, uint64_t section, uint64_t index, std::vector<char>& bytes,
               std::vector<float>& rows) {
    const size_t word = header.word_bytes();
    bytes.resize(s.band_values() * word);
    rows.resize(s.band_values());
    if (!file.seek(header.data_start + (section * s.values() + index * s.band_values()) * word)) return false;
    if (!file.read(bytes.data(), bytes.size())) return false;
    const uint64_t width = s.across * s.tile_width;
    const char* at = bytes.data();
    for (uint64_t tile = 0; tile < s.across; ++tile)
        for (uint64_t y = 0; y < s.tile_height; ++y)
            for (uint64_t x = 0; x < s.tile_width; ++x, at += word)
                rows[y * width + tile * s.tile_width + x] =
                    header.doubles ? static_cast<float>(load_double(at, header.order)) : load_word<float>(at, header.order);
    return true;
}

// The valid rows of a band: for each, the parts A and B that the header gives it.
bool write_band(Translation& t, const DeltaHeader& header, const Sections& s, uint64_t band,
                const std::array<std::vector<float>, 4>& parts) {
    const uint64_t width = s.across * s.tile_width, step = header.complex_rows() ? 2 : 1;
    std::vector<Complex> points(header.dims[0].used());
    for (uint64_t y = 0; y < s.tile_height; ++y) {
        const uint64_t row = band * s.tile_height + y;
        if (row < header.dims[1].first || row > header.dims[1].last) continue;
        for (uint64_t part = 0; part < s.count; part += step) {
            const float* re = parts[part].data() + y * width + header.dims[0].first;
            const float* im = step == 2 ? parts[part + 1].data() + y * width + header.dims[0].first : nullptr;
            for (size_t k = 0; k < points.size(); ++k) points[k] = {re[k], im != nullptr ? im[k] : 0};
            if (!write_points(t, points, data_stage)) return false;
        }
    }
    return true;
}

}  // namespace

double jeol_filter_delay(const std::string& orders, const std::string& factors) {
    const auto order = split_fields(orders, " ,"), factor = split_fields(factors, " ,");
    if (order.empty()) return 0;
    const int64_t stages = integer_or_zero(order[0]);
    if (stages < 1 || static_cast<uint64_t>(stages) > factor.size() || static_cast<uint64_t>(stages) + 1 > order.size()) return 0;
    double sum = 0, product = 1;
    for (auto stage = static_cast<size_t>(stages); stage > 0; --stage) {
        product *= number_or_zero(factor[stage - 1]);
        sum += (number_or_zero(order[stage]) - 1) / product;
    }
    return std::isfinite(sum) && sum > 0 ? sum / 2 : 0;
}

bool JEOL_DELTA_Parm(Translation& t) {
    DeltaHeader header;
    DeltaParameters p;
    if (!read_header(t, header, parameter_stage)) return false;
    if (header.param_start >= t.input_bytes || !t.input.seek(header.param_start))
        return t.fail("Can't move file pointer to Param_Start location\n" + stage_line(parameter_stage));
    if (!read_delta_parameters(t.input, header.order, t.input_bytes - header.param_start, p))
        return t.fail("Can't read Param_Start\n" + stage_line(parameter_stage));

    DataSet& data = t.parameters;
    if (header.dims[0].used() > std::numeric_limits<int32_t>::max() ||
        header.dims[1].used() > std::numeric_limits<int32_t>::max() / 2)
        return refuse_file(t, "it has more points than a data set can", parameter_stage);
    data.dims[0].points = static_cast<int32_t>(header.dims[0].used());
    take_axis(header.dims[0], 'x', p, data.dims[0]);
    if (!data.dims[0].frequency) {
        data.dims[0].domain_code = header.complex_rows()                    ? domain_complex
                                   : header.dims[0].kind == DeltaAxis::tppi ? domain_sequential
                                                                            : domain_real;
        const double delay =
            same_word(p.text("digital_filter"), "FALSE") ? 0 : jeol_filter_delay(p.text("orders"), p.text("factors"));
        data.group_delay = delay <= static_cast<double>(data.dims[0].points) ? delay : 0;
    }
    if (header.dimensions == 2) take_second_dimension(t, header, p);
    take_texts(header, p, data);
    data.o1 = data.dims[0].offset;
    return true;
}

bool JEOL_DELTA_Data(Translation& t) {
    DeltaHeader header;
    if (!read_header(t, header, data_stage)) return false;
    if (!t.real.seek(0) || !t.imaginary.seek(0))
        return t.fail("Can't move file pointer to desired location\nin the temporary files.\n" + stage_line(data_stage));
    const Sections s = sections_of(header);
    std::vector<char> bytes;
    std::array<std::vector<float>, 4> parts;
    for (uint64_t band = 0; band < s.down; ++band) {
        for (uint64_t section = 0; section < s.count; ++section)
            if (!read_band(t.input, header, s, section, band, bytes, parts[section]))
                return refuse_file(t, "it ends before its last point", data_stage);
        if (!write_band(t, header, s, band, parts)) return false;
    }
    return true;
}

}  // namespace zolt
