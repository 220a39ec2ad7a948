// The commands that begin a sub-routine; the table in app/commands.cpp has their rows.
#pragma once

#include "common/arguments.h"

namespace zolt {

int cmd_as(Arguments& args);
int cmd_no(Arguments& args);
int cmd_zo(Arguments& args);
int cmd_ph(Arguments& args);
int cmd_pe(Arguments& args);

}  // namespace zolt
