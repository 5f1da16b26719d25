// Loading modules and registering callbacks: orders, names and revisions that do not fit.
#include "tests/unit/support/host_bench.h"
#include "toolkit/toolkit.h"

#include <gmock/gmock.h>

namespace test {
namespace {

using namespace tk;

class Loading : public testing::Test {
protected:
    ModuleHandle *load(const char *name, const char *revision)
    {
        ModuleHandle *module = nullptr;
        status = ncxmod_load_module(name, revision, agt_get_savedevQ(), &module);
        return module;
    }

    std::string sealError()
    {
        try {
            bench.host().seal();
        } catch (const StartFailure &failure) {
            return failure.what();
        }
        return {};
    }

    HostBench bench;
    Status status = kOk;
};

Status pass(Session *, Request *, EditPhase, EditOp, Value *, Value *)
{
    return kOk;
}

TEST_F(Loading, NamesRevisionsAndTopLevelObjects)
{
    ModuleHandle *toy = load("toy", "2024-01-01");
    ASSERT_TRUE(toy);
    EXPECT_EQ(ncx_find_module("toy", nullptr), toy);
    EXPECT_EQ(ncx_find_module("toy", "2024-01-01"), toy);
    EXPECT_EQ(ncx_find_module("toy", "1999-01-01"), nullptr);
    EXPECT_EQ(ncx_find_module("checks", nullptr), nullptr);
    EXPECT_TRUE(ncx_find_object(toy, "top")); // asked before the schema is compiled
    EXPECT_TRUE(ncx_find_object(toy, "add"));
    EXPECT_FALSE(ncx_find_object(toy, "nothing"));
    EXPECT_FALSE(load("toy-that-is-not-there", nullptr));
    EXPECT_EQ(status, kFailed);
    EXPECT_EQ(sealError(), "");
    EXPECT_FALSE(load("checks", nullptr)); // too late
}

TEST_F(Loading, AModuleInAnotherRevisionStopsTheStart)
{
    load("toy", "2024-01-01");
    EXPECT_FALSE(load("checks", "1999-01-01"));
    EXPECT_EQ(status, kFailed);
    EXPECT_THAT(sealError(), testing::HasSubstr("checks@1999-01-01"));
}

TEST_F(Loading, ADeviationIsLoadedBeforeItsTarget)
{
    EXPECT_EQ(ncxmod_load_deviation("toy-dev", agt_get_savedevQ()), kOk);
    EXPECT_TRUE(load("toy", "2024-01-01"));
    EXPECT_EQ(sealError(), "");
    EXPECT_THROW(bench.target("toy:top/lone"), Failure); // the deviation takes it away
    EXPECT_EQ(ncxmod_load_deviation("no-such-dev", agt_get_savedevQ()), kFailed);
}

TEST_F(Loading, PathsMayUsePrefixesNamesAndChoices)
{
    load("toy", "2024-01-01");
    for (const char *path : {"/t:top/t:entry/t:config", "/toy:top/toy:entry/toy:sub",
                             "/t:top/t:kind/t:one/t:first", "/t:top/t:second"})
        EXPECT_EQ(agt_cb_register_edit2_callback("toy", path, nullptr, pass), kOk) << path;
    // A wrong one stops the start.
    agt_cb_register_edit2_callback("toy", "/t:top/t:nothing", nullptr, pass);
    EXPECT_THAT(sealError(), testing::HasSubstr("/t:top/t:nothing"));
}

TEST_F(Loading, CachesFollowCommits)
{
    load("toy", "2024-01-01");
    ASSERT_EQ(sealError(), "");
    Status result = kOk;
    EXPECT_EQ(agt_init_cache("toy", "top", &result), nullptr);
    EXPECT_EQ(result, kOk);
    EXPECT_EQ(agt_init_cache("toy", "nothing", &result), nullptr);
    EXPECT_EQ(result, kNotFound);
    bench.put("toy:top/plain", R"({"toy:plain":"a"})");
    const Value *top = agt_init_cache("toy", "top", &result);
    ASSERT_TRUE(top);
    bench.put("toy:top/plain", R"({"toy:plain":"b"})");
    EXPECT_STREQ(val_get_string(val_find_child(top, "toy", "plain")), "b");
}

} // namespace
} // namespace test
