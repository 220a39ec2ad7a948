// The queue of characters and the close message, and the loop over them.
#include "app/main_loop.h"

#include <deque>

#include "app/keystrokes.h"
#include "app/link_player.h"
#include "app/startup.h"
#include "macro/stepper.h"
#include "state/session.h"

namespace zolt {

namespace {

struct Message {
    enum class Kind { character, close } kind;
    int character = 0;
    LineSource source = LineSource::user;
};

std::deque<Message> queue;
bool closed = false;

}  // namespace

void post_character(int character, LineSource source) { queue.push_back({Message::Kind::character, character, source}); }

void post_close() { queue.push_back({Message::Kind::close}); }

bool idle_step() {
    if (playback_held()) return true;
    if (!session.link_running) return session.macro_running && MacroStep();
    link_step();
    return true;
}

bool run_main_loop() {
    while (!closed) {
        if (!queue.empty()) {
            const Message message = queue.front();
            queue.pop_front();
            if (message.kind == Message::Kind::close) {
                closed = may_close();
                if (closed) platform().close_requested();
            } else {
                handle_keystroke(message.character, message.source);
            }
        } else if (platform().message_waiting() || !idle_step()) {
            break;
        }
    }
    return !closed;
}

void reset_main_loop() {
    queue.clear();
    closed = false;
    reset_playback();
    reset_macros();
}

}  // namespace zolt
