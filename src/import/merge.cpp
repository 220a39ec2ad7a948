// Merging of real and imaginary parts, straight from the mapped temporary files.
#include "import/merge.h"

#include <algorithm>
#include <array>
#include <vector>

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/text.h"
#include "config/paths.h"
#include "datafile/native_file.h"
#include "platform/platform.h"

namespace zolt {

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
        // Translators write row by row; the disk gets larger pieces.
        std::setvbuf(files_[i].stream(), nullptr, _IOFBF, size_t{1} << 18);
    }
    return true;
}

namespace {

// The values of a temporary file, mapped: they were written a moment ago and are still in memory.
class Part {
public:
    Part() = default;
    ~Part() {
        if (values_ != nullptr) ::munmap(values_, bytes_);
    }
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;

    // False with the message when the file does not hold `count` values.
    bool map(File& file, int number, uint64_t count, std::string& message) {
        const int descriptor = ::fileno(file.stream());
        struct stat facts = {};
        if (std::fflush(file.stream()) != 0 || ::fstat(descriptor, &facts) != 0) {
            message = format_text("Can't move file pointer to desired location in temporary file #%d.", number);
        } else if (bytes_ = count * sizeof(float); static_cast<uint64_t>(facts.st_size) / sizeof(float) < count) {
            message = format_text("Temporary file %d ends before the last row.", number);
        } else if (void* at = ::mmap(nullptr, bytes_, PROT_READ, MAP_SHARED, descriptor, 0); at != MAP_FAILED) {
            values_ = at;
        } else {
            message = format_text("Memory Error for temp file #%d.", number);
        }
        return values_ != nullptr;
    }
    const float* values() const { return static_cast<const float*>(values_); }

private:
    void* values_ = nullptr;
    size_t bytes_ = 0;
};

// Both parts, all rows of all planes and cubes behind one another.
struct Parts {
    Part first, second;
    const float *re = nullptr, *im = nullptr;
    uint64_t row_points = 0, points = 1;

    bool map(File& real, File& imaginary, const DataSet& parameters, bool swap, std::string& message) {
        row_points = static_cast<uint64_t>(parameters.dims[0].points);
        for (const Dimension& dimension : parameters.dims)
            if (__builtin_mul_overflow(points, static_cast<uint64_t>(dimension.points), &points)) points = UINT64_MAX;
        if (!first.map(real, 1, points, message) || !second.map(imaginary, 2, points, message)) return false;
        re = swap ? second.values() : first.values();
        im = swap ? first.values() : second.values();
        return true;
    }
};

// Several ranges side by side, so that no comparison waits for the one before it.
void take_range(const float* values, uint64_t count, float& low, float& high) {
    constexpr uint64_t lanes = 16;
    std::array<float, lanes> lows, highs;
    lows.fill(values[0]);
    highs.fill(values[0]);
    uint64_t i = 0;
    for (; i + lanes <= count; i += lanes)
        for (uint64_t k = 0; k < lanes; ++k) {
            lows[k] = std::min(lows[k], values[i + k]);
            highs[k] = std::max(highs[k], values[i + k]);
        }
    low = *std::min_element(lows.begin(), lows.end());
    high = *std::max_element(highs.begin(), highs.end());
    for (; i < count; ++i) {
        low = std::min(low, values[i]);
        high = std::max(high, values[i]);
    }
}

}  // namespace

bool summarize_parts(File& real, File& imaginary, const DataSet& parameters, bool swap, DataSummary& summary,
                     std::string& message) {
    Parts parts;
    if (!parts.map(real, imaginary, parameters, swap, message)) return false;
    const uint64_t count = parts.points;
    float low_re = 0, high_re = 0, low_im = 0, high_im = 0;
    take_range(parts.re, count, low_re, high_re);
    take_range(parts.im, count, low_im, high_im);
    summary.first = {parts.re[0], parts.im[0]};
    summary.last = {parts.re[count - 1], parts.im[count - 1]};
    summary.smallest = {low_re, low_im};
    summary.largest = {high_re, high_im};
    summary.empty = false;
    return true;
}

bool merge_parts(File& real, File& imaginary, const DataSet& parameters, bool swap, File& output, std::string& message) {
    Parts parts;
    if (!parts.map(real, imaginary, parameters, swap, message)) return false;
    const NativeForm form = configured_form();
    constexpr uint64_t points_at_a_time = uint64_t{1} << 15, points_between_reports = uint64_t{1} << 20;
    std::vector<Complex> pairs(std::min(parts.points, points_at_a_time));
    // Only type 1 has something between its slices; for the others all rows are one long one.
    const uint64_t row_points = form.type == 1 ? parts.row_points : parts.points;
    for (uint64_t done = 0, count = 0; done < parts.points; done += count) {
        const uint64_t left_of_row = row_points - done % row_points;
        count = std::min<uint64_t>(pairs.size(), left_of_row);
        for (size_t i = 0; i < count; ++i) pairs[i] = {parts.re[done + i], parts.im[done + i]};
        if ((left_of_row == row_points && !begin_native_slice(output, form, row_points)) ||
            !write_native_points(output, form, {pairs.data(), count})) {
            message = "The output file cannot be written.\nDisk Full ???";
            return false;
        }
        const bool report = done / points_between_reports != (done + count) / points_between_reports;
        if (report && !platform().progress(static_cast<double>(done) / static_cast<double>(parts.points))) {
            message = "The import was cancelled.";
            return false;
        }
    }
    return true;
}

}  // namespace zolt
