// The NETCONF sessions there are: numbers, counters, and ending one from another one.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace agentd::netconf {

using SystemTime = std::chrono::system_clock::time_point;

// What a session and the server as a whole count (RFC 6022).
struct Counters {
    std::atomic<std::uint32_t> inRpcs{0}, inBadRpcs{0}, outRpcErrors{0};
};

struct SessionRecord {
    std::uint32_t id = 0;
    std::string user;
    std::string peer; // address and port
    SystemTime since;
    Counters counters;
    std::atomic<bool> hasEnded{false}; // what still waits for its turn is not carried out any more
};
using SessionPointer = std::shared_ptr<SessionRecord>;

// Members may be called from any thread.
class Sessions {
public:
    // `kill` ends the session's connection; it is called from any thread and must not wait.
    SessionPointer begin(const std::string &user, const std::string &peer, std::function<void()> kill);
    // The connection is gone. `orderly`: the client asked for it.
    void end(const SessionPointer &session, bool orderly);

    // Ends a session's connection; what still waits for its turn is not carried out any more. Null: there is
    // none.
    SessionPointer kill(std::uint32_t id);
    std::vector<SessionPointer> all() const;
    std::size_t count() const;

    // Of the server since its start, sessions that ended included.
    Counters totals;
    std::atomic<std::uint32_t> inBadHellos{0}, begun{0}, dropped{0};
    const SystemTime start = std::chrono::system_clock::now();

private:
    struct Entry {
        SessionPointer record;
        std::function<void()> kill;
    };
    mutable std::mutex mutex_;
    std::map<std::uint32_t, Entry> entries_;
    std::uint32_t last_ = 0;
};

} // namespace agentd::netconf
