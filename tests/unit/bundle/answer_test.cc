// What an answer of the device means for an edit: the strict and the lenient reading and that of the VLANs.
#include "frame/answer.h"

#include "backend/proto/qos.pb-c.h"
#include "tests/unit/bundle/log_capture.h"
#include "tests/unit/support/host_bench.h"
#include "toolkit/src/request.h"

#include <gmock/gmock.h>

namespace test {
namespace {

using namespace tk;

const std::string kPlace = "[u_some_edit] [n] cbtype [apply] editop [merge]";

struct Reply {
    std::int32_t uiErr, appErr;
    const char *text;

    CommonResp record() const
    {
        CommonResp made = COMMON_RESP__INIT;
        made.ui_err = uiErr;
        made.app_err = appErr;
        made.reply_buf = const_cast<char *>(text);
        return made;
    }
};

struct Read {
    Status status = kOk;
    std::vector<std::string> records;
    std::string errors;

    bool operator==(const Read &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Read &read)
{
    return out << read.status << " " << testing::PrintToString(read.records) << " "
               << testing::PrintToString(read.errors);
}

struct Case {
    std::string name;
    int result; // of the call
    std::optional<Reply> answer;
    Read expected;

    friend void PrintTo(const Case &of, std::ostream *out) { *out << of.name; }
};

template <class Reading>
Read read(const Case &c, Reading reading)
{
    RequestFrame request;
    const frame::EditCall call{&request.session, &request.request, apply,        merge,
                               nullptr,          nullptr,          "u_some_edit"};
    const CommonResp answer = c.answer.value_or(Reply{}).record();
    const LogCapture log;
    Read done{reading(call, c.result, c.answer ? &answer : nullptr), {}, log.errors()};
    for (const ErrorRecord &record : request.header.records)
        done.records.push_back(std::to_string(record.status) + " " + record.text);
    return done;
}

class Strictly : public testing::TestWithParam<Case> { };

TEST_P(Strictly, TakesTheDevicesWords)
{
    EXPECT_EQ(read(GetParam(),
                   [](auto &call, int result, const CommonResp *answer) {
                       return frame::readStrictly(call, result, answer);
                   }),
              GetParam().expected);
}

const Case kStrict[] = {
    {"no_answer_and_no_failure", 0, {}, {}},
    {"success", 0, Reply{0, 0, nullptr}, {}},
    {"a_success_with_a_text_says_nothing", 0, Reply{0, 0, "done"}, {}},
    {"not_delivered", 1, {}, {4, {}, kPlace}},
    {"answered_though_the_call_failed", 3, Reply{0, 0, "half way"}, {1042, {"1042 half way"}, kPlace}},
    {"refused_with_a_text", 0, Reply{1, 0, "no such profile"}, {1042, {"1042 no such profile"}, kPlace}},
    {"refused_by_the_daemon_itself", 0, Reply{0, 2, "not now"}, {1042, {"1042 not now"}, kPlace}},
    {"refused_with_an_empty_text", 0, Reply{1, 0, ""}, {1042, {"1042 "}, kPlace}},
    {"refused_without_a_text", 0, Reply{7, 0, nullptr}, {4, {}, kPlace}},
};
INSTANTIATE_TEST_SUITE_P(Table, Strictly, testing::ValuesIn(kStrict), CaseName());

class ForVlans : public testing::TestWithParam<Case> { };

TEST_P(ForVlans, IsAlwaysAPlainFailure)
{
    EXPECT_EQ(read(GetParam(),
                   [](auto &call, int result, const CommonResp *answer) {
                       return frame::readVlanAnswer(call, result, answer, "3 to 5");
                   }),
              GetParam().expected);
}

const std::string kNotSent = "\n Error: Send to remote failed with error 1 for VLAN 3 to 5\n",
                  kNotDone = "\n Error: Backend processing failed with error  6 for VLAN 3 to 5";

const Case kVlan[] = {
    {"success", 0, Reply{0, 0, nullptr}, {}},
    {"no_answer_and_no_failure", 0, {}, {}},
    {"what_the_daemon_itself_says_does_not_count", 0, Reply{0, 2, "odd"}, {}},
    {"not_delivered", 1, {}, {4, {}, kNotSent}},
    {"not_delivered_and_answered", 1, Reply{6, 0, "no"}, {4, {"4 no"}, kNotSent + kNotDone}},
    {"refused_with_a_text", 0, Reply{6, 0, "no"}, {4, {"4 no"}, kNotDone}},
    {"refused_with_an_empty_text", 0, Reply{6, 0, ""}, {4, {}, kNotDone}},
    {"refused_without_a_text", 0, Reply{6, 0, nullptr}, {4, {}, kNotDone}},
};
INSTANTIATE_TEST_SUITE_P(Table, ForVlans, testing::ValuesIn(kVlan), CaseName());

struct LenientCase {
    std::string name;
    bool isAnswered;
    std::optional<Reply> reply;
    int result;
    std::string debug;

    friend void PrintTo(const LenientCase &of, std::ostream *out) { *out << of.name; }
};

class Leniently : public testing::TestWithParam<LenientCase> { };

TEST_P(Leniently, GivesANumber)
{
    const LenientCase &c = GetParam();
    CommonResp reply = c.reply.value_or(Reply{}).record();
    QosJumboAnswer answer = QOS_JUMBO_ANSWER__INIT;
    answer.reply = c.reply ? &reply : nullptr;
    const QosJumboAnswer *given = c.isAnswered ? &answer : nullptr;
    for (const int level : {7, 8}) {
        const LogCapture log(level);
        EXPECT_EQ(frame::readLeniently(given, "nothing came", "100% refused"), c.result);
        EXPECT_EQ(log.debug(), level > 7 ? c.debug : "");
        EXPECT_EQ(log.errors(), "");
    }
}

const LenientCase kLenient[] = {
    {"no_answer_is_1", false, {}, 1, "nothing came"},
    {"no_reply_is_a_success", true, {}, 0, ""},
    {"success", true, Reply{0, 5, nullptr}, 0, ""},
    {"a_refusal_is_its_code", true, Reply{-3, 0, "told to nobody"}, -3, "100% refused"},
};
INSTANTIATE_TEST_SUITE_P(Table, Leniently, testing::ValuesIn(kLenient), CaseName());

} // namespace
} // namespace test
