// Handlers that show or write pictures of the data.
#pragma once

#include "common/arguments.h"

namespace zolt {

int cmd_metafile(Arguments& args);

}  // namespace zolt
