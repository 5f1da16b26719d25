#include "mcast_snoop/src/u_lyn-igmp-mld-snooping.h"

#include "frame/unit.h"

using namespace tk;

namespace {

#define STEP(name) "/lyn-igmp-mld-snooping:" name
#define TOP STEP("igmp-mld-snooping")
#define GLOBAL TOP STEP("global")
#define VLAN TOP STEP("vlans") STEP("vlan")
#define PROTO VLAN STEP("proto")

constexpr frame::Row kRows[] = {
    EDIT(TOP, u_lyn_igmp_mld_snooping_igmp_mld_snooping_edit),
    EDIT(GLOBAL, u_lyn_igmp_mld_snooping_global_edit),
    EDIT(GLOBAL STEP("igmp"), u_lyn_igmp_mld_snooping_igmp_edit),
    EDIT(GLOBAL STEP("igmp") STEP("config"), u_lyn_igmp_mld_snooping_config_edit, emptiedIsDelete),
    EDIT(TOP STEP("vlans"), u_lyn_igmp_mld_snooping_vlans_edit),
    EDIT(VLAN, u_lyn_igmp_mld_snooping_vlan_edit),
    EDIT(PROTO, u_lyn_igmp_mld_snooping_proto_edit),
    EDIT(PROTO STEP("igmp"), u_lyn_igmp_mld_snooping_igmp_1_edit),
    EDIT(PROTO STEP("igmp") STEP("config"), u_lyn_igmp_mld_snooping_config_1_edit, emptiedIsDelete),
    GET(PROTO STEP("igmp") STEP("oper"), u_lyn_igmp_mld_snooping_oper_get),
};

} // namespace

DEFINE_UNIT(lyn_igmp_mld_snooping, "lyn-igmp-mld-snooping", "2021-12-10", kRows, "igmp-mld-snooping");
