// The data stages: words of every kind into floats, rows to their places, tiles to rows.
#include "import/bruker_points.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "common/buffer.h"
#include "common/bytes.h"
#include "common/text.h"
#include "import/bruker.h"
#include "platform/platform.h"

namespace zolt {

namespace {

// ------------------------------------------------------------------------------------------------------------- words

// One kind of word each, so that the loops below are compiled for it. Both reversals of old data happen where both apply:
// the sign is extended between them, and files written so exist.
template <bool big_endian, bool from_24_bits>
struct IntegerWord {
    static constexpr size_t bytes = 4;
    static float value(const char* at) {
        uint32_t word = 0;
        std::memcpy(&word, at, bytes);
        if (machine_order == ByteOrder::big) word = __builtin_bswap32(word);
        if (from_24_bits) word = static_cast<uint32_t>(static_cast<int32_t>(__builtin_bswap32(word) << 8) >> 8);
        if (big_endian) word = __builtin_bswap32(word);
        return static_cast<float>(static_cast<int32_t>(word));
    }
};

template <bool big_endian>
struct DoubleWord {
    static constexpr size_t bytes = 8;
    static float value(const char* at) {
        uint64_t word = 0;
        std::memcpy(&word, at, bytes);
        if (big_endian != (machine_order == ByteOrder::big)) word = __builtin_bswap64(word);
        return static_cast<float>(std::bit_cast<double>(word));
    }
};

// Pairs of words into their parts.
template <class Word>
void split_pairs(const char* at, size_t points, float* re, float* im) {
    for (size_t i = 0; i < points; ++i) {
        re[i] = Word::value(at + 2 * i * Word::bytes);
        im[i] = Word::value(at + (2 * i + 1) * Word::bytes);
    }
}

template <class Word>
void convert_words(const char* at, size_t count, float* values) {
    for (size_t i = 0; i < count; ++i) values[i] = Word::value(at + i * Word::bytes);
}

struct Conversions {
    void (*split)(const char* at, size_t points, float* re, float* im);
    void (*convert)(const char* at, size_t count, float* values);
};

template <class Word>
constexpr Conversions conversions_of = {split_pairs<Word>, convert_words<Word>};

Conversions conversions(const RawWords& words) {
    if (words.doubles) return words.big_endian ? conversions_of<DoubleWord<true>> : conversions_of<DoubleWord<false>>;
    if (words.from_24_bits)
        return words.big_endian ? conversions_of<IntegerWord<true, true>> : conversions_of<IntegerWord<false, true>>;
    return words.big_endian ? conversions_of<IntegerWord<true, false>> : conversions_of<IntegerWord<false, false>>;
}

// ----------------------------------------------------------------------------------------------------- reading, writing

// A stage that failed says so on the last line of its message.
struct Stage {
    Translation& t;
    const char* name;

    bool fail(const std::string& text) const { return t.fail(text + "\nError in " + name + " Module"); }
    bool seek(File& file, uint64_t at, const char* what) const {
        return file.seek(at) || fail(format_text("Can't move file pointer to desired location\nin %s.\n", what));
    }
    bool out_of_memory() const { return fail(format_text("There is no memory for a row of file %s.\n", t.path.c_str())); }
    bool write(File& part, const float* values, size_t count) const {
        return part.write(values, count * sizeof(float)) ||
               fail("The temporary files cannot be written.  ZOLT home directory disk full???\n");
    }
};

// Up to `size` bytes from a place on; what the file does not hold is zero. The number of bytes that it holds.
size_t read_padded(File& file, uint64_t at, char* to, size_t size) {
    const size_t held = file.seek(at) ? std::fread(to, 1, size, file.stream()) : 0;
    std::memset(to + held, 0, size - held);
    return held;
}

// The points of raw data, a block of rows at a time; rows that stand at places of their own come singly.
struct RawRows {
    const BrukerPlan& plan;
    size_t row_bytes;
    int64_t rows, planes;
    File file;
    uint64_t incomplete = 0;

    // The file's row for a row of the grid; -1 for one that was not recorded.
    int64_t place_of(int64_t row) const {
        if (plan.in_order()) return row;
        if (plan.inner_is_third) return row % rows * planes + row / rows;
        const auto found = std::lower_bound(plan.recorded.begin(), plan.recorded.end(), std::pair(row, int64_t{0}));
        return found != plan.recorded.end() && found->first == row ? found->second : -1;
    }
    // Bytes of a block in the file: the last row ends with its points.
    size_t block_bytes(uint64_t count) const { return (count - 1) * plan.pitch + row_bytes; }
    // Reads rows first .. first + count - 1 of the grid.
    void read(uint64_t first, uint64_t count, char* to) {
        const int64_t place = place_of(static_cast<int64_t>(first));
        const size_t size = block_bytes(count);
        if (place < 0) {
            std::memset(to, 0, size);
            return;
        }
        const size_t held = read_padded(file, plan.start + static_cast<uint64_t>(place) * plan.pitch, to, size);
        if (held < size) incomplete += count - (held < row_bytes ? 0 : (held - row_bytes) / plan.pitch + 1);
    }
};

}  // namespace

bool BRUUData(Translation& t, const BrukerPlan& plan) {
    constexpr size_t points_at_a_time = size_t{1} << 15;
    const Stage stage{t, "BRUUData"};
    const auto points = static_cast<size_t>(t.parameters.dims[0].points);
    const uint64_t rows = static_cast<uint64_t>(t.parameters.dims[1].points) * static_cast<uint64_t>(t.parameters.dims[2].points);
    const uint64_t together = plan.in_order() ? std::clamp<uint64_t>(points_at_a_time / points, 1, rows) : 1;
    RawRows raw{plan, 2 * points * t.raw.bytes(), t.parameters.dims[1].points, t.parameters.dims[2].points,
                open_for_reading(plan.data)};
    if (!raw.file) return stage.fail(format_text("File %s cannot be opened for reading.\n", plan.data.c_str()));
    if (!stage.seek(raw.file, 0, "data input file") || !stage.seek(t.real, 0, "data temporary file 1") ||
        !stage.seek(t.imaginary, 0, "temporary file 2"))
        return false;
    Buffer<char> words;
    Buffer<float> re, im;
    if (!words.allocate(raw.block_bytes(together)) || !re.allocate(together * points) || !im.allocate(together * points))
        return stage.out_of_memory();
    const Conversions convert = conversions(t.raw);
    for (uint64_t row = 0; row < rows; row += together) {
        const uint64_t count = std::min(together, rows - row);
        raw.read(row, count, words.data());
        if (plan.pitch == raw.row_bytes)
            convert.split(words.data(), count * points, re.data(), im.data());
        else
            for (uint64_t k = 0; k < count; ++k)
                convert.split(words.data() + k * plan.pitch, points, re.data() + k * points, im.data() + k * points);
        if (!stage.write(t.real, re.data(), count * points) || !stage.write(t.imaginary, im.data(), count * points)) return false;
    }
    if (raw.incomplete > 0)
        refuse(
            format_text("File %s ends before its last row: %llu of its rows are incomplete or missing.\nWhat is missing is zero.",
                        plan.data.c_str(), static_cast<unsigned long long>(raw.incomplete)));
    return true;
}

bool BRUU_1R_Data(Translation& t, const BrukerPlan& plan) {
    constexpr size_t words_at_a_time = size_t{1} << 16;
    const Stage stage{t, "BRUU_1R_Data"};
    const auto points = static_cast<size_t>(t.parameters.dims[0].points);
    File inputs[] = {open_for_reading(plan.data), open_for_reading(plan.imaginary)};
    if (!inputs[0]) return stage.fail(format_text("File %s cannot be opened for reading.\n", plan.data.c_str()));
    if (!stage.seek(inputs[0], 0, "data input file 1") || (inputs[1] && !stage.seek(inputs[1], 0, "data input file 2")) ||
        !stage.seek(t.real, 0, "data temporary file 1") || !stage.seek(t.imaginary, 0, "temporary file 2"))
        return false;
    const size_t most = std::min(points, words_at_a_time), bytes = t.raw.bytes();
    Buffer<char> words;
    Buffer<float> values;
    if (!words.allocate(most * bytes) || !values.allocate(most)) return stage.out_of_memory();
    const Conversions convert = conversions(t.raw);
    File* const parts[] = {&t.real, &t.imaginary};
    for (size_t part = 0; part < 2; ++part) {
        bool complete = true;
        for (size_t done = 0; done < points; done += most) {
            const size_t count = std::min(most, points - done);
            if (!inputs[part])
                std::memset(words.data(), 0, count * bytes);
            else
                complete = read_padded(inputs[part], done * bytes, words.data(), count * bytes) == count * bytes && complete;
            convert.convert(words.data(), count, values.data());
            if (!stage.write(*parts[part], values.data(), count)) return false;
        }
        if (!complete)
            refuse(format_text("File %s ends before its last point.\nWhat is missing is zero.",
                               (part == 0 ? plan.data : plan.imaginary).c_str()));
    }
    return true;
}

namespace {

// One part of tiled data, a layer of tiles at a time. A layer is contiguous in the file: it holds tile[0] planes whole.
bool write_tiled_part(const Stage& stage, const BrukerPlan& plan, File& input, const std::string& path, File& part) {
    const auto [planes, rows, columns] = plan.counts;
    const auto [tile_planes, tile_rows, tile_columns] = plan.tile;
    // Planes that are one tile each stand in order already: any number of them makes a layer.
    const bool in_order = tile_rows == rows && tile_columns == columns;
    const int64_t together = in_order ? std::clamp<int64_t>((1 << 15) / (rows * columns), 1, planes) : tile_planes;
    const auto layer = static_cast<size_t>(together * rows * columns);
    const RawWords& raw = stage.t.raw;
    const size_t bytes = raw.bytes();
    Buffer<char> words;
    Buffer<float> tiled, ordered;
    if (!words.allocate(layer * bytes) || !tiled.allocate(layer) || !ordered.allocate(layer)) return stage.out_of_memory();
    const Conversions convert = conversions(raw);
    bool complete = true;
    for (int64_t plane = 0; plane < planes; plane += together) {
        const int64_t depth = std::min(together, planes - plane);
        const auto count = static_cast<size_t>(depth * rows * columns);
        const uint64_t at = static_cast<uint64_t>(plane * rows * columns) * bytes;
        complete = read_padded(input, at, words.data(), count * bytes) == count * bytes && complete;
        convert.convert(words.data(), count, tiled.data());
        const float* from = tiled.data();
        for (int64_t r = 0; r < rows; r += tile_rows)
            for (int64_t c = 0; c < columns; c += tile_columns)
                for (int64_t p = 0; p < depth; ++p)
                    for (int64_t line = r; line < r + tile_rows; ++line, from += tile_columns)
                        std::copy(from, from + tile_columns, ordered.data() + (p * rows + line) * columns + c);
        if (!stage.write(part, ordered.data(), count)) return false;
    }
    if (!complete) refuse(format_text("File %s ends before its last point.\nWhat is missing is zero.", path.c_str()));
    return true;
}

}  // namespace

bool BRUU_2RR_Data(Translation& t, const BrukerPlan& plan) {
    const Stage stage{t, "BRUU_2RR_Data"};
    File real = open_for_reading(plan.data), imaginary = open_for_reading(plan.imaginary);
    if (!real) return stage.fail(format_text("File %s cannot be opened for reading.\n", plan.data.c_str()));
    if (!stage.seek(real, 0, "data input file 1") || (imaginary && !stage.seek(imaginary, 0, "data input file 2")) ||
        !stage.seek(t.real, 0, "data temporary file 1") || !stage.seek(t.imaginary, 0, "temporary file 2"))
        return false;
    if (!write_tiled_part(stage, plan, real, plan.data, t.real)) return false;
    if (imaginary) return write_tiled_part(stage, plan, imaginary, plan.imaginary, t.imaginary);
    const auto [planes, rows, columns] = plan.counts;
    Buffer<float> zeros;
    if (!zeros.allocate_zeroed(static_cast<size_t>(columns))) return stage.out_of_memory();
    for (int64_t row = 0; row < planes * rows; ++row)
        if (!stage.write(t.imaginary, zeros.data(), zeros.size())) return false;
    return true;
}

bool BRUUData(Translation& t) {
    const auto* plan = std::any_cast<BrukerPlan>(&t.plan);
    if (plan == nullptr) return t.fail(not_importable(t.format));
    switch (plan->kind) {
        case BrukerPlan::Kind::raw:
            return BRUUData(t, *plan);
        case BrukerPlan::Kind::processed_1d:
            return BRUU_1R_Data(t, *plan);
        case BrukerPlan::Kind::processed_nd:
            return BRUU_2RR_Data(t, *plan);
    }
    return false;
}

}  // namespace zolt
