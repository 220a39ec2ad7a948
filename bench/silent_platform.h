// A front end that shows nothing and answers yes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace zolt::bench {

class SilentPlatform : public Platform {
public:
    void message(std::string_view, Icon, std::string_view) override {}
    Answer question(std::string_view, std::string_view, Buttons) override { return Answer::yes; }
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

}  // namespace zolt::bench
