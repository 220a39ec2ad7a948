// The recording platform, temporary folders and typed lines of the tests.
#include "support.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "app/command_line.h"
#include "app/main_loop.h"
#include "app/startup.h"
#include "common/text.h"
#include "config/paths.h"
#include "datafile/native_file.h"
#include "display/view.h"
#include "state/session.h"

namespace zolt::test {

namespace fs = std::filesystem;

std::optional<std::string> RecordingPlatform::next_answer() {
    if (answers.empty()) return std::nullopt;
    std::string answer = answers.front();
    answers.pop_front();
    return answer;
}

void RecordingPlatform::message(std::string_view caption, Icon, std::string_view text) {
    captions.emplace_back(caption);
    messages.emplace_back(text);
}

Answer RecordingPlatform::question(std::string_view caption, std::string_view text, Buttons) {
    captions.emplace_back(caption);
    questions.emplace_back(text);
    const auto answer = next_answer();
    if (!answer) return default_answer;
    return *answer == "yes" ? Answer::yes : *answer == "cancel" ? Answer::cancel : Answer::no;
}

std::optional<std::string> RecordingPlatform::file_dialog(FileChoice, std::string_view title) {
    dialogs.emplace_back(title);
    return next_answer();
}

std::optional<std::string> RecordingPlatform::input_box(std::string_view title, std::string_view, std::string_view) {
    dialogs.emplace_back(title);
    return next_answer();
}

std::optional<std::string> RecordingPlatform::process_box(std::string_view prompt, std::string_view) {
    dialogs.emplace_back(prompt);
    return next_answer();
}

void RecordingPlatform::status(int pane, std::string_view text) {
    statuses.push_back(format_text("%d ", pane) + std::string(text));
}

void RecordingPlatform::line_done(std::string_view text, int result, LineSource) {
    lines.emplace_back(text);
    results.push_back(result);
}

std::string RecordingPlatform::said() const {
    std::string all;
    for (const auto* list : {&messages, &questions, &replies, &statuses})
        for (const std::string& text : *list) all += text + "\n";
    return all;
}

void RecordingPlatform::forget() {
    for (auto* list : {&messages, &questions, &captions, &dialogs, &statuses, &replies}) list->clear();
}

TemporaryFolder::TemporaryFolder() {
    path_ = (fs::temp_directory_path() / "zolt-test-XXXXXX").string();
    if (mkdtemp(path_.data()) == nullptr) std::abort();
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string TemporaryFolder::write(const std::string& name, std::string_view content) const {
    const std::string file = path(name);
    std::error_code ignored;
    fs::create_directories(fs::path(file).parent_path(), ignored);
    std::ofstream(file, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
    return file;
}

std::string examples() { return ZOLT_EXAMPLES; }

std::string shipped_ini() { return ZOLT_INI; }

std::string read_file(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

CommandTest::CommandTest() {
    set_platform(&platform_);
    show = DataSet();
    session = Session();
    settings = Settings();
    reset_main_loop();
    ResetCommandText();
    root_.write("ZOLT.INI", "");
    // Files that a test names without a folder belong in its own.
    std::error_code ignored;
    fs::current_path(root_.path(), ignored);
    start_up(root_.path(), "");
}

CommandTest::~CommandTest() {
    shut_down();
    show = DataSet();
    view_of(show) = {};
    set_platform(nullptr);
    std::error_code ignored;
    fs::current_path("/", ignored);
}

int CommandTest::run(const std::string& line) {
    const size_t before = platform_.results.size();
    for (const char c : line) post_character(static_cast<unsigned char>(c), LineSource::user);
    post_character(13, LineSource::user);
    run_main_loop();
    return platform_.results.size() > before ? platform_.results[before] : -1;
}

void CommandTest::load(const std::vector<Complex>& points, int domain_code, bool frequency) {
    show = DataSet();
    ASSERT_TRUE(show.store.allocate(1, points.size()));
    std::copy(points.begin(), points.end(), show.store.all().begin());
    for (Dimension& d : show.dims) d.points = 1;
    show.dims[0].points = static_cast<int32_t>(points.size());
    show.dims[0].sf = 400;
    show.dims[0].sw = 5000;
    show.dims[0].domain_code = domain_code;
    show.dims[0].frequency = frequency;
    show.file_a = root_.path("a.zolt");
    show.loaded = true;
}

std::vector<Complex> CommandTest::data() const {
    const auto points = show.cvNMRdata();
    return {points.begin(), points.end()};
}

std::vector<Complex> CommandTest::write_set(const std::string& name, std::array<int32_t, 4> counts,
                                            const std::function<void(DataSet&)>& edit) const {
    DataSet data;
    for (size_t d = 0; d < 4; ++d) data.dims[d].points = counts[d];
    const auto points = sample_points(static_cast<size_t>(counts[0]) * data.all_slices());
    EXPECT_TRUE(data.store.allocate(data.all_slices(), static_cast<size_t>(counts[0])));
    std::copy(points.begin(), points.end(), data.store.all().begin());
    if (edit) edit(data);
    File file(root_.path(name), "wb");
    NativeLayout layout;
    EXPECT_TRUE(write_native_file(file, data, layout) && file.close());
    return points;
}

std::vector<Complex> CommandTest::points_of(const std::string& name) const {
    const uint64_t size = file_facts(root_.path(name)).size;
    File file = open_for_reading(root_.path(name));
    NativeLayout layout;
    DataRecord record;
    EXPECT_EQ(read_native_header(file, size, layout, record), "");
    const auto points = static_cast<size_t>(record.pts1d());
    std::vector<Complex> all(points * layout.slices_in(size));
    if (record.all_slices() < layout.slices_in(size)) all.resize(points * record.all_slices());
    for (size_t k = 0; k * points < all.size(); ++k)
        EXPECT_TRUE(read_native_slice(file, layout, k, std::span(all).subspan(k * points, points)));
    return all;
}

void CommandTest::refused(const std::string& line, const std::string& text, int result) {
    const auto files = [&] {
        std::string all;
        for (const auto& entry : fs::recursive_directory_iterator(root_.path()))
            if (entry.is_regular_file()) all += entry.path().string() + read_file(entry.path());
        return all;
    };
    const std::string files_before = files();
    const DataRecord record = show;
    const std::vector<Complex> points = data();
    platform_.forget();
    EXPECT_EQ(run(line), result) << line;
    EXPECT_TRUE(said(text)) << line << " said " << platform_.said();
    EXPECT_TRUE(record == show && points == data() && files_before == files()) << line;
}

std::vector<Complex> sample_points(size_t n, unsigned seed) {
    std::mt19937 generator(seed);
    std::normal_distribution<float> normal;
    std::vector<Complex> points(n);
    for (Complex& point : points) {
        const float real = normal(generator);
        point = {real, normal(generator)};
    }
    return points;
}

double relative_error(std::span<const Complex> got, std::span<const std::complex<double>> want) {
    if (got.size() != want.size()) return 1e300;
    double worst = 0, largest = 1e-300;
    for (size_t i = 0; i < got.size(); ++i) {
        worst = std::max(worst, std::abs(std::complex<double>(got[i]) - want[i]));
        largest = std::max(largest, std::abs(want[i]));
    }
    return worst / largest;
}

}  // namespace zolt::test
