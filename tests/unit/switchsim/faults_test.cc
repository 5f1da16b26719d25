#include "backend/qos.h"
#include "switch_fixture.h"

#include <chrono>
#include <stdexcept>
#include <thread>

namespace switchsim {
namespace {

using namespace std::chrono_literals;

// A fault with everything left open.
struct Wanted {
    std::string call = "ui_fe_qos_jumbo";
    FaultKind kind = FaultKind::null;
    std::string message = "";
    std::optional<std::int32_t> uiErr = {}, appErr = {};
    std::optional<std::string> text = {};
    std::uint32_t ms = 0, count = 0, after = 0;

    Fault fault() const { return {call, kind, message, uiErr, appErr, text, ms, count, after}; }
};

class FaultTest : public SwitchTest {
protected:
    // "null" for no answer, else the reply's codes and text.
    static std::string askJumbo(int value = 1)
    {
        QosJumboAnswer *answer = ui_fe_qos_jumbo(1, value);
        if (answer == nullptr)
            return "null";
        const CommonResp &reply = *answer->reply;
        const std::string text = std::to_string(reply.ui_err) + "/" + std::to_string(reply.app_err) + "/" +
            (reply.reply_buf == nullptr ? "none" : reply.reply_buf);
        ui_fe_qos_jumbo_post_op(answer);
        return text;
    }

    void add(const Wanted &wanted) { device().addFault(wanted.fault()); }
};
INSTANTIATE_TEST_SUITE_P(Ways, FaultTest, ::testing::Values(Way::inProcess, Way::socket), nameOfWay);

const std::string kFine = "0/0/none";

TEST_P(FaultTest, NullIsADeliveryFailureAndDoesNothing)
{
    add({});
    EXPECT_EQ(askJumbo(), "null");
    EXPECT_EQ(
        lastLine(),
        Json::parse(R"({"call": "ui_fe_qos_jumbo", "request": {"opcode": 1, "value": 1}, "answer": null})"));
    EXPECT_EQ(device().show("jumbo")["enabled"], false);
    EXPECT_EQ(askJumbo(), "null") << "until it is cleared";
    device().clearFaults();
    EXPECT_EQ(askJumbo(), kFine);
}

TEST_P(FaultTest, RefusalsHaveTheCodesAndTextThatWereAsked)
{
    const std::pair<Wanted, const char *> cases[] = {
        {{.kind = FaultKind::refuse}, "1/0/none"},
        {{.kind = FaultKind::refuse, .text = "busy"}, "1/0/busy"},
        {{.kind = FaultKind::refuse, .uiErr = 7, .text = ""}, "7/0/"},
        {{.kind = FaultKind::refuse, .appErr = 2}, "0/2/none"},
        {{.kind = FaultKind::refuse, .uiErr = -3, .appErr = 6, .text = "both"}, "-3/6/both"},
    };
    for (const auto &[fault, seen] : cases) {
        device().clearFaults();
        add(fault);
        EXPECT_EQ(askJumbo(), seen);
    }
    EXPECT_EQ(device().show("jumbo")["enabled"], false);
}

TEST_P(FaultTest, CountAndAfterSayWhichCallsAreStruckAndTheFirstThatFitsStrikes)
{
    add({.kind = FaultKind::refuse, .count = 2, .after = 2});
    add({.count = 1});
    std::string seen;
    for (int i = 0; i < 6; i++)
        seen += askJumbo() + " ";
    EXPECT_EQ(seen, "null 0/0/none 1/0/none 1/0/none 0/0/none 0/0/none ");
    EXPECT_TRUE(device().faults().empty());
}

TEST_P(FaultTest, ADelayBeyondTheTimeoutIsADeliveryFailure)
{
    backend::setTimeout(60ms);
    add({.kind = FaultKind::delay, .ms = 60'000, .count = 1});
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(askJumbo(), "null");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);
    backend::setTimeout(5s);
    EXPECT_EQ(askJumbo(0), kFine) << "the late answer is not taken for this one";
    // Over the socket the switch learns a little later that nobody waits.
    ASSERT_TRUE(device().journal().waitAfter(0, 5s));
    ASSERT_EQ(journal().size(), 2U);
    EXPECT_EQ(journal()[0]["answer"], nullptr);
    EXPECT_EQ(journal()[1]["request"]["value"], 0);
    EXPECT_EQ(device().show("jumbo")["enabled"], false) << "a late request never overtakes";
}

TEST_P(FaultTest, ADelayHoldsUpNobodyElse)
{
    add({.kind = FaultKind::delay, .ms = 1'000});
    std::thread slow([] { askJumbo(); });
    while (device().show("jumbo")["enabled"] == false)
        std::this_thread::sleep_for(1ms);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(device().show("jumbo")["enabled"], true);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 500ms);
    slow.join();
}

TEST_P(FaultTest, WhatCannotFailSoIsRefused)
{
    EXPECT_THROW(add({.call = "ui_fe_nothing"}), std::invalid_argument);
    EXPECT_THROW(add({.call = "get_platform_type", .kind = FaultKind::refuse}), std::invalid_argument)
        << "no reply";
    EXPECT_THROW(add({.kind = FaultKind::exit}), std::invalid_argument) << "the test's own process";
    EXPECT_TRUE(device().faults().empty());
}

// A switch that goes away must neither keep a caller waiting nor be touched any more.
TEST(SwitchAway, EndsACallThatIsDelayed)
{
    auto device = startInProcessSwitch({});
    device->simulator().addFault(Wanted{.kind = FaultKind::delay, .ms = 60'000}.fault());
    backend::setTransport(device->transport());
    std::thread caller([] { EXPECT_EQ(ui_fe_qos_jumbo(1, 1), nullptr); });
    while (device->simulator().show("jumbo")["enabled"] == false)
        std::this_thread::sleep_for(1ms);
    device.reset();
    caller.join();
    EXPECT_EQ(ui_fe_qos_jumbo(1, 1), nullptr) << "the transport outlives its switch";
    backend::setTransport(nullptr);
}

} // namespace
} // namespace switchsim
