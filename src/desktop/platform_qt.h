// The window's side of the platform door.
#pragma once

#include <QElapsedTimer>
#include <string>

#include "front/answers.h"
#include "platform/platform.h"

namespace zolt {

class MainWindow;

class QtPlatform : public Platform {
public:
    MainWindow* window = nullptr;
    Answers answers;
    bool batch = false;   ///< nobody is asked: answers come from the options alone
    bool prints = false;  ///< events go to standard output, too
    bool all_lines_worked = true;
    bool cancelled = false;    ///< the user wants the long work to end
    bool interrupted = false;  ///< something of the window's waits: the main loop is to return
    QElapsedTimer turn;        ///< since the main loop was entered

    void message(std::string_view caption, Icon icon, std::string_view text) override;
    Answer question(std::string_view caption, std::string_view text, Buttons buttons) override;
    std::optional<std::string> file_dialog(FileChoice choice, std::string_view title) override;
    std::optional<std::string> input_box(std::string_view title, std::string_view prompt, std::string_view initial) override;
    std::optional<std::string> process_box(std::string_view prompt, std::string_view initial) override;
    void status(int pane, std::string_view text) override;
    void reply(std::string_view text) override;
    void beep() override;
    void wait_cursor(bool on) override;
    bool progress(double fraction) override;
    void redraw() override;
    void clipboard(std::string_view text) override;
    bool copy_picture() override;
    bool paints_pictures() const override { return true; }
    std::string paint_pictures(const std::vector<Picture>& pages, const Palette& palette, PictureFormat format,
                               double dots_per_pixel) override;
    bool print_page(const PageOptions& options) override;
    void character_posted(int character) override;
    bool message_waiting() override;
    void line_done(std::string_view text, int result, LineSource source) override;
    void close_requested() override;

private:
    int waits_ = 0;
    QElapsedTimer shown_progress_;
};

}  // namespace zolt
