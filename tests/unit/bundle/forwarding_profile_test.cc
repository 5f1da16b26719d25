// The forwarding profile: chosen by name, sent in commit, on some platforms only.
#include "tests/unit/bundle/callback_test.h"

namespace test {
namespace {

const std::string kProfile = "lyn-openconfig-forwarding-profile:forwarding-profile",
                  kCall = "ui_forwarding_profile_config_apply",
                  kOne = R"({"current-profile-name":"profile1"})",
                  kTwo = R"({"current-profile-name":"profile2"})", kNone = "{}";

const Pattern request{kCall + R"( {"opcode":$,"profile_name":"$"})"};
const Pattern place{
    "[u_lyn_openconfig_forwarding_profile_forwarding_profile_edit] [n] cbtype [commit] editop [$]$"};

const std::string kNewTwo = "\nnew\nforwarding-profile\n  current-profile-name profile2\n",
                  kOldOne = "\ncur\nforwarding-profile\n  current-profile-name profile1\n",
                  kNewNone = "\nnew\nforwarding-profile\n",
                  kUnavailable = "Error : Profile-name Unavailable, cur_profile = \"NULL\"\n",
                  kNoName = "Error: Profilename Unavailable\n",
                  kFile = "u_lyn-openconfig-forwarding-profile.cc";

const std::vector<Cell> kCells = {
    in(commit, merged("a merge adds the new profile", kOne, kTwo, {request(1, "profile2")})),
    in(commit, created("", kOne, {request(1, "profile1")})),
    in(commit, deleted("a delete removes the old profile", kOne, {request(3, "profile1")})),
    in(commit,
       merged("merge without a name", kOne, kNone, {}, 209, kNoName,
              kUnavailable + place("merge", kNewNone + kOldOne))),
    in(commit,
       created("create without a name", kNone, {}, 209, kNoName, kUnavailable + place("create", kNewNone))),
    in(commit, deleted("delete without a name", kNone, {}, 4, "", internalError(kFile, 4))),
    in(commit,
       deleted("delete of an empty name", R"({"current-profile-name":""})", {}, 111, "",
               internalError(kFile, 111))),
    under(refusal(kCall), in(commit, created("without words", kOne, {request(1, "profile1")}, 4))),
    under(refusal(kCall, ""), in(commit, created("an empty text", kOne, {request(1, "profile1")}, 1042))),
    under(noAnswer(kCall),
          in(commit,
             merged("a dead device", kOne, kTwo, {request(1, "profile2")}, 4, "",
                    place("merge", kNewTwo + kOldOne)))),
    under(refusal(kCall, "in use", 0, 5),
          in(commit,
             deleted("a refusal", kOne, {request(3, "profile1")}, 1042, "in use", place("delete", kOldOne)))),
};

TEST(ForwardingProfile, DoesExactlyThis)
{
    SwitchBench bench("", 4);
    check(bench, kProfile, kCells, Quiet{kOne, kTwo});
}

const Pattern body{R"({"lyn-openconfig-forwarding-profile:forwarding-profile":$})"};

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
    for (const int type : {3, 4, 5, 6}) {
        SwitchBench bench({}, type);
        EXPECT_EQ(bench.host().impl().registry.find("/" + kProfile) != nullptr, type == 4 || type == 5)
            << type;
    }
}

} // namespace
} // namespace test
