#include "backend/platform.h"
#include "backend/protected_port.h"
#include "backend/qos.h"
#include "backend/security.h"
#include "switch_fixture.h"

#include <chrono>
#include <stdexcept>
#include <thread>

namespace switchsim {
namespace {

using namespace std::chrono_literals;

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

    void add(
        FaultKind kind, const std::function<void(Fault &)> &change = [](Fault &) {})
    {
        Fault fault;
        fault.call = "ui_fe_qos_jumbo";
        fault.kind = kind;
        change(fault);
        device().addFault(fault);
    }
};
INSTANTIATE_TEST_SUITE_P(Ways, FaultTest, ::testing::Values(Way::inProcess, Way::socket), nameOfWay);

const std::string kFine = "0/0/none";

TEST_P(FaultTest, NullIsADeliveryFailureAndDoesNothing)
{
    add(FaultKind::null);
    EXPECT_EQ(askJumbo(), "null");
    EXPECT_EQ(
        lastLine(),
        Json::parse(R"({"call": "ui_fe_qos_jumbo", "request": {"opcode": 1, "value": 1}, "answer": null})"));
    EXPECT_EQ(device().show("jumbo")["enabled"], false);
    EXPECT_EQ(askJumbo(), "null") << "until it is cleared";
    device().clearFaults();
    EXPECT_EQ(askJumbo(), kFine);
}

TEST_P(FaultTest, NullGivesANonZeroResultAndNoAnswer)
{
    add(FaultKind::null, [](Fault &fault) { fault.call = "protected_port_config_apply"; });
    PportConfig request;
    pport_config_req_init(&request);
    CommonResp *answer = nullptr;
    EXPECT_NE(protected_port_config_apply(&request, &answer, 1), 0);
    EXPECT_EQ(answer, nullptr);
}

struct RefuseCase {
    std::optional<std::int32_t> uiErr, appErr;
    std::optional<std::string> text;
    std::string seen;
};

TEST_P(FaultTest, RefusalsHaveTheCodesAndTextThatWereAsked)
{
    const RefuseCase cases[] = {
        {{}, {}, {}, "1/0/none"}, {{}, {}, "busy", "1/0/busy"}, {7, {}, "", "7/0/"},
        {{}, 2, {}, "0/2/none"},  {0, 0, "odd", "0/0/odd"},     {-3, 6, "both", "-3/6/both"},
    };
    for (const auto &c : cases) {
        device().clearFaults();
        add(FaultKind::refuse, [&c](Fault &fault) {
            fault.uiErr = c.uiErr;
            fault.appErr = c.appErr;
            fault.text = c.text;
        });
        EXPECT_EQ(askJumbo(), c.seen);
    }
    EXPECT_EQ(device().show("jumbo")["enabled"], false);
}

TEST_P(FaultTest, CountAndAfterSayWhichCallsAreStruck)
{
    add(FaultKind::refuse, [](Fault &fault) {
        fault.after = 2;
        fault.count = 2;
    });
    std::vector<std::string> seen;
    for (int i = 0; i < 6; i++)
        seen.push_back(askJumbo());
    EXPECT_EQ(seen, (std::vector<std::string>{kFine, kFine, "1/0/none", "1/0/none", kFine, kFine}));
    EXPECT_TRUE(device().faults().empty());
}

TEST_P(FaultTest, TheFirstThatFitsStrikes)
{
    add(FaultKind::refuse, [](Fault &fault) {
        fault.uiErr = 5;
        fault.count = 1;
    });
    add(FaultKind::null, [](Fault &fault) { fault.count = 1; });
    EXPECT_EQ(askJumbo(), "5/0/none");
    EXPECT_EQ(askJumbo(), "null");
    EXPECT_EQ(askJumbo(), kFine);
}

TEST_P(FaultTest, AMessageNameChoosesAmongRequestsOfOneCall)
{
    const auto sendLimit = [] {
        BumRateLimitMsg message = BUM_RATE_LIMIT_MSG__INIT;
        message.op = 3;
        message.port_name = const_cast<char *>("ethernet 1/1/1");
        ProtobufCMessage *answer = nullptr;
        const int result =
            sec_protobuf_fe_config_handler(&message.base, &answer, 41, SEC_MSG_BUM_RATE_LIMIT, 0);
        protobuf_c_message_free_unpacked(answer, nullptr);
        return result;
    };
    Fault fault;
    fault.call = "sec_protobuf_fe_config_handler";
    fault.message = "acl_definition_request";
    device().addFault(fault);
    EXPECT_EQ(sendLimit(), 0);
    fault.message = "bum_rate_limit_msg";
    device().addFault(fault);
    EXPECT_NE(sendLimit(), 0);
}

TEST_P(FaultTest, ADelayedAnswerArrivesIfItsCallerWaits)
{
    add(FaultKind::delay, [](Fault &fault) { fault.ms = 80; });
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(askJumbo(), kFine);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 80ms);
    EXPECT_EQ(device().show("jumbo")["enabled"], true);
}

TEST_P(FaultTest, ADelayBeyondTheTimeoutIsADeliveryFailure)
{
    backend::setTimeout(60ms);
    add(FaultKind::delay, [](Fault &fault) {
        fault.ms = 60'000;
        fault.count = 1;
    });
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
    add(FaultKind::delay, [](Fault &fault) { fault.ms = 1'000; });
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
    Fault fault;
    fault.call = "ui_fe_nothing";
    EXPECT_THROW(device().addFault(fault), std::invalid_argument);
    fault.call = "get_platform_type";
    fault.kind = FaultKind::refuse;
    EXPECT_THROW(device().addFault(fault), std::invalid_argument) << "no reply to refuse with";
    fault.kind = FaultKind::exit;
    EXPECT_THROW(device().addFault(fault), std::invalid_argument) << "the test's own process";
    EXPECT_TRUE(device().faults().empty());
}

TEST_P(FaultTest, AGetterCanFailToo)
{
    device().setValue("platform-type", 4);
    add(FaultKind::null, [](Fault &fault) {
        fault.call = "get_platform_type";
        fault.count = 1;
    });
    EXPECT_EQ(get_platform_type(), 0);
    EXPECT_EQ(get_platform_type(), 4);
}

// A switch that goes away must neither keep a caller waiting nor be touched any more.
TEST(SwitchAway, EndsACallThatIsDelayed)
{
    auto device = startInProcessSwitch({});
    Fault fault;
    fault.call = "ui_fe_qos_jumbo";
    fault.kind = FaultKind::delay;
    fault.ms = 60'000;
    device->simulator().addFault(fault);
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
