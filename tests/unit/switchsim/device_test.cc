#include "switch_fixture.h"

#include "backend/envelope.h"
#include "backend/frame.h"
#include "backend/qos.h"
#include "backend/unix_socket.h"

#include <gmock/gmock.h>

#include <fstream>
#include <stdexcept>
#include <thread>

#include <sys/stat.h>

namespace switchsim {
namespace {

using namespace std::chrono_literals;
using backend::Bytes;

class Patient : public Caller {
public:
    bool wait(std::chrono::milliseconds) override { return true; }
};

Bytes requestFor(const char *call, const Bytes &message)
{
    Bytes bytes;
    const auto at = backend::beginRequest({call}, message.size(), bytes);
    std::copy(message.begin(), message.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
    return bytes;
}

TEST(Simulator, ServesNoBytesThatItDoesNotKnow)
{
    Simulator device;
    Patient caller;
    EXPECT_TRUE(device.serve(requestFor("ui_fe_qos_jumbo", {0x08, 10, 0x10, 0}), caller));
    EXPECT_FALSE(device.serve(Bytes{}, caller));
    EXPECT_FALSE(device.serve(requestFor("ui_fe_nothing", {}), caller));
    EXPECT_FALSE(device.serve(requestFor("", {}), caller));
    EXPECT_FALSE(device.serve(requestFor("ui_fe_qos_jumbo", {0x08, 10}), caller)) << "a member is missing";
    EXPECT_FALSE(device.serve(requestFor("ui_fe_qos_jumbo", {0x08, 10, 0x10, 0x80}), caller)) << "cut off";
    EXPECT_FALSE(device.serve(requestFor("sec_protobuf_fe_config_handler", {}), caller))
        << "no such message code";
    EXPECT_EQ(device.journal().readAfter(0, 10).size(), 1U);
}

TEST(Simulator, ShowsOneFamilyOrAll)
{
    Simulator device;
    const auto all = device.show();
    for (const auto &[word, state] : all.items())
        EXPECT_EQ(device.show(word), state) << word;
    EXPECT_GE(all.size(), 9U);
    EXPECT_EQ(all["interfaces"].size(), 24U);
    EXPECT_THROW(device.show("nothing"), std::invalid_argument);
}

TEST(Simulator, ValuesHaveNamesAndRanges)
{
    Simulator device;
    device.setValue("platform-type", 255);
    for (const auto &value : device.values())
        EXPECT_FALSE(value["meaning"].get<std::string>().empty());
    EXPECT_THROW(device.setValue("platform-type", 256), std::invalid_argument);
    EXPECT_THROW(device.setValue("fips-cc-status", 2), std::invalid_argument);
    EXPECT_THROW(device.setValue("fips-cc-status", -1), std::invalid_argument);
    EXPECT_THROW(device.setValue("nothing", 1), std::invalid_argument);
    EXPECT_EQ(device.values()[0]["value"], 255);
}

TEST(SocketFile, IsForItsOwnerOnlyAndGoesAwayAgain)
{
    const TemporaryFolder folder;
    const auto path = folder.path + "/switch.sock";
    {
        const auto device = startInProcessSwitch({folder.path, 5});
        struct stat info { };
        ASSERT_EQ(stat(path.c_str(), &info), 0);
        EXPECT_EQ(info.st_mode, static_cast<mode_t>(S_IFSOCK | S_IRUSR | S_IWUSR));
        EXPECT_EQ(device->simulator().values()[0]["value"], 5);
        EXPECT_THROW(startInProcessSwitch({folder.path, 1}), std::runtime_error) << "a live switch is there";
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(SocketFile, TakesOverFromADeadSwitchButNotFromAFile)
{
    const TemporaryFolder folder;
    const auto path = folder.path + "/switch.sock";
    // A socket that was bound and whose process died.
    const std::string dead = "import socket; socket.socket(socket.AF_UNIX).bind('" + path + "')";
    ASSERT_EQ(std::system(("python3 -c \"" + dead + "\"").c_str()), 0);
    EXPECT_NO_THROW(startInProcessSwitch({folder.path, 1}));
    std::ofstream(path) << "precious";
    EXPECT_THROW(startInProcessSwitch({folder.path, 1}), std::runtime_error);
    EXPECT_TRUE(std::filesystem::is_regular_file(path));
}

TEST(SocketFile, ErrorsAreOneClearLine)
{
    const auto messageFor = [](const std::string &stateDir) {
        try {
            startInProcessSwitch({stateDir, 1});
            return std::string("started");
        } catch (const std::exception &error) {
            return std::string(error.what());
        }
    };
    EXPECT_THAT(messageFor("/" + std::string(120, 'd')), ::testing::HasSubstr("too long"));
    EXPECT_THAT(messageFor("/nowhere"),
                ::testing::HasSubstr("cannot listen on /nowhere/switch.sock: No such file"));
}

// What a client may send to the socket of a separate switch, and what comes back.
class RawClient : public ::testing::Test {
protected:
    std::string exchange(const Bytes &sent, Serves serves = Serves::controlAndMessages)
    {
        Simulator device;
        const SocketServer server(device, folder.path + "/s", serves);
        const auto soon = std::chrono::steady_clock::now() + 2s;
        const auto fd = backend::connectTo(folder.path + "/s", soon);
        EXPECT_TRUE(backend::sendAll(fd.get(), sent, soon));
        Bytes got;
        const auto result = backend::receiveSome(fd.get(), 4096, got, soon);
        return result == backend::Received::data  ? std::string(got.begin(), got.end())
            : result == backend::Received::closed ? "closed"
                                                  : "silent";
    }

    static Bytes framed(const Bytes &content)
    {
        Bytes frame(backend::kFrameHead);
        backend::writeFrameHead(1, content.size(), frame.data());
        frame.insert(frame.end(), content.begin(), content.end());
        return frame;
    }

    TemporaryFolder folder;
};

TEST_F(RawClient, IsAnsweredOrCutOff)
{
    const auto good = framed(requestFor("ui_fe_qos_jumbo", {0x08, 10, 0x10, 0}));
    EXPECT_EQ(exchange(good).substr(0, 4),
              std::string(backend::kFrameMagic.begin(), backend::kFrameMagic.end()));
    EXPECT_EQ(exchange(good, Serves::controlOnly), "closed") << "no messages from outside";
    EXPECT_EQ(exchange(framed({9, 9})), "closed");
    EXPECT_EQ(exchange(framed(requestFor("ui_fe_nothing", {}))), "closed");
    EXPECT_EQ(exchange({0xf5, 'D', 'M', 9}), "closed");
    EXPECT_EQ(exchange(Bytes(70 * 1024, 'x')), "closed") << "a line without an end";
    EXPECT_THAT(exchange({'x', '\n'}), ::testing::StartsWith("{\"error\":"));
}

TEST(Connections, AreBoundedAndFreedAgain)
{
    const TemporaryFolder folder;
    Simulator device;
    const SocketServer server(device, folder.path + "/s", Serves::controlAndMessages);
    const auto transport = backend::makeSocketTransport(folder.path + "/s");
    const auto request = requestFor("ui_fe_qos_jumbo", {0x08, 10, 0x10, 0});
    const auto ask = [&] {
        return transport->call(request, std::chrono::steady_clock::now() + 2s).has_value();
    };
    {
        std::vector<backend::Descriptor> idle;
        for (std::size_t i = 0; i < SocketServer::kMaxConnections; i++)
            idle.push_back(backend::connectTo(folder.path + "/s", std::chrono::steady_clock::now() + 2s));
        EXPECT_FALSE(ask());
    }
    bool isServed = false;
    for (int i = 0; i < 100 && !isServed; i++) {
        isServed = ask();
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_TRUE(isServed);
}

TEST(Connections, OfSeveralClientsAreServedSideBySide)
{
    const TemporaryFolder folder;
    Simulator device;
    const SocketServer server(device, folder.path + "/s", Serves::controlAndMessages);
    const auto request = requestFor("ui_fe_qos_jumbo", {0x08, 1, 0x10, 1});
    std::vector<std::thread> clients;
    std::atomic<int> answered = 0;
    for (int i = 0; i < 4; i++) {
        clients.emplace_back([&] {
            const auto transport = backend::makeSocketTransport(folder.path + "/s");
            for (int n = 0; n < 50; n++)
                answered +=
                    transport->call(request, std::chrono::steady_clock::now() + 5s).has_value() ? 1 : 0;
        });
    }
    for (auto &client : clients)
        client.join();
    EXPECT_EQ(answered, 200);
    EXPECT_EQ(device.journal().readAfter(0, 1000).size(), 200U);
}

} // namespace
} // namespace switchsim
