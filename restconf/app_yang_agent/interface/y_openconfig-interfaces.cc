#include "interface/u_openconfig-interfaces.h"

#include "frame/unit.h"

namespace {

#define INTERFACE "/oc-if:interfaces/oc-if:interface"
#define SUBINTERFACE INTERFACE "/oc-if:subinterfaces/oc-if:subinterface"

constexpr frame::Row kRows[] = {
    EDIT("/oc-if:interfaces", u_openconfig_interfaces_interfaces_edit),
    EDIT(INTERFACE, u_openconfig_interfaces_interfaces_interface_edit),
    EDIT(INTERFACE "/oc-if:config", u_openconfig_interfaces_interfaces_interface_config_edit,
         tk::deletedLeafStays),
    GET(INTERFACE "/oc-if:state", u_openconfig_interfaces_interfaces_interface_state_get),
    GET(INTERFACE "/oc-if:state/oc-if:counters",
        u_openconfig_interfaces_interfaces_interface_state_counters_get),
    EDIT(INTERFACE "/oc-if:hold-time", u_openconfig_interfaces_interfaces_interface_hold_time_edit),
    EDIT(INTERFACE "/oc-if:hold-time/oc-if:config",
         u_openconfig_interfaces_interfaces_interface_hold_time_config_edit),
    GET(INTERFACE "/oc-if:hold-time/oc-if:state",
        u_openconfig_interfaces_interfaces_interface_hold_time_state_get),
    EDIT(INTERFACE "/oc-if:subinterfaces", u_openconfig_interfaces_interfaces_interface_subinterfaces_edit),
    EDIT(SUBINTERFACE, u_openconfig_interfaces_interfaces_interface_subinterfaces_subinterface_edit),
    EDIT(SUBINTERFACE "/oc-if:config",
         u_openconfig_interfaces_interfaces_interface_subinterfaces_subinterface_config_edit),
    GET(SUBINTERFACE "/oc-if:state",
        u_openconfig_interfaces_interfaces_interface_subinterfaces_subinterface_state_get),
    GET(SUBINTERFACE "/oc-if:state/oc-if:counters",
        u_openconfig_interfaces_interfaces_interface_subinterfaces_subinterface_state_counters_get),
};

} // namespace

DEFINE_UNIT(openconfig_interfaces, "openconfig-interfaces", "2018-11-21", kRows, "interfaces");
