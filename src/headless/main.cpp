// zolt-cli: drives the core by its options, in their order.
#include <csignal>
#include <cstdio>
#include <iostream>
#include <string>

#include <unistd.h>

#include "app/main_loop.h"
#include "app/recovery.h"
#include "app/startup.h"
#include "front/actions.h"
#include "front/detection.h"
#include "front/events.h"
#include "front/options.h"
#include "headless/platform_headless.h"
#include "headless/prompt.h"
#include "state/session.h"

namespace zolt {

namespace {

void carry_out_line(std::string_view line) {
    post_line(line);
    run_main_loop();
}

class Driver {
public:
    explicit Driver(const Options& options) : options_(options) {}

    int run() {
        set_platform(&platform_);
        set_json_output(options_.json);
        start_up(options_.root, options_.ini);
        run_main_loop();  // AutoExecMacro
        const bool good = options_.actions.empty() ? converse() : carry_out_actions();
        shut_down();
        return good ? 0 : 1;
    }

private:
    bool all_worked() const { return platform_.all_lines_worked && session.failed_macros == 0; }
    bool stop() const { return platform_.closing || (!all_worked() && !options_.keep_going); }

    bool carry_out_actions() {
        for (const Action& action : options_.actions) {
            if (stop()) break;
            carry_out(action);
        }
        return all_worked() && !data_failed_;
    }

    // The user at a terminal types lines until end of input or EX. What did not work has been said on the spot.
    bool converse() {
        platform_.interactive = true;
        catch_interrupts();
        offer_recovery();
        for (std::string line; !platform_.closing;) {
            if (read_prompt_line("> ", line)) {
                carry_out_typed(line);
            } else {
                post_close();  // Ctrl+D
                run_main_loop();
            }
        }
        return true;
    }

    // Ctrl+C is the key Escape to what plays.
    static void carry_out_typed(const std::string& line) {
        carry_out_line(line);
        while (take_interrupt()) {
            post_character(27, LineSource::user);
            run_main_loop();
        }
    }

    void carry_out(const Action& action) {
        data_failed_ |= !start_action(action, platform_.answers, "zolt-cli");
        run_main_loop();
        if (action.kind != Action::Kind::lines_of_stdin) return;
        for (std::string line; !stop() && std::getline(std::cin, line);) {
            if (line.ends_with('\r')) line.pop_back();
            carry_out_line(line);
        }
    }

    const Options& options_;
    HeadlessPlatform platform_;
    bool data_failed_ = false;
};

}  // namespace

}  // namespace zolt

int main(int count, char** arguments) {
    // A file beyond the size limit is a failed write with its message, not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
    zolt::Options options;
    std::string error;
    if (!zolt::read_options(zolt::Program::headless, count, arguments, options, error)) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 2;
    }
    if (options.version) {
        std::printf("zolt-cli %s\n", zolt::version_text());
        return 0;
    }
    if (!options.detect.empty()) {
        zolt::HeadlessPlatform front_end;
        zolt::set_platform(&front_end);
        return zolt::print_formats(options) ? 0 : 1;
    }
    const bool conversation = options.actions.empty() && ::isatty(STDIN_FILENO) != 0;
    if (options.help || (options.actions.empty() && !conversation)) {
        std::fputs(zolt::help_text(zolt::Program::headless).c_str(), stdout);
        return 0;
    }
    return zolt::Driver(options).run();
}
