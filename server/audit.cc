#include "server/audit.h"

#include "toolkit/log.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <exception>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace agentd {
namespace {

std::string timeStamp()
{
    const auto now = std::chrono::system_clock::now();
    const auto millis =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    char day[32], text[48];
    std::strftime(day, sizeof day, "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text, sizeof text, "%s.%03dZ", day, static_cast<int>(millis));
    return text;
}

std::string asLine(const AuditEvent &event)
{
    std::string line = timeStamp();
    line.append(" ").append(event.frontEnd);
    line.append(" user=").append(event.user.empty() ? "-" : quoted(event.user));
    line.append(" from=").append(event.peer);
    line.append(" request=").append(quoted(event.request));
    line.append(" outcome=").append(quoted(event.outcome)).append("\n");
    return line;
}

} // namespace

std::string quoted(std::string_view text)
{
    std::string result = "\"";
    for (const char c : text) {
        if (c >= 0x20 && c <= 0x7e && c != '"' && c != '\\') {
            result += c;
            continue;
        }
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\x%02x",
                      static_cast<unsigned>(static_cast<unsigned char>(c)));
        result += escaped;
    }
    return result += '"';
}

Audit::Audit(std::filesystem::path file, std::size_t limit)
    : file_(std::move(file))
    , limit_(limit)
{
    open();
}

void Audit::record(const AuditEvent &event) noexcept
{
    try {
        const std::lock_guard lock(mutex_);
        append(asLine(event));
        broken_ = false;
    } catch (const std::exception &failure) {
        if (!std::exchange(broken_, true))
            log_error("agentd: no audit trail: %s\n", failure.what());
    }
}

void Audit::open()
{
    handle_ = FileHandle(::open(file_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600));
    struct stat status { };
    if (!handle_ || ::fstat(handle_.get(), &status) != 0)
        throw std::system_error(errno, std::generic_category(), file_.string());
    size_ = static_cast<std::size_t>(status.st_size);
}

void Audit::append(std::string_view line)
{
    if (size_ > 0 && size_ + line.size() > limit_) {
        std::filesystem::rename(file_, file_.string() + ".1");
        open();
    }
    writeAll(handle_.get(), line, file_.string());
    size_ += line.size();
}

} // namespace agentd
