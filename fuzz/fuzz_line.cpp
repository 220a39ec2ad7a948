// Fuzz target: any bytes, typed into the command line of a program with and without a data set.
#include <cstdint>
#include <cstdlib>
#include <string>

#include <unistd.h>

#include "app/command_line.h"
#include "app/main_loop.h"
#include "app/startup.h"
#include "platform/platform.h"
#include "state/dataset.h"
#include "state/session.h"

namespace {

using namespace zolt;

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

// A folder of its own, and no rights to write anywhere else: the fuzzer types SA, too.
void start_once() {
    static SilentPlatform front_end;
    char folder[] = "/tmp/zolt-fuzz-XXXXXX";
    if (mkdtemp(folder) == nullptr || chdir(folder) != 0) std::abort();
    if (geteuid() == 0 && (chown(folder, 65534, 65534) != 0 || setgid(65534) != 0 || setuid(65534) != 0)) std::abort();
    set_platform(&front_end);
    start_up(folder, "");
    settings.links[1] = "SF 400;FT;PC 1 2 3;";
}

void load_small_set() {
    show = DataSet();
    if (!show.store.allocate(1, 48)) std::abort();
    for (size_t k = 0; k < 48; ++k) show.store.all()[k] = {static_cast<float>(k), -1.0F};
    for (Dimension& d : show.dims) d.points = 1;
    show.dims[0].points = 48;
    show.dims[0].sw = 5000;
    show.loaded = true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool started = (start_once(), true);
    if (!started || size < 1) return 0;
    reset_main_loop();
    ResetCommandText();
    show = DataSet();
    if ((data[0] & 1) != 0) load_small_set();
    for (size_t i = 1; i <= size; ++i) {
        post_character(i < size ? data[i] : 13, LineSource::user);
        run_main_loop();
        // Zero fill after zero fill would fill the memory, and the time.
        if (show.store.points() > 1 << 18) load_small_set();
    }
    return 0;
}
