// edit-config: what the operation attributes do to running, and what callbacks hear of it.
#include "tests/unit/netconf/stores_bench.h"

#include <gmock/gmock.h>

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;
using testing::ElementsAreArray;

struct Case {
    std::string name;
    std::string running;                // JSON
    std::string edit;                   // in <top>
    std::string after;                  // in <top>
    std::vector<std::string> told = {}; // in apply
    DefaultOperation defaultOperation = DefaultOperation::merge;

    friend std::ostream &operator<<(std::ostream &out, const Case &c) { return out << c.edit; }
};

class EditConfig : public testing::TestWithParam<Case> { };

TEST_P(EditConfig, ChangesRunningAndTellsCallbacks)
{
    const Case &c = GetParam();
    StoresBench bench(c.running);
    const Outcome outcome =
        bench.edit({.defaultOperation = c.defaultOperation, .config = configElement(top(c.edit))});
    EXPECT_THAT(outcome.refusals, ElementsAre());
    EXPECT_EQ(bench.running(), top(c.after));
    EXPECT_THAT(bench.toy().told("apply"), ElementsAreArray(c.told));
}

const char kTwoEntries[] = R"({"entry":[{"name":"a","own":"1"},{"name":"b","own":"2"}]})";
const char kRanked[] = R"({"ranked":[{"name":"a"},{"name":"b"},{"name":"c"}]})";

std::string ranked(const std::string &names)
{
    std::string text;
    for (const char name : names)
        text += std::string("<ranked><name>") + name + "</name></ranked>";
    return text;
}

const Case kCases[] = {
    {"merge_adds_to_what_is_there",
     R"({"plain":"a"})",
     "<number>3</number>",
     "<plain>a</plain><number>3</number>",
     {"merge /toy:top number:create=3"}},
    {"merge_of_a_new_entry_is_a_create",
     "{}",
     "<entry><name>a</name><config><value>x</value></config></entry>",
     "<entry><name>a</name><config><value>x</value></config></entry>",
     {"create /toy:top/entry[name='a'] name:create=a",
      "create /toy:top/entry[name='a']/config value:create=x"}},
    {"replace_takes_what_is_not_named",
     R"({"config":{"enabled":true,"limit":3}})",
     "<config nc:operation='replace'><limit>4</limit></config>",
     "<config><limit>4</limit></config>",
     {"replace /toy:top/config enabled:delete limit:merge=4"}},
    {"replace_as_default_takes_everything_else",
     R"({"plain":"a","config":{"limit":3}})",
     "<plain>b</plain>",
     "<plain>b</plain>",
     {"replace /toy:top plain:merge=b", "replace /toy:top/config limit:delete"},
     DefaultOperation::replace},
    {"create_of_what_is_not_there",
     "{}",
     "<marked nc:operation='create'/>",
     "<marked/>",
     {"create /toy:top/marked"}},
    {"delete_of_an_entry",
     kTwoEntries,
     "<entry nc:operation='delete'><name>a</name></entry>",
     "<entry><name>b</name><own>2</own></entry>",
     {"delete /toy:top/entry[name='a']"}},
    {"delete_of_a_leaf_without_its_value",
     R"({"number":3,"plain":"a"})",
     "<number nc:operation='delete'/>",
     "<plain>a</plain>",
     {"merge /toy:top number:delete"}},
    {"delete_of_a_leaf_with_another_value",
     R"({"number":3,"plain":"a"})",
     "<number nc:operation='delete'>9</number>",
     "<plain>a</plain>",
     {"merge /toy:top number:delete"}},
    {"remove_of_what_is_there",
     kTwoEntries,
     "<entry nc:operation='remove'><name>b</name><own/></entry>",
     "<entry><name>a</name><own>1</own></entry>",
     {"delete /toy:top/entry[name='b']"}},
    {"remove_of_what_is_not_there", R"({"plain":"a"})",
     "<number nc:operation='remove'/><entry nc:operation='remove'><name>x</name></entry>",
     "<plain>a</plain>"},
    {"none_as_default_goes_down_to_an_operation",
     kTwoEntries,
     "<entry><name>a</name><own nc:operation='merge'>9</own></entry>",
     "<entry><name>a</name><own>9</own></entry><entry><name>b</name><own>2</own></entry>",
     {"merge /toy:top/entry[name='a'] own:merge=9"},
     DefaultOperation::none},
    {"operations_inside_operations",
     R"({"entry":[{"name":"a","own":"1","config":{"value":"x","other":"y"}}]})",
     "<entry nc:operation='merge'><name>a</name><config nc:operation='replace'><value>z</value></config>"
     "<own nc:operation='remove'/></entry>",
     "<entry><name>a</name><config><value>z</value></config></entry>",
     {"merge /toy:top/entry[name='a'] own:delete",
      "replace /toy:top/entry[name='a']/config value:merge=z other:delete"}},
    {"several_entries_in_the_order_of_the_request",
     "{}",
     "<entry><name>b</name></entry><entry><name>a</name></entry>",
     "<entry><name>b</name></entry><entry><name>a</name></entry>",
     {"create /toy:top/entry[name='b'] name:create=b", "create /toy:top/entry[name='a'] name:create=a"}},
    {"insert_first",
     kRanked,
     "<ranked y:insert='first'><name>x</name></ranked>",
     ranked("xabc"),
     {"create /toy:top/ranked[name='x'] name:create=x"}},
    {"insert_after",
     kRanked,
     "<ranked y:insert='after' y:key=\"[name='a']\"><name>x</name></ranked>",
     ranked("axbc"),
     {"create /toy:top/ranked[name='x'] name:create=x"}},
    {"insert_before_moves",
     kRanked,
     "<ranked y:insert='before' y:key=\"[name='a']\"><name>c</name></ranked>",
     ranked("cab"),
     {"merge /toy:top/ranked[name='c']"}},
    {"insert_after_one_of_the_same_request",
     kRanked,
     "<ranked><name>x</name></ranked>"
     "<ranked y:insert='after' y:key=\"[name='x']\"><name>a</name></ranked>",
     ranked("bcxa"),
     {"create /toy:top/ranked[name='x'] name:create=x", "merge /toy:top/ranked[name='a']"}},
    {"insert_of_a_value",
     R"({"words":["a","b"]})",
     "<words y:insert='before' y:value='b'>x</words>",
     "<words>a</words><words>x</words><words>b</words>",
     {"merge /toy:top words:create=x"}},
    {"a_value_marked_as_default_goes",
     R"({"number":3,"plain":"a"})",
     "<number wd:default='true'>7</number>",
     "<plain>a</plain>",
     {"merge /toy:top number:delete"}},
    {"a_new_case_takes_the_place_of_the_old_one",
     R"({"first":"a"})",
     "<second>b</second>",
     "<second>b</second>",
     {"merge /toy:top first:delete second:create=b"}},
};

INSTANTIATE_TEST_SUITE_P(Table, EditConfig, testing::ValuesIn(kCases), CaseName());

struct BadCase {
    std::string name;
    std::string edit; // in <config>
    std::string tag, path;
    DefaultOperation defaultOperation = DefaultOperation::merge;

    friend std::ostream &operator<<(std::ostream &out, const BadCase &c) { return out << c.edit; }
};

class EditConfigRefuses : public testing::TestWithParam<BadCase> { };

TEST_P(EditConfigRefuses, AndRunningStays)
{
    const BadCase &c = GetParam();
    StoresBench bench(R"({"plain":"a","config":{"limit":3},"ranked":[{"name":"a"}]})");
    const std::string before = bench.running();
    const Outcome outcome =
        bench.edit({.defaultOperation = c.defaultOperation, .config = configElement(c.edit)});
    ASSERT_EQ(outcome.refusals.size(), 1U);
    EXPECT_EQ(outcome.tag(), c.tag) << outcome.message();
    EXPECT_EQ(outcome.refusals[0].path, c.path);
    EXPECT_EQ(bench.running(), before);
    EXPECT_THAT(bench.toy().told(), ElementsAre());
}

const BadCase kBadCases[] = {
    {"an_unknown_namespace", "<top xmlns='urn:test:nothing'/>", "unknown-namespace", ""},
    {"no_namespace", "<top/>", "unknown-namespace", ""},
    {"an_undeclared_prefix", "<x:top/>", "unknown-namespace", ""},
    {"an_unknown_node", top("<entry><name>a</name><nothing/></entry>"), "unknown-element",
     "/toy:top/entry[name='a']"},
    {"an_operation_as_data", "<add xmlns='urn:test:toy'/>", "unknown-element", ""},
    {"an_unknown_operation", top("<plain nc:operation='destroy'>b</plain>"), "bad-attribute",
     "/toy:top/plain"},
    {"an_unknown_attribute", top("<plain colour='red'>b</plain>"), "unknown-attribute", "/toy:top/plain"},
    {"a_wrong_type", top("<number>many</number>"), "invalid-value", "/toy:top/number"},
    {"no_key", top("<entry><own>x</own></entry>"), "missing-element", "/toy:top/entry"},
    {"the_same_entry_twice", top("<entry><name>a</name></entry><entry><name>a</name></entry>"), "bad-element",
     "/toy:top/entry[name='a']"},
    {"the_same_leaf_twice", top("<plain>b</plain><plain>c</plain>"), "bad-element", "/toy:top/plain"},
    {"create_of_what_is_there", top("<config nc:operation='create'><limit>4</limit></config>"), "data-exists",
     "/toy:top/config"},
    {"delete_of_what_is_not_there", top("<marked nc:operation='delete'/>"), "data-missing",
     "/toy:top/marked"},
    {"delete_of_a_leaf_that_is_not_there", top("<number nc:operation='delete'/>"), "data-missing",
     "/toy:top/number"},
    {"none_where_nothing_is", top("<entry><name>x</name><own nc:operation='merge'>1</own></entry>"),
     "data-missing", "/toy:top/entry[name='x']", DefaultOperation::none},
    {"create_inside_delete",
     top("<config nc:operation='delete'><limit nc:operation='create'>4</limit></config>"), "bad-attribute",
     "/toy:top/config/limit"},
    {"insert_where_the_system_orders", top("<entry y:insert='first'><name>x</name></entry>"),
     "unknown-attribute", "/toy:top/entry[name='x']"},
    {"insert_somewhere", top("<ranked y:insert='up'><name>x</name></ranked>"), "bad-attribute",
     "/toy:top/ranked[name='x']"},
    {"insert_after_nothing", top("<ranked y:insert='after'><name>x</name></ranked>"), "bad-attribute",
     "/toy:top/ranked[name='x']"},
    {"insert_after_one_that_is_not_there",
     top("<ranked y:insert='after' y:key=\"[name='z']\"><name>x</name></ranked>"), "bad-attribute",
     "/toy:top/ranked[name='x']"},
    {"insert_after_one_that_the_request_deletes",
     top("<ranked nc:operation='delete'><name>a</name></ranked>"
         "<ranked y:insert='after' y:key=\"[name='a']\"><name>x</name></ranked>"),
     "bad-attribute", "/toy:top/ranked[name='x']"},
    {"a_key_that_is_none", top("<ranked y:insert='after' y:key=\"name='a'\"><name>x</name></ranked>"),
     "bad-attribute", "/toy:top/ranked[name='x']"},
    {"a_default_that_is_none", top("<number wd:default='true'>8</number>"), "invalid-value",
     "/toy:top/number"},
    {"state", top("<state><count>1</count></state>"), "invalid-value", "/toy:top/state"},
    {"both_cases", top("<first>a</first><second>b</second>"), "bad-element", "/toy:top/second"},
    {"text_among_elements", top("text<plain>b</plain>"), "malformed-message", ""},
};

INSTANTIATE_TEST_SUITE_P(Table, EditConfigRefuses, testing::ValuesIn(kBadCases), CaseName());

TEST(EditConfigAtomic, AnErrorInTheSecondNodeLeavesEverythingAsItWas)
{
    StoresBench bench;
    bench.toy().failAt("apply", "/toy:top/entry[name='b']", kDeviceText, "no room");
    const Outcome outcome =
        bench.edit(Datastore::running, top("<entry><name>a</name></entry><entry><name>b</name></entry>"));
    EXPECT_EQ(outcome.status(), kDeviceText);
    EXPECT_EQ(outcome.message(), "no room");
    EXPECT_EQ(bench.running(), "");
    EXPECT_THAT(bench.toy().told("rollback"), ElementsAre("create /toy:top/entry[name='a'] name:create=a"));
}

TEST(EditConfigTestOnly, AsksCallbacksToValidateAndChangesNothing)
{
    StoresBench bench;
    ConfigEdit edit{.test = TestOption::testOnly, .config = configElement(top("<plain>a</plain>"))};
    EXPECT_TRUE(bench.edit(edit).ok());
    EXPECT_THAT(bench.toy().told(), ElementsAre("validate merge /toy:top plain:create=a"));
    EXPECT_EQ(bench.running(), "");
    bench.toy().failAt("validate", "/toy:top", kInvalidValue, "not this one");
    EXPECT_EQ(bench.edit(edit).message(), "not this one");
}

} // namespace
} // namespace test
