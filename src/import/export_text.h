// Text on its way to a file that is replaced as a whole: numbers in fixed form, written without regard to the locale.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/file.h"

namespace zolt {

class ExportText {
public:
    /// False, after its message, when the file cannot be created.
    bool open(const std::string& path);

    void text(std::string_view text) { room(text.size()).append(text); }
    /// As %.*f and %lld.
    void fixed(double value, int decimals);
    void integer(int64_t value);

    bool good() const { return good_; }
    /// Writes what is left and puts the file in place; false when any of it did not work.
    bool commit();

private:
    std::string& room(size_t size);

    ReplacedFile file_;
    std::string buffer_;
    bool good_ = true;
};

}  // namespace zolt
