// Files of a POSIX system: facts, streams, and replacement by rename.
#include "common/file.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/text.h"

namespace zolt {

namespace fs = std::filesystem;

FileFacts file_facts(const std::string& path) {
    struct stat s = {};
    if (::stat(path.c_str(), &s) != 0) return {};
    return {true, S_ISREG(s.st_mode), S_ISDIR(s.st_mode), S_ISREG(s.st_mode) ? static_cast<uint64_t>(s.st_size) : 0};
}

std::string absolute_path(const std::string& path) {
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error).lexically_normal();
    if (error) return path;
    std::string text = absolute.string();
    if (text.size() > 1 && text.ends_with('/')) text.pop_back();
    return text;
}

std::string folder_of(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string name_of(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string find_companion(const std::string& folder, std::string_view name) {
    std::string exact = folder + "/" + std::string(name);
    if (file_facts(exact).regular) return exact;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const std::string found = entry->path().filename().string();
        if (same_word(found, name) && file_facts(entry->path().string()).regular) return entry->path().string();
    }
    return {};
}

bool File::seek(uint64_t offset) { return stream_ != nullptr && ::fseeko(stream_, static_cast<off_t>(offset), SEEK_SET) == 0; }

bool File::read(void* to, size_t size) { return stream_ != nullptr && (size == 0 || std::fread(to, 1, size, stream_) == size); }

bool File::write(const void* from, size_t size) {
    return stream_ != nullptr && (size == 0 || std::fwrite(from, 1, size, stream_) == size);
}

bool File::close() {
    if (stream_ == nullptr) return true;
    std::FILE* stream = stream_;
    stream_ = nullptr;
    return std::fclose(stream) == 0;
}

File open_for_reading(const std::string& path) { return file_facts(path).regular ? File(path, "rb") : File(); }

bool read_whole_file(const std::string& path, std::string& content, uint64_t limit) {
    const FileFacts facts = file_facts(path);
    if (!facts.regular || facts.size > limit) return false;
    File file(path, "rb");
    if (!file) return false;
    content.resize(facts.size);
    return file.read(content.data(), content.size());
}

bool is_read_only(const std::string& path) {
    struct stat s = {};
    if (::stat(path.c_str(), &s) != 0) return false;
    // The system lets its administrator write to files that nobody is meant to change; a mark on the file still counts.
    return ::access(path.c_str(), W_OK) != 0 || (S_ISREG(s.st_mode) && (s.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0);
}

ReplacedFile::~ReplacedFile() {
    file_.close();
    if (!private_name_.empty()) ::unlink(private_name_.c_str());
}

bool ReplacedFile::open(const std::string& target) {
    // A link is followed, so that the file it leads to is the one replaced.
    std::error_code resolve_error;
    const fs::path resolved = fs::weakly_canonical(target, resolve_error);
    target_ = resolve_error ? target : resolved.string();
    const FileFacts facts = file_facts(target_);
    if (facts.exists && !facts.regular) {
        error_ = facts.folder ? EISDIR : EINVAL;
        return false;
    }
    if (facts.exists && ::access(target_.c_str(), W_OK) != 0) {
        error_ = errno;
        return false;
    }
    std::string name = format_text("%s/.zolt-%d-XXXXXX", folder_of(target_).c_str(), static_cast<int>(::getpid()));
    const int descriptor = ::mkstemp(name.data());
    if (descriptor < 0) {
        error_ = errno;
        return false;
    }
    private_name_ = name;
    // mkstemp makes the file private to the user; give it the permissions of the file it replaces, or the usual ones.
    struct stat old = {};
    const mode_t mask = ::umask(0);
    ::umask(mask);
    const mode_t mode = facts.exists && ::stat(target_.c_str(), &old) == 0 ? old.st_mode & 07777 : 0666 & ~mask;
    if (::fchmod(descriptor, mode) != 0) error_ = errno;
    ::close(descriptor);
    file_ = File(name, "r+b");
    if (!file_) error_ = errno;
    return static_cast<bool>(file_);
}

bool ReplacedFile::write(const void* from, size_t size) {
    if (file_.write(from, size)) return true;
    error_ = errno;
    return false;
}

bool ReplacedFile::seek(uint64_t offset) { return file_.seek(offset); }

bool ReplacedFile::commit() {
    bool good = file_ && std::fflush(file_.stream()) == 0 && ::fsync(::fileno(file_.stream())) == 0;
    if (!good) error_ = errno;
    if (!file_.close() && good) {
        good = false;
        error_ = errno;
    }
    if (good && ::rename(private_name_.c_str(), target_.c_str()) != 0) {
        good = false;
        error_ = errno;
    }
    if (!good) return false;
    private_name_.clear();
    return true;
}

}  // namespace zolt
