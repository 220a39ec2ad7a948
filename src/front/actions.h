// What the options ask for, up to the message loop: both front ends then run it dry.
#pragma once

#include <string>
#include <string_view>

#include "front/answers.h"
#include "front/options.h"

namespace zolt {

/// Queues a command line with its Enter, as if it had been typed.
void post_line(std::string_view line);

/// Does one action, or queues what the message loop will do. False when something could not be written; `program` begins
/// the sentence on standard error. Lines of standard input and screenshots are the front ends' own.
bool start_action(const Action& action, Answers& answers, const char* program);

}  // namespace zolt
