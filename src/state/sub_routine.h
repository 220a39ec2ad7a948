// The interactive sub-routine that has taken over the keys, while one is active.
#pragma once

namespace zolt {

struct SubRoutine {
    const char* keyword;  ///< the command that starts it
    const char* keys;     ///< its sub-commands in one line, for the reply line
    /// Carries out one key (a character, Enter, Escape, or a named key of common/keys.h); false for an unknown one.
    bool (*key)(int character);
};

}  // namespace zolt
