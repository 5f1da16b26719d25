#include "backend/frame.h"
#include "backend/transport.h"
#include "backend/unix_socket.h"

#include <cerrno>
#include <mutex>

#include <sys/socket.h>

namespace backend {
namespace {

constexpr std::size_t kReadSize = 16U << 10;

// Bytes or an end of file between two calls: the daemon went away, or spoke out of turn.
bool isIdle(int fd)
{
    char byte = 0;
    const ssize_t got = recv(fd, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    return got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
}

class SocketTransport : public Transport {
public:
    explicit SocketTransport(const std::string &path)
        : path_(path)
    {
        checkSocketPath(path_);
    }

    std::optional<Bytes> call(BytesView request, Deadline deadline) override
    {
        const std::lock_guard lock(mutex_);
        std::optional<Bytes> answer;
        if (isConnected(deadline))
            answer = exchange(request, deadline);
        // After a failure the stream may still bring the answer: only a new one is free of it.
        if (!answer)
            fd_.reset();
        return answer;
    }

private:
    bool isConnected(Deadline deadline)
    {
        if (!fd_.isOpen() || !isIdle(fd_.get()))
            fd_ = connectTo(path_, deadline);
        return fd_.isOpen();
    }

    std::optional<Bytes> exchange(BytesView request, Deadline deadline)
    {
        id_++;
        outgoing_.resize(kFrameHead);
        writeFrameHead(id_, request.size(), outgoing_.data());
        outgoing_.insert(outgoing_.end(), request.begin(), request.end());
        if (!sendAll(fd_.get(), outgoing_, deadline))
            return std::nullopt;
        FrameReader reader;
        for (;;) {
            if (receiveSome(fd_.get(), kReadSize, incoming_, deadline) != Received::data ||
                !reader.feed(incoming_))
                return std::nullopt;
            if (auto frame = reader.next())
                return frame->id == id_ ? std::optional(std::move(frame->content)) : std::nullopt;
        }
    }

    const std::string path_;
    std::mutex mutex_; // one call at a time; guards what follows
    Descriptor fd_;
    std::uint32_t id_ = 0;
    Bytes outgoing_, incoming_;
};

} // namespace

std::shared_ptr<Transport> makeSocketTransport(const std::string &path)
{
    return std::make_shared<SocketTransport>(path);
}

} // namespace backend
