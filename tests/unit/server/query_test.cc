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
    struct Case {
        const char *expression, *tree;
    };
    const Case cases[] = {
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
    for (const Case &c : cases) {
        SCOPED_TRACE(c.expression);
        EXPECT_EQ(shown(parseFields(c.expression)), c.tree);
    }
}

TEST(Fields, RefuseEverythingElse)
{
    for (const char *expression : {"",      ";",     "a;",  ";a",   "a/", "/a", "a(", "a()", "a(b", "a)b",
                                   "a(b))", "a(b)c", "a b", "a::b", "a:", ":a", "1a", "a,b", "a=1", "(a)"}) {
        SCOPED_TRACE(expression);
        EXPECT_EQ(statusOf([&] { parseFields(expression); }), 400U);
    }
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

TEST(Query, HoldsNothingByDefault)
{
    for (const auto &text : {std::optional<std::string_view>(), std::optional<std::string_view>("")}) {
        const Query query = parseQuery(text, QueryUse::none);
        EXPECT_EQ(query.depth, 0U);
        EXPECT_EQ(query.content, tk::Content::all);
        EXPECT_FALSE(query.insert);
    }
}

TEST(Query, RefusesWhatDoesNotBelong)
{
    struct Case {
        const char *text;
        QueryUse use;
    };
    const Case cases[] = {
        {"depth=1", QueryUse::none},
        {"depth=1", QueryUse::insert},
        {"content=all", QueryUse::api},
        {"insert=first", QueryUse::read},
        {"filter=x", QueryUse::read},
        {"Depth=1", QueryUse::read},
        {"depth=1&depth=1", QueryUse::read},
        {"depth=1&dept%68=2", QueryUse::read}, // the same name in other letters
        {"depth=1&", QueryUse::read},
        {"&depth=1", QueryUse::read},
        {"depth", QueryUse::read},
        {"depth=", QueryUse::read},
        {"depth=0", QueryUse::read},
        {"depth=65536", QueryUse::read},
        {"depth=-1", QueryUse::read},
        {"depth=+1", QueryUse::read},
        {"depth=1x", QueryUse::read},
        {"depth=99999999999999999999", QueryUse::read},
        {"content=some", QueryUse::read},
        {"content=%", QueryUse::read},
        {"with-defaults=none", QueryUse::read},
        {"fields=", QueryUse::read},
        {"insert=middle", QueryUse::insert},
        {"insert=before", QueryUse::insert}, // without a point
        {"insert=last&point=%2Fm%3Aa", QueryUse::insert},
        {"point=%2Fm%3Aa", QueryUse::insert},
        {"insert=after&point=m%3Aa", QueryUse::insert},
        {"insert=after&point=%2F", QueryUse::insert},
        {"=", QueryUse::read},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(statusOf([&] { parseQuery(c.text, c.use); }), 400U);
    }
}

} // namespace
} // namespace agentd::restconf
