// Paths and requests that the tests of access lists share.
#pragma once

#include "tests/unit/bundle/callback_test.h"

namespace test {

inline const std::string kHandler = "sec_protobuf_fe_config_handler", kAcl = "openconfig-acl:acl",
                         kSets = kAcl + "/acl-sets", kInterfaces = kAcl + "/interfaces",
                         kUnsent = "] [n]ITC failed : 1 \n";

inline std::string setPath(const std::string &type, const std::string &below = "")
{
    return kSets + "/acl-set=web," + type + below;
}
inline std::string entryPath(const std::string &type, const std::string &below = "")
{
    return setPath(type, "/acl-entries/acl-entry=10" + below);
}

// Operation, kind of an IPv4 list with a comma, type, name and what follows it.
inline const Pattern definition{
    kHandler +
    R"( {"message":"acl_definition_request","code":10027068,"sub_type":$,"operation":$,$"acl_type":$,"acl_name":"$"$})"};
inline const std::string kDefine = definition(1, 1, R"("extended":1,)", 1, "web", ""),
                         kRemove = definition(1, 3, R"("extended":1,)", 1, "web", "");

// Operation, sequence, permit, protocol, ports and what follows the name.
inline const Pattern ipv4Filter{
    kHandler +
    R"( {"message":"ipv4_acl_filter","code":10027070,"sub_type":1,"operation":$,"sequence":$,"permit":$,"deny":0,)"
    R"("protocol_number":$,$"acl_name":"web"$})"};

// An entry of that number; what else it holds begins with a comma.
inline const Pattern entry{R"({"sequence-id":$,"config":{"sequence-id":$}$})"};
inline const std::string kPing =
    R"(,"ipv4":{"config":{"source-address":"any","protocol":"openconfig-packet-match-types:IP_ICMP"}},)"
    R"("actions":{"config":{"forwarding-action":"ACCEPT"}})";

} // namespace test
