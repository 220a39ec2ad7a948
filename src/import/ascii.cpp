// ASCII text: the labels of its header or the abscissa of a plain table, and the points.
#include "import/ascii.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "common/numbers.h"
#include "common/text.h"
#include "import/ascii_table.h"
#include "import/labelled.h"

namespace zolt {

namespace {

constexpr const char* parameter_module = "\nError in ASC_Parm Module";
constexpr const char* data_module = "\nError in ASC_Data Module";
constexpr std::string_view separators = ":,\t\r\n=";
constexpr size_t longest_text = 127;

// What the text says beside the parameters of the data set.
struct Header {
    bool domain_given = false;
    bool imaginaries_only = false;
    int64_t points = 0;  ///< 0: not given
};

float usable(double value) { return std::abs(value) <= std::numeric_limits<float>::max() ? static_cast<float>(value) : 0; }

using Value = std::string_view;

template <float Dimension::*member>
void take_value(Value value, Header&, DataSet& data) {
    data.dims[0].*member = usable(number_or_zero(value));
}

template <std::string DataRecord::*text>
void take_text(Value value, Header&, DataSet& data) {
    data.*text = cut(readable_text(trimmed(value)), longest_text);
}

void take_points(Value value, Header& header, DataSet&) { header.points = std::max<int64_t>(0, integer_or_zero(value)); }

void take_scans(Value value, Header&, DataSet& data) {
    data.scans = static_cast<int32_t>(std::clamp<int64_t>(integer_or_zero(value), 0, std::numeric_limits<int32_t>::max()));
}

void take_domain(Value value, Header& header, DataSet& data) {
    header.domain_given = starts_with_word(trimmed(value), "Time") || starts_with_word(trimmed(value), "Frequency");
    data.dims[0].frequency = starts_with_word(trimmed(value), "Frequency");
}

constexpr struct {
    const char* label;
    void (*take)(Value value, Header& header, DataSet& data);
} labels[] = {
    {"Spectrometer_Frequency", take_value<&Dimension::sf>},
    {"Spectrometer", take_value<&Dimension::sf>},
    {"SF", take_value<&Dimension::sf>},
    {"Sweep_Width", take_value<&Dimension::sw>},
    {"SWEEP", take_value<&Dimension::sw>},
    {"Offset", take_value<&Dimension::offset>},
    {"Complex_Points", take_points},
    {"POINTS", take_points},
    {"COMPLEX", take_points},
    {"Scans", take_scans},
    {"Domain", take_domain},
    {"Comment", take_text<&DataRecord::comment>},
    {"Date", take_text<&DataRecord::date>},
    {"User", take_text<&DataRecord::user>},
};

std::string_view first_word(std::string_view text) {
    text = trimmed(text);
    return text.substr(0, text.find(' '));
}

// A line of the header: its label, or the first word of it, is one of the table.
bool take_label_line(std::string_view line, Header& header, DataSet& data) {
    const size_t end = std::min(line.find_first_of(separators), line.size());
    const std::string_view label = trimmed(line.substr(0, end));
    for (const auto& row : labels) {
        if (!same_word(label, row.label) && !same_word(first_word(label), row.label)) continue;
        row.take(line.substr(std::min(end + 1, line.size())), header, data);
        return true;
    }
    return false;
}

bool is_comment(std::string_view line) {
    const std::string_view text = trimmed(line);
    return text.empty() || text[0] == '#' || text[0] == '%' || text[0] == '!';
}

// The lines of points: those behind DATA; without any label, those from the first line of numbers on, of which a line of
// column titles may stand in front. Nothing when the text ends before them.
std::optional<std::string_view> point_lines(std::string_view text, Header& header, DataSet& data, bool& plain) {
    std::string_view rest = text;
    int other_lines = 0;
    plain = true;
    for (std::string_view line; !rest.empty();) {
        const std::string_view here = rest;
        take_line(rest, line);
        if (is_comment(line)) continue;
        const std::string_view label = trimmed(line.substr(0, line.find_first_of(separators)));
        if (same_word(first_word(label), "DATA")) {
            header.imaginaries_only = starts_with_word(trimmed(label.substr(4)), "Imaginaries");
            plain = false;
            return rest;
        }
        std::array<double, 3> row{};
        if (take_label_line(line, header, data))
            plain = false;
        else if (plain && other_lines <= 1 && numbers_of_line(line, style_of(line), row) > 0)
            return here;
        else
            ++other_lines;
    }
    return std::nullopt;
}

// What the first column is beside the points.
enum class Abscissa { none, numbers, seconds, spectrum };

struct AsciiFile {
    Header header;
    NumberTable table;
    bool plain = false;
    Abscissa abscissa = Abscissa::none;

    size_t first_part() const { return abscissa == Abscissa::none ? 0 : 1; }
    size_t parts() const { return table.columns - first_part(); }
};

// By its steps: whole numbers from 0 or 1 count the points, values that rise from 0 are seconds, others the axis of a
// spectrum.
Abscissa abscissa_of(const NumberTable& table, bool plain) {
    const auto x = table.column(0);
    if (table.columns < 2 || (table.columns == 2 && !plain) || !equal_steps(x)) return Abscissa::none;
    const double first = x.front(), step = (x.back() - first) / static_cast<double>(x.size() - 1);
    if (step == 1 && (first == 0 || first == 1)) return Abscissa::numbers;
    return step > 0 && first >= 0 && first < 1.5 * step ? Abscissa::seconds : Abscissa::spectrum;
}

bool read_text(Translation& t, Buffer<char>& bytes, const char* module) {
    if (!t.input.seek(0)) return t.fail(std::string("Can't move file pointer to desired location\nin data input file.\n") + module);
    if (!bytes.allocate(t.input_bytes)) return t.fail("Could not allocate memory for new file!");
    if (!t.input.read(bytes.data(), bytes.size())) return t.fail(format_text("Error reading file for %s.", t.path.c_str()));
    for (size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] == '\r' && (i + 1 == bytes.size() || bytes[i + 1] != '\n')) bytes[i] = '\n';
    return true;
}

bool cannot_import(Translation& t, const std::string& why, const char* module) {
    return t.fail(format_text("File %s cannot be imported: %s.\n%s", t.path.c_str(), why.c_str(), module));
}

bool read_file(Translation& t, AsciiFile& file, DataSet& data, const char* module) {
    Buffer<char> bytes;
    if (!read_text(t, bytes, module)) return false;
    std::string_view text(bytes.data(), bytes.size());
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    const auto lines = point_lines(text, file.header, data, file.plain);
    if (!lines) return t.fail(std::string("End of file found before keyword DATA.\n") + module);
    file.table = read_table(*lines, file.plain ? style_of(*lines) : NumberStyle{});
    if (!file.table.wrong.empty()) return cannot_import(t, file.table.wrong, module);
    const auto rows = static_cast<int64_t>(file.table.rows);
    if (rows < file.header.points)
        return cannot_import(t,
                             format_text("it holds %lld of the %lld points that its header gives", static_cast<long long>(rows),
                                         static_cast<long long>(file.header.points)),
                             module);
    if (rows > std::numeric_limits<int32_t>::max()) return cannot_import(t, "it holds too many points", module);
    file.abscissa = abscissa_of(file.table, file.plain);
    if (file.table.columns == 3 && file.abscissa == Abscissa::none)
        return cannot_import(t, "the first of its three columns does not run in equal steps", module);
    return true;
}

// The axis that the abscissa makes; that of a spectrum is in Hz where it is wider than any range of shifts.
void take_axis(const AsciiFile& file, DataSet& data) {
    constexpr double widest_shifts = 700;
    const auto x = file.table.column(0);
    const double width = std::abs(x.back() - x.front()), centre = (x.front() + x.back()) / 2;
    Dimension& dimension = data.dims[0];
    if (file.abscissa == Abscissa::seconds) {
        dimension.sw = usable(static_cast<double>(x.size() - 1) / width);
    } else if (file.abscissa == Abscissa::spectrum) {
        const bool shifts = width <= widest_shifts && dimension.sf > 0;
        const double offset = shifts ? centre * dimension.sf / (1 + centre * 1e-6) : centre;
        dimension.offset = usable(offset);
        dimension.sw = usable(shifts ? width * (dimension.sf - offset * 1e-6) : width);
    }
}

// Without the label, the abscissa tells the domain; else single values are mostly those of spectra, pairs those of FIDs.
bool frequency_domain(const AsciiFile& file) {
    if (file.abscissa == Abscissa::seconds || file.abscissa == Abscissa::spectrum) return file.abscissa == Abscissa::spectrum;
    return file.parts() == 1;
}

}  // namespace

bool ASC_Parm(Translation& t) {
    AsciiFile file;
    if (!read_file(t, file, t.parameters, parameter_module)) return false;
    Dimension& dimension = t.parameters.dims[0];
    dimension.points = static_cast<int32_t>(file.table.rows);
    if (!file.header.domain_given) dimension.frequency = frequency_domain(file);
    if (file.abscissa != Abscissa::none) take_axis(file, t.parameters);
    return true;
}

bool ASC_Data(Translation& t) {
    AsciiFile file;
    DataSet again;
    if (!read_file(t, file, again, data_module)) return false;
    if (!t.real.seek(0) || !t.imaginary.seek(0))
        return t.fail(std::string("Can't move file pointer to desired location\nin data temporary file.\n") + data_module);
    const auto x = file.table.column(0);
    const size_t first = file.first_part(), parts = file.parts();
    // Spectra run from high to low frequency.
    const bool turn = file.abscissa == Abscissa::spectrum && x.front() < x.back();
    const bool swapped = parts == 1 && file.header.imaginaries_only;
    std::vector<float> values(file.table.rows);
    for (size_t part = 0; part < 2; ++part) {
        std::fill(values.begin(), values.end(), 0.0F);
        if (part < parts) {
            const auto column = file.table.column(first + part);
            std::transform(column.begin(), column.end(), values.begin(), usable);
        }
        if (turn) std::reverse(values.begin(), values.end());
        File& to = (part == 0) != swapped ? t.real : t.imaginary;
        if (!to.write(values.data(), values.size() * sizeof(float)))
            return cannot_import(t, "the temporary files cannot be written", data_module);
    }
    return true;
}

}  // namespace zolt
