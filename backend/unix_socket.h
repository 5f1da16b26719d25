// Small helpers around Unix-domain stream sockets, for both ends.
#pragma once

#include "backend/bytes.h"
#include "backend/transport.h"

#include <string>

namespace backend {

// A file descriptor that closes itself.
class Descriptor {
public:
    explicit Descriptor(int fd = -1)
        : fd_(fd)
    {
    }
    ~Descriptor() { reset(); }
    Descriptor(Descriptor &&other) noexcept
        : fd_(other.release())
    {
    }
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        reset(other.release());
        return *this;
    }
    int get() const { return fd_; }
    bool isOpen() const { return fd_ >= 0; }
    int release();
    void reset(int fd = -1);

private:
    int fd_;
};

// The longest path that a socket can have.
std::size_t maxSocketPath();

// Throws std::invalid_argument with a line for the user if `path` is empty or too long.
void checkSocketPath(const std::string &path);

// Connects to the socket `path`. Not open: nobody listens there, or the deadline has passed.
Descriptor connectTo(const std::string &path, Deadline deadline);

// Writes all bytes of a socket that does not block. False: the peer is gone or the deadline passed.
bool sendAll(int fd, BytesView bytes, Deadline deadline);

enum class Received { data, closed, timeout };

// Waits for bytes and puts at most `limit` of them into `out`, replacing what it held.
Received receiveSome(int fd, std::size_t limit, Bytes &out, Deadline deadline);

} // namespace backend
