// Handlers that write, print and copy pictures of the data.
#pragma once

#include "common/arguments.h"

namespace zolt {

int cmd_metafile(Arguments& args);
int cmd_print(Arguments& args);
int cmd_startdoc(Arguments& args);
int cmd_enddoc(Arguments& args);
int cmd_clipboard(Arguments& args);

}  // namespace zolt
