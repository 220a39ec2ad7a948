// zolt: the window around the core.
#include <QApplication>
#include <QTimer>
#include <csignal>
#include <cstdio>

#include "app/recovery.h"
#include "app/startup.h"
#include "desktop/action_runner.h"
#include "desktop/appearance.h"
#include "desktop/icons.h"
#include "desktop/main_window.h"
#include "desktop/platform_qt.h"
#include "front/detection.h"
#include "front/events.h"
#include "front/options.h"
#include "platform/silent_platform.h"

namespace zolt {

namespace {

int run_window(const Options& options) {
    QtPlatform front_end;
    front_end.batch = options.batch;
    front_end.prints = options.batch || options.json;
    set_platform(&front_end);
    set_json_output(options.json);
    start_up(options.root, options.ini);
    apply_appearance();
    MainWindow window(front_end);
    window.restore_window();
    window.show();
    // After the first painting: drawing it takes as long as a menu.
    QTimer::singleShot(0, &window, [] { QApplication::setWindowIcon(program_icon()); });

    ActionRunner actions(options, front_end, window);
    bool greeted = false;
    const auto go_on = [&] {
        actions.go_on();
        if (!actions.finished() || !window.idle()) return;
        if (options.batch) return QApplication::exit();
        if (!std::exchange(greeted, true) && options.actions.empty()) {
            offer_recovery();
            window.pump();
        }
    };
    window.on_idle = [&] { QTimer::singleShot(0, &window, go_on); };
    window.on_closed = [] { QApplication::exit(); };
    QTimer::singleShot(0, &window, [&] { window.pump(); });
    QApplication::exec();
    shut_down();
    return !options.batch || actions.all_worked() ? 0 : 1;
}

}  // namespace

}  // namespace zolt

int main(int count, char** arguments) {
    // A file beyond the size limit is a failed write with its message, not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
    using namespace zolt;
    Options options;
    std::string error;
    if (!read_options(Program::desktop, count, arguments, options, error)) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 2;
    }
    if (options.version) return std::printf("zolt %s\n", version_text()), 0;
    if (options.help) return std::fputs(help_text(Program::desktop).c_str(), stdout), 0;
    if (!options.detect.empty()) {
        SilentPlatform nobody;
        set_platform(&nobody);
        return print_formats(options) ? 0 : 1;
    }
    // The options are ours alone; Qt has its own in the environment.
    int one = 1;
    QApplication application(one, arguments);
    QApplication::setApplicationName("zolt");
    QApplication::setApplicationDisplayName("ZOLT");
    QApplication::setApplicationVersion(version_text());
    QApplication::setQuitOnLastWindowClosed(false);
    return run_window(options);
}
