#include "server/files.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace agentd {
namespace {

[[noreturn]] void fail(const std::string &what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

FileHandle openOrFail(const std::filesystem::path &file, int flags, unsigned mode = 0)
{
    FileHandle handle(::open(file.c_str(), flags | O_CLOEXEC, mode));
    if (!handle)
        fail(file.string());
    return handle;
}

void syncOrFail(int descriptor, const std::string &name)
{
    if (::fsync(descriptor) != 0)
        fail(name);
}

} // namespace

FileHandle::~FileHandle()
{
    if (descriptor_ >= 0)
        ::close(descriptor_);
}

FileHandle::FileHandle(FileHandle &&other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1))
{
}

FileHandle &FileHandle::operator=(FileHandle &&other) noexcept
{
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

std::string readFile(const std::filesystem::path &file, std::size_t limit)
{
    const FileHandle handle = openOrFail(file, O_RDONLY);
    std::string content;
    char chunk[65536];
    for (;;) {
        const ssize_t got = ::read(handle.get(), chunk, sizeof chunk);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            fail(file.string());
        if (got == 0)
            return content;
        if (content.size() + static_cast<std::size_t>(got) > limit)
            throw std::system_error(EFBIG, std::generic_category(), file.string());
        content.append(chunk, static_cast<std::size_t>(got));
    }
}

void writeAll(int descriptor, std::string_view content, const std::string &name)
{
    while (!content.empty()) {
        const ssize_t written = ::write(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            fail(name);
        content.remove_prefix(static_cast<std::size_t>(written));
    }
}

void writeFileAtomically(const std::filesystem::path &file, std::string_view content, unsigned mode)
{
    const std::filesystem::path fresh = file.string() + ".new";
    {
        const FileHandle handle = openOrFail(fresh, O_WRONLY | O_CREAT | O_TRUNC, mode);
        // A left-over of a crash may have another mode.
        if (::fchmod(handle.get(), mode) != 0)
            fail(fresh.string());
        writeAll(handle.get(), content, fresh.string());
        syncOrFail(handle.get(), fresh.string());
    }
    if (::rename(fresh.c_str(), file.c_str()) != 0)
        fail(file.string());
    const auto folder = file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
    syncOrFail(openOrFail(folder, O_RDONLY | O_DIRECTORY).get(), folder.string());
}

FileHandle lockFile(const std::filesystem::path &file, bool wait)
{
    FileHandle handle = openOrFail(file, O_RDWR | O_CREAT, 0600);
    while (::flock(handle.get(), LOCK_EX | (wait ? 0 : LOCK_NB)) != 0) {
        if (errno == EWOULDBLOCK)
            return FileHandle();
        if (errno != EINTR)
            fail(file.string());
    }
    return handle;
}

} // namespace agentd
