// Starts an action and returns to Qt's loop; the window calls again when it is idle.
#include "desktop/action_runner.h"

#include <QApplication>
#include <QPixmap>
#include <cstdio>
#include <iostream>

#include "desktop/text.h"
#include "front/actions.h"
#include "state/session.h"

namespace zolt {

namespace {

bool write_screenshot(MainWindow& window, const std::string& path) {
    QApplication::processEvents();  // sizes of what has just been shown
    const QPixmap shown = window.grab();
    if (shown.save(qt(path), "PNG")) return true;
    std::fprintf(stderr, "zolt: cannot write %s\n", path.c_str());
    return false;
}

void post_standard_input() {
    for (std::string line; std::getline(std::cin, line);) {
        if (line.ends_with('\r')) line.pop_back();
        post_line(line);
    }
}

}  // namespace

ActionRunner::ActionRunner(const Options& options, QtPlatform& platform, MainWindow& window)
    : options_(options), platform_(platform), window_(window) {}

bool ActionRunner::all_worked() const { return platform_.all_lines_worked && session.failed_macros == 0 && !write_failed_; }

bool ActionRunner::stopped() const { return !all_worked() && !options_.keep_going; }

void ActionRunner::go_on() {
    if (going_) return;
    going_ = true;
    while (!finished() && window_.idle()) carry_out(options_.actions[next_++]);
    going_ = false;
}

void ActionRunner::carry_out(const Action& action) {
    if (action.kind == Action::Kind::screenshot)
        write_failed_ |= !write_screenshot(window_, action.text);
    else if (action.kind == Action::Kind::lines_of_stdin)
        post_standard_input();
    else
        write_failed_ |= !start_action(action, platform_.answers, "zolt");
    window_.pump();
}

}  // namespace zolt
