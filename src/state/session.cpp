// The one session and its settings.
#include "state/session.h"

#include "platform/platform.h"

namespace zolt {

Session session;
Settings settings;

void list_to_clipboard(std::string_view text) {
    if (session.fills_clipboard) platform().clipboard(text);
}

bool playing_back() { return session.link_running || session.macro_running; }

}  // namespace zolt
