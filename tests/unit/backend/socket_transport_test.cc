#include "backend/frame.h"
#include "backend/transport.h"
#include "backend/unix_socket.h"
#include "scripted_transport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <thread>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace backend {
namespace {

using namespace std::chrono_literals;

// One connection as the daemon sees it.
class Link {
public:
    explicit Link(int fd)
        : fd_(fd)
    {
    }
    std::optional<Frame> read()
    {
        Bytes some;
        while (true) {
            if (auto frame = reader_.next())
                return frame;
            if (receiveSome(fd_, 4096, some, std::chrono::steady_clock::now() + 5s) != Received::data ||
                !reader_.feed(some))
                return std::nullopt;
        }
    }
    void write(const Bytes &bytes) { sendAll(fd_, bytes, std::chrono::steady_clock::now() + 5s); }
    void answer(const Frame &frame) { write(framed(frame.id, frame.content)); } // an echo

private:
    int fd_;
    FrameReader reader_;
};

// A daemon whose connections are served one after the other by what the test says.
class Daemon {
public:
    Daemon(const std::string &path, std::function<void(Link &, int connection)> serve)
        : listener_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.data(), path.size());
        unlink(path.c_str());
        if (bind(listener_.get(), reinterpret_cast<sockaddr *>(&address), sizeof(address)) != 0 ||
            listen(listener_.get(), 5) != 0)
            throw std::runtime_error("no socket for the test");
        thread_ = std::thread([this, serve] {
            for (int count = 0;; count++) {
                const Descriptor fd(accept(listener_.get(), nullptr, nullptr));
                if (!fd.isOpen())
                    return;
                connections++;
                Link link(fd.get());
                serve(link, count);
            }
        });
    }
    ~Daemon()
    {
        shutdown(listener_.get(), SHUT_RDWR);
        thread_.join();
    }
    Daemon(const Daemon &) = delete;
    Daemon &operator=(const Daemon &) = delete;

    std::atomic<int> connections{0};

private:
    Descriptor listener_;
    std::thread thread_;
};

void echoAll(Link &link, int)
{
    while (const auto frame = link.read())
        link.answer(*frame);
}

class SocketTransportTest : public ::testing::Test {
protected:
    SocketTransportTest() { std::filesystem::create_directory(dir); }
    ~SocketTransportTest() override
    {
        transport.reset(); // the daemon waits for the end of its connection
        daemon.reset();
        std::filesystem::remove_all(dir);
    }

    void start(std::function<void(Link &, int connection)> serve) { daemon.emplace(path, std::move(serve)); }
    std::optional<Bytes> call(const Bytes &request, std::chrono::milliseconds patience = 5s)
    {
        return transport->call(request, std::chrono::steady_clock::now() + patience);
    }

    const std::string dir =
        std::filesystem::temp_directory_path() / ("backend_test_" + std::to_string(getpid()));
    const std::string path = dir + "/daemon";
    std::shared_ptr<Transport> transport = makeSocketTransport(path);
    std::optional<Daemon> daemon;
};

TEST_F(SocketTransportTest, CarriesBytesBothWaysOverOneConnection)
{
    start(echoAll);
    EXPECT_EQ(call({1, 2, 3}), Bytes({1, 2, 3}));
    EXPECT_EQ(call({}), Bytes());
    const Bytes large(kMaxMessage, 0xf5);
    EXPECT_EQ(call(large), large);
    EXPECT_EQ(daemon->connections, 1);
}

TEST_F(SocketTransportTest, NobodyThereFailsAtOnceAndLaterWorks)
{
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(call({1}), std::nullopt);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 1s);
    start(echoAll);
    EXPECT_EQ(call({1}), Bytes({1}));
}

TEST_F(SocketTransportTest, ARestartBetweenTwoCallsIsNotNoticed)
{
    start([](Link &link, int) {
        if (const auto frame = link.read())
            link.answer(*frame);
    });
    EXPECT_EQ(call({1}), Bytes({1}));
    daemon.reset();
    start(echoAll);
    EXPECT_EQ(call({2}), Bytes({2}));
}

TEST_F(SocketTransportTest, ALateAnswerIsNeverTheNextCallsAnswer)
{
    start([](Link &link, int connection) {
        while (const auto frame = link.read()) {
            if (connection == 0)
                std::this_thread::sleep_for(150ms);
            link.answer(*frame);
        }
    });
    EXPECT_EQ(call({1}, 50ms), std::nullopt);
    EXPECT_EQ(call({2}), Bytes({2}));
    EXPECT_EQ(daemon->connections, 2);
}

TEST_F(SocketTransportTest, SilenceEndsWithTheDeadline)
{
    start([](Link &link, int) { // reads until the other side hangs up
        while (link.read()) { }
    });
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(call({1}, 100ms), std::nullopt);
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(took, 100ms);
    EXPECT_LT(took, 2s);
}

TEST_F(SocketTransportTest, ADaemonThatDoesNotReadCannotHoldTheCall)
{
    std::atomic<bool> isOver = false;
    start([&isOver](Link &, int) {
        while (!isOver)
            std::this_thread::sleep_for(5ms);
    });
    EXPECT_EQ(call(Bytes(kMaxMessage), 100ms), std::nullopt);
    isOver = true;
    daemon.reset();
}

// What a daemon may answer wrongly: the call fails, and the next one works on a new connection.
TEST_F(SocketTransportTest, ABadAnswerFailsTheCallAndNotTheNext)
{
    void (*const answers[])(Link &, const Frame &) = {
        [](Link &, const Frame &) {}, // hangs up
        [](Link &link, const Frame &) {
            link.write({'n', 'o', '\n'});
        },
        [](Link &link, const Frame &frame) {
            auto bytes = framed(frame.id, {1, 2, 3});
            bytes.resize(bytes.size() - 1);
            link.write(bytes);
        },
        [](Link &link, const Frame &frame) { link.write(framed(frame.id + 1, {1})); },
        [](Link &link, const Frame &frame) {
            Bytes head(kFrameHead);
            writeFrameHead(frame.id, kMaxFrame + 1, head.data());
            link.write(head);
        }};
    for (const auto &answer : answers) {
        SCOPED_TRACE(&answer - answers);
        start([answer](Link &link, int connection) {
            while (const auto frame = link.read()) {
                if (connection == 0)
                    return answer(link, *frame);
                link.answer(*frame);
            }
        });
        EXPECT_EQ(call({1}), std::nullopt);
        EXPECT_EQ(call({2}), Bytes({2}));
        transport = makeSocketTransport(path);
        daemon.reset();
    }
}

TEST_F(SocketTransportTest, AnAnswerNobodyAskedForIsThrownAway)
{
    start([](Link &link, int) {
        while (const auto frame = link.read()) {
            link.answer(*frame);
            link.write(framed(frame->id + 1, {66})); // a guess at the next call's number
        }
    });
    EXPECT_EQ(call({1}), Bytes({1}));
    std::this_thread::sleep_for(50ms); // let the guess arrive
    EXPECT_EQ(call({2}), Bytes({2}));
}

TEST(SocketPath, MustFitIntoASocketAddress)
{
    const std::string longest(maxSocketPath(), 'p');
    EXPECT_NO_THROW(makeSocketTransport(longest));
    try {
        makeSocketTransport(longest + "p");
        FAIL() << "taken";
    } catch (const std::invalid_argument &error) {
        EXPECT_NE(std::string(error.what()).find("too long"), std::string::npos) << error.what();
    }
    EXPECT_THROW(makeSocketTransport(""), std::invalid_argument);
}

} // namespace
} // namespace backend
