// Whole-file helpers for the state folder: what is written is either there completely or not at all.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace agentd {

// An open file descriptor that closes itself; -1: none.
class FileHandle {
public:
    explicit FileHandle(int descriptor = -1)
        : descriptor_(descriptor)
    {
    }
    ~FileHandle();
    FileHandle(FileHandle &&other) noexcept;
    FileHandle &operator=(FileHandle &&other) noexcept;
    FileHandle(const FileHandle &) = delete;
    FileHandle &operator=(const FileHandle &) = delete;
    int get() const { return descriptor_; }
    explicit operator bool() const { return descriptor_ >= 0; }

private:
    int descriptor_;
};

// All of the file, at most `limit` bytes. Throws std::system_error naming the file.
std::string readFile(const std::filesystem::path &file, std::size_t limit = std::size_t{64} << 20);

// Replaces the file in one step (new file, fsync, rename, fsync of the folder) with the given access mode.
// Throws std::system_error naming the file.
void writeFileAtomically(const std::filesystem::path &file, std::string_view content, unsigned mode);

// Writes everything to the descriptor, however many calls that takes. Throws std::system_error.
void writeAll(int descriptor, std::string_view content, const std::string &name);

// Waits for and takes the exclusive lock that the file stands for, creating it if needed; the lock lasts as
// long as the handle. With `wait` off an invalid handle says that somebody else holds it.
// Throws std::system_error naming the file.
FileHandle lockFile(const std::filesystem::path &file, bool wait);

} // namespace agentd
