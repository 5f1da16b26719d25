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

const auto match = [](Header tags) { return ConditionHeaders{tags, {}, {}, {}}; };
const auto noneMatch = [](Header tags, Header since = {}) { return ConditionHeaders{{}, tags, since, {}}; };
const auto unmodified = [](Header date, Header tags = {}) { return ConditionHeaders{tags, {}, {}, date}; };

TEST(EditCondition, LetsOnlyTheVersionThatTheClientKnowsBeChanged)
{
    const struct {
        ConditionHeaders headers;
        bool exists;
        unsigned status;
    } cases[] = {
        {{}, false, 0},
        {match("\"v7\""), true, 0},
        {match("\"v7.8a\""), true, 0}, // with the digest of a read
        {match("\"v1\" , \"v7\""), true, 0},
        {match("\"v6\""), true, 412},
        {match("W/\"v7\""), true, 412}, // weak tags never match
        {match("*"), true, 0},
        {match("*"), false, 412},
        {noneMatch("*"), true, 412},
        {noneMatch("*"), false, 0},
        {noneMatch("\"v7\""), true, 412},
        {unmodified(before), true, 412},
        {unmodified(before, "\"v7\""), true, 0}, // a tag overrides a date
        {unmodified("yesterday"), true, 0},      // a bad date is ignored
        {noneMatch({}, after), true, 0},         // for reads
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(&c - cases);
        const Conditions conditions = parseConditions(c.headers);
        EXPECT_EQ(statusOf([&] { checkEdit(conditions, kStamp, c.exists); }), c.status);
    }
}

TEST(ReadCondition, AnswersNotModifiedOnlyForWhatTheClientHas)
{
    const struct {
        ConditionHeaders headers;
        unsigned status; // 200, 304 or 412
        bool mayHoldState = false;
    } cases[] = {
        {{}, 200},
        {noneMatch("\"v7.1\""), 304},
        {noneMatch("W/\"v7.1\""), 304},
        {noneMatch("*"), 304},
        {noneMatch("\"v7.2\""), 200, true}, // another answer of this version
        {noneMatch("\"v6.1\""), 200},
        {noneMatch({}, same), 304},
        {noneMatch({}, before), 200},
        {noneMatch({}, same), 200, true}, // state has no date
        {noneMatch("\"v6\"", same), 200}, // a tag overrides a date
        {match("\"v7\""), 200},
        {match("\"v6\""), 412},
        {unmodified(before), 412},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(&c - cases);
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
         {"", "v7", "\"v7", "v7\"", "\"a\" \"b\"", "\"a\",", "\"a\",*", "w/\"a\"", "\"a\x01\""})
        EXPECT_EQ(statusOf([&] { parseConditions(match(tags)); }), 400U) << tags;
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
          "Sun, -6 Nov 1994 08:49:37 GMT"})
        EXPECT_FALSE(parseHttpDate(date)) << date;
}

} // namespace
} // namespace agentd::restconf
