// Offsets and codes of the Delta file, as public readers of it describe them.
#include "import/jeol_file.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <vector>

#include "common/text.h"
#include "import/labelled.h"

namespace zolt {

namespace {

constexpr std::string_view mark = "JEOL.NMR", swapped_mark = "RMN.LOEJ";

constexpr size_t header_bytes = 1296;
constexpr size_t mark_bytes = 8, record_bytes = 64, parameter_head_bytes = 16;

// Places in the header; arrays have an element for each of eight dimensions.
enum Place {
    at_order = 8,
    at_dimensions = 12,
    at_type = 14,
    at_kind = 24,
    at_unit = 32,
    at_title = 48,
    at_ranged = 172,
    at_points = 176,
    at_first = 208,
    at_last = 240,
    at_start = 272,
    at_stop = 336,
    at_created = 400,
    at_author = 552,
    at_comment = 680,
    at_axis_title = 808,
    at_frequency = 1064,
    at_zero_point = 1128,
    at_param_start = 1212,
    at_param_bytes = 1216,
    at_list_start = 1220,
    at_list_bytes = 1252,
    at_data_start = 1284
};

// Places in a parameter record.
enum RecordPlace { in_record_unit = 6, in_record_value = 16, in_record_type = 32, in_record_name = 36 };
enum ValueType { value_text = 0, value_integer = 1, value_float = 2 };

std::string text_at(const char* from, size_t length) {
    const std::string_view bytes(from, length);
    return std::string(trimmed(readable_text(bytes.substr(0, bytes.find('\0')))));
}

// The factor of a unit: the prefix is minus a third of the power of ten, in the high four bits.
double unit_scale(char prefix_and_power) {
    const int prefix = static_cast<signed char>(prefix_and_power) >> 4;
    return std::pow(10.0, -3 * prefix);
}

// Seven bits of years since 1990, four of the month, five of the day.
std::string date_text(uint32_t word) {
    static constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const uint32_t month = (word >> 21) & 0xF, day = (word >> 16) & 0x1F;
    if (month < 1 || month > 12 || day < 1) return {};
    return format_text("%s %2u %u", months[month - 1], day, 1990 + (word >> 25));
}

DeltaAxis axis_kind(char code) { return code >= 1 && code <= 5 ? static_cast<DeltaAxis>(code) : DeltaAxis::none; }

DeltaDimension dimension_at(const char* bytes, size_t d, ByteOrder order) {
    const auto word = [&](size_t place) { return load_word<uint32_t>(bytes + place + 4 * d, order); };
    const auto real = [&](size_t place) { return load_double(bytes + place + 8 * d, order); };
    DeltaDimension dimension;
    dimension.kind = axis_kind(bytes[at_kind + d]);
    dimension.unit = bytes[at_unit + 2 * d + 1];
    dimension.scale = unit_scale(bytes[at_unit + 2 * d]);
    const auto ranged = static_cast<unsigned char>(bytes[at_ranged + d / 2]);
    dimension.listed = (d % 2 == 0 ? ranged >> 4 : ranged & 0xF) == 1;
    dimension.points = word(at_points);
    dimension.first = word(at_first);
    dimension.last = word(at_last);
    dimension.start = real(at_start);
    dimension.stop = real(at_stop);
    dimension.frequency = real(at_frequency);
    dimension.zero_point = real(at_zero_point);
    dimension.list_start = word(at_list_start);
    dimension.list_bytes = word(at_list_bytes);
    dimension.title = text_at(bytes + at_axis_title + 32 * d, 32);
    return dimension;
}

void take_record(const char* record, ByteOrder order, DeltaParameters& parameters) {
    DeltaParameter parameter;
    parameter.unit = record[in_record_unit + 1];
    const double scale = unit_scale(record[in_record_unit]);
    const char* value = record + in_record_value;
    switch (load_word<int32_t>(record + in_record_type, order)) {
        case value_text:
            parameter.text = text_at(value, 16);
            break;
        case value_integer:
            parameter.number = scale * load_word<int32_t>(value, order);
            break;
        case value_float:
            parameter.number = scale * load_double(value, order);
            break;
        default:
            return;
    }
    parameters.entries.insert_or_assign(lower(text_at(record + in_record_name, 28)), std::move(parameter));
}

}  // namespace

double load_double(const char* from, ByteOrder order) {
    uint64_t word = 0;
    std::memcpy(&word, from, 8);
    return std::bit_cast<double>(order == machine_order ? word : __builtin_bswap64(word));
}

bool DeltaHeader::complex_rows() const {
    return dims[0].kind == DeltaAxis::complex ||
           std::any_of(dims.begin(), dims.end(), [](const DeltaDimension& d) { return d.kind == DeltaAxis::real_complex; });
}

bool is_delta_mark(std::string_view bytes) {
    const std::string_view start = bytes.substr(0, mark_bytes);
    return start == mark || start == swapped_mark;
}

bool read_delta_header(File& file, DeltaHeader& header) {
    std::array<char, header_bytes> bytes{};
    if (!file.seek(0) || !file.read(bytes.data(), bytes.size()) || !is_delta_mark({bytes.data(), mark_bytes})) return false;
    // The mark tells the order of the header alone; that of the data has a byte of its own.
    const ByteOrder order = bytes[0] == mark[0] ? ByteOrder::big : ByteOrder::little;
    header.order = bytes[at_order] == 1 ? ByteOrder::little : ByteOrder::big;
    header.dimensions = bytes[at_dimensions];
    const auto type = static_cast<unsigned char>(bytes[at_type]);
    header.doubles = type >> 6 == 0;
    header.format = type >> 6 <= 1 ? type & 0x3F : 0;
    for (size_t d = 0; d < header.dims.size(); ++d) header.dims[d] = dimension_at(bytes.data(), d, order);
    header.title = text_at(bytes.data() + at_title, 124);
    header.author = text_at(bytes.data() + at_author, 128);
    header.comment = text_at(bytes.data() + at_comment, 128);
    header.date = date_text(load_word<uint32_t>(bytes.data() + at_created, order));
    header.param_start = load_word<uint32_t>(bytes.data() + at_param_start, order);
    header.param_bytes = load_word<uint32_t>(bytes.data() + at_param_bytes, order);
    header.data_start = load_word<uint32_t>(bytes.data() + at_data_start, order);
    return true;
}

std::optional<double> DeltaParameters::number(std::string_view name) const {
    const auto found = entries.find(name);
    if (found == entries.end() || !found->second.text.empty() || !std::isfinite(found->second.number)) return {};
    return found->second.number;
}

std::string DeltaParameters::text(std::string_view name) const {
    const auto found = entries.find(name);
    return found == entries.end() ? std::string() : found->second.text;
}

bool read_delta_parameters(File& file, ByteOrder order, uint64_t room, DeltaParameters& parameters) {
    std::array<char, parameter_head_bytes> head{};
    if (room < head.size() || !file.read(head.data(), head.size())) return false;
    const auto size = load_word<uint32_t>(head.data(), order), low = load_word<uint32_t>(head.data() + 4, order),
               high = load_word<uint32_t>(head.data() + 8, order);
    if (size != record_bytes || high < low) return false;
    std::array<char, record_bytes> record{};
    const uint64_t count = std::min<uint64_t>(uint64_t{high} - low + 1, (room - head.size()) / record_bytes);
    for (uint64_t i = 0; i < count && file.read(record.data(), record.size()); ++i) take_record(record.data(), order, parameters);
    return !parameters.entries.empty();
}

}  // namespace zolt
