// Merging of real and imaginary parts, several rows at a time.
#include "import/merge.h"

#include <algorithm>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "common/buffer.h"
#include "common/text.h"
#include "config/paths.h"
#include "datafile/native_file.h"
#include "platform/platform.h"

namespace zolt {

namespace {
// Small enough for the cache of one core: every block is written, read and looked at more than once.
constexpr uint64_t points_at_a_time = uint64_t{1} << 15;
}  // namespace

TemporaryFiles::~TemporaryFiles() {
    for (size_t i = 0; i < files_.size(); ++i) {
        files_[i].close();
        if (!paths_[i].empty()) ::unlink(paths_[i].c_str());
    }
}

bool TemporaryFiles::open(std::string& message) {
    for (size_t i = 0; i < files_.size(); ++i) {
        const std::string path = format_text("%s/CDFF%zu.TMP", scratch_folder().c_str(), i + 1);
        if (!scratch_folder().empty()) files_[i] = File(path, "w+b");
        if (!files_[i]) {
            message = format_text("Can't open temporary file %zu.  ZOLT home directory disk full???\n", i + 1);
            return false;
        }
        paths_[i] = path;
    }
    return true;
}

namespace {

uint64_t rows_of(const DataSet& parameters) {
    uint64_t rows = 1;
    for (size_t d = 1; d < 4; ++d) rows *= static_cast<uint64_t>(parameters.dims[d].points);
    return rows;
}

// Calls use(rows of complex pairs, number of rows done with them) for some rows at a time; an empty text on success.
template <class Use>
std::string each_rows(File& real, File& imaginary, const DataSet& parameters, bool swap, Use use) {
    const auto points = static_cast<uint64_t>(parameters.dims[0].points);
    const uint64_t rows = rows_of(parameters), rows_at_a_time = std::clamp<uint64_t>(points_at_a_time / points, 1, rows);
    Buffer<float> first, second;
    Buffer<Complex> pairs;
    if (!first.allocate(points * rows_at_a_time) || !second.allocate(points * rows_at_a_time) ||
        !pairs.allocate(points * rows_at_a_time))
        return format_text("There is no memory for a row of %llu points.", static_cast<unsigned long long>(points));
    if (!real.seek(0)) return "Can't move file pointer to desired location in temporary file #1.";
    if (!imaginary.seek(0)) return "Can't move file pointer to desired location in temporary file #2.";
    for (uint64_t row = 0; row < rows; row += rows_at_a_time) {
        const uint64_t count = std::min(rows_at_a_time, rows - row);
        const size_t values = count * points;
        if (!real.read(first.data(), values * sizeof(float))) return "Temporary file 1 ends before the last row.";
        if (!imaginary.read(second.data(), values * sizeof(float))) return "Temporary file 2 ends before the last row.";
        const float* re = swap ? second.data() : first.data();
        const float* im = swap ? first.data() : second.data();
        for (size_t i = 0; i < values; ++i) pairs[i] = {re[i], im[i]};
        std::string wrong = use(pairs.span().first(values), row + count);
        if (!wrong.empty()) return wrong;
    }
    return {};
}

}  // namespace

bool summarize_parts(File& real, File& imaginary, const DataSet& parameters, bool swap, DataSummary& summary) {
    return each_rows(real, imaginary, parameters, swap,
                     [&](std::span<const Complex> pairs, uint64_t) {
                         summary.add(pairs);
                         return std::string();
                     })
        .empty();
}

// Has the disk begin with what was written so far, so that the flush at the end waits for little; `block` bytes are new.
void begin_writing_back(File& output, uint64_t written, uint64_t block) {
#ifdef SYNC_FILE_RANGE_WRITE
    constexpr uint64_t step = uint64_t{1} << 21;
    if (written / step != (written - block) / step) ::sync_file_range(::fileno(output.stream()), 0, 0, SYNC_FILE_RANGE_WRITE);
#else
    (void)output, (void)written, (void)block;
#endif
}

bool merge_parts(File& real, File& imaginary, const DataSet& parameters, bool swap, File& output, std::string& message) {
    const auto points = static_cast<size_t>(parameters.dims[0].points);
    const uint64_t rows = rows_of(parameters);
    uint64_t written = 0;
    message = each_rows(real, imaginary, parameters, swap, [&](std::span<const Complex> pairs, uint64_t done) -> std::string {
        // Slices without a count in front of each are one run of points.
        const size_t together = configured_form().type == 1 ? points : pairs.size();
        for (size_t at = 0; at < pairs.size(); at += together)
            if (!write_native_slice(output, configured_form(), pairs.subspan(at, together)))
                return "The output file cannot be written.\nDisk Full ???";
        written += pairs.size_bytes();
        begin_writing_back(output, written, pairs.size_bytes());
        const bool go_on = done == rows || platform().progress(static_cast<double>(done) / static_cast<double>(rows));
        return go_on ? "" : "The import was cancelled.";
    });
    return message.empty();
}

}  // namespace zolt
