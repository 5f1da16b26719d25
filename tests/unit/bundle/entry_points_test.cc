// The entry points of both bundles and of a unit: names, revisions, orders, what a failure leaves.
#include "restconf/app_yang_agent/frame/unit.h"
#include "restconf/app_yang_agent/load_table.h"
#include "tests/unit/support/switch_bench.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

extern "C" {
Status y_app_yang_agent_init(const char *, const char *);
Status y_app_yang_agent_init2();
void y_app_yang_agent_cleanup();
Status y_app_yang_agent_aaa_init(const char *, const char *);
Status y_lyn_openconfig_jumbo_init(const char *, const char *);
Status y_lyn_openconfig_jumbo_init2();
void y_lyn_openconfig_jumbo_cleanup();
Status y_openconfig_platform_psu_init(const char *, const char *);
Status y_openconfig_platform_fan_init(const char *, const char *);
Status y_openconfig_if_poe_init(const char *, const char *);
Status u_test_missing_top_init(const char *, const char *);
Status u_test_missing_top_init2();
void u_test_missing_top_cleanup();

Status u_test_missing_top_edit(EDIT_ARGS)
{
    return kOk;
}
}

USER_UNIT(test_missing_top);

namespace {
constexpr frame::Row kRows[] = {EDIT("/lyn-openconfig-jumbo:jumbo", u_test_missing_top_edit)};
}
// A unit that expects an object that its module does not have.
DEFINE_UNIT(test_missing_top, "lyn-openconfig-jumbo", "2021-11-05", kRows, "jumbo", "mammoth");

namespace test {
namespace {

using testing::ElementsAre;

const char *const kJumboPath = "/lyn-openconfig-jumbo:jumbo";

bool isRegistered(HostBench &bench, const std::string &path)
{
    return bench.host().impl().registry.find(path) != nullptr;
}

TEST(Bundle, AnswersToItsOwnNameOnly)
{
    HostBench bench;
    EXPECT_EQ(y_app_yang_agent_init("app_yang_agent_aaa", ""), 356);
    EXPECT_EQ(y_app_yang_agent_aaa_init("app_yang_agent", ""), 356);
    EXPECT_FALSE(isRegistered(bench, kJumboPath));
    EXPECT_EQ(y_app_yang_agent_init("app_yang_agent", "any revision at all"), kOk);
    EXPECT_TRUE(isRegistered(bench, kJumboPath));
    y_app_yang_agent_cleanup();
    EXPECT_FALSE(isRegistered(bench, kJumboPath));
}

TEST(Bundle, TheAaaBundleServesItsOwnModulesOnly)
{
    HostBench bench;
    EXPECT_EQ(y_app_yang_agent_aaa_init("app_yang_agent_aaa", ""), kOk);
    EXPECT_FALSE(isRegistered(bench, kJumboPath));
    EXPECT_TRUE(ncx_find_module("lyn-openconfig-aaa-dev", nullptr));
    EXPECT_FALSE(ncx_find_module("lyn-openconfig-system-dev", nullptr));
}

TEST(Bundle, AFailingRowLeavesTheEarlierOnesAndItsStatus)
{
    // Without the switch's modules even the deviation is missing.
    tk::Host host({{TEST_MODULES}, 0});
    EXPECT_EQ(y_app_yang_agent_init("app_yang_agent", ""), 274);
}

TEST(Bundle, SaysAtTheEndOfItsStartThatItIsUnderWay)
{
    SwitchBench bench; // its start ran init2
    const auto platform = bench.device().show("platform");
    EXPECT_TRUE(platform.at("syslog").get<bool>());
    EXPECT_EQ(platform.at("events").size(), 1u) << platform.dump();
}

TEST(LoadTable, OrdersNameEveryUnitOnce)
{
    std::multiset<std::string> all, init2, cleanup;
    for (const auto &row : bundle::loadTable())
        all.insert(row.module);
    for (const char *module : bundle::init2Order())
        init2.insert(module);
    for (const char *module : bundle::cleanupOrder())
        cleanup.insert(module);
    EXPECT_EQ(all.size(), 55u);
    all.erase("lyn-openconfig-if-ethernet-aug"); // has no work in either
    EXPECT_EQ(cleanup, all);
    for (const char *last :
         {"lyn-openconfig-forwarding-profile", "lyn-openconfig-ippm", "lyn-openconfig-watcher"})
        all.erase(last); // come behind the start-up event
    EXPECT_EQ(init2, all);
}

TEST(PublicModels, HaveEntryPointsThatNoBundleCalls)
{
    struct Model {
        const char *module;
        Status (*init)(const char *, const char *);
    };
    for (const auto &[module, init] : {Model{"openconfig-platform-psu", y_openconfig_platform_psu_init},
                                       Model{"openconfig-platform-fan", y_openconfig_platform_fan_init},
                                       Model{"openconfig-if-poe", y_openconfig_if_poe_init}}) {
        {
            SwitchBench bench;
            EXPECT_EQ(ncx_find_module(module, nullptr), nullptr);
        }
        HostBench bench;
        EXPECT_EQ(init("openconfig", nullptr), 356);
        EXPECT_EQ(init(module, "2018-11-22"), 314);
        EXPECT_EQ(init(module, nullptr), 0);
    }
}

TEST(Unit, ChecksNameRevisionAndTopLevelObject)
{
    HostBench bench;
    EXPECT_EQ(y_lyn_openconfig_jumbo_init("lyn-openconfig-jumb", "2021-11-05"), 356);
    EXPECT_EQ(y_lyn_openconfig_jumbo_init("lyn-openconfig-jumbo", "2021-11-06"), 314);
    EXPECT_FALSE(ncx_find_module("lyn-openconfig-jumbo", nullptr)); // nothing was loaded
    EXPECT_EQ(y_test_missing_top_init("lyn-openconfig-jumbo", nullptr), 250);
    EXPECT_FALSE(isRegistered(bench, kJumboPath));                                // nothing was registered
    EXPECT_EQ(y_lyn_openconfig_jumbo_init("lyn-openconfig-jumbo", nullptr), kOk); // a null revision passes
    EXPECT_TRUE(ncx_find_module("lyn-openconfig-jumbo", "2021-11-05"));
    EXPECT_TRUE(isRegistered(bench, kJumboPath));
    y_lyn_openconfig_jumbo_cleanup();
    EXPECT_FALSE(isRegistered(bench, kJumboPath));
}

} // namespace
} // namespace test
