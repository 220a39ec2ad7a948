// The door to the outside world: everything the core asks of a front end, as typed calls. The desktop program, the
// headless program and the tests each fill it in.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolt {

enum class Icon { none, information, exclamation, stop };
enum class Buttons { yes_no, yes_no_cancel };
enum class Answer { yes, no, cancel };
enum class FileChoice { open, save };
enum class LineSource { user, link, macro, menu };
enum class PictureFormat { pdf, png };

struct Picture;
struct Palette;
struct PageOptions;

class Platform {
public:
    virtual ~Platform() = default;

    virtual void message(std::string_view caption, Icon icon, std::string_view text) = 0;
    virtual Answer question(std::string_view caption, std::string_view text, Buttons buttons) = 0;
    /// A path, or nothing when the dialog was cancelled.
    virtual std::optional<std::string> file_dialog(FileChoice choice, std::string_view title) = 0;
    /// The text typed into a one-line box that shows `initial`, or nothing when it was cancelled.
    virtual std::optional<std::string> input_box(std::string_view title, std::string_view prompt, std::string_view initial) = 0;
    /// The same for the dialog "ProcessBox", which edits one processing value.
    virtual std::optional<std::string> process_box(std::string_view prompt, std::string_view initial) = 0;

    virtual void status(int pane, std::string_view text) = 0;
    /// The command reply line.
    virtual void reply(std::string_view text) = 0;
    virtual void beep() = 0;
    virtual void wait_cursor(bool on) = 0;
    /// Long work tells how far it is, 0 to 1; false when the user cancelled it.
    virtual bool progress(double fraction) = 0;
    virtual void redraw() = 0;
    virtual void clipboard(std::string_view text) = 0;
    /// Puts the plot on the clipboard as a picture; false where there is no plot.
    virtual bool copy_picture() { return false; }

    /// Whether paint_pictures works here.
    virtual bool paints_pictures() const { return false; }
    /// The content of a file with the pictures in it, one a page; of PNG the first one, with so many dots for each of its
    /// pixels. "" when it cannot be made.
    virtual std::string paint_pictures(const std::vector<Picture>& /*pages*/, const Palette& /*palette*/, PictureFormat /*format*/,
                                       double /*dots_per_pixel*/) {
        return {};
    }
    /// Shows the printed page of the data set and prints it if the user wants that; false where nobody can be shown one.
    virtual bool print_page(const PageOptions& /*options*/) { return false; }

    /// A character was posted by the control-key prefix of the command line.
    virtual void character_posted(int character) = 0;
    /// Messages wait outside the core's own queue (in the window system's).
    virtual bool message_waiting() = 0;
    /// A command line has been carried out; result 0, 1 or 2.
    virtual void line_done(std::string_view text, int result, LineSource source) = 0;
    /// The close message was posted: the program is to end.
    virtual void close_requested() = 0;
};

/// The front end of this run. Set once at start-up (and by each test).
Platform& platform();
void set_platform(Platform* front_end);

/// A message box with the exclamation icon, the usual way to report a failure; returns 0, so that a handler can
/// `return refuse(...)`.
int refuse(std::string_view text, std::string_view caption = "ZOLT");

/// The same for functions that say by a flag whether they have worked: false.
bool fail(std::string_view text);

/// A line in the command reply line; returns 2 (done, own result shown).
int show_reply(std::string_view text);

/// Shows the wait cursor for the life of the object.
class WaitCursor {
public:
    WaitCursor() { platform().wait_cursor(true); }
    ~WaitCursor() { platform().wait_cursor(false); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

}  // namespace zolt
