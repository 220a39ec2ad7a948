// Handlers that belong to the program itself: its display, its end, its modes.
#include "app/app_commands.h"

#include "app/main_loop.h"
#include "app/undo.h"
#include "common/text.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

// No other display exists yet that could be left for the 1D one.
int cmd_1d(Arguments& /*args*/) { return 1; }

int cmd_ex(Arguments& /*args*/) {
    post_close();
    return 1;
}

int cmd_expertmode(Arguments& args) {
    const std::string word = args.next();
    if (same_word(word, "on"))
        session.expert = true;
    else if (same_word(word, "off"))
        session.expert = false;
    else
        return show_reply("ExpertMode <on / off>");
    platform().reply(session.expert ? "- Expert mode is on" : "- Expert mode is off");
    return 1;
}

int cmd_un(Arguments& /*args*/) {
    SetUndoEnabled(true);
    return 1;
}

int cmd_uf(Arguments& /*args*/) {
    SetUndoEnabled(false);
    return 1;
}

}  // namespace zolt
