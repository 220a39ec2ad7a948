// What detection asks of a file and of those beside it. No more than the first kilobytes are ever read.
#include <algorithm>
#include <filesystem>
#include <system_error>

#include "import/format.h"

namespace zolt {

namespace {

constexpr size_t head_bytes = 1 << 14;

std::string head_of(File& file) {
    std::string head(head_bytes, '\0');
    head.resize(std::fread(head.data(), 1, head.size(), file.stream()));
    return head;
}

std::vector<std::string> names_in(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        names.push_back(entry->path().filename().string());
    return names;
}

}  // namespace

Candidate::Candidate(const std::string& absolute_path)
    : path(absolute_path),
      folder(folder_of(absolute_path)),
      name(name_of(absolute_path)),
      stem(without_extension(name)),
      extension(extension_of(name)) {}

bool Candidate::open() {
    input = open_for_reading(path);
    if (!input) return false;
    bytes = file_facts(path).size;
    head = head_of(input);
    return std::ferror(input.stream()) == 0 && input.seek(0);
}

std::string Candidate::companion(std::string_view file_name) const {
    std::string exact = folder + "/" + std::string(file_name);
    if (file_facts(exact).regular) return exact;
    if (!names_) names_ = names_in(folder);
    for (const std::string& one : *names_)
        if (same_word(one, file_name) && file_facts(folder + "/" + one).regular) return folder + "/" + one;
    return {};
}

std::string Candidate::twin(std::string_view other_extension) const {
    return has_extension(other_extension) ? "" : companion(stem + "." + std::string(other_extension));
}

std::string Candidate::head_of_twin(std::string_view other_extension) const {
    File file = open_for_reading(twin(other_extension));
    return file ? head_of(file) : "";
}

uint32_t Candidate::word(size_t index, ByteOrder order) const {
    return head.size() >= 4 * (index + 1) ? load_word<uint32_t>(head.data() + 4 * index, order) : 0;
}

}  // namespace zolt
