// TD: strips of columns are gathered from sequential passes over the file and written as rows.
#include "datafile/transpose.h"

#include <algorithm>
#include <utility>

#include "common/arguments.h"
#include "common/buffer.h"
#include "common/text.h"
#include "datafile/file_c.h"
#include "datafile/file_commands.h"
#include "datafile/slice.h"
#include "platform/platform.h"
#include "state/dataset.h"

namespace zolt {

Pairing pairing_of(const std::string& process_type) { return has_pairs(process_type) ? Pairing::paired : Pairing::plain; }

DataRecord transposed_record(const DataRecord& record, int other, Pairing pairing) {
    DataRecord out = record;
    std::swap(out.dims[0], out.dims[static_cast<size_t>(other - 1)]);
    if (pairing == Pairing::paired) {
        out.dims[0].points /= 2;
        out.dims[1].points *= 2;
    }
    out.slice = out.slice_3 = out.slice_4 = 0;
    return out;
}

namespace {

// The data as an array [outer][other][middle][points], of which points and other are exchanged.
struct Shape {
    Shape(const DataRecord& record, int other_dimension, Pairing pairing) : paired(pairing == Pairing::paired) {
        const auto count = [&](size_t d) { return static_cast<size_t>(record.dims[d].points); };
        const auto exchanged = static_cast<size_t>(other_dimension - 1);
        points = count(0);
        other = count(exchanged);
        for (size_t d = 1; d < 4; ++d) (d < exchanged ? middle : outer) *= d == exchanged ? 1 : count(d);
    }
    size_t row(size_t o, size_t i, size_t m) const { return (o * other + i) * middle + m; }
    size_t rows() const { return outer * other * middle; }

    size_t points = 1, other = 1, middle = 1, outer = 1;
    bool paired;
};

constexpr const char* not_written = "The transposed file cannot be written.\nDisk Full ???";
constexpr size_t staging_bytes = size_t{8} << 20;
constexpr size_t most_staged = 32;  // slices: 32 points side by side are written at a time

// The rows of the output that come from some columns of one outer part of the input.
class Strip {
public:
    Strip(File& in, const NativeLayout& layout, const Shape& shape) : in_(in), layout_(layout), shape_(shape) {}

    bool allocate(size_t columns) {
        const size_t one = columns * shape_.middle;
        staged_ = std::clamp<size_t>(staging_bytes / (one * sizeof(Complex)), 1, std::min(most_staged, shape_.other));
        return block_.allocate(one * shape_.other) && staging_.allocate(staged_ * one);
    }

    /// One sequential pass over the outer part; an empty text on success.
    std::string gather(size_t outer, size_t first, size_t count) {
        for (size_t i = 0; i < shape_.other; i += staged_) {
            const size_t some = std::min(staged_, shape_.other - i);
            for (size_t t = 0; t < some; ++t)
                for (size_t m = 0; m < shape_.middle; ++m) {
                    const size_t row = shape_.row(outer, i + t, m);
                    const auto to = staging_.span().subspan((t * shape_.middle + m) * count, count);
                    if (!read_native_slice(in_, layout_, row, to, first))
                        return format_text("Could not get slice number %ld", static_cast<long>(row));
                }
            place(i, some, count);
        }
        return {};
    }

    /// The rows of the output that `count` columns give, one after another.
    std::span<const Complex> rows(size_t count) const { return block_.span().first(count * shape_.middle * shape_.other); }
    size_t row_points() const { return shape_.paired ? shape_.other / 2 : shape_.other; }

private:
    // Columns of `some` staged slices, the first of them number i, into the rows.
    void place(size_t i, size_t some, size_t count) {
        for (size_t c = 0; c < count; ++c)
            for (size_t m = 0; m < shape_.middle; ++m)
                for (size_t t = 0; t < some; ++t) {
                    const Complex value = staging_[(t * shape_.middle + m) * count + c];
                    if (shape_.paired)
                        place_pair(i + t, c, value);
                    else
                        block_[(c * shape_.middle + m) * shape_.other + i + t] = value;
                }
    }

    // Slice A gives the real parts of both rows of the pair, slice B the imaginary ones.
    void place_pair(size_t slice, size_t column, Complex value) {
        Complex& of_real = block_[2 * column * row_points() + slice / 2];
        Complex& of_imaginary = block_[(2 * column + 1) * row_points() + slice / 2];
        if (slice % 2 == 0) {
            of_real.real(value.real());
            of_imaginary.real(value.imag());
        } else {
            of_real.imag(value.real());
            of_imaginary.imag(value.imag());
        }
    }

    File& in_;
    const NativeLayout& layout_;
    const Shape& shape_;
    size_t staged_ = 1;
    Buffer<Complex> block_, staging_;
};

// What the header says of the transposed points: extremes do not depend on their order, but parts of pairs change places.
std::string summarize(File& in, const NativeLayout& layout, const Shape& shape, DataSummary& summary) {
    Buffer<Complex> row;
    if (!row.allocate(shape.points)) return "Not enough memory for TD in TD";
    DataSummary even, odd;
    for (size_t k = 0; k < shape.rows(); ++k) {
        if (!read_native_slice(in, layout, k, row.span()))
            return format_text("Could not get slice number %ld", static_cast<long>(k));
        (k % 2 == 0 ? even : odd).add(row.span());
    }
    const auto both = [](Complex x, Complex y, auto pick) { return Complex(pick(x.real(), y.real()), pick(x.imag(), y.imag())); };
    const auto least = [](float x, float y) { return std::min(x, y); };
    const auto most = [](float x, float y) { return std::max(x, y); };
    summary.empty = false;
    if (shape.paired) {
        summary.first = {even.first.real(), odd.first.real()};
        summary.last = {even.last.imag(), odd.last.imag()};
        summary.smallest = {least(even.smallest.real(), even.smallest.imag()), least(odd.smallest.real(), odd.smallest.imag())};
        summary.largest = {most(even.largest.real(), even.largest.imag()), most(odd.largest.real(), odd.largest.imag())};
    } else {
        if (odd.empty) odd = even;
        summary.first = even.first;
        summary.last = shape.rows() % 2 == 0 ? odd.last : even.last;
        summary.smallest = both(even.smallest, odd.smallest, least);
        summary.largest = both(even.largest, odd.largest, most);
    }
    return {};
}

std::string write_transposed(Strip& strip, const Shape& shape, size_t columns, NativeForm form, File& out) {
    for (size_t o = 0; o < shape.outer; ++o)
        for (size_t first = 0; first < shape.points; first += columns) {
            const size_t count = std::min(columns, shape.points - first);
            std::string wrong = strip.gather(o, first, count);
            if (!wrong.empty()) return wrong;
            const auto rows = strip.rows(count);
            for (size_t at = 0; at < rows.size(); at += strip.row_points())
                if (!write_native_slice(out, form, rows.subspan(at, strip.row_points()))) return not_written;
            const size_t done = o * shape.points + first + count, all = shape.outer * shape.points;
            if (done < all && !platform().progress(static_cast<double>(done) / static_cast<double>(all)))
                return "TD was cancelled.";
        }
    return {};
}

constexpr const char* no_memory[] = {"Failed to get ** memory in TD_2to1 module of TD",
                                     "Failed to get ** memory in TD_3to1 module of TD", "Failed to get ** memory in TD"};
constexpr const char* no_memory_4d[] = {"Failed to get ** memory in TD_4D_2to1 module of TD",
                                        "Failed to get ** memory in TD_4D_3to1 module of TD", "Failed to get ** memory in TD"};

}  // namespace

std::string transpose_file(File& in, const NativeLayout& layout, const DataRecord& record, int other, Pairing pairing,
                           uint64_t memory, File& out) {
    const Shape shape(record, other, pairing);
    const uint64_t column_bytes = uint64_t{sizeof(Complex)} * shape.other * shape.middle;
    const auto columns = static_cast<size_t>(std::clamp<uint64_t>(memory / column_bytes, 1, shape.points));
    Strip strip(in, layout, shape);
    if (!strip.allocate(columns)) {
        if (shape.paired) return "Failed to get ** memory in PairWise TD";
        return (record.dims[3].points > 1 ? no_memory_4d : no_memory)[other - 2];
    }
    const NativeForm form = configured_form();
    DataSummary summary;
    std::string wrong = form.type == 3 ? summarize(in, layout, shape, summary) : std::string();
    if (!wrong.empty()) return wrong;
    const DataRecord header = transposed_record(record, other, pairing);
    NativeLayout written;
    if (!write_native_header(out, form, header, summary, written)) return not_written;
    wrong = write_transposed(strip, shape, columns, form, out);
    if (!wrong.empty()) return wrong;
    return write_native_end(out, form, header) ? "" : not_written;
}

namespace {

constexpr uint64_t transposition_memory = uint64_t{256} << 20;

// The dimension that a word names: 2to1, 3to1, 4to1; 0 for other words.
int dimension_of(std::string_view word) {
    static constexpr const char* words[] = {"2to1", "3to1", "4to1"};
    for (int d = 2; d <= 4; ++d)
        if (same_word(word, words[d - 2])) return d;
    return 0;
}

int transpose_to(File& in, const NativeLayout& layout, const DataRecord& of_file, int other, const std::string& path) {
    const bool plane = of_file.dims[2].points == 1 && of_file.dims[3].points == 1;
    const Pairing pairing = plane ? pairing_of(show.process_type) : Pairing::plain;
    if (of_file.dims[static_cast<size_t>(other - 1)].points < 2)
        return refuse(format_text("%s has only one point along dimension %d.", show.file_a.c_str(), other));
    if (pairing == Pairing::paired && of_file.dims[1].points % 2 != 0)
        return refuse("The slices of " + show.process_type + " data stand in pairs, but their number is odd.");
    if (path == show.file_a) return refuse("TD reads File A while it writes.\nGive another name.");
    if (overwrite_refused(path) || !may_replace(path)) return 0;
    ReplacedFile out;
    if (!out.open(path)) return refuse(format_text("Could not open File: %s", path.c_str()));
    const DataRecord record = with_state_of_slices(show, of_file);
    const std::string wrong = transpose_file(in, layout, record, other, pairing, transposition_memory, out);
    if (!wrong.empty()) return refuse(wrong);
    if (!out.commit()) return refuse(format_text("Could not open File: %s", path.c_str()));
    platform().reply(format_text("  - Transposed to %s", path.c_str()));
    return 1;
}

}  // namespace

int cmd_transpose(Arguments& args) {
    if (args.ask_usage()) return show_reply("TD or TRANSPOSE [name] [2to1 / 3to1 / 4to1]");
    if (CurrentArrayedLevel() != 0) return refuse(format_text("TD not supported in Arrayed mode level %d", CurrentArrayedLevel()));
    if (show.file_a.empty()) return refuse("TD operation must be on the current File A.");
    File in = open_for_reading(show.file_a);
    const uint64_t size = file_facts(show.file_a).size;
    NativeLayout layout;
    DataRecord record;
    if (!in || !read_native_header(in, size, layout, record).empty())
        return refuse(format_text("Could not open file A - %s\nfor TD operation.", show.file_a.c_str()));
    if (record.dims[1].points < 2 && record.dims[2].points < 2 && record.dims[3].points < 2) return refuse("Not a 2D file");
    if (file_c.open) return refuse("File C is already opened!\nClose it before doing TD.");
    const uint64_t held = layout.slices_in(size);
    if (held < record.all_slices()) return refuse(format_text("Could not get slice number %ld", static_cast<long>(held)));
    read_native_tailer(in, size, layout, record);
    std::string name = args.next(), word = args.next();
    if (dimension_of(name) != 0) std::swap(name, word);
    // Of 3D data dimension 3 comes to the front, of 2D and 4D data dimension 2.
    int other = dimension_of(word);
    if (other == 0) other = record.dims[2].points > 1 && record.dims[3].points < 2 ? 3 : 2;
    const WaitCursor wait;
    return transpose_to(in, layout, record, other,
                        name.empty() ? without_extension(show.file_a) + ".td" : absolute_path(typed_path(name)));
}

}  // namespace zolt
