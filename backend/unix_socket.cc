#include "backend/unix_socket.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace backend {
namespace {

// Waits until `events` can be done on the socket. False: the deadline has passed.
bool waitFor(int fd, short events, Deadline deadline)
{
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return false;
        pollfd entry{fd, events, 0};
        const auto wait = static_cast<int>(std::min<std::int64_t>(left.count(), INT_MAX));
        const int ready = poll(&entry, 1, wait);
        if (ready > 0)
            return true;
        if (ready < 0 && errno != EINTR)
            return false;
    }
}

bool isBlocked(int error)
{
    return error == EAGAIN || error == EWOULDBLOCK;
}

} // namespace

int Descriptor::release()
{
    return std::exchange(fd_, -1);
}

void Descriptor::reset(int fd)
{
    if (fd_ >= 0)
        close(fd_);
    fd_ = fd;
}

std::size_t maxSocketPath()
{
    return sizeof(sockaddr_un::sun_path) - 1;
}

void checkSocketPath(const std::string &path)
{
    if (path.empty())
        throw std::invalid_argument("the path of a socket is empty");
    if (path.size() > maxSocketPath())
        throw std::invalid_argument("the path of a socket is too long (" + std::to_string(path.size()) +
                                    " of at most " + std::to_string(maxSocketPath()) + " bytes): " + path);
}

Descriptor connectTo(const std::string &path, Deadline deadline)
{
    Descriptor fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (!fd.isOpen() || path.size() > maxSocketPath())
        return Descriptor();
    std::memcpy(address.sun_path, path.data(), path.size());
    // A full queue of waiting clients says EAGAIN; there is no event to wait for, so look again.
    while (connect(fd.get(), reinterpret_cast<const sockaddr *>(&address), sizeof(address)) != 0) {
        if ((!isBlocked(errno) && errno != EINTR) || std::chrono::steady_clock::now() >= deadline)
            return Descriptor();
        poll(nullptr, 0, 5);
    }
    return fd;
}

bool sendAll(int fd, BytesView bytes, Deadline deadline)
{
    while (!bytes.empty()) {
        const ssize_t sent = send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent >= 0)
            bytes = bytes.subspan(static_cast<std::size_t>(sent));
        else if (errno != EINTR && (!isBlocked(errno) || !waitFor(fd, POLLOUT, deadline)))
            return false;
    }
    return true;
}

Received receiveSome(int fd, std::size_t limit, Bytes &out, Deadline deadline)
{
    out.resize(limit);
    for (;;) {
        const ssize_t got = recv(fd, out.data(), out.size(), MSG_DONTWAIT);
        if (got > 0) {
            out.resize(static_cast<std::size_t>(got));
            return Received::data;
        }
        if (got == 0 || (errno != EINTR && !isBlocked(errno)))
            return Received::closed;
        if (isBlocked(errno) && !waitFor(fd, POLLIN, deadline))
            return Received::timeout;
    }
}

} // namespace backend
