#include "server/restconf/query.h"

#include "server/restconf/fields.h"
#include "tests/unit/server/status_of.h"

#include <gmock/gmock.h>

namespace agentd::restconf {
namespace {

using test::statusOf;

std::string shown(const std::vector<tk::FieldNode> &nodes)
{
    std::string text;
    for (const tk::FieldNode &node : nodes) {
        text += (text.empty() ? "" : " ") + (node.module.empty() ? "" : node.module + ":") + node.name;
        if (!node.children.empty())
            text += "{" + shown(node.children) + "}";
    }
    return text;
}

TEST(Fields, FollowTheGrammar)
{
    const struct {
        const char *expression, *tree;
    } cases[] = {
        {"a", "a"},
        {"m:a", "m:a"},
        {"a;b", "a b"},
        {"a/b/c", "a{b{c}}"},
        {"a(b;c)", "a{b c}"},
        {"a(b/c(d;e);f);g/h", "a{b{c{d e}} f} g{h}"},
        {"a/m:b(c)", "a{m:b{c}}"},
        {"a/b;a/c", "a{b c}"},
        {"a/b;a", "a"}, // the whole holds the part
        {"a;a/b", "a"},
        {"a(b/c);a(b/d;e)", "a{b{c d} e}"},
        {"a/x;m:a/y", "a{x} m:a{y}"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(shown(parseFields(c.expression)), c.tree) << c.expression;
}

TEST(Fields, RefuseEverythingElse)
{
    for (const char *expression : {"",      ";",     "a;",  ";a",   "a/", "/a", "a(", "a()", "a(b", "a)b",
                                   "a(b))", "a(b)c", "a b", "a::b", "a:", ":a", "1a", "a,b", "a=1", "(a)"})
        EXPECT_EQ(statusOf([&] { parseFields(expression); }), 400U) << expression;
    std::string deep;
    for (int i = 0; i < 5000; ++i)
        deep += "a(";
    EXPECT_EQ(statusOf([&] { parseFields(deep); }), 400U);
}

TEST(Query, ReadsWhatBelongsToARead)
{
    const Query query = parseQuery(
        "depth=3&content=nonconfig&with-defaults=report-all-tagged&fields=a(b%3Bc)", QueryUse::read);
    EXPECT_EQ(query.depth, 3U);
    EXPECT_EQ(query.content, tk::Content::nonconfig);
    EXPECT_EQ(query.withDefaults, tk::WithDefaults::reportAllTagged);
    EXPECT_EQ(shown(query.fields), "a{b c}");
}

TEST(Query, ReadsWhereToInsert)
{
    const Query query = parseQuery("insert=after&point=%2Fm%3Al%3Da%252Fb%2Fx", QueryUse::insert);
    EXPECT_EQ(query.insert, tk::InsertWhere::after);
    ASSERT_EQ(query.point.size(), 2U);
    EXPECT_EQ(query.point[0].keys, std::vector<std::string>{"a/b"}); // encoded twice, decoded twice
    EXPECT_EQ(parseQuery("insert=first", QueryUse::insert).insert, tk::InsertWhere::first);
}

TEST(Query, RefusesWhatDoesNotBelong)
{
    const auto expectRefused = [](QueryUse use, std::initializer_list<const char *> queries) {
        for (const char *query : queries)
            EXPECT_EQ(statusOf([&] { parseQuery(query, use); }), 400U) << query;
    };
    expectRefused(QueryUse::none, {"depth=1"});
    expectRefused(QueryUse::api, {"content=all"});
    expectRefused(QueryUse::read,
                  {"insert=first",
                   "filter=x",
                   "Depth=1",
                   "depth=1&depth=1",
                   "depth=1&dept%68=2",
                   "depth=1&",
                   "&depth=1",
                   "depth",
                   "depth=",
                   "depth=0",
                   "depth=65536",
                   "depth=-1",
                   "depth=+1",
                   "depth=1x",
                   "depth=99999999999999999999",
                   "content=some",
                   "content=%",
                   "with-defaults=none",
                   "fields=",
                   "="});
    expectRefused(QueryUse::insert,
                  {"depth=1", "insert=middle", "insert=before", "insert=last&point=%2Fm%3Aa",
                   "point=%2Fm%3Aa", "insert=after&point=m%3Aa", "insert=after&point=%2F"});
}

} // namespace
} // namespace agentd::restconf
