// Helper addresses of the DHCP relay: one request each, and what stands when one of them fails.
#include "tests/unit/bundle/callback_test.h"

namespace test {
namespace {

const std::string
    kConfig = "openconfig-relay-agent:relay-agent/dhcp/interfaces/interface=ethernet%201%2F1%2F1/config",
    kCall = "ui_ip_interface_config", kNone = R"({"id":"ethernet 1/1/1"})";

const Pattern helpers{R"({"id":"ethernet 1/1/1","helper-address":[$]})"};
const Pattern request{kCall +
                      R"( {"address":"10.0.0.$","name":"ethernet 1/1/1","helper_op":$,"helper_flag":1})"};

const std::string kFirst = helpers(R"("10.0.0.1")"), kBoth = helpers(R"("10.0.0.1","10.0.0.2")"),
                  kOthers = helpers(R"("10.0.0.2","10.0.0.3")"),
                  kNoAddress = helpers(R"("10.0.0.1","10.0.0.1%1","10.0.0.2")");

std::string add(int number)
{
    return request(number, 1);
}
std::string gone(int number)
{
    return request(number, 3);
}

constexpr char kInvalid[] = "ipv4 address is not valid";

const std::vector<Cell> kCells = {
    merged("one comes, one goes", kBoth, kOthers, {gone(1), add(3)}),
    merged("the last one goes", kFirst, kNone, {gone(1)}),
    merged("only what is beside them", kFirst,
           R"({"id":"ethernet 1/1/1","enable":true,"helper-address":["10.0.0.1"]})"),
    created("", kBoth, {add(1), add(2)}),
    created("without one", kNone),
    loud(created("the second is no address", kNoAddress, {add(1)}, 261, kInvalid)),
    deleted("", kBoth, {gone(1), gone(2)}),
    deleted("without one", kNone),
    replaced("all the old ones go", kBoth, kOthers, {gone(1), gone(2), add(2), add(3)}),
    loud(loaded("cannot occur", kFirst, {}, 4)),
    under(refusal(kCall, "no"),
          loud(replaced("the first is turned down", kBoth, kOthers, {gone(1)}, 1042, "no"))),
    under(noAnswer(kCall), loud(deleted("a dead switch", kBoth, {gone(1)}, 4))),
};

TEST(HelperAddresses, AreSentOneByOne)
{
    SwitchBench bench;
    check(bench, kConfig, kCells, Quiet{kFirst, kBoth}, [&] {
        for (const std::string &body : {kNone, helpers(R"("10.0.0.1","10.0.0.2")")})
            bench.call(apply, create, kConfig, kAbsent, body);
    });
}

TEST(HelperAddresses, TheOthersAreSentBehindOneThatIsTurnedDown)
{
    SwitchBench bench;
    bench.device().addFault(refusal(kCall, "no"));
    for (const EditOp op : {merge, create, del}) {
        const bool comes = op != del;
        const Callback done =
            bench.call(apply, op, kConfig, op == create ? kAbsent : MaybeText(comes ? kNone : kBoth),
                       comes ? MaybeText(kBoth) : kAbsent);
        EXPECT_EQ(ended(done), Ended(1042, {"no", "no"})) << op;
        EXPECT_THAT(bench.sent(), SizeIs(2)) << op;
    }
}

} // namespace
} // namespace test
