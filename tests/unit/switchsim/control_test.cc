#include "switchsim/control.h"

#include "backend/qos.h"
#include "switch_fixture.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

namespace switchsim {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

class Control : public ::testing::Test {
protected:
    Control() { backend::setTransport(device->transport()); }
    ~Control() override { backend::setTransport(nullptr); }

    std::vector<std::string> run(const std::string &line)
    {
        std::vector<std::string> sent;
        const bool isThere = runControl(
            device->simulator(), line,
            [&sent](const std::string &text) {
                sent.push_back(text);
                return true;
            },
            [] { return true; });
        EXPECT_TRUE(isThere);
        return sent;
    }

    std::unique_ptr<InProcessSwitch> device = startInProcessSwitch({});
};

TEST_F(Control, AnswersNonsenseWithOneError)
{
    for (const char *line : {"", "x", "[]", "7", "{}", R"({"do": "dance"})", R"({"do": 7})",
                             R"({"do": "show", "word": "nothing"})", R"({"do": "show", "word": {}})",
                             R"({"do": "set", "name": "platform-type"})",
                             R"({"do": "set", "name": "platform-type", "value": "4"})",
                             R"({"do": "set", "name": "platform-type", "value": 4.5})",
                             R"({"do": "set", "name": "platform-type", "value": 99999999999})",
                             R"({"do": "journal", "since": -1})", R"({"do": "journal", "follow": "yes"})",
                             R"({"do": "fault-add", "call": "ui_fe_qos_jumbo"})",
                             R"({"do": "fault-add", "call": "ui_fe_qos_jumbo", "kind": "explode"})",
                             R"({"do": "fault-add", "call": "ui_fe_nothing", "kind": "null"})",
                             R"({"do": "fault-add", "call": "ui_fe_qos_jumbo", "kind": "delay", "ms": -5})"})
        EXPECT_THAT(run(line), ElementsAre(StartsWith(R"({"error":")"))) << line;
}

TEST_F(Control, FollowsTheJournalUntilTheClientIsGone)
{
    std::atomic<bool> isThere = true;
    std::atomic<int> lines = 0;
    std::thread follower([&] {
        EXPECT_FALSE(runControl(
            device->simulator(), R"({"do": "journal", "follow": true})",
            [&lines](const std::string &text) {
                EXPECT_THAT(text, StartsWith(R"({"line":)"));
                lines++;
                return true;
            },
            [&isThere] { return isThere.load(); }));
    });
    for (int i = 1; i <= 3; i++) {
        ui_fe_qos_jumbo_post_op(ui_fe_qos_jumbo(10, 0));
        for (int waited = 0; lines < i && waited < 2000; waited++)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_EQ(lines, i);
    }
    isThere = false;
    follower.join();
}

} // namespace
} // namespace switchsim
