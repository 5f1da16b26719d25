#include "switch_fixture.h"

#include "backend/envelope.h"
#include "backend/frame.h"
#include "backend/qos.h"
#include "backend/unix_socket.h"

#include <gmock/gmock.h>

#include <fstream>
#include <stdexcept>

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

TEST(Simulator, ValuesAndWordsHaveNamesAndRanges)
{
    Simulator device;
    EXPECT_THROW(device.show("nothing"), std::invalid_argument);
    device.setValue("platform-type", 255);
    const std::pair<const char *, int> bad[] = {
        {"platform-type", 256}, {"fips-cc-status", 2}, {"fips-cc-status", -1}, {"nothing", 1}};
    for (const auto &[name, value] : bad)
        EXPECT_THROW(device.setValue(name, value), std::invalid_argument) << name << value;
    EXPECT_EQ(device.values()[0]["value"], 255);
}

TEST(SocketFile, IsForItsOwnerOnlyAndGoesAwayAgain)
{
    const TemporaryFolder folder;
    const auto path = folder.path() / "switch.sock";
    {
        const auto device = startInProcessSwitch({folder.path(), 5});
        EXPECT_EQ(std::filesystem::status(path).permissions(),
                  std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
        EXPECT_EQ(device->simulator().values()[0]["value"], 5);
    }
    EXPECT_FALSE(std::filesystem::exists(path));
    // It takes over from a dead switch, and not from a file.
    const std::string dead = "import socket; socket.socket(socket.AF_UNIX).bind('" + path.string() + "')";
    ASSERT_EQ(std::system(("python3 -c \"" + dead + "\"").c_str()), 0);
    EXPECT_NO_THROW(startInProcessSwitch({folder.path(), 1}));
    std::ofstream(path) << "precious";
    EXPECT_THROW(startInProcessSwitch({folder.path(), 1}), std::runtime_error);
    EXPECT_TRUE(std::filesystem::is_regular_file(path));
}

// What a client may send to the socket of a separate switch, and what comes back.
class RawClient : public ::testing::Test {
protected:
    std::string exchange(const Bytes &sent, Serves serves = Serves::controlAndMessages)
    {
        Simulator device;
        const std::string socket = folder.path() / "s";
        const SocketServer server(device, socket, serves);
        const auto soon = std::chrono::steady_clock::now() + 2s;
        const auto fd = backend::connectTo(socket, soon);
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

} // namespace
} // namespace switchsim
