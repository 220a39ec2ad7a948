// The headless front end's side of the platform door: events go to standard output, answers come from a queue.
#pragma once

#include <string>

#include "front/answers.h"
#include "platform/platform.h"

namespace zolt {

class HeadlessPlatform : public Platform {
public:
    Answers answers;
    bool all_lines_worked = true;
    bool closing = false;
    bool interactive = false;  ///< a user at a terminal gives the answers

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
    void character_posted(int character) override;
    bool message_waiting() override;
    void line_done(std::string_view text, int result, LineSource source) override;
    void close_requested() override;

private:
    /// The next answer from the queue, or from the user, who is shown the prompt; nothing when there is none.
    std::optional<std::string> next_answer(std::string_view prompt);
};

}  // namespace zolt
