// What the fuzz targets share: a front end that says nothing, and a start in a folder of their own.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include <unistd.h>

#include "app/startup.h"
#include "platform/platform.h"

namespace zolt::fuzz {

// Says nothing, refuses every question, cancels every dialog: what is typed is all there is.
class SilentPlatform : public Platform {
    void message(std::string_view, Icon, std::string_view) override {}
    Answer question(std::string_view, std::string_view, Buttons) override { return Answer::no; }
    std::optional<std::string> file_dialog(FileChoice, std::string_view) override { return std::nullopt; }
    std::optional<std::string> input_box(std::string_view, std::string_view, std::string_view) override { return std::nullopt; }
    std::optional<std::string> process_box(std::string_view, std::string_view) override { return std::nullopt; }
    void status(int, std::string_view) override {}
    void reply(std::string_view) override {}
    void beep() override {}
    void wait_cursor(bool) override {}
    bool progress(double) override { return true; }
    void redraw() override {}
    void clipboard(std::string_view) override {}
    void character_posted(int) override {}
    bool message_waiting() override { return false; }
    void line_done(std::string_view, int, LineSource) override {}
    void close_requested() override {}
};

// A folder of its own, which is the current one and the root, and no rights to write anywhere else.
inline void start_in_own_folder() {
    static SilentPlatform front_end;
    char folder[] = "/tmp/zolt-fuzz-XXXXXX";
    if (mkdtemp(folder) == nullptr || chdir(folder) != 0) std::abort();
    if (geteuid() == 0 && (chown(folder, 65534, 65534) != 0 || setgid(65534) != 0 || setuid(65534) != 0)) std::abort();
    set_platform(&front_end);
    start_up(folder, "");
}

}  // namespace zolt::fuzz
