// Offsets of the header's words, and the way from them to the data set and back.
#include "datafile/header.h"

#include <algorithm>
#include <ctime>

#include "common/text.h"

namespace zolt {

namespace {

constexpr uint32_t marker = 0x04030201;
constexpr const char* no_experiment = "No Experiment listed in imported data header";

// Offsets in bytes from the start of the file, and within a dimension's block.
namespace at {
constexpr size_t length = 4, dimensions = 8, data_type = 12, type = 16, word_a = 20, stamp = 24, tailer = 32, parameters = 80,
                 block = 384, block_size = 160, word_b = 1024, scans = 1028, acquisition = 1032, word_c = 1036, experiment = 1040,
                 user = 1160, date = 1200, comment = 1240;
constexpr size_t points = 0, code = 4, domain = 8, unit = 12, word_d = 16, word_e = 20, order = 24, sw = 64, sf = 68, offset = 72,
                 carried = 76;
}  // namespace at

// A header in memory, read or written word by word.
struct Words {
    unsigned char* bytes;
    ByteOrder order;

    int32_t integer(size_t offset) const { return load_word<int32_t>(bytes + offset, order); }
    float real(size_t offset) const { return load_word<float>(bytes + offset, order); }
    template <class T>
    void put(size_t offset, T value) {
        store_word(bytes + offset, value, order);
    }
    std::string text(size_t offset, size_t width) const {
        const char* from = reinterpret_cast<const char*>(bytes + offset);
        return {from, std::find(from, from + width - 1, '\0')};
    }
    void put_text(size_t offset, size_t width, std::string_view text) {
        text = cut(text, width - 1);
        std::copy(text.begin(), text.end(), bytes + offset);
    }
};

constexpr size_t block_of(size_t d) { return at::block + at::block_size * d; }

void decode_dimension(const Words& words, size_t d, Dimension& dimension) {
    const size_t b = block_of(d);
    dimension.points = words.integer(b + at::points);
    dimension.domain_code = static_cast<int16_t>(words.integer(b + at::code));
    dimension.frequency = words.integer(b + at::domain) == 1;
    dimension.axis_unit = static_cast<int16_t>(words.integer(b + at::unit));
    const int32_t order = words.integer(b + at::order);
    dimension.order = order >= 1 && order <= 4 ? order : static_cast<int>(d) + 1;
    dimension.sw = words.real(b + at::sw);
    dimension.sf = words.real(b + at::sf);
    dimension.offset = words.real(b + at::offset);
    for (size_t p = 0; p < dimension.carried.size(); ++p) dimension.carried[p] = words.real(b + at::carried + 4 * p);
}

void encode_dimension(Words& words, size_t d, const Dimension& dimension, const CarriedWords& carried) {
    const size_t b = block_of(d);
    words.put(b + at::points, dimension.points);
    words.put<int32_t>(b + at::code, dimension.domain_code);
    words.put<int32_t>(b + at::domain, dimension.frequency ? 1 : 0);
    words.put<int32_t>(b + at::unit, dimension.axis_unit);
    words.put(b + at::word_d, carried.d);
    words.put(b + at::word_e, carried.e);
    words.put<int32_t>(b + at::order, dimension.order);
    words.put(b + at::sw, dimension.sw);
    words.put(b + at::sf, dimension.sf);
    words.put(b + at::offset, dimension.offset);
    for (size_t p = 0; p < dimension.carried.size(); ++p) words.put(b + at::carried + 4 * p, dimension.carried[p]);
}

// The counts are checked against the file before anything is allocated; the slices themselves may be fewer than promised.
std::string check_counts(DataRecord& data, uint64_t file_bytes, NativeLayout& layout) {
    for (size_t d = 1; d < 4; ++d)
        if (data.dims[d].points == 0) data.dims[d].points = 1;
    for (size_t d = 0; d < 4; ++d)
        if (data.dims[d].points < 1)
            return format_text("dimension %zu has %d points", d + 1, static_cast<int>(data.dims[d].points));
    layout.slice_bytes = 8 * static_cast<uint64_t>(data.dims[0].points) + layout.prefix_bytes();
    layout.slices = static_cast<uint64_t>(data.dims[1].points);
    if (layout.header_bytes > file_bytes || file_bytes - layout.header_bytes < layout.slice_bytes)
        return format_text("its header promises %d points, but the file ends before them", static_cast<int>(data.dims[0].points));
    return {};
}

}  // namespace

bool decode_header_start(std::span<const unsigned char> bytes, NativeLayout& layout) {
    if (bytes.size() < 20) return false;
    if (load_word<uint32_t>(bytes.data(), ByteOrder::little) == marker) {
        layout.order = ByteOrder::little;
    } else if (load_word<uint32_t>(bytes.data(), ByteOrder::big) == marker) {
        layout.order = ByteOrder::big;
    } else {
        return false;
    }
    layout.data_type = load_word<int32_t>(bytes.data() + at::data_type, layout.order);
    const int32_t type = load_word<int32_t>(bytes.data() + at::type, layout.order);
    layout.type = type == 2 ? 2 : 1;
    return true;
}

std::string decode_header(std::span<const unsigned char> bytes, uint64_t file_bytes, NativeLayout& layout, DataRecord& data) {
    std::vector<unsigned char> copy(bytes.begin(), bytes.end());
    const Words words{copy.data(), layout.order};
    const int64_t length = words.integer(at::length);
    const uint64_t smallest = layout.type == 2 ? full_header_bytes : short_header_bytes;
    layout.header_bytes = length < 0 ? 0 : 4 * static_cast<uint64_t>(length) + 8;
    if (layout.header_bytes < smallest)
        return format_text("its header length of %lld words is too small", static_cast<long long>(length));

    data.words.a = words.integer(at::word_a);
    data.words.write_stamp = words.integer(at::stamp);
    for (size_t p = 0; p < data.words.parameter_block.size(); ++p)
        data.words.parameter_block[p] = static_cast<uint32_t>(words.integer(at::parameters + 4 * p));
    for (size_t d = 0; d < data.dims.size(); ++d) decode_dimension(words, d, data.dims[d]);
    data.words.d = words.integer(at::block + at::word_d);
    data.words.e = words.integer(at::block + at::word_e);
    data.words.b = words.integer(at::word_b);
    data.scans = words.integer(at::scans);
    if (layout.type == 2) {
        data.words.acquisition_value = words.real(at::acquisition);
        data.words.c = words.integer(at::word_c);
        data.experiment = words.text(at::experiment, 40);
        data.user = words.text(at::user, 40);
        data.date = words.text(at::date, 40);
        data.comment = words.text(at::comment, 128);
    } else {
        data.comment = "Read in a short header file (<256 words).";
    }
    if (data.experiment.empty()) data.experiment = no_experiment;
    return check_counts(data, file_bytes, layout);
}

std::vector<unsigned char> encode_header(const DataRecord& data, int type, ByteOrder order) {
    std::vector<unsigned char> bytes(full_header_bytes, 0);
    Words words{bytes.data(), order};
    const auto points = [&](size_t d) { return data.dims[d].points; };

    words.put(0, marker);
    words.put<int32_t>(at::length, type == 1 ? 256 : 1024);
    words.put<int32_t>(at::dimensions, points(3) > 1 ? 4 : points(2) >= 2 ? 3 : points(1) >= 2 ? 2 : 1);
    words.put<int32_t>(at::data_type, 0);
    words.put<int32_t>(at::type, type);
    words.put(at::word_a, data.words.a);
    words.put(at::stamp, static_cast<int32_t>(std::time(nullptr)));
    words.put<int32_t>(at::tailer, 1);
    for (size_t p = 0; p < data.words.parameter_block.size(); ++p) words.put(at::parameters + 4 * p, data.words.parameter_block[p]);
    for (size_t d = 0; d < data.dims.size(); ++d) encode_dimension(words, d, data.dims[d], data.words);
    words.put(at::word_b, data.words.b);
    words.put(at::scans, data.scans);
    if (type == 1) {
        bytes.resize(short_header_bytes);
        return bytes;
    }
    words.put(at::acquisition, data.words.acquisition_value);
    words.put(at::word_c, data.words.c);
    words.put_text(at::experiment, 40, data.experiment);
    words.put_text(at::user, 40, data.user);
    words.put_text(at::date, 40, data.date);
    words.put_text(at::comment, 128, data.comment);
    return bytes;
}

}  // namespace zolt
