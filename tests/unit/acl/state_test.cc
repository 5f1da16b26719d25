// State: nothing yet from the device, and what its answers would become.
#include "tests/unit/acl/requests.h"

#include "acl/src/acl_state.h"
#include "toolkit/src/retrieval.h"

namespace test {
namespace {

// What a builder makes of an answer for the state at that path: the status, and the leaves.
template <class Record>
std::string built(const std::string &path, acl::StateBuilder build, std::uint32_t type, const Record &answer)
{
    const SwitchBench bench;
    const Target target = bench.target(path);
    const Selection everything;
    GetBlock block;
    block.node = target.node().schema();
    block.selection = &everything;
    std::string text = std::to_string(build(&block, type, &answer.base));
    for (const auto &value : block.current.values)
        text += std::string(" ") + val_get_name(value.get()) + "=" + val_get_string(value.get());
    return text;
}

char *text(const char *value)
{
    return const_cast<char *>(value);
}

TEST(AclState, IsMadeOfIpv4Filters)
{
    const std::string entry = entryPath("ACL_IPV4");
    Ipv4AclFilter filter = IPV4_ACL_FILTER__INIT;
    filter.sequence = 10;
    filter.permit = 1;
    filter.protocol_number = 17;
    filter.source_prefix = text("10.0.0.0/8");
    filter.source_low_port = 100;
    filter.source_high_port = 200;
    filter.source_port_operator = 5;
    filter.destination_low_port = 53;
    filter.destination_port_operator = 3;
    EXPECT_EQ(built(entry + "/state", restconf_make_sequence_node, 1, filter), "0 sequence-id=10");
    EXPECT_EQ(built(entry + "/ipv4/state", restconf_make_ipv4_state_node, 1, filter),
              "0 source-address=10.0.0.0/8 protocol=IP_UDP");
    EXPECT_EQ(built(entry + "/transport/state", restconf_make_transport_node, 1, filter),
              "0 source-port=100..200 destination-port=53");
    EXPECT_EQ(built(entry + "/actions/state", restconf_make_action_node, 1, filter),
              "0 forwarding-action=ACCEPT log-action=LOG_NONE");
    filter.source_prefix = text("nowhere");
    EXPECT_EQ(built(entry + "/ipv4/state", restconf_make_ipv4_state_node, 1, filter), "261");
}

TEST(AclState, IsMadeOfIpv6Filters)
{
    const std::string entry = entryPath("ACL_IPV6");
    Ipv6AclFilter filter = IPV6_ACL_FILTER__INIT;
    filter.sequence = 20;
    filter.protocol_number = 112;
    filter.destination_ip = text("2001:db8::/32");
    filter.source_low_port = 7;
    EXPECT_EQ(built(entry + "/state", restconf_make_sequence_node, 2, filter), "0 sequence-id=20");
    EXPECT_EQ(built(entry + "/ipv6/state", restconf_make_ipv6_state_node, 2, filter),
              "0 destination-address=2001:db8::/32 protocol=112");
    EXPECT_EQ(built(entry + "/transport/state", restconf_make_transport_node, 2, filter),
              "0 source-port=7 destination-port=0");
    EXPECT_EQ(built(entry + "/actions/state", restconf_make_action_node, 2, filter),
              "0 forwarding-action=DROP log-action=LOG_NONE");
}

TEST(AclState, IsMadeOfMacFiltersAndBindings)
{
    const std::string entry = entryPath("ACL_L2");
    MacAclFilter filter = MAC_ACL_FILTER__INIT;
    filter.permit = 7; // no action that has a name
    filter.source_mac = text("00:11:22:33:44:55");
    filter.destination_mask = text("ff:ff:ff:ff:ff:ff");
    for (const auto &[number, name] : {std::pair{0x88CCu, "ETHERTYPE_LLDP"}, {0x9000u, "36864"}}) {
        filter.ethertype = number;
        EXPECT_EQ(
            built(entry + "/l2/state", restconf_make_l2_state_node, 3, filter),
            std::string("0 source-mac=00:11:22:33:44:55 destination-mac-mask=ff:ff:ff:ff:ff:ff ethertype=") +
                name);
    }
    EXPECT_EQ(built(entry + "/actions/state", restconf_make_action_node, 3, filter), "0 log-action=LOG_NONE");
    AclInterfBinding binding = ACL_INTERF_BINDING__INIT;
    binding.acl_name = text("web");
    const std::string set =
        kInterfaces + "/interface=lag%205/egress-acl-sets/egress-acl-set=web,ACL_L2/state";
    for (const auto &[code, type] : {std::pair{1u, "ACL_IPV4"}, {2u, "ACL_IPV6"}, {3u, "ACL_L2"}})
        EXPECT_EQ(built(set, restconf_make_interf_acl_set_node, code, binding),
                  std::string("0 set-name=web type=") + type);
}

TEST(AclState, IsEmpty)
{
    SwitchBench bench;
    bench.sent();
    const std::string acl = "/oc-acl:acl/oc-acl:",
                      entries = acl + "acl-sets/oc-acl:acl-set/oc-acl:acl-entries/oc-acl:acl-entry",
                      bound =
                          acl + "interfaces/oc-acl:interface/oc-acl:ingress-acl-sets/oc-acl:ingress-acl-set",
                      boundPath =
                          kInterfaces + "/interface=lag%205/ingress-acl-sets/ingress-acl-set=web,ACL_IPV4";
    struct State {
        std::string registered, path;
        Status status;
    };
    for (const auto &[registered, path, status] :
         {State{entries + "/oc-acl:state", entryPath("ACL_IPV4", "/state"), kOk},
          State{bound + "/oc-acl:state", boundPath + "/state", kOk},
          State{bound + "/oc-acl:acl-entries", boundPath + "/acl-entries", kNoInstance}}) {
        EXPECT_EQ(getByHand(bench, registered, path, getValue), Got{status}) << path;
        EXPECT_EQ(getByHand(bench, registered, path, getNext), Got{kNoInstance}) << path;
    }
    EXPECT_THAT(bench.sent(), IsEmpty());
}

} // namespace
} // namespace test
