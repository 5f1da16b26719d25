#include "switchsim/socket_server.h"

#include "backend/frame.h"
#include "switchsim/control.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace switchsim {
namespace {

using backend::Bytes;
using backend::BytesView;
using backend::Deadline;
using backend::Descriptor;
using backend::Received;

constexpr std::size_t kReadSize = 64U << 10;
constexpr std::chrono::seconds kSendTimeout{5}; // a client that doesn't read is dropped

bool isHungUp(int fd, std::chrono::milliseconds time)
{
    pollfd entry{fd, POLLRDHUP, 0};
    return poll(&entry, 1, static_cast<int>(std::min<std::int64_t>(time.count(), INT_MAX))) > 0;
}

bool sendNow(int fd, BytesView bytes)
{
    return backend::sendAll(fd, bytes, std::chrono::steady_clock::now() + kSendTimeout);
}

class SocketCaller : public Caller {
public:
    explicit SocketCaller(int fd)
        : fd_(fd)
    {
    }
    bool wait(std::chrono::milliseconds time) override { return !isHungUp(fd_, time); }

private:
    int fd_;
};

// One connection, for as long as it lives; `first` is what has arrived already.
class Peer {
public:
    Peer(Simulator &simulator, int fd)
        : simulator_(simulator)
        , fd_(fd)
    {
    }

    void run(Serves serves)
    {
        if (!receive())
            return;
        if (incoming_.front() != backend::kFrameMagic.front())
            serveControl();
        else if (serves == Serves::controlAndMessages)
            serveMessages();
    }

private:
    bool receive()
    {
        return backend::receiveSome(fd_, kReadSize, incoming_, Deadline::max()) == Received::data;
    }

    void serveMessages()
    {
        SocketCaller caller(fd_);
        backend::FrameReader reader;
        do {
            if (!reader.feed(incoming_))
                return;
            while (const auto frame = reader.next()) {
                const auto answer = simulator_.serve(frame->content, caller);
                if (!answer || !sendFrame(frame->id, *answer))
                    return;
            }
        } while (receive());
    }

    bool sendFrame(std::uint32_t id, BytesView content)
    {
        outgoing_.resize(backend::kFrameHead);
        backend::writeFrameHead(id, content.size(), outgoing_.data());
        outgoing_.insert(outgoing_.end(), content.begin(), content.end());
        return sendNow(fd_, outgoing_);
    }

    void serveControl()
    {
        const auto sendLine = [this](const std::string &text) {
            outgoing_.assign(text.begin(), text.end());
            outgoing_.push_back('\n');
            return sendNow(fd_, outgoing_);
        };
        const auto isAlive = [this] { return !isHungUp(fd_, std::chrono::milliseconds(0)); };
        std::string pending;
        do {
            pending.append(incoming_.begin(), incoming_.end());
            for (std::size_t end = 0; (end = pending.find('\n')) != std::string::npos;
                 pending.erase(0, end + 1)) {
                if (!runControl(simulator_, pending.substr(0, end), sendLine, isAlive))
                    return;
            }
        } while (pending.size() <= kMaxControlLine && receive());
    }

    Simulator &simulator_;
    int fd_;
    Bytes incoming_, outgoing_;
};

sockaddr_un addressOf(const std::string &path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.data(), path.size()); // the length is checked
    return address;
}

std::runtime_error cannotListen(const std::string &path, const std::string &why)
{
    return std::runtime_error("cannot listen on " + path + ": " + why);
}

// Removes the socket of a switch that died. Anything else that has the name stays.
void removeStale(const std::string &path)
{
    struct stat info { };
    if (lstat(path.c_str(), &info) != 0)
        return;
    if (!S_ISSOCK(info.st_mode))
        throw cannotListen(path, "there is a file of that name");
    if (backend::connectTo(path, std::chrono::steady_clock::now() + std::chrono::seconds(1)).isOpen())
        throw cannotListen(path, "another switch is listening there");
    unlink(path.c_str());
}

Descriptor listenOn(const std::string &path)
{
    backend::checkSocketPath(path);
    removeStale(path);
    Descriptor fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const auto address = addressOf(path);
    // The mode of the unbound socket becomes that of the file: at no time may others connect.
    if (!fd.isOpen() || fchmod(fd.get(), S_IRUSR | S_IWUSR) != 0 ||
        bind(fd.get(), reinterpret_cast<const sockaddr *>(&address), sizeof(address)) != 0 ||
        listen(fd.get(), SOMAXCONN) != 0)
        throw cannotListen(path, std::generic_category().message(errno));
    return fd;
}

} // namespace

SocketServer::SocketServer(Simulator &simulator, const std::string &path, Serves serves)
    : simulator_(simulator)
    , path_(path)
    , serves_(serves)
    , listener_(listenOn(path))
    , stop_(eventfd(0, EFD_CLOEXEC))
    , acceptor_([this] { acceptAll(); })
{
}

SocketServer::~SocketServer()
{
    unlink(path_.c_str());
    const std::uint64_t one = 1;
    if (write(stop_.get(), &one, sizeof(one)) == sizeof(one))
        acceptor_.join();
    for (auto &connection : connections_)
        shutdown(connection.fd.get(), SHUT_RDWR);
    for (auto &connection : connections_)
        connection.thread.join();
}

void SocketServer::acceptAll()
{
    for (;;) {
        pollfd entries[] = {{stop_.get(), POLLIN, 0}, {listener_.get(), POLLIN, 0}};
        if (poll(entries, 2, -1) < 0 && errno != EINTR)
            return;
        if (entries[0].revents != 0)
            return;
        reap();
        Descriptor fd(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (fd.isOpen() && connections_.size() < kMaxConnections)
            start(std::move(fd));
        else if (!fd.isOpen() && errno != EAGAIN && errno != EINTR)
            poll(nullptr, 0, 100); // out of descriptors: waiting connections would spin here
    }
}

void SocketServer::start(Descriptor fd)
try {
    auto &connection = connections_.emplace_back();
    connection.fd = std::move(fd);
    connection.thread = std::thread([this, &connection] {
        try {
            Peer(simulator_, connection.fd.get()).run(serves_);
        } catch (const std::bad_alloc &) {
            // The connection ends; the switch goes on.
        }
        shutdown(connection.fd.get(), SHUT_RDWR);
        connection.isDone = true;
    });
} catch (const std::system_error &) { // no thread to be had
    connections_.pop_back();
}

void SocketServer::reap()
{
    connections_.remove_if([](Connection &connection) {
        if (!connection.isDone)
            return false;
        connection.thread.join();
        return true;
    });
}

} // namespace switchsim
