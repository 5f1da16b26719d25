// Link layer discovery: the switch for all, that of each port, and policies for media endpoints.
#include "lldp/u_lyn-openconfig-lldp-aug.h"
#include "lldp/u_openconfig-lldp.h"
#include "tests/unit/bundle/callback_test.h"
#include "toolkit/src/request.h"

namespace test {
namespace {

const std::string kLldp = "openconfig-lldp:lldp", kConfig = kLldp + "/config",
                  kGlobalCall = "ui_fe_lldp_config_apply", kOn = R"({"enabled":true})",
                  kOff = R"({"enabled":false})",
                  kSentOn = kGlobalCall + R"( {"flag":2,"state_op":1,"state":1,"operation":2})",
                  kSentOff = kGlobalCall + R"( {"flag":2,"state_op":1,"state":0,"operation":2})",
                  kAsked = kGlobalCall + R"( {"flag":2,"operation":5})";

const std::vector<Cell> kGlobalCells = {
    merged("", kOn, kOff, {kSentOff}),
    merged("on by default", kOff, "{}", {kSentOn}),
    replaced("", kOff, kOn, {kSentOn}),
    created("", kOn, {}, 273),
    deleted("", kOn, {}, 273, "", "LLDP:Delete operation disallowed\n"),
    in(rollback, merged("the old value", kOn, kOff, {kSentOn})),
    in(rollback, replaced("there was none", "{}", kOff, {kSentOn})),
    under(noAnswer(kGlobalCall), merged("silent", kOff, kOn, {kSentOn}, 4)),
    under(refusal(kGlobalCall, "no"), merged("an answer is not read", kOff, kOn, {kSentOn})),
    under(noAnswer(kGlobalCall), in(rollback, merged("silent", kOn, kOff, {kSentOn}))),
};

TEST(Lldp, OfTheSwitch)
{
    check(kConfig, kGlobalCells, Quiet{kOff, kOn});
    const std::string whole = R"({"config":)" + kOn + "}";
    check(kLldp, {created("", whole, {}, 4), deleted("", whole, {}, 4)}, Quiet{whole, whole});
}

const std::string kPortConfig = kLldp + "/interfaces/interface=ethernet%201%2F1%2F1/config",
                  kPortCall = "ui_lldp_fe_int_config_apply",
                  kPortOn = R"({"name":"ethernet 1/1/1","enabled":true})",
                  kPortOff = R"({"name":"ethernet 1/1/1","enabled":false})";
const Pattern portRequest{kPortCall +
                          R"( {"operation":2,"rx_op":1,"rx":$,"tx_op":1,"tx":$,$)"
                          R"("port_list_flag":0,"interface_name":"$","interface_op":1})"};
const std::string kListed = R"("port_list":"ethernet 1/1/1",)", kKey = "ethernet 1/1/1",
                  kPortSentOn = portRequest(1, 1, kListed, kKey),
                  kPortSentOff = portRequest(0, 0, kListed, kKey);

TEST(Lldp, OfAPort)
{
    SwitchBench bench;
    std::vector<Cell> cells;
    // The edit's own value is sent once more when it is taken back.
    for (const EditPhase phase : {apply, rollback}) {
        for (const Cell &cell : {
                 merged("", kPortOn, kPortOff, {kPortSentOff}),
                 replaced("", kPortOff, kPortOn, {kPortSentOn}),
                 created("without a name", kOn, {portRequest(1, 1, "", kKey)}),
                 created("on by default", R"({"name":"ethernet 1/1/1"})", {kPortSentOn}),
                 loaded("", kPortOn, {kPortSentOn}),
                 deleted("what was", kPortOn, {kPortSentOn}),
             })
            cells.push_back(in(phase, cell));
        cells.push_back(under(
            noAnswer(kPortCall),
            in(phase, merged("silent", kPortOff, kPortOn, {kPortSentOn}, phase == apply ? kInternal : kOk))));
    }
    for (const Cell &cell : {merged("", kPortOn, kPortOff, {kAsked}), created("", kPortOn, {kAsked}),
                             replaced("", kPortOff, kPortOn, {kAsked}), loaded("", kPortOn, {kAsked}),
                             deleted("", kPortOn, {kAsked}),
                             under(noAnswer(kGlobalCall), created("silent", kPortOn, {kAsked}, 4)),
                             under(refusal(kGlobalCall), created("refused", kPortOn, {kAsked}, 4))})
        cells.push_back(in(validate, cell));
    check(bench, kPortConfig, cells, Quiet{kPortOff, kPortOn});

    bench.patch(kConfig, member(kConfig, kOff));
    bench.sent();
    const LogCapture log;
    EXPECT_EQ(ended(bench.call(validate, merge, kPortConfig, kPortOff, kPortOn)), Ended(4, {""}));
    EXPECT_THAT(log.errors(), HasSubstr("interface_config_edit] Error: LLDP is disabled globally.\n"));
    EXPECT_THAT(bench.sent(), ElementsAre(kAsked));
    RequestFrame frame;
    EXPECT_EQ(u_openconfig_lldp_lldp_interfaces_interface_config_edit(
                  &frame.session, &frame.request, commit, merge, nullptr, nullptr, "ethernet 1/1/1"),
              4);
    EXPECT_THAT(bench.sent(), IsEmpty());
}

TEST(Lldp, CutsTheNamesOfAPort)
{
    SwitchBench bench;
    const std::string name(60, 'p'), cut(50, 'p');
    bench.call(apply, create, kLldp + "/interfaces/interface=" + name + "/config", kAbsent,
               R"({"name":")" + name + R"(","enabled":true})");
    EXPECT_THAT(bench.sent(), ElementsAre(portRequest(1, 1, R"("port_list":")" + cut + "\",", cut)));
}

// What a list is called, what the keys of an entry are, and what a request says of them.
struct PolicyList {
    std::string path, words, keys, before, after;

    // An entry with ports, which are JSON.
    std::string entry(const std::string &ports) const
    {
        return R"({"application-type":"voice","name":"n","dscp":46)" + keys +
            (ports.empty() ? "" : R"(,"ports":[)" + ports + "]") + "}";
    }
};
const PolicyList kTagged{"tagged=voice,n,100,5,46", "tagged", R"(,"vlan":100,"priority":5)",
                         R"(,"vlan":100,"tag_mode":3,"priority":5,"dscp":46)", "3"},
    kPriorityTagged{"priority-tagged=voice,n,5,46", "priority tagged", R"(,"priority":5)",
                    R"(,"tag_mode":1,"priority":5,"dscp":46)", "1"},
    kUntagged{"untagged=voice,n,46", "untagged", "", R"(,"tag_mode":0,"dscp":46)", "0"};
const std::string kMed = kLldp + "/lyn-openconfig-lldp-aug:med/network-policy/",
                  kMedCall = "ui_lldp_fe_med_config_apply", kP1 = "ethernet 1/1/1", kP2 = "ethernet 1/1/2",
                  kBoth = kP1 + " " + kP2;
const Pattern med{kMedCall +
                  R"( {"flag":2,"operation":2,"ports_op":2,"ports":"$"$,"application_type":$,"add":$,)"
                  R"("tag_mode_2":$})"};

const std::string kQ1 = "\"" + kP1 + "\"", kQ2 = "\"" + kP2 + "\"";

TEST(LldpMed, MovesPortsInTwoPhases)
{
    for (const PolicyList &list : {kTagged, kPriorityTagged, kUntagged}) {
        SCOPED_TRACE(list.path);
        const auto sent = [&](const std::string &ports, int add) {
            return med(ports, list.before, 1, add, list.after);
        };
        const std::string one = list.entry(kQ1), two = list.entry(kQ1 + "," + kQ2), other = list.entry(kQ2),
                          none = list.entry(""),
                          function = "u_lyn_openconfig_lldp_aug_" +
            (list.words == "priority tagged" ? std::string("priority_tagged") : list.words) + "_edit",
                          ignored = "[" + function +
            "]: Ignore processing further if the child_editop is delete in merge phase";
        check(kMed + list.path,
              {
                  merged("all that there is afterwards", one, two, {sent(kBoth, 1)}),
                  merged("a port that goes", two, one, {sent(kP2, 0)}, 0, "", ignored),
                  merged("one goes, another comes", one, other, {sent(kP1, 0)}, 0, "", ignored),
                  merged("all go", two, none, {sent(kP1, 0), sent(kP2, 0)}, 0, "", ignored),
                  replaced("", one, two, {sent(kP1, 0)}),
                  deleted("", two, {sent(kBoth, 0)}),
                  created("not yet", two),
                  in(commit, replaced("", one, two, {sent(kBoth, 1)})),
                  in(commit, created("", two, {sent(kBoth, 1)})),
                  in(commit, created("without ports", none, {sent("", 1)})),
                  under(noAnswer(kMedCall), deleted("silent", one, {sent(kP1, 0)}, 4)),
                  under(refusal(kMedCall), in(commit, created("refused", one, {sent(kP1, 1)}, 4))),
                  under(refusal(kMedCall, "note", 0),
                        in(commit,
                           created("a note", one, {sent(kP1, 1)}, 0, "",
                                   "[" + function + "]: data->reply->reply_buf: [note]"))),
                  under(refusal(kMedCall, "note", 0), deleted("a note", one, {sent(kP1, 0)})),
                  loud(under(refusal(kMedCall, "no"), merged("a refused removal", two, one, {sent(kP2, 0)}))),
              },
              Quiet{two, one});

        SwitchBench bench;
        strike(bench, refusal(kMedCall, "no"));
        const LogCapture log;
        EXPECT_EQ(ended(bench.call(apply, replace, kMed + list.path, one, two)), Ended(4, {""}));
        EXPECT_THAT(log.errors(),
                    HasSubstr("[" + function + "]: lldp aug " + list.words + " edit config Error: no"));
    }
}

TEST(LldpMed, CutsTheListOfPorts)
{
    SwitchBench bench;
    std::string ports, all;
    for (int i = 0; i < 800; ++i) {
        const std::string port = "ethernet 1/1/" + std::to_string(1000 + i);
        ports += (i ? ",\"" : "\"") + port + "\"";
        all += (i ? " " : "") + port;
    }
    bench.call(apply, del, kMed + kUntagged.path, kUntagged.entry(ports), kAbsent);
    EXPECT_THAT(bench.sent(), ElementsAre(med(all.substr(0, 7679), kUntagged.before, 1, 0, 0)));
}

TEST(LldpMed, NumbersApplications)
{
    int expected = 0;
    for (const char *name : {"voice", "voice-signaling", "guest-voice", "guest-voice-signaling",
                             "softphone-voice", "video-conferencing", "streaming-video", "video-signaling"}) {
        std::int32_t code = 0;
        EXPECT_EQ(process_lldp_application_type(name, &code), kOk);
        EXPECT_EQ(code, ++expected);
    }
    std::int32_t code = 7;
    const LogCapture log;
    EXPECT_EQ(process_lldp_application_type("fax", &code), 4);
    EXPECT_EQ(code, 7);
    EXPECT_THAT(log.errors(), HasSubstr("Error: application_type: fax app_type: 7"));
    SwitchBench bench; // an application without a number goes out as none
    bench.call(commit, create, kMed + "untagged=fax,n,46", kAbsent,
               R"({"application-type":"fax","name":"n","dscp":46})");
    EXPECT_THAT(bench.sent(), ElementsAre(med("", kUntagged.before, 0, 1, 0)));
}

} // namespace
} // namespace test
