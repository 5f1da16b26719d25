// Filters: what each kind of entry sends, and what it cannot do without.
#include "tests/unit/acl/requests.h"

#include "acl/src/acl_names.h"
#include "acl/src/acl_request.h"

#include <iomanip>
#include <map>

namespace test {
namespace {

const Pattern ip{R"(,"$":{"config":{$}})"}, transport{R"(,"transport":{"config":{$}})"},
    protocol{R"(,"protocol":"openconfig-packet-match-types:$")"};
const std::string kAny = R"("source-address":"any")", kTcp = protocol("IP_TCP"),
                  kAccept = R"(,"actions":{"config":{"forwarding-action":"ACCEPT"}})",
                  kDrop = R"(,"actions":{"config":{"forwarding-action":"DROP","log-action":"LOG_SYSLOG"}})",
                  kPort = transport(R"("destination-port":80)"),
                  kPort80 = R"("destination_low_port":80,"destination_port_operator":1,)";

std::string ten(const std::string &rest)
{
    return entry(10, 10, rest);
}
std::string ipv4(const std::string &config, const std::string &rest)
{
    return ten(ip("ipv4", config) + rest);
}

const std::string kOld = ten(kPing), kNew = ipv4(kAny + kTcp, kPort + kAccept),
                  kAddOld = ipv4Filter(1, 10, 1, 1, "", ""), kDropOld = ipv4Filter(3, 10, 1, 1, "", ""),
                  kAddNew = ipv4Filter(1, 10, 1, 6, kPort80, ""),
                  kDropNew = ipv4Filter(3, 10, 1, 6, kPort80, "");

const std::vector<Cell> kIpv4Cells = {
    created(
        "everything",
        ipv4(
            R"("source-address":"10.0.0.0/8","destination-address":"10.1.0.0/16","dscp":0,)"
            R"("lyn-openconfig-acl-aug:internal-priority-marking":-1,"lyn-openconfig-acl-aug:dscp-marking":7)" +
                kTcp,
            transport(R"("source-port":"100..200","destination-port":"gt 1023")") + kAccept),
        {ipv4Filter(1, 10, 1, 6,
                    R"("source_low_port":100,"source_high_port":200,"source_port_operator":5,)"
                    R"("destination_low_port":1023,"destination_port_operator":3,)",
                    R"(,"dscp":0,"dscp_marking":7,"internal_priority_marking":4294967295,)"
                    R"("destination_ip":"10.1.0.0/16","source_ip":"10.0.0.0/8")")}),
    created("a protocol that names no ports has none", ipv4(kAny + protocol("IP_GRE"), kPort + kAccept),
            {ipv4Filter(1, 10, 1, 47, "", "")}),
    created("one without a name may have some", ipv4(kAny + R"(,"protocol":112)", kPort + kDrop),
            {ipv4Filter(1, 10, 0, 112, kPort80, "")}),
    created("any protocol", ipv4(kAny, kPort + kAccept), {ipv4Filter(1, 10, 1, 0, kPort80, "")}),
    created("any protocol needs ports", ipv4(kAny, kAccept), {}, 233),
    created("no source", ipv4(R"("protocol":6)", kPort + kAccept), {}, 233),
    created("no action", ipv4(kAny, kPort), {}, 233),
    created("no sequence", R"({"sequence-id":10)" + kPing + "}", {}, 233),
    created("", kOld, {kAddOld}),
    replaced("", kOld, kNew, {kDropOld, kAddNew}),
    deleted("", kOld, {kDropOld}),
    merged("", kOld, kNew, {}, 273),
    in(rollback, created("", kNew, {kDropNew})),
    in(rollback, replaced("", kOld, kNew, {kDropNew, kAddOld})),
    in(rollback, deleted("", kOld, {kAddOld})),
    in(rollback, merged("", kOld, kNew, {}, 273)),
    under(refusal(kHandler, "no", 1, 2),
          replaced("the old one stays", kOld, kNew, {kDropOld}, 4, "",
                   "[restconf_process_acl_config_common_response] [n]")),
    under(refusal(kHandler, "no", 1, 1), created("not a word of the daemon's own", kOld, {kAddOld})),
    under(noAnswer(kHandler),
          created("a dead device", kOld, {kAddOld}, 4, "", "[restconf_acl_ipv4_filter_apply" + kUnsent)),
};

const Pattern ipv6Filter{
    kHandler +
    R"( {"message":"ipv6_acl_filter","code":10027076,"sub_type":2,"operation":$,"acl_name":"web","sequence":10,)"
    R"("permit":$,"deny":$,"protocol_number":$$})"};
std::string ipv6(const std::string &config, const std::string &rest)
{
    return ten(ip("ipv6", config) + rest);
}
const std::string kBare6 = ipv6(R"("dscp":3)", kAccept);

const std::vector<Cell> kIpv6Cells = {
    created(
        "everything",
        ipv6(
            R"("source-address":"2001:db8::/32","destination-address":"any","dscp":46,"protocol":17,)"
            R"("lyn-openconfig-acl-aug:dscp-marking":1,"lyn-openconfig-acl-aug:internal-priority-marking":2)",
            transport(R"("source-port":"neq 5","destination-port":"1..65535")") + kDrop),
        {ipv6Filter(1, 0, 1, 17,
                    R"(,"source_ip":"2001:db8::/32","source_low_port":5,"source_port_operator":2,)"
                    R"("destination_low_port":1,"destination_high_port":65535,"destination_port_operator":5,)"
                    R"("dscp":46,"dscp_marking":1,"internal_priority_marking":2,"log_enable":1)")}),
    created("no address, no ports", kBare6, {ipv6Filter(1, 1, 0, 0, R"(,"dscp":3)")}),
    deleted("", kBare6, {ipv6Filter(3, 1, 0, 0, R"(,"dscp":3)")}),
    created("no sequence", R"({"sequence-id":10)" + kAccept + "}", {}, 233, "",
            "config container not found \n"),
    created("no fields", ten(kAccept), {}, 233, "",
            "[restconf_acl_ipv6_parse_filter_params] [n] ipv6 container not found \n"),
    created("no action", ipv6(R"("dscp":3)", R"(,"actions":{"config":{"log-action":"LOG_NONE"}})"), {}, 233,
            "", "Failed to retrieve action\n"),
};

const Pattern macFilter{
    kHandler +
    R"( {"message":"mac_acl_filter","code":10027075,"sub_type":3,"operation":$,"sequence":10,"permit":$,)"
    R"("deny":$,"acl_name":"web"$})"};
const Pattern mac{
    R"("source-mac":"$","source-mac-mask":"$","destination-mac":"$","destination-mac-mask":"$"$)"};
std::string l2(const std::string &config, const std::string &rest)
{
    return ten(ip("l2", config) + rest);
}
const std::string kMac = "00:11:22:33:44:55", kMask = "ff:ff:ff:00:00:00",
                  kAnyMac = mac("any", "any", "any", "any", "");

const std::vector<Cell> kL2Cells = {
    created(
        "everything",
        l2(mac(kMac, kMask, "any", "any", R"(,"ethertype":"openconfig-packet-match-types:ETHERTYPE_ARP")"),
           kDrop),
        {macFilter(
            1, 0, 1,
            R"(,"source_mac":"00:11:22:33:44:55","source_mask":"ff:ff:ff:00:00:00","ethertype":2054,"log_enable":1)")}),
    created(
        "a number", l2(mac("any", "any", kMac, kMask, R"(,"ethertype":34525)"), kAccept),
        {macFilter(
            1, 1, 0,
            R"(,"destination_mac":"00:11:22:33:44:55","destination_mask":"ff:ff:ff:00:00:00","ethertype":34525)")}),
    deleted("", l2(kAnyMac, kAccept), {macFilter(3, 1, 0, "")}),
    created("no mask",
            l2(R"("source-mac":"any","destination-mac":"any","destination-mac-mask":"any")", kAccept), {},
            233, "", "[restconf_acl_mac_parse_filter_params] Missing source-mac-mask"),
    created("no sequence", R"({"sequence-id":10)" + kAccept + "}", {}, 233, "",
            "[restconf_acl_mac_parse_sequence_params] Missing sequence-id"),
    created("no action", l2(kAnyMac, ""), {}, 233),
};

TEST(AclEntry, DoesExactlyThis)
{
    struct Kind {
        std::string type;
        const std::vector<Cell> &cells;
        std::string value;
    };
    for (const auto &[type, cells, value] :
         {Kind{"ACL_IPV4", kIpv4Cells, kOld}, Kind{"ACL_IPV6", kIpv6Cells, kBare6},
          Kind{"ACL_L2", kL2Cells, l2(kAnyMac, kAccept)}}) {
        SwitchBench bench;
        const auto define = [&bench, &path = type] {
            bench.call(apply, create, setPath(path, "/config"), kAbsent, "{}");
        };
        for (const EditPhase phase : {validate, commit})
            check(bench, entryPath(type),
                  {in(phase, replaced("", value, value)), in(phase, created("", value))});
        check(bench, entryPath(type), {loaded("", value)});
        check(bench, entryPath(type), cells, {}, define);
    }
}

TEST(AclPort, IsReadAnywhereInItsText)
{
    const auto read = [](const char *text) {
        std::uint32_t low = 9, high = 9, portOperator = 9;
        restconf_acl_parse_port(text, &low, &high, &portOperator);
        return std::vector{low, high, portOperator};
    };
    for (const auto &[text, numbers] :
         std::map<const char *, std::vector<std::uint32_t>>{{"80", {80, 9, 1}},
                                                            {"100..200", {100, 200, 5}},
                                                            {"gt 1", {1, 9, 3}},
                                                            {"lt 65535", {65535, 9, 4}},
                                                            {"neq 7", {7, 9, 2}},
                                                            {"eq 7", {7, 9, 1}},
                                                            {"ANY", {0, 9, 1}}})
        EXPECT_EQ(read(text), numbers) << text;
}

TEST(AclNames, AreThoseOfTheirNumbers)
{
    const auto agree = [](const char *rows, auto *nameOf, auto *numberOf) {
        std::istringstream words(rows);
        std::string name;
        for (std::uint32_t number, found = 0; words >> name >> std::setbase(0) >> number; found = 0) {
            const char *foundName = nullptr;
            EXPECT_EQ(nameOf(number, &foundName) + numberOf(name.c_str(), &found), 2) << name;
            EXPECT_EQ(std::pair(std::string(foundName ? foundName : ""), found), std::pair(name, number));
        }
        std::uint32_t none = 0;
        const char *noName = nullptr;
        EXPECT_EQ(nameOf(0, &noName) + numberOf("IP_NONE", &none), 0);
    };
    agree("IP_TCP 6 IP_UDP 17 IP_ICMP 1 IP_IGMP 2 IP_PIM 103 IP_RSVP 46 IP_GRE 47 IP_AUTH 51 IP_IGRP 88 "
          "IP_OSPF 89 IP_L2TP 115",
          get_protocol_type, set_protocol_type);
    agree("ETHERTYPE_IPV4 0x0800 ETHERTYPE_ARP 0x0806 ETHERTYPE_VLAN 0x8100 ETHERTYPE_IPV6 0x86DD "
          "ETHERTYPE_MPLS 0x8847 ETHERTYPE_LLDP 0x88CC ETHERTYPE_ROCE 0x8915",
          get_l2_ethertype, set_l2_ethertype);
    EXPECT_EQ(get_req_acl_type("ACL_IPV4") + get_req_acl_type("ACL_MIXED"), 4u);
    EXPECT_EQ(get_req_acl_type("ACL_L2") - get_req_acl_type("ACL_IPV6"), 1u);
}

} // namespace
} // namespace test
