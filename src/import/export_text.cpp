// Buffered text output of the exports, and where they go.
#include "import/export_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <system_error>

#include "common/text.h"
#include "datafile/file_commands.h"
#include "datafile/native_file.h"
#include "import/export.h"
#include "platform/platform.h"
#include "state/dataset.h"

namespace zolt {

namespace fs = std::filesystem;

namespace {
constexpr size_t buffer_size = size_t{1} << 18;
}

bool ExportText::open(const std::string& path) {
    if (!file_.open(path)) {
        refuse(format_text("Could not open File: %s", path.c_str()));
        return false;
    }
    buffer_.reserve(buffer_size);
    return true;
}

std::string& ExportText::room(size_t size) {
    if (buffer_.size() + size > buffer_size) {
        good_ = good_ && file_.write(buffer_);
        buffer_.clear();
    }
    return buffer_;
}

void ExportText::fixed(double value, int decimals) {
    std::array<char, 400> digits;
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, decimals);
    text({digits.data(), static_cast<size_t>(result.ptr - digits.data())});
}

void ExportText::integer(int64_t value) {
    std::array<char, 24> digits;
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    text({digits.data(), static_cast<size_t>(result.ptr - digits.data())});
}

bool ExportText::commit() {
    good_ = good_ && file_.write(buffer_) && file_.commit();
    return good_;
}

std::string export_target(Arguments& args) {
    std::string name = args.next();
    if (name.empty()) name = platform().file_dialog(FileChoice::save, "Open Export File").value_or("");
    if (name.empty()) return {};
    const std::string path = absolute_path(typed_path(name));
    // The text of some of the data would take the place of all of them.
    std::error_code error;
    if (path == show.file_a || fs::equivalent(path, show.file_a, error)) {
        refuse("Input and Output file names are identical.\nNot allowed!");
        return {};
    }
    if (!may_replace(path) || overwrite_refused(path)) return {};
    return path;
}

}  // namespace zolt
