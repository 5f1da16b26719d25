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

TEST(SubtreeFilter, Selects)
{
    const std::string value = "<config><value>v</value></config>", words = "<words>x</words><words>y</words>";
    const std::string other = "<config><value>w</value><other>o</other></config>";
    const std::string a = "<entry><name>a</name><own>1</own>" + value +
        "<sub><id>1</id><text>s</text></sub><sub><id>2</id></sub></entry>";
    const std::string b = "<entry><name>b</name><own>1</own></entry>",
                      c = "<entry><name>c</name>" + other + "</entry>";
    const struct {
        std::string filter, selected; // in <top>; no top at all if nothing is selected
    } table[] = {
        {"<plain/>", "<plain>p</plain>"},
        {"<config><limit/></config>", "<config><limit>3</limit></config>"},
        {"<entry/>", a + b + c},
        // A leaf comes with the key of its entry.
        {"<entry><own/></entry>", "<entry><name>a</name><own>1</own></entry>" + b},
        {"<entry><name>c</name></entry><entry><name>b</name></entry>", b + c},
        {"<entry><name>a</name><config/></entry>", "<entry><name>a</name>" + value + "</entry>"},
        {"<entry><name>a</name><sub><id>2</id></sub></entry>",
         "<entry><name>a</name><sub><id>2</id></sub></entry>"},
        {"<entry><name>a</name><own/></entry><entry><name>a</name><config/></entry>",
         "<entry><name>a</name><own>1</own>" + value + "</entry>"},
        {"<entry><own>1</own></entry>", a + b},
        {"<entry><config><value>w</value></config></entry>", c},
        // A value that does not fit takes its siblings along.
        {"<plain>\n  p\n</plain><words/>", "<plain>p</plain>" + words},
        {"<plain>q</plain><words/>", ""},
        {"<words>y</words><plain/>", "<plain>p</plain><words>y</words>"},
        {"<form xmlns:m='urn:test:toy'>m:round</form><plain/>",
         "<plain>p</plain><form xmlns:t=\"urn:test:toy\">t:round</form>"},
        {"<nothing/><plain/>", "<plain>p</plain>"},
        {"<plain colour='red'/>", ""},
        {"<inner/>", ""},
    };
    StoresBench bench(kData);
    for (const auto &[filter, selected] : table)
        EXPECT_EQ(bench.filtered(top(filter)), top(selected)) << filter;
    // Names without a namespace stand for all.
    EXPECT_EQ(bench.filtered("<top><plain/></top>"), top("<plain>p</plain>"));
    EXPECT_EQ(bench.filtered("<top xmlns='urn:test:other'><plain/></top>"), "");
    EXPECT_EQ(bench.filtered(""), "");
}

std::string byXPath(StoresBench &bench, const std::string &expression)
{
    return bench.stores().read(
        {.filter = {Filter::Kind::xpath, expression, {{"p", "urn:test:toy"}, {"q", "urn:test:other"}}}});
}

TEST(XPathFilter, Selects)
{
    const std::string a = "<entry><name>a</name><config><value>v</value></config></entry>";
    const std::string b = "<entry><name>b</name><own>1</own></entry>";
    const struct {
        std::string expression, selected;
    } table[] = {
        {"/p:top/p:entry[p:name='b']", b},
        {"/p:top/p:entry[p:name=\"a\"]/p:config", a},
        {"/p:top/p:entry/p:config/p:value",
         a + "<entry><name>c</name><config><value>w</value></config></entry>"},
        {"/p:top/p:entry[p:config/p:value='v']/p:config", a},
        {"/p:top/p:plain | /p:top/p:config/p:limit", "<plain>p</plain><config><limit>3</limit></config>"},
        {"//p:other", "<entry><name>c</name><config><other>o</other></config></entry>"},
        {"/p:top/p:entry[starts-with(p:name, 'b')]/p:own", b},
        {"/p:top/p:entry[position() * 2 = 4]/p:own", b},
        {"/p:top/p:config/*", "<config><enabled>true</enabled><limit>3</limit></config>"},
        {"/p:top/p:entry/*[p:value='v']", a},
        {"/p:top/p:entry[p:name='//*[node()]']", ""},
        {"/p:top/p:entry[p:name='p:x']", ""},
    };
    StoresBench bench(kData);
    for (const auto &[expression, selected] : table)
        EXPECT_EQ(byXPath(bench, expression), top(selected)) << expression;
}

TEST(XPathFilter, RefusesWhatSelectsNoNodesOrLooksAtEverythingAgainAndAgain)
{
    StoresBench bench(kData);
    for (const char *expression : {"count(/p:top/p:entry)", "/p:top[", "/x:top", ""})
        EXPECT_THROW(byXPath(bench, expression), Failure) << expression;
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

TEST(Defaults, AreShownAsAsked)
{
    const std::string tagged = "<number xmlns:ncwd=\"urn:ietf:params:xml:ns:netconf:default:1.0\" "
                               "ncwd:default=\"true\">7</number>";
    const std::string number = "<number>7</number>";
    const struct {
        const char *running;
        WithDefaults mode;
        std::string filter, selected;
    } table[] = {
        {R"({"plain":"a"})", WithDefaults::explicitOnly, "<number/>", ""},
        {R"({"number":7})", WithDefaults::explicitOnly, "<number/>", number},
        {R"({"number":7})", WithDefaults::trim, "<number/>", ""},
        {R"({"plain":"a"})", WithDefaults::reportAll, number + "<plain/>", "<plain>a</plain>" + number},
        {R"({"plain":"a"})", WithDefaults::reportAllTagged, "<number/>", tagged},
        {R"({"number":7})", WithDefaults::reportAllTagged, "<number/>", number},
        {"{}", WithDefaults::reportAll, "<number/>", number},
        {"{}", WithDefaults::reportAllTagged, "<number/>", tagged},
    };
    for (const auto &[running, mode, filter, selected] : table) {
        StoresBench bench(running);
        const Filter wanted{Filter::Kind::subtree, "<filter>" + top(filter) + "</filter>"};
        EXPECT_EQ(bench.stores().read({.filter = wanted, .withDefaults = mode}), top(selected))
            << running << filter;
    }
}

} // namespace
} // namespace test
