// Which callbacks hear of an edit, with what, in which order, and what is left after a failure.
#include "tests/unit/toolkit/toy.h"

#include <gmock/gmock.h>

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;
using testing::ElementsAreArray;

using enum Method;

const auto doc = [](const std::string &top) { return R"({"toy:top":)" + top + "}"; };
// Top-level values as a body of the whole datastore.
const auto whole = [](const std::string &values) { return R"({"ietf-restconf:data":)" + values + "}"; };

struct Case {
    std::string name;
    std::string running; // content of toy:top
    Method method;
    std::string path;      // below toy:top; "/" for the whole datastore
    std::string body;      // the value of the node at the path; of a POST the whole
    std::string told = ""; // what apply tells, in order
    std::string optionPath = "";
    unsigned option = 0;
    std::string otherPath = "";
    unsigned otherOption = 0;
};

class Tells : public testing::TestWithParam<Case> { };

TEST_P(Tells, ExactlyThese)
{
    const Case &c = GetParam();
    std::map<std::string, unsigned> options{{c.optionPath, c.option}, {c.otherPath, c.otherOption}};
    options.erase("");
    ToyBench bench(doc(c.running), options);
    bench.told();
    const bool all = c.path == "/", isValue = !c.body.empty() && c.method != post;
    const std::string path = all ? "" : "toy:top" + (c.path.empty() ? "" : "/" + c.path);
    const Outcome outcome = bench.edit(c.method, path,
                                       all           ? whole(c.body)
                                           : isValue ? member(path, c.body)
                                                     : c.body);
    EXPECT_THAT(outcome.refusals, ElementsAre());
    EXPECT_EQ(joined(bench.told("apply")), c.told);
}

const Case kCases[] = {
    {"a_leaf_that_comes", "{}", patch, "", R"({"plain":"a"})", "merge /toy:top plain:create=a"},
    {"the_same_value", R"({"plain":"a"})", patch, "", R"({"plain":"a"})"},
    {"a_leaf_of_a_container_without_callback", "{}", patch, "", R"({"inner":{"deep":"x"}})",
     "merge /toy:top deep:create=x"},
    {"leaves_that_go_with_a_container_without_callback", R"({"plain":"a","inner":{"deep":"x"}})", put, "",
     "{}", "replace /toy:top plain:delete deep:delete"},
    {"ancestors_on_the_way_hear_nothing", "{}", patch, "config", R"({"enabled":true})",
     "merge /toy:top/config enabled:create=true"},
    {"put_above_replaces_containers_below", R"({"config":{"limit":3}})", put, "", R"({"config":{"limit":4}})",
     "replace /toy:top; replace /toy:top/config limit:merge=4"},
    {"put_that_empties_is_replace", R"({"config":{"limit":3}})", put, "config", "{}",
     "replace /toy:top/config limit:delete"},
    {"delete_above_is_told_below_first", R"({"plain":"a","config":{"limit":3}})", remove, "", "",
     "delete /toy:top/config; delete /toy:top"},
    {"post_of_a_container_is_create", "{}", post, "", R"({"toy:config":{"limit":3}})",
     "create /toy:top/config limit:create=3"},
    {"a_new_entry_and_what_it_holds", "{}", patch, "", R"({"entry":[{"name":"a","config":{"value":"v"}}]})",
     "create /toy:top/entry[name='a'] name:create=a; create /toy:top/entry[name='a']/config value:create=v"},
    {"an_entry_that_goes_children_and_last_first",
     R"({"entry":[{"name":"a","config":{"value":"v"},"sub":[{"id":1},{"id":2}]}]})", remove, "entry=a", "",
     "delete /toy:top/entry[name='a']/sub[id='2']; delete /toy:top/entry[name='a']/sub[id='1']; delete "
     "/toy:top/entry[name='a']/config; delete /toy:top/entry[name='a']"},
    {"an_entry_put_is_replace_its_containers_merge",
     R"({"entry":[{"name":"a","config":{"value":"v","other":"o"}}]})", put, "entry=a",
     R"([{"name":"a","config":{"value":"w"}}])",
     "replace /toy:top/entry[name='a']; merge /toy:top/entry[name='a']/config value:merge=w other:delete"},
    {"a_replaced_entry_in_which_nothing_differs", R"({"entry":[{"name":"a","own":"o"}]})", put, "entry=a",
     R"([{"name":"a","own":"o"}])"},
    {"deletions_come_before_the_others", R"({"entry":[{"name":"a"},{"name":"b","own":"o"}]})", put, "",
     R"({"entry":[{"name":"b","own":"p"},{"name":"c"}]})",
     "delete /toy:top/entry[name='a']; replace /toy:top; replace /toy:top/entry[name='b'] own:merge=p; "
     "create /toy:top/entry[name='c'] name:create=c"},
    {"siblings_in_schema_order_entries_in_the_clients", "{}", patch, "",
     R"({"entry":[{"name":"z"},{"name":"a"}],"config":{"limit":1}})",
     "merge /toy:top/config limit:create=1; create /toy:top/entry[name='z'] name:create=z; create "
     "/toy:top/entry[name='a'] name:create=a"},
    {"presence_goes_with_its_container", R"({"marked":{"inside":{"value":"v"}}})", remove, "marked", "",
     "delete /toy:top/marked/inside; delete /toy:top/marked"},
    {"a_registered_leaf_changes", R"({"lone":"l"})", patch, "", R"({"lone":"m"})", "merge /toy:top/lone"},
    {"a_registered_leaf_goes", R"({"lone":"l"})", remove, "lone", "", "delete /toy:top/lone"},
    {"values_of_a_leaf_list", R"({"words":["a","b"]})", put, "", R"({"words":["b","c"]})",
     "replace /toy:top words:delete=a words:create=c"},
    {"a_moved_value_is_a_merge", R"({"words":["a","b","c"]})", put, "", R"({"words":["c","a","b"]})",
     "replace /toy:top words:merge=c"},
    {"a_moved_entry_is_replaced", R"({"ranked":[{"name":"a"},{"name":"b"}]})", put, "",
     R"({"ranked":[{"name":"b"},{"name":"a"}]})", "replace /toy:top; replace /toy:top/ranked[name='b']"},
    {"the_other_case_goes", R"({"first":"f","first-more":"m"})", patch, "", R"({"second":"s"})",
     "merge /toy:top first:delete first-more:delete second:create=s"},
    {"a_schema_default_written_out_is_a_difference", "{}", patch, "", R"({"number":7})",
     "merge /toy:top number:create=7"},
    {"top_level_nodes_in_load_order", "{}", patch, "/",
     R"({"toy:late":{"plain":"l"},"toy:top":{"plain":"t"}})",
     "merge /toy:top plain:create=t; merge /toy:late plain:create=l"},
    {"emptied_is_delete_by_a_leaf", R"({"config":{"limit":3}})", remove, "config/limit", "",
     "delete /toy:top/config", "/t:top/t:config", emptiedIsDelete},
    {"emptied_is_delete_by_a_put_above", R"({"plain":"a","config":{"limit":3}})", put, "", R"({"plain":"a"})",
     "delete /toy:top/config; replace /toy:top", "/t:top/t:config", emptiedIsDelete},
    {"first_fill_is_create", "{}", put, "config", R"({"limit":3})", "create /toy:top/config limit:create=3",
     "/t:top/t:config", firstFillIsCreate},
    {"replaced_with_its_entry", R"({"entry":[{"name":"a","config":{"value":"v"}}]})", put, "entry=a",
     R"([{"name":"a","config":{"value":"w"}}])",
     "replace /toy:top/entry[name='a']; replace /toy:top/entry[name='a']/config value:merge=w",
     "/t:top/t:entry/t:config", replacedWithEntry},
    {"whole_entry_mutes_what_is_inside", R"({"entry":[{"name":"a","config":{"value":"v"}}]})", put, "entry=a",
     R"([{"name":"a","config":{"value":"w"}}])", "replace /toy:top/entry[name='a']", "/t:top/t:entry",
     wholeEntry},
    {"spared_when_its_entry_goes", R"({"entry":[{"name":"a","config":{"value":"v"}}]})", remove, "entry=a",
     "", "delete /toy:top/entry[name='a']", "/t:top/t:entry/t:config", spared},
    {"an_entry_is_spared_when_that_around_it_goes", R"({"entry":[{"name":"a","sub":[{"id":1}]}]})", remove,
     "entry=a", "", "delete /toy:top/entry[name='a']", "/t:top/t:entry/t:sub", spared},
    {"a_spared_entry_goes_by_itself", R"({"entry":[{"name":"a","sub":[{"id":1}]}]})", remove, "entry=a/sub=1",
     "", "delete /toy:top/entry[name='a']/sub[id='1']", "/t:top/t:entry/t:sub", spared},
    {"what_is_told_first_takes_the_nodes_around_it_along", R"({"entry":[{"name":"b"}]})", patch, "/",
     R"({"toy:top":{"plain":"p","config":{"limit":3},"entry":[{"name":"a","config":{"value":"v"}},{"name":"b","own":"o"}]}})",
     "merge /toy:top plain:create=p; create /toy:top/entry[name='a'] name:create=a; create "
     "/toy:top/entry[name='a']/config value:create=v; merge /toy:top/config limit:create=3; merge "
     "/toy:top/entry[name='b'] own:create=o",
     "/t:top/t:entry/t:config", toldFirst},
    {"what_is_told_first_goes_last",
     R"({"config":{"limit":3},"entry":[{"name":"a","config":{"value":"v"},"sub":[{"id":1}]},{"name":"b"}]})",
     put, "", R"({"plain":"p"})",
     "delete /toy:top/entry[name='b']; delete /toy:top/entry[name='a']/sub[id='1']; replace /toy:top "
     "plain:create=p; replace /toy:top/config limit:delete; delete /toy:top/entry[name='a']/config; delete "
     "/toy:top/entry[name='a']",
     "/t:top/t:entry/t:config", toldFirst},
    {"a_deleted_leaf_that_stays_has_a_new_value", R"({"config":{"limit":3}})", remove, "config/limit", "",
     "merge /toy:top/config limit:delete=3", "/t:top/t:config", deletedLeafStays},
    {"a_deleted_leaf_stays_in_a_merge_only", R"({"config":{"limit":3,"enabled":true}})", put, "config",
     R"({"enabled":true})", "replace /toy:top/config limit:delete", "/t:top/t:config", deletedLeafStays},
    {"what_refuses_comes_first", R"({"config":{"limit":3},"entry":[{"name":"a"}]})", remove, "", "",
     "delete /toy:top/config; delete /toy:top/entry[name='a']; delete /toy:top", "/t:top/t:config",
     refusesDelete},
    {"deletions_follow_the_replacement_around_them",
     R"({"marked":{"note":"n"},"entry":[{"name":"a"},{"name":"b"},{"name":"c","own":"o"}]})", put, "/",
     R"({"toy:top":{"entry":[{"name":"c","own":"p"}]},"toy:late":{"plain":"l"}})",
     "replace /toy:top; delete /toy:top/entry[name='b']; delete /toy:top/entry[name='a']; delete "
     "/toy:top/marked; replace /toy:top/entry[name='c'] own:merge=p; replace /toy:late plain:create=l",
     "/t:top", beforeItsEntries},
    {"deletions_without_a_replacement_come_first", R"({"plain":"a","entry":[{"name":"a"}]})", remove, "", "",
     "delete /toy:top/entry[name='a']; delete /toy:top", "/t:top", beforeItsEntries},
    {"a_replacement_tells_again_what_stays_in_it",
     R"({"plain":"a","entry":[{"name":"a"},{"name":"b","config":{"value":"v"}},{"name":"c","config":{"value":"v"}}]})",
     put, "",
     R"({"plain":"b","entry":[{"name":"a"},{"name":"b","config":{"value":"v"}},{"name":"c","config":{"value":"w"}}]})",
     "replace /toy:top plain:merge=b; replace /toy:top/entry[name='c']; merge "
     "/toy:top/entry[name='c']/config value:merge=w; merge /toy:top/entry[name='b']/config",
     "/t:top", retells, "/t:top/t:entry/t:config", retold},
    {"without_its_own_change_nothing_is_told_again",
     R"({"plain":"a","config":{"limit":1},"entry":[{"name":"a","config":{"value":"v"}}]})", patch, "config",
     R"({"limit":2})", "merge /toy:top/config limit:merge=2", "/t:top", retells, "/t:top/t:entry/t:config",
     retold},
    {"a_change_beside_tells_again", R"({"config":{"limit":1},"marked":{"inside":{"value":"v"}}})", patch,
     "config", R"({"limit":2})", "merge /toy:top/config limit:merge=2; merge /toy:top/marked/inside",
     "/t:top/t:config", retellsSiblings, "/t:top/t:marked/t:inside", retold},
    {"what_holds_nothing_is_not_told_again", R"({"config":{"limit":1},"marked":{"inside":{}}})", patch,
     "config", R"({"limit":2})", "merge /toy:top/config limit:merge=2", "/t:top/t:config", retellsSiblings,
     "/t:top/t:marked/t:inside", retold},
};
INSTANTIATE_TEST_SUITE_P(Rules, Tells, testing::ValuesIn(kCases), CaseName());

TEST(Phases, AllValidateThenApplyThenCommit)
{
    ToyBench bench(doc(R"({"config":{"limit":3}})"));
    bench.told();
    EXPECT_TRUE(bench.put("toy:top", R"({"toy:top":{"plain":"x"}})").changed);
    const std::string top = " replace /toy:top plain:create=x",
                      config = " replace /toy:top/config limit:delete";
    EXPECT_THAT(bench.told(),
                ElementsAre("validate" + top, "validate" + config, "apply" + top, "apply" + config,
                            "commit" + top, "commit" + config));
}

// Three nodes are told: top, config, late; the second fails, and running is as it was.
const std::string kThree =
    whole(R"({"toy:top":{"plain":"b","config":{"limit":1}},"toy:late":{"plain":"l"}})");

TEST(Phases, ThatFailAreRolledBackNewestFirst)
{
    const std::string applied = "replace /toy:top plain:merge=b; delete /toy:top/entry[name='k']";
    const std::pair<const char *, std::string> table[] = {
        {"validate", ""}, {"apply", applied}, {"commit", "replace /toy:late plain:create=l; " + applied}};
    for (const auto &[phase, rolledBack] : table) {
        SCOPED_TRACE(phase);
        ToyBench bench(doc(R"({"plain":"a","entry":[{"name":"k","own":"o"}]})"));
        const std::string before = bench.running();
        bench.told();
        bench.failAt(phase, "/toy:top/config", 4);
        bench.failAt("rollback", "/toy:top", 274, "not what the client is told");
        EXPECT_THAT(bench.put("", kThree).refusals,
                    ElementsAre(Refusal{4, "operation-failed", "/toy:top/config", statusInfo(4).text}));
        EXPECT_EQ(bench.running(), before);
        EXPECT_EQ(joined(bench.told("rollback")), rolledBack);
        bench.failNowhere();
        EXPECT_TRUE(bench.patch("toy:top", R"({"toy:top":{"plain":"c"}})").ok()); // and it goes on
    }
}

TEST(FailureOptions, NoRollbackAndUndoesItself)
{
    ToyBench bench({}, {{"/t:top", noRollback}, {"/t:late", undoesItself}});
    bench.failAt("apply", "/toy:late", 4);
    bench.patch("", kThree);
    EXPECT_EQ(joined(bench.told("rollback")),
              "merge /toy:late plain:create=l; merge /toy:top/config limit:create=1");
}

TEST(ToldWhenSame, IsToldOfWhatNamesItButNotOfWholeDatastores)
{
    const struct {
        Method method;
        std::string path, body, told; // in validate
    } cases[] = {
        {put, "toy:top/marked", R"({"toy:marked":{"note":"n"}})", "replace /toy:top/marked"},
        {patch, "", whole(R"({"toy:top":{"marked":{}}})"), "merge /toy:top/marked"},
        {patch, "", whole(R"({"toy:top":{"plain":"b"}})"), "merge /toy:top plain:create=b"},
        {put, "", whole(R"({"toy:top":{"marked":{"note":"n"},"plain":"b"}})"), ""},
    };
    ToyBench bench(doc(R"({"marked":{"note":"n"}})"), {{"/t:top/t:marked", toldWhenSame}});
    bench.told(); // of the start
    for (const auto &[method, path, body, told] : cases) {
        const Outcome done = bench.edit(method, path, body);
        EXPECT_TRUE(done.ok()) << body;
        EXPECT_EQ(done.changed, told.find("plain") != told.npos) << body;
        EXPECT_EQ(joined(bench.told("validate")), told) << body;
    }
    const std::string before = bench.running();
    bench.failAt("validate", "/toy:top/marked", 273);
    EXPECT_EQ(bench.put("toy:top/marked", R"({"toy:marked":{"note":"n"}})").status(), 273);
    EXPECT_EQ(bench.running(), before);
}

TEST(FailureOptions, SwappedInRollbackTellsTheEditTheOtherWayRound)
{
    ToyBench bench(doc(R"({"plain":"a","number":5})"), {{"/t:top", swappedInRollback}});
    bench.failAt("apply", "/toy:late", 4);
    bench.patch("", whole(R"({"toy:top":{"plain":"b","form":"toy:round"},"toy:late":{"plain":"l"}})"));
    EXPECT_EQ(joined(bench.told("rollback")), "merge /toy:top plain:merge=a form:delete");
}

TEST(Records, TheCallbacksOwnTextReachesTheClientAlone)
{
    ToyBench bench;
    bench.failAt("apply", "/toy:top", 1042, "the device says no");
    EXPECT_THAT(bench.patch("toy:top", R"({"toy:top":{"plain":"b"}})").refusals,
                ElementsAre(Refusal{1042, "operation-failed", "/toy:top", "the device says no"}));
}

TEST(Values, NewAndCurrentAreWholeAndTheSameInAllPhases)
{
    ToyBench bench(
        doc(R"({"plain":"a","words":["x","y"],"config":{"limit":3},"entry":[{"name":"k","own":"o"}]})"));
    std::vector<std::string> seen;
    bench.watch = [&](const std::string &line, Value *newval, Value *curval) {
        if (line.find(" /toy:top ") != line.npos)
            seen.push_back(textOf(newval) + " was " + textOf(curval));
    };
    bench.failAt("commit", "/toy:late", 4);
    bench.put(
        "", whole(R"({"toy:top":{"plain":"b","words":["y"],"form":"toy:round"},"toy:late":{"plain":"l"}})"));
    const std::string both =
        R"({"plain":"b","words":"y","form":"round"})"
        R"( was {"plain":"a","words":"x","words":"y","config":{"limit":"3"},"entry":{"name":"k","own":"o"}})";
    EXPECT_THAT(seen, ElementsAre(both, both, both, both)); // validate, apply, commit, rollback
}

TEST(Values, AbsentSidesAreNullAndEmptyContainersAreNot)
{
    ToyBench bench(doc(R"({"marked":{}})"));
    std::map<std::string, std::string> seen;
    bench.watch = [&](const std::string &line, Value *newval, Value *curval) {
        seen[line.substr(0, line.find(' ', line.find('/')))] = textOf(newval) + " was " + textOf(curval);
    };
    bench.post("toy:top", R"({"toy:entry":[{"name":"k"}]})");
    bench.remove("toy:top/marked");
    bench.patch("toy:top", R"({"toy:top":{"config":{"limit":1}}})");
    bench.remove("toy:top/config/limit");
    EXPECT_EQ(seen["apply create /toy:top/entry[name='k']"], R"({"name":"k"} was -)");
    EXPECT_EQ(seen["apply delete /toy:top/marked"], "- was {}");
    EXPECT_EQ(seen["apply merge /toy:top/config"], R"({} was {"limit":"1"})");
}

TEST(Values, MergedCurrentIsTheValueAfterwardsUntilRollback)
{
    ToyBench bench(doc(R"({"words":["x","y"]})"), {{"/t:top", mergedCurrent}});
    std::vector<std::string> seen;
    bench.watch = [&](const std::string &line, Value *, Value *curval) {
        seen.push_back(line.substr(0, line.find(' ')) + textOf(curval));
        Value *last = nullptr;
        EXPECT_FALSE(agt_get_key_value(curval, &last));
    };
    bench.remove("toy:top/words=x");
    EXPECT_THAT(seen,
                ElementsAre(R"(validate{"words":"y"})", R"(apply{"words":"y"})", R"(commit{"words":"y"})"));
    seen.clear();
    bench.failAt("commit", "/toy:late", 4);
    bench.patch("", whole(R"({"toy:top":{"words":["z"]},"toy:late":{"plain":"l"}})"));
    EXPECT_EQ(seen.back(), R"(rollback{"words":"y"})");
    bench.failNowhere();
    bench.put("toy:top", R"({"toy:top":{"words":["z"]}})"); // a replacement sees what was
    EXPECT_EQ(seen.back(), R"(commit{"words":"y"})");
}

TEST(Values, DefaultsStandInBothWhereTheRowAsks)
{
    ToyBench bench(doc(R"({"plain":"a"})"), {{"/t:top", withDefaults}});
    std::vector<std::string> seen;
    bench.watch = [&](const std::string &line, Value *newval, Value *curval) {
        if (line.rfind("apply", 0) == 0)
            seen.push_back(textOf(newval) + " was " + textOf(curval));
    };
    bench.patch("toy:top", R"({"toy:top":{"number":8}})");
    bench.put("toy:top", R"({"toy:top":{}})");
    EXPECT_THAT(seen,
                ElementsAre(R"({"plain":"a","number":"8"} was {"plain":"a","number":"7"})",
                            R"({"number":"7"} was {"plain":"a","number":"8"})"));
}

TEST(Values, KeysComeOutermostFirst)
{
    ToyBench bench;
    std::vector<std::string> keys;
    bench.watch = [&](const std::string &line, Value *newval, Value *) {
        if (line.rfind("apply create /toy:top/entry[name='e']/sub", 0) != 0)
            return;
        Value *last = nullptr;
        while (Value *key = agt_get_key_value(newval, &last))
            keys.push_back(val_get_string(key));
        EXPECT_EQ(val_get_uint64(val_find_child(newval, "toy", "id")), 12u);
    };
    bench.patch("toy:top", R"({"toy:top":{"entry":[{"name":"e","sub":[{"id":12}]}]}})");
    EXPECT_THAT(keys, ElementsAre("e", "12"));
}

TEST(Values, OperationsAreThoseAskedOfTheNode)
{
    ToyBench bench(doc(R"({"config":{"limit":3},"words":["a"]})"));
    std::vector<EditOp> ops;
    bench.watch = [&](const std::string &line, Value *newval, Value *) {
        if (line.rfind("apply replace /toy:top/config", 0) == 0)
            ops = {val_get_editop(newval), val_get_editop(val_find_child(newval, nullptr, "enabled"))};
    };
    bench.put("toy:top/config", R"({"toy:config":{"enabled":true,"limit":3}})");
    EXPECT_THAT(ops, ElementsAre(replace, replace));
}

TEST(Load, EachCallbackByItselfWithoutRollback)
{
    ToyBench bench;
    // Another host cannot be made beside this one, so the startup data come late.
    bench.failAt("apply", "/toy:top", 273);
    bench.host().loadStartup(doc(R"({"plain":"a","config":{"limit":3}})"), Encoding::json);
    // What was refused is committed all the same.
    EXPECT_EQ(joined(bench.told()),
              "validate load /toy:top; validate load /toy:top/config; apply load /toy:top; "
              "apply load /toy:top/config; commit load /toy:top; commit load /toy:top/config");
    EXPECT_EQ(bench.read("toy:top/plain"), R"({"toy:plain":"a"})");
}

TEST(Reading, ConfigurationDuringAnEditIsThatBeforeIt)
{
    ToyBench bench(doc(R"({"plain":"a","words":["x","y"],"entry":[{"name":"k","own":"o"},{"name":"l"}]})"));
    const std::string before = bench.running();
    std::string during, target;
    bench.watch = [&](const std::string &line, Value *, Value *) {
        if (line.rfind("apply replace /toy:top ", 0) == 0) {
            during = bench.running();
            target = bench.read("toy:top/entry=k");
        }
    };
    EXPECT_TRUE(
        bench
            .put("toy:top", R"({"toy:top":{"plain":"b","words":["y","z"],"entry":[{"name":"k","own":"p"}]}})")
            .ok());
    EXPECT_EQ(during, before);
    EXPECT_EQ(target, R"({"toy:entry":[{"name":"k","own":"o"}]})");
    EXPECT_EQ(bench.read("toy:top/entry=k"), R"({"toy:entry":[{"name":"k","own":"p"}]})");
}

TEST(Reading, TheStampChangesWithEachEditThatChangesSomething)
{
    ToyBench bench(doc(R"({"plain":"a"})"));
    const std::string first = bench.host().stamp().tag;
    EXPECT_FALSE(bench.patch("toy:top", R"({"toy:top":{"plain":"a"}})").changed);
    EXPECT_EQ(bench.host().stamp().tag, first);
    EXPECT_TRUE(bench.patch("toy:top", R"({"toy:top":{"plain":"b"}})").changed);
    EXPECT_NE(bench.host().stamp().tag, first);
}

} // namespace
} // namespace test
