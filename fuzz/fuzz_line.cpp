// Fuzz target: any bytes, typed into the command line of a program with and without a data set.
#include <cstdint>
#include <cstdlib>

#include "app/command_line.h"
#include "app/main_loop.h"
#include "front_end.h"
#include "state/dataset.h"
#include "state/session.h"

namespace {

using namespace zolt;

// The fuzzer types SA, too: it has no rights to write outside its folder.
void start_once() {
    fuzz::start_in_own_folder();
    settings.links[1] = "SF 400;FT;PC 1 2 3;";
}

void load_small(DataSet& set) {
    set = DataSet();
    if (!set.store.allocate(1, 48)) std::abort();
    for (size_t k = 0; k < 48; ++k) set.store.all()[k] = {static_cast<float>(k), -1.0F};
    for (Dimension& d : set.dims) d.points = 1;
    set.dims[0].points = 48;
    set.dims[0].sw = 5000;
    set.loaded = true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool started = (start_once(), true);
    if (!started || size < 1) return 0;
    reset_main_loop();
    ResetCommandText();
    show = DataSet();
    session.sub_routine = nullptr;
    show_b = DataSet();
    if ((data[0] & 1) != 0) load_small(show);
    if ((data[0] & 2) != 0) load_small(show_b);
    show.dims[0].frequency = show_b.dims[0].frequency = (data[0] & 4) != 0;
    for (size_t i = 1; i <= size; ++i) {
        post_character(i < size ? data[i] : 13, LineSource::user);
        run_main_loop();
        // Zero fill after zero fill would fill the memory, and the time.
        if (show.store.points() > 1 << 18) load_small(show);
    }
    return 0;
}
