// The one session and its settings.
#include "state/session.h"

namespace zolt {

Session session;
Settings settings;

bool playing_back() { return session.link_running || session.macro_running; }

}  // namespace zolt
