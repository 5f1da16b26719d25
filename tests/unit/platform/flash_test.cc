// What the flash holds: four read-outs, each of one item, that never fail for want of an answer.
#include "backend/flash.h"
#include "tests/unit/platform/scripted_device.h"

namespace test {
namespace {

const std::string kFlash = "lyn-openconfig-flash:flash", kCall = "ui_fe_flash_item_req";

struct Item {
    std::string name; // of the container
    int number;
    std::string value, logged; // of a new switch
};
class FlashItemRead : public testing::TestWithParam<Item> { };

TEST_P(FlashItemRead, IsAskedForOnceLoggedAndEmptyWithoutAGoodAnswer)
{
    const auto &[name, number, value, logged] = GetParam();
    SwitchBench bench;
    const std::string path = kFlash + "/" + name, registered = "/" + kFlash + "/lyn-openconfig-flash:" + name,
                      empty = "{\"lyn-openconfig-flash:" + name + "\":{}}";
    {
        const LogCapture log;
        EXPECT_EQ(bench.read(path, Content::all), "{\"lyn-openconfig-flash:" + name + "\":" + value + "}");
        EXPECT_EQ(log.errors(), "u_lyn_openconfig_flash_" + name + "_get: " + logged + "\n");
    }
    EXPECT_THAT(bench.sent(), ElementsAre(kCall + " {\"flash_item\":" + std::to_string(number) + "}"));
    EXPECT_EQ(getByHand(bench, registered, path, getNext), Got{1009});
    EXPECT_THAT(bench.sent(), ElementsAre());
    for (const auto &fault : {noAnswer(kCall), refusal(kCall, "no")}) {
        strike(bench, fault);
        const LogCapture log;
        EXPECT_EQ(bench.read(path, Content::all), empty);
        EXPECT_EQ(log.errors(), "");
    }
    FlashItem answer = FLASH_ITEM__INIT; // without a reply
    answer.has_code_size = 1;
    const Says says(bench, answer);
    EXPECT_EQ(bench.read(path, Content::all), empty);
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

} // namespace
} // namespace test
