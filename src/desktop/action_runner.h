// What the options ask for, one action after another, each when the one before is done.
#pragma once

#include "desktop/main_window.h"
#include "front/options.h"

namespace zolt {

class ActionRunner {
public:
    ActionRunner(const Options& options, QtPlatform& platform, MainWindow& window);
    /// Does the next action, unless commands are still at work.
    void go_on();
    /// Every action has been done, or the first failure has ended them.
    bool finished() const { return next_ >= options_.actions.size() || stopped(); }
    bool all_worked() const;

private:
    bool stopped() const;
    void carry_out(const Action& action);

    const Options& options_;
    QtPlatform& platform_;
    MainWindow& window_;
    size_t next_ = 0;
    bool write_failed_ = false, going_ = false;
};

}  // namespace zolt
