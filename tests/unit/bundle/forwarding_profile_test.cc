// The forwarding profile: chosen by name, sent in commit, on some platforms only.
#include "tests/unit/bundle/callback_test.h"
#include "toolkit/toolkit.h"

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;

const std::string kProfile = "lyn-openconfig-forwarding-profile:forwarding-profile";
const std::string kCall = "ui_forwarding_profile_config_apply";
const std::string kOne = R"({"current-profile-name":"profile1"})",
                  kTwo = R"({"current-profile-name":"profile2"})",
                  kNameless = R"({"current-profile-name":""})", kNone = "{}";
const std::optional<std::string> kAbsent;

std::string request(int opcode, const std::string &name)
{
    return R"(ui_forwarding_profile_config_apply {"opcode":)" + std::to_string(opcode) +
        R"(,"profile_name":")" + name + R"("})";
}

std::string place(const std::string &operation, const std::string &values)
{
    return "[u_lyn_openconfig_forwarding_profile_forwarding_profile_edit] [n] cbtype [commit] editop [" +
        operation + "]" + values;
}

std::string values(const std::string &side, const std::string &name)
{
    return "\n" + side + "\nforwarding-profile\n  current-profile-name " + name + "\n";
}

const std::string kOneToTwo = values("new", "profile2") + values("cur", "profile1");

class ForwardingProfile : public CallbackTest { };

TEST_P(ForwardingProfile, DoesExactlyThis)
{
    EXPECT_EQ(perform(kProfile, GetParam()), GetParam().deed);
}

const std::string kUnavailable = "Error : Profile-name Unavailable, cur_profile = \"NULL\"\n";

const Step kSteps[] = {
    {"merge_adds_the_new_profile", commit, merge, kOne, kTwo, {{request(1, "profile2")}}},
    {"create", commit, create, kAbsent, kOne, {{request(1, "profile1")}}},
    {"delete_removes_the_old_profile", commit, del, kOne, kAbsent, {{request(3, "profile1")}}},
    {"merge_without_a_name",
     commit,
     merge,
     kOne,
     kNone,
     {{},
      209,
      {"209 Error: Profilename Unavailable\n"},
      kUnavailable + place("merge", "\nnew\nforwarding-profile\n" + values("cur", "profile1"))}},
    {"create_without_a_name",
     commit,
     create,
     kAbsent,
     kNone,
     {{},
      209,
      {"209 Error: Profilename Unavailable\n"},
      kUnavailable + place("create", "\nnew\nforwarding-profile\n")}},
    {"delete_without_a_name_cannot_occur", commit, del, kNone, kAbsent,
     failure(4, {}, internalError("u_lyn-openconfig-forwarding-profile.cc", 4))},
    {"delete_of_an_empty_name", commit, del, kNameless, kAbsent,
     failure(111, {}, internalError("u_lyn-openconfig-forwarding-profile.cc", 111))},

    {"a_dead_device", commit, merge, kOne, kTwo,
     failure(4, {request(1, "profile2")}, place("merge", kOneToTwo)), noAnswer(kCall)},
    {"a_refusal_in_the_devices_words",
     commit,
     merge,
     kOne,
     kTwo,
     {{request(1, "profile2")}, 1042, {"1042 no room"}, place("merge", kOneToTwo)},
     refusal(kCall, "no room")},
    {"a_refusal_of_the_daemon_itself",
     commit,
     del,
     kOne,
     kAbsent,
     {{request(3, "profile1")}, 1042, {"1042 in use"}, place("delete", values("cur", "profile1"))},
     refusal(kCall, "in use", 0, 5)},
    {"an_empty_text_is_a_text",
     commit,
     merge,
     kOne,
     kTwo,
     {{request(1, "profile2")}, 1042, {"1042 "}, place("merge", kOneToTwo)},
     refusal(kCall, "")},
    {"a_refusal_without_words", commit, merge, kOne, kTwo,
     failure(4, {request(1, "profile2")}, place("merge", kOneToTwo)), refusal(kCall, std::nullopt)},
};
INSTANTIATE_TEST_SUITE_P(Table, ForwardingProfile,
                         testing::ValuesIn(andNothingElse({std::begin(kSteps), std::end(kSteps)}, kOne,
                                                          kTwo)),
                         CaseName());

std::string body(const std::string &value)
{
    return R"({"lyn-openconfig-forwarding-profile:forwarding-profile":)" + value + "}";
}

TEST(ForwardingProfileEdit, WhatTheDeviceRefusesIsTakenBack)
{
    SwitchBench bench(body(kOne), 4);
    const Outcome refused = bench.patch(kProfile, body(R"({"current-profile-name":"two words"})"));
    EXPECT_THAT(refused.refusals,
                ElementsAre(Refusal{1042, "operation-failed", "/" + kProfile,
                                    "Error: invalid forwarding profile name\n"}));
    EXPECT_EQ(bench.read(kProfile), body(kOne));
    EXPECT_EQ(bench.patch(kProfile, body(kTwo)).status(), 0);
    bench.unplug();
    EXPECT_EQ(bench.remove(kProfile).status(), 4);
    EXPECT_EQ(bench.read(kProfile), body(kTwo));
}

TEST(ForwardingProfileEdit, LosingItsNameIsADeletion)
{
    SwitchBench bench(body(kOne), 4);
    EXPECT_TRUE(bench.remove(kProfile + "/current-profile-name").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(request(3, "profile1")));
    EXPECT_EQ(bench.read(kProfile), body(kNone));
    EXPECT_TRUE(bench.patch(kProfile, body(kTwo)).ok());
    EXPECT_TRUE(bench.put(kProfile, body(kNone)).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(request(1, "profile2"), request(3, "profile2")));
}

TEST(ForwardingProfilePlatforms, AreFourAndFive)
{
    for (const int type : {1, 3, 4, 5, 6}) {
        SwitchBench bench({}, type);
        const bool isServed = type == 4 || type == 5;
        EXPECT_EQ(ncx_find_module("lyn-openconfig-forwarding-profile", nullptr) != nullptr, isServed) << type;
        EXPECT_EQ(bench.host().impl().registry.find("/" + kProfile) != nullptr, isServed) << type;
    }
}

} // namespace
} // namespace test
