// Files of a POSIX system: facts, streams, and replacement by rename.
#include "common/file.h"

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
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

bool is_device(const std::string& path) {
    const FileFacts facts = file_facts(path);
    return facts.exists && !facts.regular && !facts.folder;
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

std::string extension_of(const std::string& path) {
    const std::string name = name_of(path);
    const size_t dot = name.find_last_of('.');
    return dot == std::string::npos || dot == 0 ? std::string() : name.substr(dot + 1);
}

std::string without_extension(const std::string& path) {
    const std::string extension = extension_of(path);
    const bool bare_dot = extension.empty() && path.ends_with('.') && name_of(path).size() > 1;
    return path.substr(0, path.size() - (extension.empty() ? (bare_dot ? 1 : 0) : extension.size() + 1));
}

std::string next_in_series(const std::string& path) {
    const auto digit = [&](size_t i) { return path[i] >= '0' && path[i] <= '9'; };
    const size_t name = path.size() - name_of(path).size();
    size_t end = path.size();
    if (extension_of(path).empty() || !digit(end - 1)) {
        end = without_extension(path).size();
        while (end > name && !digit(end - 1)) --end;
    }
    if (end == name) return {};
    std::string next = path;
    size_t at = end;
    while (at > name && digit(at - 1) && next[at - 1] == '9') next[--at] = '0';
    if (at > name && digit(at - 1))
        ++next[at - 1];
    else
        next.insert(at, 1, '1');
    return next;
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

bool ReplacedFile::failed() {
    error_ = errno;
    return false;
}

namespace {

constexpr const char* private_start = ".zolt-";

std::string private_template(const std::string& target) {
    return format_text("%s/%s%d-XXXXXX", folder_of(target).c_str(), private_start, static_cast<int>(::getpid()));
}

// A private file is locked while its program lives; one with a name that can be locked was left by a killed program. Looked
// for once in a while: a folder may hold very many files.
void remove_leftovers(const std::string& folder) {
    static std::string looked_at;
    if (folder == looked_at) return;
    looked_at = folder;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (!entry->path().filename().string().starts_with(private_start)) continue;
        const int descriptor = ::open(entry->path().c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
        if (descriptor < 0) continue;
        if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) ::unlink(entry->path().c_str());
        ::close(descriptor);
    }
}

// Gives an open file without a name one beside the target. The name is of this file, which is locked, from the first
// moment on: no other program's clearing away can take it for a leftover.
bool link_under_new_name(int descriptor, const std::string& target, std::string& name) {
    static std::atomic<unsigned> counter = 0;
    constexpr int attempts = 1000;
    const std::string from = format_text("/proc/self/fd/%d", descriptor);
    for (int attempt = 0; attempt < attempts; ++attempt) {
        name = format_text("%s/%s%d-%u", folder_of(target).c_str(), private_start, static_cast<int>(::getpid()), ++counter);
        if (::linkat(AT_FDCWD, from.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) return true;
        if (errno != EEXIST) return false;
    }
    return false;
}

// A new named private file, locked; -1 without one. Another program's clearing away may take it before the lock does.
int open_named(std::string& name) {
    for (int attempt = 0; attempt < 10; ++attempt) {
        std::string tried = name;
        const int descriptor = ::mkstemp(tried.data());
        if (descriptor < 0) return -1;
        struct stat facts = {};
        if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0 && ::fstat(descriptor, &facts) == 0 && facts.st_nlink > 0) {
            name = tried;
            return descriptor;
        }
        ::close(descriptor);
    }
    return -1;
}

// Gives back the blocks of replaced files. Never destroyed: the end of the program need not wait for it.
std::thread& giving_back() {
    static std::thread& thread = *new std::thread;
    return thread;
}

void finish_giving_back() {
    if (giving_back().joinable()) giving_back().join();
}

// Holds on to a large file that is about to be replaced. Its blocks are given back in the background then: that takes
// longer than the rename itself.
class ReplacedContent {
public:
    explicit ReplacedContent(const std::string& path) {
        constexpr uint64_t large = 512 << 10;
        if (file_facts(path).size >= large) descriptor_ = ::open(path.c_str(), O_PATH | O_CLOEXEC | O_NOFOLLOW);
    }
    ~ReplacedContent() {
        if (descriptor_ < 0) return;
        finish_giving_back();
        giving_back() = std::thread([descriptor = descriptor_] { ::close(descriptor); });
    }
    ReplacedContent(const ReplacedContent&) = delete;
    ReplacedContent& operator=(const ReplacedContent&) = delete;

private:
    int descriptor_ = -1;
};

}  // namespace

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
    if (facts.exists && ::access(target_.c_str(), W_OK) != 0) return failed();
    // The permissions of the file that is replaced, or the usual ones.
    struct stat old = {};
    const mode_t mask = ::umask(0);
    ::umask(mask);
    const mode_t mode = facts.exists && ::stat(target_.c_str(), &old) == 0 ? old.st_mode & 07777 : 0666 & ~mask;
    return open_private(mode);
}

bool ReplacedFile::open_private(unsigned mode) {
    finish_giving_back();  // a disk that is nearly full may need what it gives
    remove_leftovers(folder_of(target_));
    int descriptor = ::open(folder_of(target_).c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor >= 0) {
        ::flock(descriptor, LOCK_EX | LOCK_NB);
    } else {
        std::string name = private_template(target_);
        descriptor = open_named(name);
        if (descriptor < 0) return failed();
        private_name_ = name;
    }
    if (::fchmod(descriptor, mode) != 0) error_ = errno;
    file_ = File(descriptor, "w+b");
    if (file_) return true;
    ::close(descriptor);
    return failed();
}

bool ReplacedFile::write(const void* from, size_t size) { return file_.write(from, size) || failed(); }

bool ReplacedFile::seek(uint64_t offset) { return file_.seek(offset); }

bool ReplacedFile::put_in_place() {
    if (!file_ || std::fflush(file_.stream()) != 0 || ::fsync(::fileno(file_.stream())) != 0) return failed();
    if (private_name_.empty()) {
        // A name of its own first: only a rename replaces the target in one step.
        std::string name;
        if (!link_under_new_name(::fileno(file_.stream()), target_, name)) return failed();
        private_name_ = name;
    }
    const ReplacedContent old(target_);
    if (::rename(private_name_.c_str(), target_.c_str()) != 0) return failed();
    private_name_.clear();
    return true;
}

bool ReplacedFile::commit() {
    if (!put_in_place()) {
        file_.close();
        return false;
    }
    return file_.close() || failed();
}

bool ReplacedFile::commit_open(File& stream) {
    if (!put_in_place()) return false;
    stream = std::move(file_);
    return true;
}

}  // namespace zolt
