#include "server/options.h"

#include <gmock/gmock.h>

namespace agentd {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

Options parsed(std::vector<const char *> arguments)
{
    arguments.insert(arguments.begin(), "agentd");
    return parseOptions(static_cast<int>(arguments.size()), arguments.data());
}

TEST(CommandLine, SetsEverything)
{
    const auto options = std::get<ServeOptions>(
        parsed({"--state",          "/s",      "--restconf", "[::1]:0", "--netconf", "localhost:1",
                "--device",         "unix:/d", "--platform", "4",       "--bundle",  "other",
                "--modules",        "/a:/b",   "--factory",  "/f",      "--log",     "9",
                "--device-timeout", "250"}));
    EXPECT_EQ(options.restconf.host, "::1");
    EXPECT_EQ(options.restconf.port, 0);
    EXPECT_EQ(options.netconf.host, "localhost");
    EXPECT_EQ(options.device.where, "unix:/d");
    EXPECT_EQ(options.device.platform, 4);
    EXPECT_EQ(options.device.timeout, std::chrono::milliseconds(250));
    EXPECT_EQ(options.bundle, "other");
    EXPECT_THAT(options.moduleDirs, ElementsAre("/a", "/b"));
    EXPECT_EQ(options.factory, "/f");
    EXPECT_EQ(options.logLevel, 9);
}

TEST(CommandLine, TakesTheStateBeforeAndBehindAUserCommand)
{
    for (const auto &arguments : {std::vector<const char *>{"user", "passwd", "op", "--state", "/s"},
                                  std::vector<const char *>{"--state", "/s", "user", "passwd", "op"}}) {
        const auto options = std::get<UserOptions>(parsed(arguments));
        EXPECT_EQ(options.action, UserOptions::Action::passwd);
        EXPECT_EQ(options.name, "op");
        EXPECT_EQ(options.stateDir, "/s");
    }
}

TEST(CommandLine, IsRefusedWithAReason)
{
    const struct {
        std::vector<const char *> arguments;
        const char *reason;
    } cases[] = {
        {{}, "--state"},
        {{"--state", "/s", "--restconf", "8443"}, "HOST:PORT"},
        {{"--state", "/s", "--restconf", "h:65536"}, "HOST:PORT"},
        {{"--state", "/s", "--restconf", "::1:80"}, "HOST:PORT"},
        {{"--state", "/s", "--netconf", ":1"}, "HOST:PORT"},
        {{"--state", "/s", "--log", "10"}, "--log"},
        {{"--state", "/s", "--device-timeout", "0"}, "--device-timeout"},
        {{"--state", "/s", "--unknown"}, "--unknown"},
        {{"--state", "/s", "user"}, "subcommand"},
        {{"--state", "/s", "user", "add"}, "NAME"},
    };
    for (const auto &c : cases) {
        try {
            parsed(c.arguments);
            ADD_FAILURE() << c.reason;
        } catch (const CommandLineExit &exit) {
            EXPECT_NE(exit.status, 0);
            EXPECT_THAT(exit.text, HasSubstr(c.reason));
        }
    }
}

} // namespace
} // namespace agentd
