// Fuzz target: any bytes as a foreign file with its companions, through detection and the translators.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "datafile/native_file.h"
#include "front_end.h"
#include "import/tranauto.h"

namespace {

using namespace zolt;

// The names that the pieces of the input get, data file first. The names decide most of what a file is taken for.
const std::vector<std::vector<const char*>> sets = {
    {"fid", "acqus", "pdata/1/procs", "pdata/1/title"},
    {"ser", "acqus", "acqu2s", "acqu3s", "pdata/1/procs", "pdata/1/proc2s"},
    {"pdata/1/1r", "pdata/1/1i", "pdata/1/procs", "acqus"},
    {"pdata/1/2rr", "pdata/1/procs", "pdata/1/proc2s", "acqus", "acqu2s"},
    {"fid", "procpar", "text"},
    {"phasefile", "procpar", "text"},
    {"a.dat", "a.hdr", "a.prm"},
    {"a.fid", "a.par", "a.dis", "a.aqs"},
    {"a.spc"},
    {"a.sdat", "a.spar"},
    {"a.raw", "a.ddf"},
};
constexpr std::string_view border = "\xFF\xFE\xFD";

void write_pieces(const std::vector<const char*>& names, std::string_view bytes) {
    for (const char* name : names) {
        const size_t end = bytes.find(border);
        const std::string_view piece = bytes.substr(0, end);
        std::error_code ignored;
        std::filesystem::create_directories(std::filesystem::path("set") / std::filesystem::path(name).parent_path(), ignored);
        std::ofstream(std::string("set/") + name, std::ios::binary).write(piece.data(), static_cast<std::streamsize>(piece.size()));
        if (end == std::string_view::npos) return;
        bytes.remove_prefix(end + border.size());
    }
}

}  // namespace

// The first byte chooses the names, the second a format (0 and numbers without a key: detection).
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool started = (fuzz::start_in_own_folder(), true);
    if (!started || size < 2) return 0;
    const auto& names = sets[data[0] % sets.size()];
    write_pieces(names, {reinterpret_cast<const char*>(data) + 2, size - 2});
    const std::string input = absolute_path(std::string("set/") + names[0]), output = absolute_path("out");
    detect_format(input, false);
    const Format* format = format_of_number(data[1] % 84);
    DataSet parameters, fresh;
    std::string message;
    const bool done = TRANAUTO(input, output, format != nullptr ? format->key : "", {}, parameters, message);
    if (done ? !FileRead(output, fresh) : message.empty()) std::abort();
    std::error_code ignored;
    std::filesystem::remove_all("set", ignored);
    std::filesystem::remove("out", ignored);
    return 0;
}
