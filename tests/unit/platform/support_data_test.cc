// Collecting support data: one trigger that only a create pulls.
#include "tests/unit/bundle/callback_test.h"

namespace test {
namespace {

const std::string kInvoke = "lyn-openconfig-supportsave:invokeSS", kCall = "ui_supportsave_collect_req",
                  kAll = R"({"modName":"all"})", kCore = R"({"modName":"core"})";

const Pattern asked{kCall + R"( {"reply":{"ui_err":0,"app_err":0},$"ss_path":"/"})"};

std::string locally(int module)
{
    return asked(R"("ss_module":)" + std::to_string(module) + ",");
}

const std::vector<Cell> kCells = {
    created("all", kAll, {locally(8)}),
    created("only its first letters count", R"({"modName":"allowed"})", {locally(8)}),
    created("core", kCore, {locally(6)}),
    loud(created("unknown, and the switch turns it down", R"({"modName":"Al"})", {locally(0)})),
    loud(created("nothing given", "{}", {locally(0)})),
    created("a server", R"({"modName":"all","httpSrvrIP":"192.0.2.1"})",
            {asked(R"("ss_server_kind":5,"ss_server_ip":"192.0.2.1","ss_module":8,)")}),
    created("a server whose name is too long", R"({"modName":"all","httpSrvrIP":"1234567890123456789"})",
            {asked(R"("ss_server_kind":5,"ss_server_ip":"123456789012345","ss_module":8,)")}),
    under(refusal(kCall, "no"), loud(created("turned down", kAll, {locally(8)}))),
    under(noAnswer(kCall), created("a dead switch", kAll, {locally(8)}, 4)),
    in(validate, merged("once more", kAll, kCore, {}, 273)),
    in(validate, replaced("once more", kAll, kCore, {}, 273)),
};

TEST(SupportData, AreCollectedByCreation)
{
    SwitchBench bench;
    check(bench, kInvoke, kCells, Quiet{kAll, kCore});
}

TEST(SupportData, AreCollectedOnceUntilTheNodeIsDeleted)
{
    SwitchBench bench;
    const std::string body = R"({"lyn-openconfig-supportsave:invokeSS":{"modName":"all"}})";
    EXPECT_TRUE(bench.put(kInvoke, body).created);
    EXPECT_EQ(bench.put(kInvoke, body).status(), 273);
    EXPECT_EQ(bench.patch(kInvoke, body).status(), 273);
    EXPECT_TRUE(bench.remove(kInvoke).ok());
    EXPECT_TRUE(bench.put(kInvoke, body).created);
    EXPECT_THAT(bench.sent(), ElementsAre(locally(8), locally(8)));
}

} // namespace
} // namespace test
