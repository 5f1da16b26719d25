// What the flash holds: four read-outs, each of one item, that never fail for want of an answer.
#include "backend/flash.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/bundle/log_capture.h"
#include "tests/unit/platform/scripted_device.h"

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;

const std::string kFlash = "lyn-openconfig-flash:flash", kCall = "ui_fe_flash_item_req";

struct Item {
    std::string name; // of the container
    int number;
    std::string value, logged; // of a new switch
};
class FlashItemRead : public testing::TestWithParam<Item> {
protected:
    std::string path() const { return kFlash + "/" + GetParam().name; }
    std::string registered() const { return "/" + kFlash + "/lyn-openconfig-flash:" + GetParam().name; }
    std::string document(const std::string &value) const
    {
        return "{\"lyn-openconfig-flash:" + GetParam().name + "\":" + value + "}";
    }

    SwitchBench bench_;
};

TEST_P(FlashItemRead, IsAskedForOnceAndLogged)
{
    const LogCapture log;
    EXPECT_EQ(bench_.read(path(), Content::all), document(GetParam().value));
    EXPECT_THAT(bench_.sent(),
                ElementsAre(kCall + " {\"flash_item\":" + std::to_string(GetParam().number) + "}"));
    EXPECT_EQ(log.errors(),
              "u_lyn_openconfig_flash_" + GetParam().name + "_get: " + GetParam().logged + "\n");
}

TEST_P(FlashItemRead, HasNoLeavesWithoutAGoodAnswer)
{
    for (const auto &fault : {noAnswer(kCall), refusal(kCall, "no")}) {
        bench_.device().clearFaults();
        bench_.device().addFault(fault);
        const LogCapture log;
        EXPECT_EQ(bench_.read(path(), Content::all), document("{}"));
        EXPECT_EQ(getByHand(bench_, registered(), path(), getValue), Got{kOk});
        EXPECT_EQ(log.errors(), "");
    }
    bench_.unplug();
    EXPECT_EQ(bench_.read(path(), Content::all), document("{}"));
    bench_.plugIn();
}

TEST_P(FlashItemRead, HasNoLeavesInAnAnswerWithoutAReply)
{
    FlashItem answer = FLASH_ITEM__INIT;
    answer.has_code_size = 1;
    const Says says(bench_, answer);
    EXPECT_EQ(bench_.read(path(), Content::all), document("{}"));
}

TEST_P(FlashItemRead, HasNoNextInstance)
{
    EXPECT_EQ(getByHand(bench_, registered(), path(), getNext), Got{1009});
    EXPECT_EQ(getByHand(bench_, registered(), path(), static_cast<GetMode>(0)), Got{4});
    EXPECT_THAT(bench_.sent(), ElementsAre());
}

const Item kItems[] = {
    {"running", 1, R"({"code_version":"09.0.10T211"})", "code_size:0 boot_size:0 code_ver=09.0.10T211"},
    {"primary", 2,
     R"({"code_size":33554432,"code_name":"LYN0901.bin","code_version":"09.0.10T211",)"
     R"("boot_size":786944,"boot_name":"boot101.bin","boot_version":"10.1.22T235"})",
     "code_size:33554432 boot_size:786944 code_ver=09.0.10T211"},
    {"secondary", 3,
     R"({"code_size":31457280,"code_name":"LYN0895.bin","code_version":"08.0.95T211",)"
     R"("boot_size":786944,"boot_name":"boot101.bin","boot_version":"10.1.18T235"})",
     "code_size:31457280 boot_size:786944 code_ver=08.0.95T211"},
    {"freespace", 4, R"({"freespace":1073741824})", "code_size:0 boot_size:0 code_ver="},
};
INSTANTIATE_TEST_SUITE_P(Items, FlashItemRead, testing::ValuesIn(kItems), CaseName());

TEST(FlashLeaves, OnlyTheWantedOneIsMade)
{
    SwitchBench bench;
    EXPECT_EQ(bench.read(kFlash + "/primary/boot_size", Content::all),
              R"({"lyn-openconfig-flash:boot_size":786944})");
    EXPECT_EQ(bench.sent().size(), 1U);
}

TEST(FlashLeaves, SizesReachTheHighestNumber)
{
    SwitchBench bench;
    CommonResp reply = COMMON_RESP__INIT;
    FlashItem answer = FLASH_ITEM__INIT;
    answer.reply = &reply;
    answer.has_flash_free_space = 1;
    answer.flash_free_space = 4294967295;
    const Says says(bench, answer);
    EXPECT_EQ(bench.read(kFlash + "/freespace", Content::all),
              R"({"lyn-openconfig-flash:freespace":{"freespace":4294967295}})");
}

} // namespace
} // namespace test
