// The socket of the switch: control lines for switchctl, and frames with messages if it has a process of
// its own. Both come on one path; the first byte of a connection tells which.
#pragma once

#include "backend/unix_socket.h"
#include "switchsim/simulator.h"

#include <atomic>
#include <list>
#include <string>
#include <thread>

namespace switchsim {

enum class Serves { controlOnly, controlAndMessages };

class SocketServer {
public:
    static constexpr std::size_t kMaxConnections = 64; // more are closed at once

    // Listens on `path` (mode 0600), taking the place of a socket that nobody listens on any more. Throws
    // std::invalid_argument (path too long) or std::runtime_error with one line for the user.
    SocketServer(Simulator &simulator, const std::string &path, Serves serves);
    ~SocketServer(); // ends all connections and removes the socket
    SocketServer(const SocketServer &) = delete;
    SocketServer &operator=(const SocketServer &) = delete;

private:
    struct Connection {
        backend::Descriptor fd;
        std::thread thread;
        std::atomic<bool> isDone{false};
    };
    void acceptAll();
    void start(backend::Descriptor fd);
    void reap();

    Simulator &simulator_;
    const std::string path_;
    const Serves serves_;
    backend::Descriptor listener_;
    backend::Descriptor stop_;          // an eventfd
    std::list<Connection> connections_; // of the accepting thread, and of the destructor behind it
    std::thread acceptor_;
};

} // namespace switchsim
