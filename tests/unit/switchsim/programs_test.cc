// The programs as a user starts them.
#include "backend/qos.h"
#include "switch_fixture.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>

#include <sys/wait.h>

namespace switchsim {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct Result {
    int code;
    std::string output; // of both streams
};

Result runCommand(const std::string &command)
{
    Result result{-1, {}};
    FILE *pipe = popen((command + " 2>&1").c_str(), "r");
    std::array<char, 4096> some{};
    for (std::size_t got = 0; (got = fread(some.data(), 1, some.size(), pipe)) > 0;)
        result.output.append(some.data(), got);
    const int status = pclose(pipe);
    result.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

class Programs : public ::testing::Test {
protected:
    Result ctl(const std::string &arguments)
    {
        return runCommand(SWITCHCTL_PROGRAM " " + arguments + " --socket " + socket);
    }

    TemporaryFolder folder;
    std::string socket = folder.path() / "switch.sock";
    std::unique_ptr<InProcessSwitch> device = startInProcessSwitch({folder.path(), 1});
};

TEST_F(Programs, SwitchsimSaysWhyItCannotStart)
{
    const auto start = [](const std::string &arguments) {
        const Result result = runCommand(SWITCHSIM_PROGRAM " " + arguments);
        EXPECT_NE(result.code, 0);
        return result.output;
    };
    EXPECT_EQ(start("--socket " + socket),
              "switchsim: cannot listen on " + socket + ": another switch is listening there\n");
    EXPECT_THAT(start("--socket /nowhere/s"), HasSubstr("cannot listen on /nowhere/s: No such file"));
    EXPECT_THAT(start("--socket /" + std::string(200, 's')), HasSubstr("too long"));
    start("");
}

TEST_F(Programs, SwitchctlDrivesASwitch)
{
    backend::setTransport(device->transport());
    ui_fe_qos_jumbo_post_op(ui_fe_qos_jumbo(1, 1));
    ui_fe_qos_jumbo_post_op(ui_fe_qos_jumbo(10, 0));
    backend::setTransport(nullptr);

    const auto lines = ctl("journal --json");
    EXPECT_EQ(lines.code, 0);
    EXPECT_EQ(lines.output,
              R"({"seq":1,"call":"ui_fe_qos_jumbo","request":{"opcode":1,"value":1},)"
              R"("answer":{"reply":{"ui_err":0,"app_err":0},"jumbo_enabled":1}})"
              "\n"
              R"({"seq":2,"call":"ui_fe_qos_jumbo","request":{"opcode":10,"value":0},)"
              R"("answer":{"reply":{"ui_err":0,"app_err":0},"jumbo_enabled":1}})"
              "\n");
    EXPECT_THAT(ctl("journal --since 1").output, ::testing::StartsWith("2  ui_fe_qos_jumbo  {\"opcode\":10"));
    EXPECT_EQ(ctl("show jumbo").output, "{\n  \"enabled\": true\n}\n");
    EXPECT_EQ(ctl("set fips-cc-status 1").output, "");
    EXPECT_THAT(ctl("set").output, ::testing::ContainsRegex("fips-cc-status +1 "));
    EXPECT_EQ(ctl("fault add ui_fe_qos_jumbo refuse --ui-err 3 --text 'too busy' --count 2 --after 1").code,
              0);
    EXPECT_EQ(ctl("fault list").output,
              "{\"call\":\"ui_fe_qos_jumbo\",\"kind\":\"refuse\",\"ui_err\":3,\"text\":\"too "
              "busy\",\"count\":2,\"after\":1}\n");
    EXPECT_EQ(ctl("fault clear").code, 0);
    EXPECT_THAT(ctl("fault list").output, IsEmpty());
}

TEST_F(Programs, SwitchctlTellsRefusalsFromWrongUse)
{
    const auto refused = ctl("show nothing");
    EXPECT_EQ(refused.code, 1);
    EXPECT_THAT(refused.output, HasSubstr("switchctl: there is nothing called nothing; there is platform, "));
    EXPECT_EQ(ctl("set nothing 1").code, 1);
    EXPECT_EQ(ctl("fault add ui_fe_nothing null").code, 1);
    EXPECT_THAT(ctl("fault add ui_fe_qos_jumbo exit").output, HasSubstr("exit is for a separate switchsim"));
    for (const char *wrong : {"", "dance", "set platform-type four", "fault add", "--state /tmp show"})
        EXPECT_EQ(ctl(wrong).code, 2) << wrong;
    EXPECT_EQ(runCommand(SWITCHCTL_PROGRAM " --help").code, 0);
    const std::string byFolder = SWITCHCTL_PROGRAM " show jumbo --state " + folder.path().string();
    EXPECT_EQ(runCommand(byFolder).output, "{\n  \"enabled\": false\n}\n");
    device.reset();
    EXPECT_EQ(ctl("show").code, 1);
    EXPECT_EQ(ctl("show").output, "switchctl: no switch is listening on " + socket + "\n");
}

} // namespace
} // namespace switchsim
