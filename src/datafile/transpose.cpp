// TD for 2D data: blocks of columns are gathered from sequential passes over the file and written as rows.
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

Pairing pairing_of(const std::string& process_type) {
    for (const char* key : {"2D_TPPI", "2D_HYPERCOMPLEX", "2D_ECHOANTIECHO", "2D_STATESTPPI"})
        if (process_type == key) return Pairing::paired;
    return Pairing::plain;
}

DataRecord transposed_record(const DataRecord& record, Pairing pairing) {
    DataRecord out = record;
    std::swap(out.dims[0], out.dims[1]);
    if (pairing == Pairing::paired) {
        out.dims[0].points /= 2;
        out.dims[1].points *= 2;
    }
    out.slice = 0;
    return out;
}

namespace {

// Rows of the output that come from the points [first, first + count) of every slice of the input.
class Gatherer {
public:
    Gatherer(File& in, const NativeLayout& layout, const DataRecord& record, Pairing pairing)
        : in_(in),
          layout_(layout),
          paired_(pairing == Pairing::paired),
          points_(static_cast<size_t>(record.dims[0].points)),
          slices_(static_cast<size_t>(record.dims[1].points)) {}

    /// Columns gathered at a time so that no more than `memory` bytes are held.
    size_t columns_for(uint64_t memory) const {
        return static_cast<size_t>(std::clamp<uint64_t>(memory / (sizeof(Complex) * slices_), 1, points_));
    }

    bool allocate(size_t columns) { return block_.allocate(columns * slices_) && slice_.allocate(points_); }

    /// One sequential pass over the file; an empty text on success.
    std::string gather(size_t first, size_t count) {
        for (size_t k = 0; k < slices_; ++k) {
            if (!read_native_slice(in_, layout_, k, slice_.span()))
                return format_text("Could not get slice number %ld", static_cast<long>(k));
            for (size_t i = 0; i < count; ++i) put(k, i, slice_[first + i]);
        }
        return {};
    }

    /// Row r of the gathered ones: one a column, or two for pairs.
    std::span<const Complex> row(size_t r) const { return block_.span().subspan(r * row_points(), row_points()); }
    size_t rows(size_t count) const { return paired_ ? 2 * count : count; }

private:
    size_t row_points() const { return paired_ ? slices_ / 2 : slices_; }

    void put(size_t k, size_t i, Complex value) {
        if (!paired_) {
            block_[i * slices_ + k] = value;
            return;
        }
        // Slice A gives the real parts of both rows of the pair, slice B the imaginary ones.
        Complex& of_real = block_[2 * i * row_points() + k / 2];
        Complex& of_imaginary = block_[(2 * i + 1) * row_points() + k / 2];
        if (k % 2 == 0) {
            of_real.real(value.real());
            of_imaginary.real(value.imag());
        } else {
            of_real.imag(value.real());
            of_imaginary.imag(value.imag());
        }
    }

    File& in_;
    const NativeLayout& layout_;
    bool paired_;
    size_t points_, slices_;
    Buffer<Complex> block_, slice_;
};

// Calls use(row) with every row of the output in order; an empty text on success.
template <class Use>
std::string each_row(Gatherer& gatherer, size_t points, size_t columns, Use use) {
    for (size_t first = 0; first < points; first += columns) {
        const size_t count = std::min(columns, points - first);
        std::string wrong = gatherer.gather(first, count);
        if (!wrong.empty()) return wrong;
        for (size_t r = 0; r < gatherer.rows(count); ++r)
            if (!use(gatherer.row(r))) return "The transposed file cannot be written.\nDisk Full ???";
        if (first + count < points && !platform().progress(static_cast<double>(first + count) / static_cast<double>(points)))
            return "TD was cancelled.";
    }
    return {};
}

}  // namespace

std::string transpose_file(File& in, const NativeLayout& layout, const DataRecord& record, Pairing pairing, uint64_t memory,
                           File& out) {
    const auto points = static_cast<size_t>(record.dims[0].points);
    Gatherer gatherer(in, layout, record, pairing);
    const size_t columns = gatherer.columns_for(memory);
    if (!gatherer.allocate(columns)) return "Failed to get ** memory in TD_2to1 module of TD";

    const NativeForm form = configured_form();
    DataSummary summary;
    std::string wrong;
    if (form.type == 3)
        wrong = each_row(gatherer, points, columns, [&](std::span<const Complex> row) {
            summary.add(row);
            return true;
        });
    if (!wrong.empty()) return wrong;
    const DataRecord header = transposed_record(record, pairing);
    NativeLayout written;
    if (!write_native_header(out, form, header, summary, written)) return "The transposed file cannot be written.\nDisk Full ???";
    wrong = each_row(gatherer, points, columns, [&](std::span<const Complex> row) { return write_native_slice(out, form, row); });
    if (!wrong.empty()) return wrong;
    return write_native_tailer(out, form, header) ? "" : "The transposed file cannot be written.\nDisk Full ???";
}

namespace {

constexpr uint64_t transposition_memory = uint64_t{256} << 20;

// File A's name with the extension .td.
std::string usual_output() {
    const std::string name = name_of(show.file_a);
    const size_t dot = name.find_last_of('.');
    return folder_of(show.file_a) + "/" + name.substr(0, dot == 0 ? std::string::npos : dot) + ".td";
}

int transpose_to(File& in, const NativeLayout& layout, const DataRecord& of_file, const std::string& path) {
    const Pairing pairing = pairing_of(show.process_type);
    if (pairing == Pairing::paired && show.dims[1].points % 2 != 0)
        return refuse("The slices of " + show.process_type + " data stand in pairs, but their number is odd.");
    if (path == show.file_a) return refuse("TD reads File A while it writes.\nGive another name.");
    if (overwrite_refused(path) || !may_replace(path)) return 0;
    ReplacedFile out;
    if (!out.open(path)) return refuse(format_text("Could not open File: %s", path.c_str()));
    const DataRecord record = with_state_of_slices(show, of_file);
    const std::string wrong = transpose_file(in, layout, record, pairing, transposition_memory, out);
    if (!wrong.empty()) return refuse(wrong);
    if (!out.commit()) return refuse(format_text("Could not open File: %s", path.c_str()));
    platform().reply(format_text("  - Transposed to %s", path.c_str()));
    return 1;
}

}  // namespace

int cmd_transpose(Arguments& args) {
    if (args.ask_usage()) return show_reply("TD or TRANSPOSE [name]");
    if (CurrentArrayedLevel() != 0) return refuse(format_text("TD not supported in Arrayed mode level %d", CurrentArrayedLevel()));
    if (show.file_a.empty()) return refuse("TD operation must be on the current File A.");
    File in = open_for_reading(show.file_a);
    NativeLayout layout;
    DataRecord record;
    if (!in || !read_native_header(in, file_facts(show.file_a).size, layout, record).empty())
        return refuse(format_text("Could not open file A - %s\nfor TD operation.", show.file_a.c_str()));
    if (record.dims[1].points < 2) return refuse("Not a 2D file");
    if (record.dims[2].points > 1 || record.dims[3].points > 1)
        return refuse("TD of 3D and 4D data is planned, but not there yet.");
    if (file_c.open) return refuse("File C is already opened!\nClose it before doing TD.");
    read_native_tailer(in, file_facts(show.file_a).size, layout, record);
    const std::string name = args.next();
    const WaitCursor wait;
    return transpose_to(in, layout, record, name.empty() ? usual_output() : absolute_path(typed_path(name)));
}

}  // namespace zolt
