// A platform that shows nothing and agrees to nothing: for looking at files, and for programs that have nobody to ask.
#pragma once

#include "platform/platform.h"

namespace zolt {

/// Says nothing, refuses every question, cancels every dialog.
class SilentPlatform : public Platform {
public:
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

/// Puts the silent one in the place of the front end for the life of the object.
class Silence {
public:
    Silence() : before_(platform()) { set_platform(&silent_); }
    ~Silence() { set_platform(&before_); }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    Platform& before_;
    SilentPlatform silent_;
};

}  // namespace zolt
