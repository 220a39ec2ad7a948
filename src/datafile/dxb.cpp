// Every line of the JCAMP-DXB header: one row of a table each, which writes it and, where something is kept, reads it.
#include "datafile/dxb.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

#include "common/numbers.h"
#include "common/text.h"
#include "datafile/sections.h"

namespace zolt {

namespace {

// The smallest and largest parts of points; infinities where there is no number.
std::pair<Complex, Complex> extremes(std::span<const Complex> points) {
    // Several points side by side, each part with its own extremes: what a compiler makes vectors of.
    constexpr size_t lanes = 16;
    std::array<float, lanes> low, high;
    low.fill(std::numeric_limits<float>::infinity());
    high.fill(-std::numeric_limits<float>::infinity());
    const auto* const parts = reinterpret_cast<const float*>(points.data());
    const size_t count = 2 * points.size();
    const auto take = [&](size_t from, size_t width) {
        for (size_t k = 0; k < width; ++k) {
            low[k] = std::min(low[k], parts[from + k]);
            high[k] = std::max(high[k], parts[from + k]);
        }
    };
    size_t i = 0;
    for (; i + lanes <= count; i += lanes) take(i, lanes);
    take(i, count - i);
    for (size_t k = 2; k < lanes; ++k) {
        low[k % 2] = std::min(low[k % 2], low[k]);
        high[k % 2] = std::max(high[k % 2], high[k]);
    }
    return {{low[0], low[1]}, {high[0], high[1]}};
}

}  // namespace

void DataSummary::add(std::span<const Complex> points) {
    if (points.empty()) return;
    if (empty) first = smallest = largest = points.front();
    empty = false;
    last = points.back();
    constexpr size_t at_once = size_t{1} << 18;
    const size_t parts = (points.size() + at_once - 1) / at_once;
    std::vector<std::pair<Complex, Complex>> found(parts);
#pragma omp parallel for schedule(static) if (parts > 1)
    for (size_t part = 0; part < parts; ++part)
        found[part] = extremes(points.subspan(part * at_once, std::min(at_once, points.size() - part * at_once)));
    for (const auto& [low, high] : found) {
        smallest = {std::min(smallest.real(), low.real()), std::min(smallest.imag(), low.imag())};
        largest = {std::max(largest.real(), high.real()), std::max(largest.imag(), high.imag())};
    }
}

namespace {

constexpr size_t longest_text = 127;
constexpr std::string_view marker_line = "##JCAMP-DXB  $$JCAMPDX Header and Binary Data";

/// What a row writes from: the data set and the summary of its points.
struct Source {
    const DataRecord& data;
    const DataSummary& summary;
    bool exported;
    double factor = 1;  ///< of the points

    bool spectrum() const { return data.dims[0].frequency; }
    const char* origin() const { return exported ? "ZOLT FULL (RI) EXPORT" : "ZOLT NATIVE (RI)"; }
    const char* data_type() const {
        if (spectrum()) return "NMR SPECTRUM";
        return data.process_type == "2D_TPPI" ? "NMR TPPI" : "NMR FID";
    }
};

// A line of the header. `write` gives what stands behind the label; `read` takes the text behind the equals sign. Binary
// lines have no place in front of points that stand as text.
struct Row {
    const char* label;
    std::string (*write)(const Source& from);
    void (*read)(std::string_view value, DataRecord& to) = nullptr;
    bool binary = false;
};

template <std::string DataRecord::*text>
std::string write_text(const Source& from) {
    return "=" + one_line(from.data.*text);
}

template <std::string DataRecord::*text>
void read_text(std::string_view value, DataRecord& to) {
    to.*text = cut(value, longest_text);
}

template <size_t index>
std::string write_name(const Source& from) {
    return "=" + one_line(from.data.names[index]);
}

template <size_t index>
void read_name(std::string_view value, DataRecord& to) {
    to.names[index] = cut(value, longest_text);
}

template <size_t d>
std::string write_nucleus(const Source& from) {
    return "=" + one_line(from.data.dims[d].nucleus);
}

template <size_t d>
void read_nucleus(std::string_view value, DataRecord& to) {
    to.dims[d].nucleus = same_word(trimmed(value), "n/a") ? "" : cut(trimmed(value), longest_text);
}

// Four values, one a dimension, in a printf form for each.
template <class Value>
std::string four(const char* form, const char* separator, Value value) {
    std::string text;
    for (size_t d = 0; d < 4; ++d) text += (d > 0 ? separator : "") + format_text(form, value(d));
    return text;
}

template <class Use>
void each_value(std::string_view list, size_t most, Use use) {
    const auto fields = split_fields(list, ", \t");
    for (size_t i = 0; i < std::min(most, fields.size()); ++i) use(i, fields[i]);
}

template <float Dimension::*member>
std::string write_floats(const Source& from) {
    return "=" + four("%f", ", ", [&](size_t d) { return double{from.data.dims[d].*member}; });
}
template <float Dimension::*member>
std::string write_exact(const Source& from) {
    return "=" + four("%.9g", ", ", [&](size_t d) { return double{from.data.dims[d].*member}; });
}
template <float Dimension::*member>
void read_floats(std::string_view value, DataRecord& to) {
    each_value(value, 4, [&](size_t d, std::string_view field) { to.dims[d].*member = static_cast<float>(number_or_zero(field)); });
}

template <int Dimension::*member>
std::string write_ints(const Source& from) {
    return "=" + four("%d", ", ", [&](size_t d) { return from.data.dims[d].*member; });
}
template <int Dimension::*member>
void read_ints(std::string_view value, DataRecord& to) {
    each_value(value, 4,
               [&](size_t d, std::string_view field) { to.dims[d].*member = static_cast<int16_t>(integer_or_zero(field)); });
}

template <size_t order>
std::string write_totals(const Source& from, const char* separator) {
    return "= " + four("%f", separator, [&](size_t d) { return double{from.data.dims[d].phase_totals[order]}; });
}
template <size_t order>
void read_totals(std::string_view value, DataRecord& to) {
    each_value(value, 4, [&](size_t d, std::string_view field) {
        to.dims[d].phase_totals[order] = static_cast<float>(number_or_zero(field));
    });
}
std::string write_broadenings(const Source& from, const char* separator) {
    return "= " + four("%f", separator, [&](size_t d) { return double{from.data.dims[d].carried[4]}; });
}

// Header parameters P2 to P6.
template <size_t p>
std::string write_parameter(const Source& from) {
    return "=" + four("%.9g", ", ", [&](size_t d) { return double{from.data.dims[d].carried[p]}; });
}
template <size_t p>
void read_parameter(std::string_view value, DataRecord& to) {
    each_value(value, 4,
               [&](size_t d, std::string_view field) { to.dims[d].carried[p] = static_cast<float>(number_or_zero(field)); });
}

std::string write_nothing(const Source&) { return ""; }
std::string blank_zero(const Source&) { return "= 0"; }
std::string zero(const Source&) { return "=0"; }
std::string blank_zero_real(const Source&) { return "= 0.000000"; }
std::string real(double value) { return format_text("= %f", value); }

std::string write_block(const Source& from) {
    std::string text = "=";
    for (size_t p = 0; p < from.data.words.parameter_block.size(); ++p)
        text += format_text(p > 0 ? " %08X" : "%08X", from.data.words.parameter_block[p]);
    return text;
}
void read_block(std::string_view value, DataRecord& to) {
    each_value(value, to.words.parameter_block.size(), [&](size_t p, std::string_view field) {
        std::from_chars(field.data(), field.data() + field.size(), to.words.parameter_block[p], 16);
    });
}

std::string write_words(const Source& from) {
    const CarriedWords& w = from.data.words;
    return format_text("=%d, %d, %d, %d, %d, %.9g", w.a, w.b, w.c, w.d, w.e, double{w.acquisition_value});
}
void read_words(std::string_view value, DataRecord& to) {
    int32_t* const words[] = {&to.words.a, &to.words.b, &to.words.c, &to.words.d, &to.words.e};
    each_value(value, 6, [&](size_t i, std::string_view field) {
        if (i < 5)
            *words[i] = static_cast<int32_t>(integer_or_zero(field));
        else
            to.words.acquisition_value = static_cast<float>(number_or_zero(field));
    });
}

void read_order(std::string_view value, DataRecord& to) {
    each_value(value, 4, [&](size_t d, std::string_view field) {
        const int64_t order = integer_or_zero(field);
        if (order >= 1 && order <= 4) to.dims[d].order = static_cast<int>(order);
    });
}

void read_points(std::string_view value, DataRecord& to) {
    each_value(value, 4, [&](size_t d, std::string_view field) {
        to.dims[d].points = static_cast<int32_t>(std::clamp<int64_t>(integer_or_zero(field), -1, INT32_MAX));
    });
}

void read_process_type(std::string_view value, DataRecord& to) {
    if (is_process_type(trimmed(value))) to.process_type = trimmed(value);
}

void read_system(std::string_view value, DataRecord& to) {
    const std::string_view text = trimmed(value);
    if (text != "ZOLT NATIVE (RI)" && text != "ZOLT FULL (RI) EXPORT") to.source = cut(text, longest_text);
}

const char* acquisition_mode(const Source& from) {
    const int code = from.data.dims[0].domain_code;
    return code == domain_real ? "SINGLE" : code == domain_sequential ? "SEQUENTIAL" : "SIMULTANEOUS";
}

// x, real and imaginary part of one column of the table description.
std::string table_values(const char* x_form, double x, Complex point) {
    const auto finite = [](float value) { return std::isfinite(value) ? double{value} : 0.0; };
    return format_text(x_form, x) + format_text(",  %f,  %f", finite(point.real()), finite(point.imag()));
}
double first_x(const Source& from) { return from.spectrum() ? from.data.dims[0].axis().hz(0) : 0; }
double last_x(const Source& from) {
    const Dimension& d = from.data.dims[0];
    if (from.spectrum()) return d.axis().hz(d.points - 1);
    return d.sw > 0 ? (d.points - 1) / double{d.sw} : 0;
}

using S = const Source&;
using V = std::string_view;

const Row rows[] = {
    {"##TITLE", write_text<&DataRecord::title>, read_text<&DataRecord::title>},
    {"##JCAMP-DXB  $$JCAMPDX Header and Binary Data", write_nothing, nullptr, true},
    {"##JCAMP-DX", [](S) { return std::string("= 5.0  $$Exported ZOLT Data File"); }},
    {"##DATA TYPE", [](S f) { return std::string("= ") + f.data_type(); }},
    {"##DATA Class", [](S) { return std::string("= NTUPLES"); }},
    {"##ORIGIN", [](S f) { return std::string("= ") + f.origin(); }},
    {"##OWNER", write_text<&DataRecord::owner>, read_text<&DataRecord::owner>},
    {"##SPECTROMETER/DATA SYSTEM", [](S f) { return "= " + (f.data.source.empty() ? f.origin() : one_line(f.data.source)); },
     read_system},
    {"##INSTRUMENTAL PARAMETERS", write_nucleus<0>},
    {"##.OBSERVE FREQUENCY", [](S f) { return real(f.data.dims[0].sf); }},
    {"##.OBSERVE NUCLEUS", write_nucleus<0>},
    {"##.DELAY", [](S f) { return real(f.data.d1); }, [](V v, DataRecord& d) { d.d1 = number_or_zero(v); }},
    {"##.ACQUISITION MODE", [](S f) { return std::string("= ") + acquisition_mode(f); }},
    {"##.AVERAGES", [](S f) { return format_text("= %d", f.data.scans); },
     [](V v, DataRecord& d) { d.scans = static_cast<int32_t>(integer_or_zero(v)); }},
    {"$$ Start of Bruker specific JCAMP parameters", write_nothing},
    {"##$SW_h", [](S f) { return real(f.data.dims[0].sw); }},
    {"##$SW_h_2D", [](S f) { return real(f.data.dims[1].sw); }},
    {"##$O1", [](S f) { return real(f.data.o1); }, [](V v, DataRecord& d) { d.o1 = number_or_zero(v); }},
    {"##$O2", [](S f) { return real(f.data.o2); }, [](V v, DataRecord& d) { d.o2 = number_or_zero(v); }},
    {"##$TOTAL_A", [](S f) { return write_totals<0>(f, "  "); }, read_totals<0>},
    {"##$TOTAL_B", [](S f) { return write_totals<1>(f, "  "); }, read_totals<1>},
    {"##$TOTAL_C", [](S f) { return write_totals<2>(f, "  "); }, read_totals<2>},
    {"##$TOTAL_LB", [](S f) { return write_broadenings(f, "  "); }},
    {"##$TD", [](S f) { return format_text("= %d", f.data.dims[0].points); }},
    {"##$NPOINTS_2D", [](S f) { return format_text("= %d", f.data.dims[1].points); }},
    {"##$SFO2", [](S f) { return real(f.data.dims[1].sf); }},
    {"$$ End of Bruker specific JCAMP parameters", write_nothing},
    {"$$ ZOLT specific parameters", write_nothing},
    {"##$ZOLT_VERSION", [](S) { return std::string("=3"); }},
    {"##$AXIS_TYPE", write_ints<&Dimension::axis_unit>, read_ints<&Dimension::axis_unit>},
    {"##$AQ_mod", write_ints<&Dimension::domain_code>, read_ints<&Dimension::domain_code>},
    {"##$DATE", write_text<&DataRecord::date>, read_text<&DataRecord::date>},
    {"##$USER", write_text<&DataRecord::user>, read_text<&DataRecord::user>},
    {"##$UID", [](S) { return std::string("="); }},
    {"##$HZPERMM 0.000000, 0.000000, 0.000000", write_nothing},
    {"##$NAME1", write_name<0>, read_name<0>},
    {"##$NAME2", write_name<1>, read_name<1>},
    {"##$NAME3", write_name<2>, read_name<2>},
    {"##$FORMULA", write_text<&DataRecord::formula>, read_text<&DataRecord::formula>},
    {"##$Nucleus1", write_nucleus<0>, read_nucleus<0>},
    {"##$Nucleus2", write_nucleus<1>, read_nucleus<1>},
    {"##$Nucleus3", write_nucleus<2>, read_nucleus<2>},
    {"##$Nucleus4", write_nucleus<3>, read_nucleus<3>},
    {"##$PATH", write_text<&DataRecord::path>, [](V v, DataRecord& d) { d.path = cut(v, 4096); }},
    {"##$DECIM", zero},
    {"##$DOMAIN", [](S f) { return "=" + four("%d", ", ", [&](size_t d) { return f.data.dims[d].frequency ? 1 : 0; }); },
     [](V v, DataRecord& to) { each_value(v, 4, [&](size_t d, V field) { to.dims[d].frequency = integer_or_zero(field) == 1; }); }},
    {"##$ACQ_ORDER", write_ints<&Dimension::order>, read_order},
    {"##$DSPFVS", zero},
    {"##$GRPDLY", [](S f) { return format_text("=%d", static_cast<int>(f.data.group_delay)); }},
    {"##$POINTS", [](S f) { return "=" + four("%d", ", ", [&](size_t d) { return f.data.dims[d].points; }); }, read_points},
    {"##$TD", [](S f) { return format_text("= %d", f.data.dims[0].points); }},
    {"##$NPOINTS_2D", [](S f) { return format_text("= %d", f.data.dims[1].points); }},
    {"##$FREQUENCY", write_floats<&Dimension::sf>, read_floats<&Dimension::sf>},
    {"##$SWEEP_WIDTH", write_floats<&Dimension::sw>, read_floats<&Dimension::sw>},
    {"##$FREQ_OFFSET", write_floats<&Dimension::offset>, read_floats<&Dimension::offset>},
    {"##$FREQ_TMS", [](S f) { return format_text("=%.7f", f.data.dims[0].axis().reference()); }},
    {"##$CHI", [](S) { return std::string("=0.000000"); }},
    {"##$PULPROG", write_text<&DataRecord::experiment>, read_text<&DataRecord::experiment>},
    {"##$SOLVENT", write_text<&DataRecord::solvent>, read_text<&DataRecord::solvent>},
    {"##$PROCESSTYPE", write_text<&DataRecord::process_type>, read_process_type},
    {"##$PULSE_LENGTH", [](S f) { return real(f.data.p1); }, [](V v, DataRecord& d) { d.p1 = number_or_zero(v); }},
    {"##$PULSE_ANGLE", blank_zero_real},
    {"##$TOTAL_A", [](S f) { return write_totals<0>(f, ", "); }, read_totals<0>},
    {"##$TOTAL_B", [](S f) { return write_totals<1>(f, ", "); }, read_totals<1>},
    {"##$TOTAL_LB", [](S f) { return write_broadenings(f, ", "); }},
    {"##$TEMPERATURE", blank_zero_real},
    {"##$CHANGER_SLOT", blank_zero},
    {"##$D1_LIST", write_nothing},
    // What the labels above cannot carry exactly, in labels of our own.
    {"##$COMMENT", write_text<&DataRecord::comment>, read_text<&DataRecord::comment>},
    {"##$EXACT_FREQUENCY", write_exact<&Dimension::sf>, read_floats<&Dimension::sf>},
    {"##$EXACT_WIDTH", write_exact<&Dimension::sw>, read_floats<&Dimension::sw>},
    {"##$EXACT_OFFSET", write_exact<&Dimension::offset>, read_floats<&Dimension::offset>},
    {"##$PARAMETER_2", write_parameter<0>, read_parameter<0>},
    {"##$PARAMETER_3", write_parameter<1>, read_parameter<1>},
    {"##$PARAMETER_4", write_parameter<2>, read_parameter<2>},
    {"##$PARAMETER_5", write_parameter<3>, read_parameter<3>},
    {"##$PARAMETER_6", write_parameter<4>, read_parameter<4>},
    {"##$WORDS", write_words, read_words},
    {"##$PARAMETER_BLOCK", write_block, read_block},
    {"##$SENSE", write_ints<&Dimension::sense>,
     [](V v, DataRecord& to) {
         each_value(v, 4, [&](size_t d, V field) { to.dims[d].sense = integer_or_zero(field) < 0 ? -1 : 1; });
     }},
    {"##$GROUP_DELAY", [](S f) { return format_text("=%.17g", f.data.group_delay); },
     [](V v, DataRecord& d) { d.group_delay = number_or_zero(v); }},
    {"$$ End of ZOLT specific parameters", write_nothing},
};

const Row table_rows[] = {
    {"##NTUPLES", [](S f) { return std::string("= ") + f.data_type(); }},
    {"##VAR_NAME",
     [](S f) {
         return std::string(f.spectrum() ? "= PPM, SPECTRUM/REAL, SPECTRUM/IMAG, PAGE NUMBER"
                                         : "= SEC, FID/REAL, FID/IMAG, PAGE NUMBER");
     }},
    {"##SYMBOL", [](S) { return std::string("= X, R, I, N"); }},
    {"##VAR_TYPE", [](S) { return std::string("= INDEPENDENT, DEPENDENT, DEPENDENT, PAGE"); }},
    {"##VAR_FORM", [](S) { return std::string("= AFFN, AFFN, AFFN, AFFN"); }},
    {"##VAR_DIM",
     [](S f) {
         return format_text("= %d, %d, %d, %d", f.data.dims[0].points, f.data.dims[0].points, f.data.dims[0].points,
                            f.data.dims[1].points);
     }},
    {"##UNITS", [](S f) { return std::string(f.spectrum() ? "= HZ" : "= SECONDS") + ", ARBITRARY UNITS, ARBITRARY UNITS"; }},
    {"##FIRST", [](S f) { return table_values("= %-10.4f", first_x(f), f.summary.first); }},
    {"##LAST", [](S f) { return table_values("= %-10.4f", last_x(f), f.summary.last); }},
    {"##MIN", [](S f) { return table_values("= %-10.3f", std::min(first_x(f), last_x(f)), f.summary.smallest); }},
    {"##MAX", [](S f) { return table_values("= %-10.3f", std::max(first_x(f), last_x(f)), f.summary.largest); }},
    {"##FACTOR", [](S f) { return format_text("= 1.0,  %f,  %f", f.factor, f.factor); }},
    {"##YDATA=(Y..Y)", write_nothing, nullptr, true},
    {"$$  Binary Data follows Control Z", write_nothing, nullptr, true},
    {"$$  Binary( Total # Points) = Total # Bytes, Intel Little Endian floats", write_nothing, nullptr, true},
    {"$$  Complex Pairs packed RIRIRIRI...", write_nothing, nullptr, true},
};

// What the ##BINARY line says: n points in m bytes of this form.
struct Binary {
    int64_t points = -1, bytes = -1;
    std::string_view form;
};

Binary binary_line(std::string_view line) {
    const auto fields = split_fields(line, "()=, \t");
    if (fields.size() < 4) return {};
    return {integer_or_zero(fields[1]), integer_or_zero(fields[2]), fields[3]};
}

void take_line(std::string_view line, DataRecord& data) {
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos) return;
    const std::string_view label = trimmed(line.substr(0, equals));
    if (label.starts_with("##")) read_dxb_label(label.substr(2), line.substr(equals + 1), data);
}

std::string check_counts(const Binary& binary, uint64_t file_bytes, NativeLayout& layout, DataRecord& data) {
    int64_t all = 1;
    for (size_t d = 0; d < 4; ++d) {
        if (data.dims[d].points < 1)
            return format_text("dimension %zu has %d points", d + 1, static_cast<int>(data.dims[d].points));
        if (all > INT64_MAX / 16 / data.dims[d].points) return "its point counts are larger than any file";
        all *= data.dims[d].points;
    }
    if (binary.points != all || binary.bytes != 8 * all) return "its point counts do not agree with one another";
    layout.slice_bytes = 8 * static_cast<uint64_t>(data.dims[0].points);
    layout.slices = static_cast<uint64_t>(data.dims[1].points);
    if (file_bytes < layout.header_bytes || file_bytes - layout.header_bytes < layout.slice_bytes)
        return format_text("its header promises %d points, but the file ends before them", static_cast<int>(data.dims[0].points));
    return {};
}

}  // namespace

std::string encode_dxb_header(const DataRecord& data, const DataSummary& summary, bool exported) {
    const Source from{data, summary, exported};
    const uint64_t all = static_cast<uint64_t>(data.pts1d()) * data.all_slices();
    std::string text;
    for (const Row& row : rows) text += row.label + row.write(from) + "\r\n";
    text += header_sections(data);
    for (const Row& row : table_rows) text += row.label + row.write(from) + "\r\n";
    text += format_text("##BINARY(%llu)=%llu,IEEE32L\r\n", static_cast<unsigned long long>(all),
                        static_cast<unsigned long long>(8 * all));
    return text + control_z;
}

std::string encode_jcamp_header(const DataRecord& data, const DataSummary& summary, double factor) {
    const Source from{data, summary, true, factor};
    std::string text;
    for (const std::span<const Row> part : {std::span<const Row>(rows), std::span<const Row>(table_rows)})
        for (const Row& row : part)
            if (!row.binary) text += row.label + row.write(from) + "\r\n";
    return text;
}

void read_dxb_label(std::string_view label, std::string_view value, DataRecord& data) {
    for (const Row& row : rows)
        if (row.read != nullptr && same_word(label, std::string_view(row.label).substr(2))) return row.read(value, data);
}

bool is_dxb_start(std::string_view start) {
    for (std::string_view line; take_line(start, line);) {
        if (trimmed(line).empty()) continue;
        if (!starts_with_word(line, "##TITLE")) return false;
        while (take_line(start, line))
            if (line.starts_with("##")) return line.starts_with(marker_line);
    }
    return false;
}

std::string decode_dxb_header(std::string_view text, uint64_t file_bytes, NativeLayout& layout, DataRecord& data) {
    layout = {};
    layout.type = 3;
    std::string_view rest = text;
    SectionReader sections(data);
    for (std::string_view line; take_line(rest, line);) {
        if (sections.take(line)) continue;
        if (!line.starts_with("##BINARY")) {
            take_line(line, data);
            continue;
        }
        const Binary binary = binary_line(line);
        if (binary.form != "IEEE32L") return "Not IEEE32L binary data, ZOLT cannot read it.";
        if (rest.empty() || rest[0] != control_z) return "Did not find the expected ^Z in read_JCAMPDXB_header";
        layout.header_bytes = static_cast<uint64_t>(rest.data() - text.data()) + 1;
        if (data.experiment.empty()) data.experiment = "No Experiment listed in imported data header";
        if (!data.possible_delay(data.group_delay)) data.group_delay = 0;
        return check_counts(binary, file_bytes, layout, data);
    }
    return "its header has no ##BINARY line";
}

}  // namespace zolt
