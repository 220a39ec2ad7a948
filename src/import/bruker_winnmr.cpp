// WinNMR file sets: files of one base name, of which the parameter file may be a text of labelled records.
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "common/text.h"
#include "import/bruker.h"
#include "import/bruker_points.h"
#include "import/bruker_processed.h"
#include "import/bruker_raw.h"
#include "platform/platform.h"

namespace zolt {

namespace {

enum class Kind { fid, ser, spectrum, plane };

// One row a format: what its files are called.
struct FileSet {
    int number;
    const char* parameters;
    const char* data;
    Kind kind;
};

constexpr FileSet file_sets[] = {
    {49, "PAR", "FID", Kind::fid},     {50, "PAR", "1R", Kind::spectrum}, {51, "PAR", "SER", Kind::ser},
    {52, "PAR", "RR", Kind::plane},    {53, "DIS", "FID", Kind::fid},     {54, "DIS", "1R", Kind::spectrum},
    {55, "DIS", "SER", Kind::ser},     {56, "DIS", "RR", Kind::plane},    {57, "AQS", "FID", Kind::fid},
    {58, "AQS", "1R", Kind::spectrum}, {59, "AQS", "1R", Kind::spectrum}, {60, "AQS", "SER", Kind::ser},
    {63, "FQS", "1R", Kind::spectrum},
};

// The files of the set that a given one belongs to.
struct SetFiles {
    std::string folder, base;

    explicit SetFiles(const std::string& path) : folder(folder_of(path)), base(name_of(without_extension(path))) {}
    std::string find(const char* extension) const { return find_companion(folder, base + "." + extension); }
};

bool missing(Translation& t, const SetFiles& set, const char* extension) {
    return t.fail(format_text("Could not open %s.%s", set.base.c_str(), extension));
}

// The parameters: acquisition records, and those of the processing where the file or its twin holds them.
bool read_set_parameters(Translation& t, const SetFiles& set, const FileSet& files, Acquisition& acquisition,
                         std::optional<Processing>& processing) {
    const std::string path = set.find(files.parameters);
    if (path.empty()) return missing(t, set, files.parameters);
    LabelledFile text;
    if (!read_labelled(path, text) || text.records.empty())
        return t.fail(format_text("File %s is no text of labelled records: its layout cannot be imported.", path.c_str()));
    const std::string acquired = set.find("AQS");
    if (!read_acqus(t, files.number == 63 && !acquired.empty() ? acquired : path, acquisition)) return false;
    const std::string processed = set.find("FQS");
    processing = read_processing(processed.empty() ? path : processed);
    if (!processing) return true;
    // Processing parameters alone know frequency and width as well.
    DataSet& data = t.parameters;
    if (acquisition.sfo1 == 0) data.dims[0].sf = float_or_zero(acquisition.sfo1 = processing->sf);
    if (acquisition.sw == 0) data.dims[0].sw = float_or_zero(acquisition.sw = processing->sw);
    return true;
}

// Rows of a set's plane: what the file holds of them.
bool take_rows(Translation& t, uint64_t bytes, uint64_t row_bytes) {
    const uint64_t rows = row_bytes > 0 ? bytes / row_bytes : 0;
    if (rows < 1 || rows > INT32_MAX)
        return t.fail(format_text("File %s cannot be imported: its length is that of no row.", t.path.c_str()));
    t.parameters.dims[1].points = static_cast<int32_t>(rows);
    return true;
}

bool raw_set(Translation& t, const FileSet& files, Acquisition& acquisition, const std::optional<Processing>& processing,
             uint64_t bytes, BrukerPlan& plan) {
    if (!take_row(t, acquisition, bytes)) return false;
    take_processing_of_fid(processing, acquisition, t.parameters);
    plan.pitch = static_cast<uint64_t>(*acquisition.words) * t.raw.bytes();
    return files.kind == Kind::fid || take_rows(t, bytes, plan.pitch);
}

bool processed_set(Translation& t, const SetFiles& set, const FileSet& files, const Acquisition& acquisition,
                   const std::optional<Processing>& processing, uint64_t bytes, BrukerPlan& plan) {
    take_procs_of_spectrum(t, acquisition, processing);
    const uint64_t words = bytes / t.raw.bytes();
    const bool plane = files.kind == Kind::plane;
    const uint64_t points = plane && processing ? static_cast<uint64_t>(std::max<int64_t>(processing->points, 0)) : words;
    if (points < 1 || points > INT32_MAX || points > words)
        return t.fail(format_text("File %s cannot be imported: it holds %llu points.", plan.data.c_str(),
                                  static_cast<unsigned long long>(words)));
    t.parameters.dims[0].points = static_cast<int32_t>(points);
    if (plane) {
        if (!take_rows(t, words, points)) return false;
        plan.kind = BrukerPlan::Kind::processed_nd;
        plan.counts = plan.tile = {t.parameters.dims[1].points, 1, static_cast<int64_t>(points)};
        t.parameters.dims[1].frequency = true;
        t.parameters.process_type = "2D_MAGNITUDE";
        return true;
    }
    plan.kind = BrukerPlan::Kind::processed_1d;
    plan.imaginary = set.find("1I");
    if (plan.imaginary.empty()) refuse(format_text("Could not open %s.1i", set.base.c_str()));
    return true;
}

}  // namespace

bool WINNMR_Parm(Translation& t) {
    const auto* files =
        std::find_if(std::begin(file_sets), std::end(file_sets), [&](const FileSet& row) { return row.number == t.format.number; });
    if (files == std::end(file_sets)) return t.fail(not_importable(t.format));
    const SetFiles set(t.path);
    Acquisition acquisition;
    std::optional<Processing> processing;
    BrukerPlan plan;
    plan.data = set.find(files->data);
    if (same_word(Candidate(t.path).extension, "smx") || (plan.data.empty() && !set.find("SMX").empty()))
        return t.fail("SMX files not supported");
    if (!read_set_parameters(t, set, *files, acquisition, processing)) return false;
    if (plan.data.empty()) return missing(t, set, files->data);
    const uint64_t bytes = file_facts(plan.data).size;
    const bool raw = files->kind == Kind::fid || files->kind == Kind::ser;
    if (raw ? !raw_set(t, *files, acquisition, processing, bytes, plan)
            : !processed_set(t, set, *files, acquisition, processing, bytes, plan))
        return false;
    const std::string title = read_title(set.find("TIT"));
    if (!title.empty()) t.parameters.title = title;
    t.plan = std::move(plan);
    return true;
}

}  // namespace zolt
