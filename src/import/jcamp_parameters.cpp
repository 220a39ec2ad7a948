// The parameters of a JCAMP-DX block: general labels, those of vendors, and what they say of the axes.
#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <limits>

#include "common/numbers.h"
#include "common/text.h"
#include "datafile/dxb.h"
#include "import/bruker_delay.h"
#include "import/jcamp_block.h"

namespace zolt {

namespace {

double number_of(const JcampRecord& record) {
    const double value = number_or_zero(record.value());
    return std::isfinite(value) ? value : 0;
}

int32_t count_of(const JcampRecord& record) {
    return static_cast<int32_t>(std::clamp<double>(number_of(record), 0, std::numeric_limits<int32_t>::max()));
}

// "^13C" or "<13C>".
std::string nucleus_of(std::string text) {
    std::erase(text, '^');
    return text;
}

// Seconds since 1970 as the conventional text, in any locale; other texts as they are.
std::string date_of(const JcampRecord& record) {
    const std::string text = record.text();
    const auto seconds = static_cast<time_t>(integer_or_zero(text));
    std::tm local = {};
    std::array<char, 64> date{};
    if (text.find_first_not_of("0123456789") != text.npos || seconds <= 0 || seconds > time_t{1} << 40 ||
        ::localtime_r(&seconds, &local) == nullptr || ::asctime_r(&local, date.data()) == nullptr)
        return text;
    return std::string(trimmed(date.data()));
}

template <std::string DataRecord::*text>
void take_text(const JcampRecord& record, DataSet& data) {
    data.*text = record.text();
}

template <double DataRecord::*value>
void take_number(const JcampRecord& record, DataSet& data) {
    data.*value = number_of(record);
}

template <double DataRecord::*value>
void take_second_element(const JcampRecord& record, DataSet& data) {
    const auto element = record.element(1);
    if (element && std::isfinite(*element)) data.*value = *element;
}

// In the order in which a later row overrides an earlier one; the first record of each label counts.
constexpr struct {
    const char* label;
    void (*take)(const JcampRecord& record, DataSet& data);
} labels[] = {
    {"TITLE", take_text<&DataRecord::title>},
    {"OWNER", take_text<&DataRecord::owner>},
    {"OWNER", take_text<&DataRecord::user>},
    {"$USER", take_text<&DataRecord::user>},
    {"DATE", take_text<&DataRecord::date>},
    {"LONGDATE", take_text<&DataRecord::date>},
    {"$DATE", [](const JcampRecord& r, DataSet& d) { d.date = date_of(r); }},
    {"SAMPLEDESCRIPTION", take_text<&DataRecord::comment>},
    {"$PULPROG", take_text<&DataRecord::experiment>},
    {".PULSESEQUENCE", take_text<&DataRecord::experiment>},
    {"$SOLVENT", take_text<&DataRecord::solvent>},
    {".SOLVENTNAME", take_text<&DataRecord::solvent>},
    {"$NS", [](const JcampRecord& r, DataSet& d) { d.scans = count_of(r); }},
    {".AVERAGES", [](const JcampRecord& r, DataSet& d) { d.scans = count_of(r); }},
    {"$D", take_second_element<&DataRecord::d1>},
    {"$P", take_second_element<&DataRecord::p1>},
    {"$O1", take_number<&DataRecord::o1>},
    {"$O2", take_number<&DataRecord::o2>},
    {"$NUC1", [](const JcampRecord& r, DataSet& d) { d.dims[0].nucleus = nucleus_of(r.text()); }},
    {".OBSERVENUCLEUS", [](const JcampRecord& r, DataSet& d) { d.dims[0].nucleus = nucleus_of(r.text()); }},
    {"$BF1", [](const JcampRecord& r, DataSet& d) { d.dims[0].sf = usable(std::max(0.0, number_of(r))); }},
    {"$SFO1", [](const JcampRecord& r, DataSet& d) { d.dims[0].sf = usable(std::max(0.0, number_of(r))); }},
    {".OBSERVEFREQUENCY", [](const JcampRecord& r, DataSet& d) { d.dims[0].sf = usable(std::max(0.0, number_of(r))); }},
};

// ------------------------------------------------------------------------------------------------------ Bruker's FIDs

// Phases and line broadening that the operator chose for the stored spectrum.
void take_bruker_processing(const JcampBlock& block, DataSet& data) {
    if (const auto zero_order = block.number("$PHC0")) data.phase[0] = usable(0 - *zero_order);
    if (const auto first_order = block.number("$PHC1")) data.phase[1] = usable(0 - *first_order);
    data.lb() = usable(std::max(0.0, block.number("$LB").value_or(0)));
}

double bruker_delay(const JcampBlock& block) {
    DigitalFilter filter;
    filter.stated_delay = block.number("$GRPDLY").value_or(0);
    filter.digital = block.number("$DIGMOD").value_or(1) != 0;
    filter.firmware = static_cast<int64_t>(std::clamp(block.number("$DSPFVS").value_or(0), 0.0, 1e6));
    filter.decimation = block.number("$DECIM").value_or(0);
    return group_delay(filter);
}

// Quadrature points of sequential acquisition keep their own transform; all else is complex.
int domain_of(const JcampLayout& layout) {
    if (layout.spectrum || layout.imaginary_rows.empty()) return domain_complex;
    const auto mode = layout.block.number("$AQMOD");
    const bool sequential = mode ? *mode == 2 : folded(layout.block.text(".ACQUISITIONMODE")) == "SEQUENTIAL";
    return sequential ? domain_sequential : domain_complex;
}

// Raw data of two makers turn as e^(-iwt) above the carrier; all others met turn as e^(+iwt), the convention of the
// mathematics.
int sense_of(const JcampLayout& layout) {
    if (layout.spectrum) return 1;
    const std::string origin = folded(layout.block.text("ORIGIN") + layout.block.text("SPECTROMETER/DATASYSTEM"));
    for (const char* maker : {"JEOL", "VARIAN", "AGILENT"})
        if (!layout.bruker && origin.find(maker) != std::string::npos) return 1;
    return -1;
}

// How the rows of 2D FIDs go together, by the acquisition scheme.
const char* process_type_of(const JcampBlock& block, bool spectrum) {
    static constexpr const char* schemes[][2] = {
        {"STATESTPPI", "2D_STATESTPPI"}, {"STATES", "2D_HYPERCOMPLEX"}, {"TPPI", "2D_TPPI"}, {"ECHOANTIECHO", "2D_ECHOANTIECHO"}};
    const std::string scheme = folded(block.text(".ACQUISITIONSCHEME"));
    for (const auto& row : schemes)
        if (!spectrum && scheme.starts_with(row[0])) return row[1];
    return "2D_MAGNITUDE";
}

// ------------------------------------------------------------------------------------------------------------- the axes

// Seconds, or hertz, of one unit; 0 for other units.
double seconds_of(const std::string& unit) {
    if (unit.starts_with("SEC") || unit == "S") return 1;
    if (unit.starts_with("MILLISEC") || unit == "MS" || unit == "MSEC") return 1e-3;
    return unit.starts_with("MICROSEC") || unit == "US" || unit == "USEC" ? 1e-6 : 0;
}
double hertz_of(const std::string& unit) {
    if (unit.starts_with("HZ") || unit.starts_with("HERTZ")) return 1;
    return unit == "KHZ" ? 1e3 : unit == "MHZ" ? 1e6 : 0;
}

// A point of the axis, counted from 0 at the left end, whose shift is known.
struct Anchor {
    double point = 0, ppm = 0;
};

// The offset that puts this shift at this point of n, of an axis of this width in Hz: the axis measures shifts from the
// frequency sf - offset / 1e6.
double offset_of(const Anchor& anchor, double n, double sf, double width) {
    const double place = n > 1 ? anchor.point / (n - 1) : 0.5;
    return (anchor.ppm * sf - width * (0.5 - place)) / (1 + anchor.ppm * 1e-6);
}

// An axis between two shifts.
void set_by_shifts(double left, double right, Dimension& dimension) {
    const double centre = (left + right) / 2, sf = dimension.sf;
    const double offset = sf > 0 ? centre * sf / (1 + centre * 1e-6) : centre;
    const double reference = sf > 0 ? sf - offset * 1e-6 : 1;
    dimension.offset = usable(offset);
    dimension.sw = usable(std::abs(left - right) * reference);
}

// .SHIFT REFERENCE= INTERNAL, CDCl3, 1, 15.47: the point, counted from 1, at the shift behind it. Else, for data of
// Bruker's software whose abscissa is not referenced, the shift of the first point.
std::optional<Anchor> anchor_of(const JcampLayout& layout, double n) {
    const JcampRecord* record = layout.block.find(".SHIFTREFERENCE");
    const auto fields = split_fields(record != nullptr ? record->value() : "", "(),");
    std::optional<Anchor> anchor;
    if (fields.size() >= 3) {
        const auto point = leading_number(fields[fields.size() - 2]), ppm = leading_number(fields.back());
        if (point && ppm && std::isfinite(*point) && std::isfinite(*ppm)) anchor = {std::max(0.0, *point - 1), *ppm};
    }
    const auto offset = layout.block.number("$OFFSET");
    if (!anchor && layout.bruker && offset && (!layout.spectrum || layout.x.last == 0.0)) anchor = {0, *offset};
    if (anchor && !layout.descending_x) anchor->point = n - 1 - anchor->point;
    return anchor;
}

void set_spectrum_axis(const JcampColumn& column, const std::optional<Anchor>& anchor, double n, Dimension& dimension) {
    double left = column.first.value_or(0), right = column.last.value_or(left - std::abs(column.factor) * (n - 1));
    if (left < right) std::swap(left, right);
    const double hertz = hertz_of(column.unit);
    if (column.unit == "PPM") return set_by_shifts(left, right, dimension);
    if (hertz > 0 && anchor && dimension.sf > 0) {
        const double width = (left - right) * hertz;
        dimension.offset = usable(offset_of(*anchor, n, dimension.sf, width));
        dimension.sw = usable(width);
    } else if (hertz > 0) {
        // Shifts are taken in units of the observe frequency.
        const double unit = dimension.sf > 0 ? hertz / dimension.sf : hertz;
        set_by_shifts(left * unit, right * unit, dimension);
    }
}

// The width of time-domain data: 1 over the step between points.
double width_by_steps(const JcampColumn& column, double n) {
    const double seconds = seconds_of(column.unit);
    const double span = (column.last.value_or(0) - column.first.value_or(0)) * seconds;
    if (span > 0 && n > 1) return (n - 1) / span;
    return seconds > 0 && column.factor > 0 && column.factor < 1 ? 1 / (column.factor * seconds) : 0;
}

void set_fid_axis(const JcampLayout& layout, double n, Dimension& dimension) {
    const JcampBlock& block = layout.block;
    if (hertz_of(layout.x.unit) > 0 && layout.x.first && layout.x.last) {
        dimension.sw = usable(std::abs(*layout.x.first - *layout.x.last) * hertz_of(layout.x.unit));
        dimension.offset = usable((*layout.x.first + *layout.x.last) / 2 * hertz_of(layout.x.unit));
        return;
    }
    // Bruker's own label says what was recorded; the abscissa that converters write beside it is not always its inverse.
    const double stated = layout.bruker ? block.number("$SWH").value_or(0) : 0;
    dimension.sw = usable(stated > 0 ? stated : width_by_steps(layout.x, n));
    const auto carrier = block.number("$SFO1"), reference = block.number("$SF");
    const auto anchor = anchor_of(layout, n);
    if (carrier && reference && *carrier > 0 && *reference > 0)
        dimension.offset = usable((*carrier - *reference) * 1e6);
    else if (anchor && dimension.sf > 0)
        dimension.offset = usable(offset_of(*anchor, n, dimension.sf, dimension.sw));
    else
        dimension.offset = usable(block.number("$O1").value_or(0));
}

// Dimension 2: from the rows, and from the second set of the vendor's labels.
void set_second_axis(const JcampLayout& layout, DataSet& data) {
    const JcampBlock& block = layout.block;
    Dimension& dimension = data.dims[1];
    const auto rows = static_cast<double>(layout.real_rows.size());
    const auto carrier = block.number("$SFO1", 1), reference = block.number("$SF", 1);
    dimension.frequency = layout.spectrum;
    const JcampRecord* nuclei = block.find(".NUCLEUS");
    const auto names = nuclei != nullptr ? nuclei->list() : std::vector<std::string_view>{};
    dimension.nucleus = names.empty() ? block.text("$NUC1", 1) : nucleus_of(std::string(cut(names[0], longest_jcamp_text)));
    const bool same_nucleus = dimension.nucleus.empty() || dimension.nucleus == data.dims[0].nucleus;
    dimension.sf = carrier && *carrier > 0 ? usable(*carrier) : same_nucleus ? data.dims[0].sf : 0;
    if (layout.spectrum) return set_spectrum_axis(layout.page, std::nullopt, rows, dimension);
    dimension.sense = data.dims[0].sense;
    dimension.sw = usable(std::max(0.0, block.number("$SWH", 1).value_or(width_by_steps(layout.page, rows))));
    const double offset = carrier && reference && *reference > 0 ? (*carrier - *reference) * 1e6 : 0;
    dimension.offset = offset != 0 || !same_nucleus ? usable(offset) : data.dims[0].offset;
}

}  // namespace

void take_parameters(const JcampLayout& layout, DataSet& data) {
    if (layout.own) {
        const JcampRecord& table = *layout.real_rows.front().record;
        for (const JcampRecord& record : layout.block) {
            if (&record == &table) break;
            read_dxb_label(record.label, record.body.substr(0, record.body.find_first_of("\r\n")), data);
        }
        return;
    }
    for (const auto& row : labels)
        if (const JcampRecord* record = layout.block.find(row.label); record != nullptr && !record->value().empty())
            row.take(*record, data);
    Dimension& dimension = data.dims[0];
    dimension.frequency = layout.spectrum;
    dimension.domain_code = domain_of(layout);
    dimension.sense = sense_of(layout);
    if (layout.bruker && !layout.spectrum) take_bruker_processing(layout.block, data);
    if (layout.real_rows.size() > 1) data.process_type = process_type_of(layout.block, layout.spectrum);
}

void set_axes(const JcampLayout& layout, int64_t points, DataSet& data) {
    if (layout.own) return;
    Dimension& dimension = data.dims[0];
    const auto n = static_cast<double>(points);
    dimension.points = static_cast<int32_t>(points);
    data.dims[1].points = static_cast<int32_t>(layout.real_rows.size());
    if (layout.spectrum)
        set_spectrum_axis(layout.x, anchor_of(layout, n), n, dimension);
    else
        set_fid_axis(layout, n, dimension);
    if (layout.real_rows.size() > 1) set_second_axis(layout, data);
    if (!layout.bruker || layout.spectrum) return;
    const double delay = bruker_delay(layout.block);
    data.group_delay = delay <= n ? delay : 0;
}

}  // namespace zolt
