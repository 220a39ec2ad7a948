// Files: facts, reading with limits, and replacing a file so that the old or the new one is always whole.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace zolt {

struct FileFacts {
    bool exists = false;
    bool regular = false;  ///< an ordinary file (links followed), neither folder nor device
    bool folder = false;
    uint64_t size = 0;
};

FileFacts file_facts(const std::string& path);

/// True when neither a file nor a folder, but a device, pipe or socket stands at the path.
bool is_device(const std::string& path);

/// The path made absolute and tidied, without following links.
std::string absolute_path(const std::string& path);
/// The folder part of a path, "." for a bare name; and the name behind it.
std::string folder_of(const std::string& path);
std::string name_of(const std::string& path);

/// The extension of the last part of a path, without its dot; "" for none. A dot in front or at the end begins none.
std::string extension_of(const std::string& path);
/// The path without its extension and the dot before it.
std::string without_extension(const std::string& path);
/// The name of the next file of a numbered series: the number at the end of the extension, or else the last one of the
/// rest, one higher (spec.009 becomes spec.010, run7.txt run8.txt); "" for a name without a number.
std::string next_in_series(const std::string& path);

/// The file `name` of `folder`, looked up without regard to case when the exact name is not there; "" when absent.
std::string find_companion(const std::string& folder, std::string_view name);

/// A C stream that closes itself.
class File {
public:
    File() = default;
    File(const std::string& path, const char* mode) : stream_(std::fopen(path.c_str(), mode)) {}
    /// Takes over an open descriptor.
    File(int descriptor, const char* mode) : stream_(::fdopen(descriptor, mode)) {}
    ~File() { close(); }
    File(File&& other) noexcept : stream_(other.stream_) { other.stream_ = nullptr; }
    File& operator=(File&& other) noexcept {
        std::swap(stream_, other.stream_);
        return *this;
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    explicit operator bool() const { return stream_ != nullptr; }
    std::FILE* stream() { return stream_; }
    bool seek(uint64_t offset);
    /// True when all `size` bytes were read (written).
    bool read(void* to, size_t size);
    bool write(const void* from, size_t size);
    bool write(std::string_view text) { return write(text.data(), text.size()); }
    bool close();

private:
    std::FILE* stream_ = nullptr;
};

/// Opens an ordinary file for reading; empty for a folder, a device, a pipe or a missing file, without ever waiting.
File open_for_reading(const std::string& path);

/// The whole content of an ordinary file of at most `limit` bytes; false when it cannot be read or is larger.
bool read_whole_file(const std::string& path, std::string& content, uint64_t limit);

/// A file written beside its target and moved over it by `commit`. Destroyed before that, it leaves the target as it was.
/// Where the file system can do it the file has no name until then, so that a killed program leaves nothing behind.
class ReplacedFile {
public:
    ReplacedFile() = default;
    ~ReplacedFile();
    ReplacedFile(const ReplacedFile&) = delete;
    ReplacedFile& operator=(const ReplacedFile&) = delete;

    /// False, with error() set, when the target cannot be replaced: no such folder, no permission, a folder or device.
    bool open(const std::string& target);
    bool write(const void* from, size_t size);
    bool write(std::string_view text) { return write(text.data(), text.size()); }
    bool seek(uint64_t offset);
    /// Flushes the content to disk and puts it in place of the target.
    bool commit();
    /// The same, and the file stays open: `stream` goes on writing what is now the target.
    bool commit_open(File& stream);
    int error() const { return error_; }
    /// The file behind it, for writers that take any file.
    operator File&() { return file_; }

private:
    bool open_private(unsigned mode);
    bool put_in_place();
    bool failed();

    File file_;
    std::string target_, private_name_;  ///< the private name is "" while the file has none at all
    int error_ = 0;
};

/// True when something stands at the path and it may not be written to.
bool is_read_only(const std::string& path);

}  // namespace zolt
