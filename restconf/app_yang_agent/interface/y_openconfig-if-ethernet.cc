#include "interface/u_openconfig-if-ethernet.h"

#include "frame/unit.h"

namespace {

constexpr frame::Row kRows[] = {
    EDIT("/oc-if:interfaces/oc-if:interface/oc-eth:ethernet",
         u_openconfig_if_ethernet_interfaces_interface_ethernet_edit),
    EDIT("/oc-if:interfaces/oc-if:interface/oc-eth:ethernet/oc-eth:config",
         u_openconfig_if_ethernet_interfaces_interface_ethernet_config_edit),
    GET("/oc-if:interfaces/oc-if:interface/oc-eth:ethernet/oc-eth:state",
        u_openconfig_if_ethernet_interfaces_interface_ethernet_state_get),
};

} // namespace

DEFINE_UNIT(openconfig_if_ethernet, "openconfig-if-ethernet", "2023-09-25", kRows);
