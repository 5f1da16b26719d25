// Accepts connections of one protocol, keeps count of them, and gives the places of those who do not log in
// to others.
#pragma once

#include "toolkit/log.h"

#include <algorithm>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/system/system_error.hpp>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace agentd {

// A Connection has stop() and giveWay(), to be called from any thread, and start().
template <class Connection>
class Listener {
public:
    // `protocol` is its name in the log. `acceptor` listens already.
    Listener(boost::asio::io_context &io, boost::asio::ip::tcp::acceptor acceptor, const char *protocol)
        : io_(io)
        , acceptor_(std::move(acceptor))
        , pause_(acceptor_.get_executor())
        , protocol_(protocol)
    {
    }
    virtual ~Listener() = default;
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;

    void start()
    {
        boost::asio::post(acceptor_.get_executor(), [this] { accept(); });
    }

    // From any thread: accepts no more and asks every connection to end.
    void stop()
    {
        boost::asio::post(acceptor_.get_executor(), [this] {
            boost::system::error_code ignored;
            acceptor_.close(ignored);
            pause_.cancel();
        });
        for (const auto &connection : live())
            connection->stop();
    }

    std::size_t connections() const
    {
        const std::lock_guard lock(register_->mutex);
        return register_->connections.size();
    }

protected:
    using Socket = boost::asio::ip::tcp::socket;
    using OnGone = std::function<void()>;

    virtual bool isFull() const = 0;
    // The connection for a socket that there is a place for, which calls `onGone` at its end; null: it ended
    // already. Throws boost::system::system_error where sockets have run out.
    virtual std::shared_ptr<Connection> connect(Socket socket, OnGone onGone) = 0;

private:
    // Outlives the listener while connections do, each of which takes itself off.
    struct Register {
        std::mutex mutex;
        std::uint64_t last = 0;
        std::map<std::uint64_t, std::weak_ptr<Connection>> connections;
    };

    // Handed out as owners and used without the lock: the last owner of a connection takes that lock.
    std::vector<std::shared_ptr<Connection>> live() const
    {
        std::vector<std::shared_ptr<Connection>> all;
        const std::lock_guard lock(register_->mutex);
        all.reserve(register_->connections.size());
        for (const auto &[number, weak] : register_->connections) {
            if (auto connection = weak.lock())
                all.push_back(std::move(connection));
        }
        return all;
    }

    // The one that has had the longest time to log in, and did not, ends.
    bool makeRoom() const
    {
        const auto all = live();
        return std::any_of(all.begin(), all.end(),
                           [](const auto &connection) { return connection->giveWay(); });
    }

    void accept()
    {
        if (!acceptor_.is_open())
            return;
        acceptor_.async_accept(
            boost::asio::make_strand(io_),
            [this](boost::system::error_code error, Socket socket) { onAccepted(error, std::move(socket)); });
    }

    void onAccepted(boost::system::error_code error, Socket socket)
    {
        if (!acceptor_.is_open())
            return;
        if (!error) {
            try {
                admit(std::move(socket));
            } catch (const boost::system::system_error &failure) {
                error = failure.code();
            }
        }
        if (!error)
            return accept();
        // Out of descriptors, most likely: asking again at once would only burn the processor.
        log_error("agentd: cannot accept a connection: %s\n", error.message().c_str());
        pause_.expires_after(kPause);
        pause_.async_wait([this](boost::system::error_code) { accept(); });
    }

    void admit(Socket socket)
    {
        const bool full = isFull();
        if (full && !std::exchange(wasFull_, true))
            log_error("agentd: too many %s connections are open: those that are not logged in give way\n",
                      protocol_);
        if (full && !makeRoom())
            return; // the socket closes
        wasFull_ = full;
        std::uint64_t number = 0;
        {
            const std::lock_guard lock(register_->mutex);
            number = ++register_->last;
        }
        const auto connection = connect(std::move(socket), [all = register_, number] {
            const std::lock_guard lock(all->mutex);
            all->connections.erase(number);
        });
        if (!connection)
            return;
        {
            const std::lock_guard lock(register_->mutex);
            register_->connections.emplace(number, connection);
        }
        connection->start();
    }

    static constexpr std::chrono::milliseconds kPause{100};

    boost::asio::io_context &io_;
    boost::asio::ip::tcp::acceptor acceptor_;
    boost::asio::steady_timer pause_;
    const char *protocol_;
    std::shared_ptr<Register> register_ = std::make_shared<Register>();
    bool wasFull_ = false;
};

} // namespace agentd
