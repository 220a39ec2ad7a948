// What the tests share: a platform that records and answers, and lines typed through the real main loop.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <complex>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "state/dataset.h"

namespace zolt::test {

/// Records all that the core says; questions and dialogs are answered from `answers` ("yes", "no", "cancel", a path or
/// a text), then questions by `default_answer` and dialogs by cancelling.
class RecordingPlatform : public Platform {
public:
    std::vector<std::string> messages, questions, captions, dialogs, statuses, replies, lines, clipboards;
    std::vector<int> results, posted;
    std::deque<std::string> answers;
    Answer default_answer = Answer::no;
    int beeps = 0, redraws = 0, closes = 0;
    bool cancel_progress = false;

    void message(std::string_view caption, Icon, std::string_view text) override;
    Answer question(std::string_view caption, std::string_view text, Buttons) override;
    std::optional<std::string> file_dialog(FileChoice, std::string_view title) override;
    std::optional<std::string> input_box(std::string_view title, std::string_view, std::string_view) override;
    std::optional<std::string> process_box(std::string_view prompt, std::string_view) override;
    void status(int pane, std::string_view text) override;
    void reply(std::string_view text) override { replies.emplace_back(text); }
    void beep() override { ++beeps; }
    void wait_cursor(bool) override {}
    bool progress(double) override { return !cancel_progress; }
    void redraw() override { ++redraws; }
    void clipboard(std::string_view text) override { clipboards.emplace_back(text); }
    void character_posted(int character) override { posted.push_back(character); }
    bool message_waiting() override { return false; }
    void line_done(std::string_view text, int result, LineSource) override;
    void close_requested() override { ++closes; }

    /// Everything said in any way since the last forget(), one text a line.
    std::string said() const;
    void forget();

private:
    std::optional<std::string> next_answer();
};

/// A fresh empty folder, removed with its content at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    std::string path(const std::string& name = "") const { return name.empty() ? path_ : path_ + "/" + name; }
    /// Writes a file (making folders on the way) and returns its path.
    std::string write(const std::string& name, std::string_view content) const;

private:
    std::string path_;
};

/// The tree's folder of examples, and the configuration file that it ships.
std::string examples();
std::string shipped_ini();

std::string read_file(const std::string& path);

/// Every test of commands starts from an empty data set, default settings, a fresh root folder and an empty command line.
class CommandTest : public ::testing::Test {
protected:
    CommandTest();
    ~CommandTest() override;

    /// Types a line, presses Enter, lets the main loop run dry and returns the result of the line.
    int run(const std::string& line);
    /// Makes the vector the current data set: dimension 1, SF 400, SW 5000.
    void load(const std::vector<Complex>& points, int domain_code = domain_complex, bool frequency = false);
    std::vector<Complex> data() const;
    /// Writes a native file of the configured type with these counts into the root folder, `edit` having the last word on
    /// its parameters; returns its points.
    std::vector<Complex> write_set(const std::string& name, std::array<int32_t, 4> counts,
                                   const std::function<void(DataSet&)>& edit = {}) const;
    /// Every point of a native file of the root folder.
    std::vector<Complex> points_of(const std::string& name) const;
    bool said(const std::string& text) const { return platform_.said().find(text) != std::string::npos; }
    /// Runs a line that has to give `result`, say the text and leave the data set and all files of the root folder as they were.
    void refused(const std::string& line, const std::string& text, int result = 0);

    RecordingPlatform platform_;
    TemporaryFolder root_;
};

/// A complex series of n points that no symmetry hides an error in.
std::vector<Complex> sample_points(size_t n, unsigned seed = 1);

/// The largest distance between two series, over the largest magnitude of `want`.
double relative_error(std::span<const Complex> got, std::span<const std::complex<double>> want);

}  // namespace zolt::test
