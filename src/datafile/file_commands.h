// Handlers that save data sets, set how they are saved, and select their slices.
#pragma once

#include <string>

#include "common/arguments.h"

namespace zolt {

int cmd_savefile(Arguments& args);
int cmd_savefileb(Arguments& args);
int cmd_header(Arguments& args);
int cmd_slice(Arguments& args);
int cmd_s2(Arguments& args);
int cmd_sc(Arguments& args);
int cmd_oc(Arguments& args);
int cmd_cc(Arguments& args);
int cmd_uh(Arguments& args);
int cmd_transpose(Arguments& args);
int cmd_plane(Arguments& args);
int cmd_tailerexport(Arguments& args);

/// Keeps the current vector in data buffer `number`, for comparison, saved with the data set; or sets how it is drawn.
int store_buffer(int number, Arguments& args);
template <int number>
int cmd_buffer(Arguments& args) {
    return store_buffer(number, args);
}

/// BV: how File B is drawn; BV clear closes it.
int cmd_bv(Arguments& args);
/// EXC: File A becomes File B and File B File A.
int cmd_exchange(Arguments& args);
/// Asks before a File B that was not saved is dropped; true when it may be.
bool agreed_to_drop_b(const char* caption);
/// Says in the reply line why File B, just opened, is not drawn over File A; nothing where it is.
void report_file_b();

/// Asks whether an existing file may be written over; true when there is none, or commands are played back.
bool may_replace(const std::string& path);

}  // namespace zolt
