// The front end in use, and the shortest ways to a message and a reply.
#include "platform/platform.h"

#include <cstdlib>

namespace zolt {

namespace {
Platform* current = nullptr;
}

Platform& platform() {
    if (current == nullptr) std::abort();  // a front end that forgot set_platform
    return *current;
}

void set_platform(Platform* front_end) { current = front_end; }

int refuse(std::string_view text, std::string_view caption) {
    platform().message(caption, Icon::exclamation, text);
    return 0;
}

bool fail(std::string_view text) {
    refuse(text);
    return false;
}

int show_reply(std::string_view text) {
    platform().reply(text);
    return 2;
}

}  // namespace zolt
