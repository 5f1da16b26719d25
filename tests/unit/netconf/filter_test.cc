// What filters select, by subtree and by XPath, and which state is asked for on the way.
#include "tests/unit/netconf/stores_bench.h"

#include <gmock/gmock.h>

namespace test {
namespace {

using namespace tk;

const char kData[] =
    R"({"plain":"p","words":["x","y"],"form":"round","config":{"enabled":true,"limit":3},)"
    R"("entry":[{"name":"a","own":"1","config":{"value":"v"},"sub":[{"id":1,"text":"s"},{"id":2}]},)"
    R"({"name":"b","own":"1"},{"name":"c","config":{"value":"w","other":"o"}}]})";

const char kEntryA[] = "<entry><name>a</name><own>1</own><config><value>v</value></config>"
                       "<sub><id>1</id><text>s</text></sub><sub><id>2</id></sub></entry>";
const char kEntryB[] = "<entry><name>b</name><own>1</own></entry>";
const char kEntryC[] = "<entry><name>c</name><config><value>w</value><other>o</other></config></entry>";

struct Case {
    std::string name;
    std::string filter;   // in <top>
    std::string selected; // in <top>; empty: no top at all
};

class SubtreeFilter : public testing::TestWithParam<Case> { };

TEST_P(SubtreeFilter, Selects)
{
    StoresBench bench(kData);
    EXPECT_EQ(bench.filtered(top(GetParam().filter)), top(GetParam().selected));
}

const Case kCases[] = {
    {"a_selection_node", "<plain/>", "<plain>p</plain>"},
    {"a_selected_container", "<config/>", "<config><enabled>true</enabled><limit>3</limit></config>"},
    {"a_leaf_inside_a_container", "<config><limit/></config>", "<config><limit>3</limit></config>"},
    {"all_entries", "<entry/>", std::string(kEntryA) + kEntryB + kEntryC},
    {"a_leaf_of_all_entries_comes_with_the_key", "<entry><own/></entry>",
     "<entry><name>a</name><own>1</own></entry><entry><name>b</name><own>1</own></entry>"},
    {"an_entry_by_its_key", "<entry><name>b</name></entry>", kEntryB},
    {"two_entries_by_their_keys", "<entry><name>c</name></entry><entry><name>b</name></entry>",
     std::string(kEntryB) + kEntryC},
    {"a_part_of_an_entry", "<entry><name>a</name><config/></entry>",
     "<entry><name>a</name><config><value>v</value></config></entry>"},
    {"an_entry_inside_an_entry", "<entry><name>a</name><sub><id>2</id></sub></entry>",
     "<entry><name>a</name><sub><id>2</id></sub></entry>"},
    {"two_filters_for_one_entry", "<entry><name>a</name><own/></entry><entry><name>a</name><config/></entry>",
     "<entry><name>a</name><own>1</own><config><value>v</value></config></entry>"},
    {"a_leaf_that_is_no_key", "<entry><own>1</own></entry>", std::string(kEntryA) + kEntryB},
    {"all_values_must_fit", "<entry><name>a</name><own>2</own></entry>", ""},
    {"a_value_deeper_down", "<entry><config><value>w</value></config></entry>",
     "<entry><name>c</name><config><value>w</value><other>o</other></config></entry>"},
    {"a_value_beside_a_selection", "<plain>p</plain><words/>",
     "<plain>p</plain><words>x</words><words>y</words>"},
    {"a_value_that_does_not_fit_takes_its_siblings_along", "<plain>q</plain><words/>", ""},
    {"a_value_of_a_leaf_list", "<words>y</words><plain/>", "<plain>p</plain><words>y</words>"},
    {"blanks_around_a_value", "<plain>\n  p\n</plain><words/>",
     "<plain>p</plain><words>x</words><words>y</words>"},
    {"an_identity", "<form xmlns:m='urn:test:toy'>m:round</form><plain/>",
     "<plain>p</plain><form xmlns:t=\"urn:test:toy\">t:round</form>"},
    {"a_value_of_the_wrong_type", "<config><limit>much</limit></config>", ""},
    {"an_entry_that_is_not_there", "<entry><name>z</name></entry>", ""},
    {"a_node_that_the_schema_lacks", "<nothing/><plain/>", "<plain>p</plain>"},
    {"an_attribute_that_no_data_have", "<plain colour='red'/>", ""},
    {"a_container_that_holds_nothing", "<inner/>", ""},
};

INSTANTIATE_TEST_SUITE_P(Table, SubtreeFilter, testing::ValuesIn(kCases), CaseName());

TEST(SubtreeFilterNames, WithoutANamespaceStandForAll)
{
    StoresBench bench(kData);
    EXPECT_EQ(bench.filtered("<top><plain/></top>"), top("<plain>p</plain>"));
    EXPECT_EQ(bench.filtered("<top xmlns='urn:test:other'><plain/></top>"), "");
    EXPECT_EQ(bench.filtered(""), "");
}

struct XPathCase {
    std::string name;
    std::string expression;
    std::string selected;
};

class XPathFilter : public testing::TestWithParam<XPathCase> { };

std::string byXPath(StoresBench &bench, const std::string &expression)
{
    return bench.stores().read(
        {.filter = {Filter::Kind::xpath, expression, {{"p", "urn:test:toy"}, {"q", "urn:test:other"}}}});
}

TEST_P(XPathFilter, Selects)
{
    StoresBench bench(kData);
    EXPECT_EQ(byXPath(bench, GetParam().expression), top(GetParam().selected));
}

const XPathCase kXPathCases[] = {
    {"a_leaf", "/p:top/p:plain", "<plain>p</plain>"},
    {"an_entry", "/p:top/p:entry[p:name='b']", kEntryB},
    {"below_an_entry", "/p:top/p:entry[p:name=\"a\"]/p:config",
     "<entry><name>a</name><config><value>v</value></config></entry>"},
    {"below_all_entries", "/p:top/p:entry/p:config/p:value",
     "<entry><name>a</name><config><value>v</value></config></entry>"
     "<entry><name>c</name><config><value>w</value></config></entry>"},
    {"a_predicate_on_no_key", "/p:top/p:entry[p:config/p:value='w']", kEntryC},
    {"a_union", "/p:top/p:plain | /p:top/p:config/p:limit",
     "<plain>p</plain><config><limit>3</limit></config>"},
    {"any_depth", "//p:other", "<entry><name>c</name><config><other>o</other></config></entry>"},
    {"a_function", "/p:top/p:entry[starts-with(p:name, 'b')]/p:own",
     "<entry><name>b</name><own>1</own></entry>"},
    {"a_position", "/p:top/p:entry[2]/p:own", "<entry><name>b</name><own>1</own></entry>"},
    {"an_axis", "/child::p:top/child::p:plain", "<plain>p</plain>"},
    {"a_wildcard", "/p:top/p:config/*", "<config><enabled>true</enabled><limit>3</limit></config>"},
    {"a_wildcard_with_a_predicate", "/p:top/p:entry/*[p:value='v']",
     "<entry><name>a</name><config><value>v</value></config></entry>"},
    {"a_product", "/p:top/p:entry[position() * 2 = 4]/p:own", "<entry><name>b</name><own>1</own></entry>"},
    {"searches_in_a_text", "/p:top/p:entry[p:name='//*[node()]']", ""},
    {"a_colon_in_a_text", "/p:top/p:entry[p:name='p:x']", ""},
    {"nothing_there", "/p:top/p:marked", ""},
};

INSTANTIATE_TEST_SUITE_P(Table, XPathFilter, testing::ValuesIn(kXPathCases), CaseName());

TEST(XPathFilterRefuses, WhatSelectsNoNodes)
{
    StoresBench bench(kData);
    for (const char *expression : {"count(/p:top/p:entry)", "/p:top[", "/x:top", "1 +", ""})
        EXPECT_THROW(byXPath(bench, expression), Failure) << expression;
}

// What would look at everything again and again.
TEST(XPathFilterRefuses, SearchesInsidePredicatesAndTooManyOfThem)
{
    StoresBench bench(kData);
    std::string many = "//p:own";
    for (int i = 0; i < 20; ++i)
        many += "|//p:own";
    const std::string expressions[] = {"//*[count(//*) > 0]",    "/p:top/p:entry[../*]",
                                       "//*[descendant::p:own]", "//p:own[../p:name[following::p:own]]",
                                       "//*[count(node())>1]",   many};
    for (const std::string &expression : expressions)
        EXPECT_EQ(bench.attempt([&] { byXPath(bench, expression); }).tag(), "too-big") << expression;
}

std::vector<std::string> askedRows;

Status getRow(Session *, MessageHeader *, GetBlock *get2cb)
{
    const Value *key = getcb_find_key_str(get2cb, "toy", "id");
    askedRows.push_back(key ? val_get_string(key) : "all");
    Status status = kOk;
    const Object *row = getcb_get_obj(get2cb);
    const auto id = key ? static_cast<unsigned>(val_get_uint64(key)) : 1U;
    getcb_add_return_key(get2cb, agt_make_uint_leaf2(row, "toy", "id", id, &status));
    getcb_add_return_val(get2cb, agt_make_leaf(row, "text", "here", &status));
    getcb_finish_getbulk_entry(get2cb);
    return kOk;
}

// A port's name in a filter must not make the server ask for the state of all others.
TEST(StateFilter, AsksOnlyForWhatTheFilterNames)
{
    StoresBench bench(kData);
    askedRows.clear();
    agt_cb_register_get_callback("toy", "/t:top/t:row", "2024-01-01", getRow);
    const std::string row = "<row><id>2</id><text>here</text></row>";
    EXPECT_EQ(bench.filtered(top("<row><id>2</id></row>"), true), top(row));
    EXPECT_EQ(bench.stores().read(
                  {.withState = true,
                   .filter = {Filter::Kind::xpath, "/p:top/p:row[p:id='2']", {{"p", "urn:test:toy"}}}}),
              top(row));
    EXPECT_EQ(bench.filtered(top("<plain/>"), true), top("<plain>p</plain>"));
    EXPECT_THAT(askedRows, testing::ElementsAre("2", "2"));
}

struct DefaultsCase {
    std::string name;
    WithDefaults mode;
    std::string filter, selected;
};

class Defaults : public testing::TestWithParam<DefaultsCase> { };

TEST_P(Defaults, AreShownAsAsked)
{
    const DefaultsCase &c = GetParam();
    StoresBench bench(c.name.find("set") != std::string::npos ? R"({"number":7})" : R"({"plain":"a"})");
    EXPECT_EQ(
        bench.stores().read({.filter = {Filter::Kind::subtree, "<filter>" + top(c.filter) + "</filter>"},
                             .withDefaults = c.mode}),
        top(c.selected));
}

const char kTagged[] = "<number xmlns:ncwd=\"urn:ietf:params:xml:ns:netconf:default:1.0\" "
                       "ncwd:default=\"true\">7</number>";

const DefaultsCase kDefaultsCases[] = {
    {"explicit_leaves_them_out", WithDefaults::explicitOnly, "<number/>", ""},
    {"explicit_shows_what_was_set", WithDefaults::explicitOnly, "<number/>", "<number>7</number>"},
    {"trim_leaves_out_what_was_set", WithDefaults::trim, "<number/>", ""},
    {"all_adds_them", WithDefaults::reportAll, "<number/>", "<number>7</number>"},
    {"all_matches_them", WithDefaults::reportAll, "<number>7</number><plain/>",
     "<plain>a</plain><number>7</number>"},
    {"tagged_marks_them", WithDefaults::reportAllTagged, "<number/>", kTagged},
    {"tagged_does_not_mark_what_was_set", WithDefaults::reportAllTagged, "<number/>", "<number>7</number>"},
};

INSTANTIATE_TEST_SUITE_P(Table, Defaults, testing::ValuesIn(kDefaultsCases), CaseName());

} // namespace
} // namespace test
