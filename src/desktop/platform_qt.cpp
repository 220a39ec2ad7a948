// Dialogs, panes, progress and clipboard of the window.
#include "desktop/platform_qt.h"

#include <QApplication>
#include <QClipboard>

#include "desktop/dialogs.h"
#include "desktop/file_dialogs.h"
#include "desktop/main_window.h"
#include "desktop/paint_document.h"
#include "desktop/print_dialog.h"
#include "desktop/text.h"
#include "front/events.h"

namespace zolt {

void QtPlatform::message(std::string_view caption, Icon icon, std::string_view text) {
    if (prints) print_message(caption, icon, text);
    if (!batch) show_message(window, caption, icon, text);
}

Answer QtPlatform::question(std::string_view caption, std::string_view text, Buttons buttons) {
    const bool given = batch || !answers.queue.empty();
    const Answer answer = given ? answers.to_question(buttons, answers.next()) : ask_question(window, caption, text, buttons);
    if (prints) print_question(caption, text, buttons, answer);
    return answer;
}

std::optional<std::string> QtPlatform::file_dialog(FileChoice choice, std::string_view title) {
    const bool given = batch || !answers.queue.empty();
    auto answer = given ? answers.next() : choose_file(window, choice, title);
    if (prints) print_dialog(choice == FileChoice::open ? "open" : "save", title, answer);
    return answer;
}

std::optional<std::string> QtPlatform::input_box(std::string_view title, std::string_view prompt, std::string_view initial) {
    const bool given = batch || !answers.queue.empty();
    auto answer = given ? answers.next() : ask_text(window, title, prompt, initial);
    if (prints) print_dialog("input", prompt.empty() ? title : prompt, answer);
    return answer;
}

std::optional<std::string> QtPlatform::process_box(std::string_view prompt, std::string_view initial) {
    const bool given = batch || !answers.queue.empty();
    auto answer = given ? answers.next() : ask_value(window, prompt, initial);
    if (prints) print_dialog("box", "ProcessBox", answer);
    return answer;
}

void QtPlatform::status(int pane, std::string_view text) {
    if (prints) print_status(pane, text);
    if (window != nullptr) window->set_pane(pane, text);
}

void QtPlatform::reply(std::string_view text) {
    if (prints) print_reply(text);
    if (window != nullptr) window->set_reply(text);
}

void QtPlatform::beep() {
    if (prints) print_beep();
    if (!batch) QApplication::beep();
}

// Wait cursors stand within one another.
void QtPlatform::wait_cursor(bool on) {
    waits_ += on ? 1 : -1;
    if (on && waits_ == 1) QApplication::setOverrideCursor(Qt::WaitCursor);
    if (!on && waits_ == 0) QApplication::restoreOverrideCursor();
}

// The window lives on while the work goes on: it is painted, and takes Cancel and Escape. What is typed meanwhile waits in
// the core's queue.
bool QtPlatform::progress(double fraction) {
    constexpr int often_enough = 40;  // ms
    if (shown_progress_.isValid() && shown_progress_.elapsed() < often_enough) return !cancelled;
    if (window != nullptr) window->show_progress(fraction);
    QApplication::processEvents();
    shown_progress_.start();
    return !cancelled;
}

// A macro of the configuration may begin before there is a window.
void QtPlatform::redraw() {
    if (window != nullptr) window->refresh_plot();
}

void QtPlatform::clipboard(std::string_view text) {
    if (prints) print_clipboard(text);
    QApplication::clipboard()->setText(qt(text));
}

bool QtPlatform::copy_picture() { return window != nullptr && window->copy_plot(); }

std::string QtPlatform::paint_pictures(const std::vector<Picture>& pages, const Palette& palette, PictureFormat format,
                                       double dots_per_pixel) {
    return format == PictureFormat::pdf ? pdf_document(pages, palette) : png_file(pages.front(), palette, dots_per_pixel);
}

bool QtPlatform::print_page(const PageOptions& options) {
    if (batch || window == nullptr) return false;
    show_print_preview(window, options);
    return true;
}

void QtPlatform::character_posted(int character) {
    if (prints) print_post(character);
}

bool QtPlatform::message_waiting() {
    constexpr int turn_time = 20;  // ms that links and macros have before the window has its turn
    return interrupted || turn.elapsed() > turn_time;
}

void QtPlatform::line_done(std::string_view text, int result, LineSource source) {
    if (result == 0) all_lines_worked = false;
    if (prints) print_line(text, result, source);
    if (window != nullptr) window->line_done();
}

void QtPlatform::close_requested() {
    if (prints) print_close();
    if (window != nullptr) window->close_at_last();
}

}  // namespace zolt
