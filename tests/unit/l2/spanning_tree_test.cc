// Spanning trees: one a VLAN, rapid or classic, and what ports do in them.
#include "frame/wait.h"
#include "tests/unit/bundle/callback_test.h"

namespace test {
namespace {

const std::string kStp = "openconfig-spanning-tree:stp", kVlan = R"("vlan-id":1)",
                  kPortConfig = kStp + "/interfaces/interface=ethernet%201%2F1%2F1/config";

// A request for the tree of VLAN 1: what it says of the state, and of the priority.
struct TreeCells {
    std::string call, leaf, on;

    std::string request(const std::string &enable, const std::string &priority = {}) const
    {
        return call + R"( {"vlan_id":1,"enable_op":2,"enable":)" + enable + priority +
            R"(,"vlan_type":{"kind":1,"id":1}})";
    }
    std::vector<Cell> config() const
    {
        const std::string plain = "{" + kVlan + "}", withPriority = "{" + kVlan + ",\"" + leaf + "\":4096}",
                          alone = "{\"" + leaf + "\":4096}", sentPlain = request(on),
                          sent = request(on, R"(,"priority_op":2,"priority":4096)");
        return {
            created("", plain, {sentPlain}),
            created("with a priority", withPriority, {sent}),
            merged("sends the whole entry", plain, withPriority, {sent}),
            merged("a priority that goes", withPriority, plain, {sentPlain}),
            created("without a VLAN", alone),
            merged("without a VLAN", "{}", alone),
            under(refusal(call, "no"), created("refused", plain, {sentPlain}, 1042, "no")),
            under(refusal(call), created("refused without words", plain, {sentPlain}, 4)),
            under(refusal(call, "no", 2), created("another error", plain, {sentPlain})),
            under(refusal(call, "no", 0, 2), created("the daemon's own error", plain, {sentPlain})),
            under(noAnswer(call), merged("silent", withPriority, plain, {sentPlain}, 4)),
        };
    }
    Quiet elsewhere() const { return {"{" + kVlan + "}", "{" + kVlan + ",\"" + leaf + "\":4096}"}; }
    std::vector<Cell> entry() const
    {
        const std::string value = "{" + kVlan + "}";
        return {deleted("", value, {request("0")}),
                under(refusal(call, "no"), deleted("refused", value, {request("0")})),
                under(noAnswer(call), deleted("silent", value, {request("0")}, 4))};
    }
};

unsigned waited = 0;
void noteWait(unsigned seconds)
{
    waited += seconds;
}

TEST(SpanningTree, OfAVlan)
{
    frame::setWait(noteWait);
    struct Tree {
        TreeCells cells;
        std::string list;
        unsigned waited;
    };
    for (const Tree &tree :
         {Tree{{"ui_rstp_config_apply", "bridge-priority", "2"}, "/rapid-pvst", 9},
          Tree{{"ui_stp_config_apply", "pvst-priority", "1"}, "/lyn-openconfig-spanning-tree-aug:pvst", 0}}) {
        SCOPED_TRACE(tree.list);
        waited = 0;
        const std::string entry = kStp + tree.list + "/vlan=1";
        check(entry + "/config", tree.cells.config(), tree.cells.elsewhere());
        EXPECT_EQ(waited, 0u);
        check(entry, tree.cells.entry(), Quiet{"{" + kVlan + "}", "{" + kVlan + "}"});
        EXPECT_EQ(waited, tree.waited); // three seconds a deletion, whatever came of it
    }
    frame::setWait(nullptr);
}

const Pattern common{R"(ui_stp_common_port_config_apply {"name":"ethernet 1/1/1"$})"};
const Pattern edge{R"(ui_rstp_port_config_apply {"name":"ethernet 1/1/1"$})"};
const std::string
    kBpduOn = common(R"(,"bpdu_guard_op":2,"bpdu_guard_off":0)"),
    kBpduOff = common(R"(,"bpdu_guard_op":2,"bpdu_guard_off":1)"),
    kRootOn = common(R"(,"root_guard_op":2,"root_guard":1)"),
    kRootOff = common(R"(,"root_guard_op":2,"root_guard":0)"),
    kEdgeOn = edge(R"(,"admin_edge_op":2,"admin_edge":1)"),
    kEdgeOff = edge(R"(,"admin_edge_op":3,"admin_edge":0)"),
    kAllOn = R"({"edge-port":"openconfig-spanning-tree-types:EDGE_ENABLE","guard":"ROOT","bpdu-guard":true})",
    kAllOff =
        R"({"edge-port":"openconfig-spanning-tree-types:EDGE_DISABLE","guard":"NONE","bpdu-guard":false})",
    kOthers = R"({"edge-port":"openconfig-spanning-tree-types:EDGE_AUTO","guard":"LOOP","link-type":"P2P"})",
    kGuard = R"({"guard":"ROOT"})", kNamed = R"({"name":"ethernet 1/1/1","bpdu-filter":true})",
    kEdge = R"({"edge-port":"openconfig-spanning-tree-types:EDGE_ENABLE"})",
    kTwo = R"({"edge-port":"openconfig-spanning-tree-types:EDGE_ENABLE","bpdu-guard":true})";
const std::string kCommonCall = "ui_stp_common_port_config_apply", kEdgeCall = "ui_rstp_port_config_apply";

const std::vector<Cell> kPortCells = {
    created("", kAllOn, {kBpduOn, kRootOn, kEdgeOn}),
    created("all off", kAllOff, {kBpduOff, kRootOff, kEdgeOff}),
    created("words that the device lacks", kOthers, {common(""), edge("")}),
    created("nothing that the device has", kNamed),
    merged("", "{}", kAllOn, {kBpduOn, kRootOn, kEdgeOn}),
    merged("all off", kAllOn, kAllOff, {kBpduOff, kRootOff, kEdgeOff}),
    merged("all gone", kAllOn, "{}", {kBpduOff, kRootOff, kEdgeOff}),
    merged("one comes and one goes", kEdge, kGuard, {kRootOn, kEdgeOff}),
    merged("another leaf", "{}", kNamed),
    merged("nothing", kAllOn, kAllOn),
    deleted("", kAllOn, {kBpduOff, kRootOff, kEdgeOff}),
    deleted("one", kGuard, {kRootOff}),
    under(refusal(kCommonCall, "no"),
          created("a later success changes nothing", kTwo, {kBpduOn, kEdgeOn}, 1042, "no")),
    under(refusal(kCommonCall, "no", 2), created("another error", kTwo, {kBpduOn, kEdgeOn})),
    under(refusal(kEdgeCall, "no"),
          merged("the last is refused", "{}", kTwo, {kBpduOn, kEdgeOn}, 1042, "no")),
    under(noAnswer(kCommonCall), merged("silent", "{}", kTwo, {kBpduOn, kEdgeOn}, 4)),
    under(noAnswer(kEdgeCall), deleted("silent", kTwo, {kBpduOff, kEdgeOff}, 4)),
};

TEST(SpanningTree, OfAPort)
{
    check(kPortConfig, kPortCells, Quiet{kAllOff, kAllOn});
}

TEST(SpanningTree, TheLastFailureCounts)
{
    SwitchBench bench;
    bench.device().addFault(refusal(kCommonCall, "no"));
    bench.device().addFault(noAnswer(kEdgeCall));
    EXPECT_EQ(ended(bench.call(apply, create, kPortConfig, kAbsent, kTwo)), Ended(4, {"no"}));
}

} // namespace
} // namespace test
