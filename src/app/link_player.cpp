// Plays a text into the queue, one character for each idle step.
#include "app/link_player.h"

#include <string>

#include "app/main_loop.h"
#include "common/text.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {
std::string link_text;
size_t next_character = 0;
}  // namespace

bool start_link(std::string_view text) {
    if (session.link_running) return false;
    link_text = text;
    next_character = 0;
    session.link_running = true;
    return true;
}

void stop_link() {
    session.link_running = false;
    platform().status(0, "Link Finished");
}

void link_step() {
    if (next_character >= link_text.size()) return stop_link();
    const char character = link_text[next_character++];
    post_character(character == ';' ? 13 : static_cast<unsigned char>(character), LineSource::link);
}

int play_link(int number) {
    const std::string& text = settings.links[static_cast<size_t>(number)];
    if (text.empty()) return refuse(format_text("The key LINK%d of ZOLT.INI holds no commands for A%d to play.", number, number));
    return start_link(text) ? 1 : 0;
}

}  // namespace zolt
