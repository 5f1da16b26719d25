// How requests reach the device: chosen by the host, used by all client functions.
#pragma once

#include "backend/bytes.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace backend {

using Deadline = std::chrono::steady_clock::time_point;

// Carries one request at a time to the device. The bytes are those of backend/envelope.h, the same on
// every transport.
class Transport {
public:
    virtual ~Transport() = default;

    // Sends a request and blocks until its answer is there, the device is found dead, or the deadline has
    // passed. Nothing: a delivery failure; the transport is ready for the next call. May be called
    // from several threads. Must not throw.
    virtual std::optional<Bytes> call(BytesView request, Deadline deadline) = 0;
};

inline constexpr std::chrono::milliseconds kDefaultTimeout{30'000};

// Sets the transport of the process; null takes it away, and every call fails. A call that is on its
// way ends on the transport that it began with.
void setTransport(std::shared_ptr<Transport> transport);

// The longest time that a call may take, for all calls from now on; at least 1 ms, kDefaultTimeout
// until it is set.
void setTimeout(std::chrono::milliseconds timeout);

// A transport to a switch in another process, which listens on the Unix-domain socket `path`. Connects
// with the first call, and again after every failure. A late answer is never taken for a later
// call's. Throws std::invalid_argument, with a line for the user, if the path is too long for a socket.
std::shared_ptr<Transport> makeSocketTransport(const std::string &path);

} // namespace backend
