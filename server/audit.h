// The audit trail: who asked for what, from where, and what came of it. Shared by all front ends.
#pragma once

#include "server/files.h"

#include <cstddef>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>

namespace agentd {

// One line of the trail. No member ever holds a password, a body or a query.
struct AuditEvent {
    std::string_view frontEnd; // "restconf", "netconf"
    std::string_view user;     // empty: nobody that the server knows, see Audit
    std::string_view peer;     // address and port
    std::string_view request;  // what was asked: method and path, or the operation; "login"
    std::string_view outcome;  // status, and a reason where there is one
};

// Writes DIR/audit.log (mode 0600), one line an event:
//   2024-05-01T09:30:00.123Z restconf user="admin" from=127.0.0.1:40112 request="PUT /restconf/..."
//   outcome="204"
// A name that is no user is left out, because people type passwords where the name belongs. Names and
// requests are quoted and escaped, so that no client can forge a line. The file is kept below a limit: the
// full one becomes audit.log.1.
class Audit {
public:
    static constexpr std::size_t kDefaultLimit = std::size_t{8} << 20;

    // Throws std::system_error if the file cannot be opened.
    explicit Audit(std::filesystem::path file, std::size_t limit = kDefaultLimit);

    // Never throws: what cannot be written is reported in the log, once until it works again.
    void record(const AuditEvent &event) noexcept;

private:
    void open();
    void append(std::string_view line);

    const std::filesystem::path file_;
    const std::size_t limit_;
    std::mutex mutex_;
    FileHandle handle_;
    std::size_t size_ = 0;
    bool broken_ = false;
};

// The text in double quotes; quotes, backslashes and bytes outside of printable ASCII as \xNN.
std::string quoted(std::string_view text);

} // namespace agentd
