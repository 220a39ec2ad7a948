// File C is written in place, slice by slice, and completed through a copy that replaces it.
#include "datafile/file_c.h"

#include <algorithm>
#include <utility>

#include "common/buffer.h"
#include "common/text.h"
#include "datafile/slice.h"
#include "platform/platform.h"

namespace zolt {

FileC file_c;

namespace {

NativeForm form_of(const NativeLayout& layout) { return {layout.type, layout.order}; }

// The texts of a copy's failures, which name what was copied.
struct CopyTexts {
    const char *memory, *header, *read, *write;
};

// Calls use(slice) with `count` slices of a file; an empty text on success.
template <class Use>
const char* each_slice(File& from, const NativeLayout& layout, uint64_t count, const CopyTexts& texts, Use use) {
    Buffer<Complex> slice;
    if (!slice.allocate(static_cast<size_t>((layout.slice_bytes - layout.prefix_bytes()) / sizeof(Complex)))) return texts.memory;
    for (uint64_t k = 0; k < count; ++k) {
        if (!read_native_slice(from, layout, k, slice.span())) return texts.read;
        if (!use(slice.span())) return texts.write;
    }
    return "";
}

// Header, then `count` slices of `from`, into `to`; an empty text on success.
const char* copy_slices(File& from, const NativeLayout& layout, uint64_t count, const DataRecord& header, File& to,
                        const CopyTexts& texts) {
    DataSummary summary;
    if (layout.type == 3) {
        const char* wrong = each_slice(from, layout, count, texts, [&](std::span<const Complex> slice) {
            summary.add(slice);
            return true;
        });
        if (*wrong != '\0') return wrong;
    }
    NativeLayout fresh;
    if (!write_native_header(to, form_of(layout), header, summary, fresh)) return texts.header;
    return each_slice(from, layout, count, texts,
                      [&](std::span<const Complex> slice) { return write_native_slice(to, form_of(layout), slice); });
}

// Header and layout of a file that is to become File C; false after its message.
bool take_header(File& file, const std::string& path, FileC& into) {
    const std::string wrong = read_native_header(file, file_facts(path).size, into.layout, into.header);
    if (!wrong.empty()) return fail(format_text("File %s cannot be used as File C: %s.", path.c_str(), wrong.c_str()));
    return true;
}

}  // namespace

bool create_fileC(const std::string& path) {
    if (file_c.open) return fail("File C already opened!");
    if (overwrite_refused(path)) return false;
    ReplacedFile probe;
    if (!probe.open(path)) return fail(format_text("Could not open a file called %s.\nDisk full?\nIn use ?", path.c_str()));
    FileC fresh;
    fresh.layout.type = configured_form().type;
    fresh.layout.order = configured_form().order;
    fresh.header = show;
    fresh.name = path;
    fresh.open = fresh.created = true;
    file_c = std::move(fresh);
    return true;
}

bool open_fileC(const std::string& path, int64_t k) {
    if (file_c.open) return fail("File C already opened!");
    if (overwrite_refused(path)) return false;
    FileC fresh;
    if (file_facts(path).regular) fresh.file = File(path, "r+b");
    if (!fresh.file) return fail(format_text("Could not open a file called %s.\nName correct?", path.c_str()));
    if (!take_header(fresh.file, path, fresh)) return false;
    if (fresh.header.pts1d() != show.pts1d())
        return fail("File A and File C have different sizes!\nClose File C with CC if necessary");
    if (k > show.dims[1].points) return fail("Requested slice is past the end of the 2D slices.");
    fresh.slice = k >= 0 ? k : fresh.header.dims[1].points;
    fresh.name = path;
    fresh.open = true;
    file_c = std::move(fresh);
    return true;
}

namespace {

bool write_slice(std::span<const Complex> points) {
    return file_c.file.seek(file_c.layout.slice_offset(static_cast<uint64_t>(file_c.slice))) &&
           write_native_slice(file_c.file, form_of(file_c.layout), points) && std::fflush(file_c.file.stream()) == 0;
}

// Header and first slice of a created File C, in one step in place of what was there.
bool begin_file(std::span<const Complex> points) {
    ReplacedFile file;
    DataSummary summary;
    summary.add(points);
    const NativeForm form = form_of(file_c.layout);
    if (!file.open(file_c.name) || !write_native_header(file, form, file_c.header, summary, file_c.layout) ||
        !write_native_slice(file, form, points) || !file.commit_open(file_c.file))
        return false;
    file_c.created = false;
    return true;
}

}  // namespace

bool write_slice_to_fileC() {
    if (!file_c.open) return fail("File C is not open.\nOpen one with OC or S2.");
    const auto points = show.cvNMRdata();
    if (static_cast<int64_t>(points.size()) != file_c.header.pts1d())
        return fail("File A and File C have different sizes!\nClose File C with CC if necessary");
    if (!(file_c.created ? begin_file(points) : write_slice(points))) return fail("Error writing slice to File C");
    ++file_c.slice;
    return true;
}

bool close_fileC() {
    if (!file_c.open) return fail("File C is not open.");
    FileC closing = std::exchange(file_c, FileC());
    if (closing.created) return true;  // nothing was written
    const CopyTexts texts = {"Failed to get necessary memory in close_fileC", "Trouble writing header information",
                             "Failed to read a slice in close_fileC", "Failed to write a slice in close_fileC"};
    // A tailer that stood behind the slices of an opened file is no slice.
    const auto listed = static_cast<uint64_t>(std::max<int64_t>(closing.slice, closing.header.dims[1].points));
    const uint64_t count = std::min(closing.layout.slices_in(file_facts(closing.name).size), listed);
    closing.header.dims[1].points = static_cast<int32_t>(count);
    closing.header.dims[2].points = closing.header.dims[3].points = 1;
    ReplacedFile temporary;
    if (!temporary.open(closing.name)) return fail("Could not open file Temp file to close FileC.");
    const char* wrong = copy_slices(closing.file, closing.layout, count, closing.header, temporary, texts);
    if (*wrong != '\0') return fail(wrong);
    if (!closing.file.close()) return fail("Could Not Close FileC");
    return temporary.commit() || fail("Could Not Copy Temp File back to FileC");
}

bool UpdateHeaderA() {
    const CopyTexts texts = {"Failed to get necessary memory in UpdateHeaderA", "Trouble writing header in UpdateHeaderA",
                             "Failed to read a slice in UpdateHeaderA", "Failed to write a slice in UpdateHeaderA"};
    const uint64_t size = file_facts(show.file_a).size;
    File file = open_for_reading(show.file_a);
    if (!file) return fail("Could not open File A to do UpdateHeaderA.");
    NativeLayout layout;
    DataRecord old;
    const std::string unreadable = read_native_header(file, size, layout, old);
    if (!unreadable.empty()) return fail("Could not open File A to do UpdateHeaderA.");
    ReplacedFile temporary;
    if (!temporary.open(show.file_a)) return fail("Could not open Temp file to do UpdateHeaderA.");
    // Counts, domain and pending state are those of the slices in the file, not of the one being worked on.
    const std::string tailer = read_native_tailer(file, size, layout, old);
    const DataRecord header = with_state_of_slices(show, old);
    const char* wrong = copy_slices(file, layout, std::min(old.all_slices(), layout.slices_in(size)), header, temporary, texts);
    if (*wrong != '\0') return fail(wrong);
    const bool written = write_native_end(temporary, form_of(layout), header, tailer) && temporary.commit();
    return written || fail("Could Not Copy Temp File back to FileA in UpdateHeaderA");
}

}  // namespace zolt
