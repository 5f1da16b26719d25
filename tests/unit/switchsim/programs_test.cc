// The programs as a user starts them.
#include "backend/qos.h"
#include "switch_fixture.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <thread>

#include <csignal>
#include <sys/wait.h>

namespace switchsim {
namespace {

using namespace std::chrono_literals;
using ::testing::EndsWith;
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

// A switchsim of its own process.
class Program {
public:
    Program(const std::string &socketPath, const std::string &output)
    {
        std::filesystem::remove(output); // of an earlier one
        pid_ = fork();
        if (pid_ == 0) {
            if (std::freopen(output.c_str(), "w", stdout) != nullptr)
                execl(SWITCHSIM_PROGRAM, "switchsim", "--socket", socketPath.c_str(), nullptr);
            _exit(127);
        }
        for (int i = 0; i < 500 && firstLine(output).empty(); i++)
            std::this_thread::sleep_for(10ms);
        ready = firstLine(output);
    }
    ~Program()
    {
        if (pid_ > 0)
            end(SIGKILL);
    }
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    // Exit code, or minus the signal that ended it.
    int wait()
    {
        int status = 0;
        waitpid(pid_, &status, 0);
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    int end(int signal)
    {
        kill(pid_, signal);
        return wait();
    }

    std::string ready;

private:
    static std::string firstLine(const std::string &file)
    {
        std::string line;
        std::ifstream stream(file);
        std::getline(stream, line);
        return stream.eof() ? "" : line; // without its end it is still being written
    }

    pid_t pid_;
};

class Programs : public ::testing::Test {
protected:
    Result ctl(const std::string &arguments)
    {
        return runCommand(std::string(SWITCHCTL_PROGRAM) + " --socket " + socket + " " + arguments);
    }
    std::string output() const { return folder.path + "/output"; }

    TemporaryFolder folder;
    std::string socket = folder.path + "/socket";
};

TEST_F(Programs, SwitchsimSaysReadyAndEndsCleanly)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        Program program(socket, output());
        EXPECT_EQ(program.ready, "ready socket=" + socket);
        // A client that is connected holds nothing up.
        const auto idle = backend::connectTo(socket, std::chrono::steady_clock::now() + 1s);
        EXPECT_TRUE(idle.isOpen());
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(program.end(signal), 0);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 1s);
        EXPECT_FALSE(std::filesystem::exists(socket));
    }
}

TEST_F(Programs, SwitchsimSaysWhyItCannotStart)
{
    const auto start = [](const std::string &arguments) {
        return runCommand(SWITCHSIM_PROGRAM " " + arguments);
    };
    const Program running(socket, output());
    const auto busy = start("--socket " + socket);
    EXPECT_EQ(busy.code, 1);
    EXPECT_EQ(busy.output, "switchsim: cannot listen on " + socket + ": another switch is listening there\n");
    EXPECT_EQ(start("--socket /nowhere/socket").code, 1);
    const auto tooLong = start("--socket /" + std::string(200, 's'));
    EXPECT_EQ(tooLong.code, 1);
    EXPECT_THAT(tooLong.output, HasSubstr("too long"));
    EXPECT_NE(start("").code, 0);
}

TEST_F(Programs, SwitchctlDrivesASwitch)
{
    const Program program(socket, output());
    backend::setTransport(backend::makeSocketTransport(socket));
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
    EXPECT_THAT(ctl("journal --since 1").output, HasSubstr("2  ui_fe_qos_jumbo  {\"opcode\":10"));
    EXPECT_EQ(ctl("journal --since 2").output, "");
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
    EXPECT_EQ(ctl("show").code, 1);
    EXPECT_EQ(ctl("show").output, "switchctl: no switch is listening on " + socket + "\n");
    const Program program(socket, output());
    const auto refused = ctl("show nothing");
    EXPECT_EQ(refused.code, 1);
    EXPECT_THAT(refused.output, HasSubstr("switchctl: there is nothing called nothing; there is platform, "));
    EXPECT_EQ(ctl("set nothing 1").code, 1);
    EXPECT_EQ(ctl("fault add ui_fe_nothing null").code, 1);
    for (const char *wrong : {"", "dance", "set platform-type", "set platform-type four", "fault",
                              "fault add", "--state /tmp show"})
        EXPECT_EQ(ctl(wrong).code, 2) << wrong;
    EXPECT_EQ(runCommand(SWITCHCTL_PROGRAM " show").code, 2);
    EXPECT_EQ(runCommand(SWITCHCTL_PROGRAM " --help").code, 0);
}

TEST_F(Programs, SwitchctlFindsTheSwitchOfAStateFolder)
{
    const auto device = startInProcessSwitch({folder.path, 1});
    const auto shown = runCommand(SWITCHCTL_PROGRAM " show jumbo --state " + folder.path);
    EXPECT_EQ(shown.code, 0);
    EXPECT_THAT(shown.output, HasSubstr("false"));
    const auto exit = runCommand(SWITCHCTL_PROGRAM " fault add ui_fe_qos_jumbo exit --state " + folder.path);
    EXPECT_EQ(exit.code, 1);
    EXPECT_THAT(exit.output, HasSubstr("exit is for a separate switchsim"));
}

TEST_F(Programs, ADyingSwitchIsADeliveryFailureUntilItIsBack)
{
    backend::setTransport(backend::makeSocketTransport(socket));
    {
        Program first(socket, output());
        EXPECT_EQ(ctl("fault add ui_fe_qos_jumbo exit --after 1").code, 0);
        QosJumboAnswer *answer = ui_fe_qos_jumbo(1, 1);
        EXPECT_NE(answer, nullptr);
        ui_fe_qos_jumbo_post_op(answer);
        EXPECT_EQ(ui_fe_qos_jumbo(1, 1), nullptr);
        EXPECT_EQ(first.wait(), 70);
        EXPECT_EQ(ui_fe_qos_jumbo(1, 1), nullptr) << "nobody is there";
    }
    const Program second(socket, output());
    QosJumboAnswer *answer = ui_fe_qos_jumbo(10, 0);
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer->jumbo_enabled, 0);
    ui_fe_qos_jumbo_post_op(answer);
    backend::setTransport(nullptr);
}

TEST_F(Programs, SwitchctlFollowsLive)
{
    const Program program(socket, output());
    const std::string followed = folder.path + "/followed";
    const pid_t follower = fork();
    if (follower == 0) {
        if (std::freopen(followed.c_str(), "w", stdout) != nullptr)
            execl(SWITCHCTL_PROGRAM, "switchctl", "--socket", socket.c_str(), "journal", "--follow", nullptr);
        _exit(127);
    }
    backend::setTransport(backend::makeSocketTransport(socket));
    ui_fe_qos_jumbo_post_op(ui_fe_qos_jumbo(10, 0));
    backend::setTransport(nullptr);
    std::string line;
    for (int i = 0; i < 500 && line.empty(); i++) {
        std::this_thread::sleep_for(10ms);
        std::ifstream stream(followed);
        std::getline(stream, line);
    }
    kill(follower, SIGTERM);
    waitpid(follower, nullptr, 0);
    EXPECT_THAT(line, HasSubstr("1  ui_fe_qos_jumbo"));
}

} // namespace
} // namespace switchsim
