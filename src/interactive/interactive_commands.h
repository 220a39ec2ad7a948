// The commands that begin a sub-routine; the table in app/commands.cpp has their rows.
#pragma once

#include "common/arguments.h"

namespace zolt {

int cmd_id(Arguments& args);
int cmd_as(Arguments& args);
int cmd_no(Arguments& args);
int cmd_zo(Arguments& args);
int cmd_ph(Arguments& args);
int cmd_pe(Arguments& args);

/// DP: picks peaks, and edits the list.
int cmd_dp(Arguments& args);
/// MH: the minimum height of peaks; alone it is set with the mouse.
int cmd_mh(Arguments& args);
int enter_peak_picking();
/// PL, ZL: the peak list, and that of what is shown.
int cmd_pl(Arguments& args);
int cmd_zl(Arguments& args);
/// NF: signal to noise.
int cmd_nf(Arguments& args);

}  // namespace zolt
