#include "server/restconf/conditions.h"

#include "tests/unit/server/status_of.h"

#include <gmock/gmock.h>

namespace agentd::restconf {
namespace {

using test::statusOf;

using Header = std::optional<std::string_view>;

// Running was last changed on Sun, 06 Nov 1994 08:49:37.5 GMT; its tag is "v7".
const Seconds kChanged{std::chrono::seconds(784111777)};
const tk::Stamp kStamp{"v7", kChanged + std::chrono::milliseconds(500)};
constexpr std::string_view before = "Sun, 06 Nov 1994 08:49:36 GMT", same = "Sun, 06 Nov 1994 08:49:37 GMT",
                           after = "Sun, 06 Nov 1994 08:49:38 GMT";

TEST(EditCondition, LetsOnlyTheVersionThatTheClientKnowsBeChanged)
{
    struct Case {
        const char *name;
        ConditionHeaders headers;
        bool exists;
        unsigned status;
    };
    const Case cases[] = {
        {"none", {}, false, 0},
        {"match", {"\"v7\"", {}, {}, {}}, true, 0},
        {"match with the digest of a read", {"\"v7.8a\"", {}, {}, {}}, true, 0},
        {"match one of several", {"\"v1\" , \"v7\"", {}, {}, {}}, true, 0},
        {"match of a former version", {"\"v6\"", {}, {}, {}}, true, 412},
        {"match of a longer tag", {"\"v77\"", {}, {}, {}}, true, 412},
        {"weak tags never match", {"W/\"v7\"", {}, {}, {}}, true, 412},
        {"any, exists", {"*", {}, {}, {}}, true, 0},
        {"any, does not exist", {"*", {}, {}, {}}, false, 412},
        {"create only, exists", {{}, "*", {}, {}}, true, 412},
        {"create only, does not exist", {{}, "*", {}, {}}, false, 0},
        {"none match", {{}, "\"v7\"", {}, {}}, true, 412},
        {"none match of a former version", {{}, "\"v6\"", {}, {}}, true, 0},
        {"unmodified since before", {{}, {}, {}, before}, true, 412},
        {"unmodified since then", {{}, {}, {}, same}, true, 0},
        {"unmodified since after", {{}, {}, {}, after}, true, 0},
        {"a tag overrides a date", {"\"v7\"", {}, {}, before}, true, 0},
        {"a bad date is ignored", {{}, {}, {}, "yesterday"}, true, 0},
        {"modified since is for reads", {{}, {}, after, {}}, true, 0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const Conditions conditions = parseConditions(c.headers);
        EXPECT_EQ(statusOf([&] { checkEdit(conditions, kStamp, c.exists); }), c.status);
    }
}

TEST(ReadCondition, AnswersNotModifiedOnlyForWhatTheClientHas)
{
    struct Case {
        const char *name;
        ConditionHeaders headers;
        bool mayHoldState;
        unsigned status; // 200, 304 or 412
    };
    const Case cases[] = {
        {"none", {}, false, 200},
        {"has it", {{}, "\"v7.1\"", {}, {}}, false, 304},
        {"weak comparison", {{}, "W/\"v7.1\"", {}, {}}, false, 304},
        {"any", {{}, "*", {}, {}}, false, 304},
        {"has another answer of this version", {{}, "\"v7.2\"", {}, {}}, true, 200},
        {"has a former version", {{}, "\"v6.1\"", {}, {}}, false, 200},
        {"modified before", {{}, {}, same, {}}, false, 304},
        {"modified since", {{}, {}, before, {}}, false, 200},
        {"state has no date", {{}, {}, same, {}}, true, 200},
        {"a tag overrides a date", {{}, "\"v6\"", same, {}}, false, 200},
        {"match", {"\"v7\"", {}, {}, {}}, false, 200},
        {"match of a former version", {"\"v6\"", {}, {}, {}}, false, 412},
        {"unmodified since before", {{}, {}, {}, before}, false, 412},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const Conditions conditions = parseConditions(c.headers);
        bool isOld = false;
        const unsigned refusal = statusOf([&] {
            isOld = isNotModified(conditions, {kStamp, "v7.1", c.mayHoldState});
        });
        EXPECT_EQ(refusal ? refusal : isOld ? 304U : 200U, c.status);
    }
}

TEST(EntityTag, TellsAnswersOfOneVersionApart)
{
    EXPECT_EQ(entityTag(kStamp, std::nullopt), "v7");
    EXPECT_EQ(entityTag(kStamp, "on"), entityTag(kStamp, "on"));
    EXPECT_NE(entityTag(kStamp, "on"), entityTag(kStamp, "off"));
    EXPECT_NE(entityTag(kStamp, "on"), entityTag({"v8", kChanged}, "on"));
    EXPECT_EQ(statusOf([] {
                  const std::string tag = "\"" + entityTag(kStamp, "on") + "\"";
                  checkEdit(parseConditions({tag, {}, {}, {}}), kStamp, true);
              }),
              0U);
}

TEST(EntityTag, IsRefusedIfMalformed)
{
    for (const char *tags :
         {"", "v7", "\"v7", "v7\"", "\"a\" \"b\"", "\"a\",", "\"a\",*", "w/\"a\"", "\"a\x01\""}) {
        SCOPED_TRACE(tags);
        EXPECT_EQ(statusOf([&] { parseConditions({tags, {}, {}, {}}); }), 400U);
    }
}

TEST(HttpDate, IsWrittenAndReadBack)
{
    EXPECT_EQ(httpDate(kStamp.modified), same);
    for (const long seconds : {0L, 951782400L, 1709164800L, 4102444799L}) {
        const Seconds time{std::chrono::seconds(seconds)};
        EXPECT_EQ(parseHttpDate(httpDate(time)), time) << httpDate(time);
    }
}

TEST(HttpDate, IsNotReadOtherwise)
{
    for (const char *date :
         {"", "Sunday, 06-Nov-94 08:49:37 GMT", "Sun Nov  6 08:49:37 1994", "Sun, 06 Nov 1994 08:49:37 CET",
          "Sun, 31 Feb 1994 08:49:37 GMT", "Sun, 06 Nox 1994 08:49:37 GMT", "Sun, 06 Nov 1994 24:49:37 GMT",
          "Sun, -6 Nov 1994 08:49:37 GMT"}) {
        SCOPED_TRACE(date);
        EXPECT_FALSE(parseHttpDate(date));
    }
}

} // namespace
} // namespace agentd::restconf
