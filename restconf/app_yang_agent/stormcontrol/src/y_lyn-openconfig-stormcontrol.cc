#include "stormcontrol/src/u_lyn-openconfig-stormcontrol.h"

#include "frame/unit.h"

namespace {

constexpr frame::Row kRows[] = {
    EDIT("/oc-if:interfaces/oc-if:interface/oc-if:config/lyn-oc-stormcontrol:storm_control_config",
         u_lyn_oc_stormcontrol_storm_control_config_edit),
    EDIT("/oc-if:interfaces/oc-if:interface/oc-if:config/lyn-oc-stormcontrol:storm_control_config"
         "/lyn-oc-stormcontrol:broadcast",
         u_lyn_oc_stormcontrol_broadcast_edit),
    EDIT("/oc-if:interfaces/oc-if:interface/oc-if:config/lyn-oc-stormcontrol:storm_control_config"
         "/lyn-oc-stormcontrol:multicast",
         u_lyn_oc_stormcontrol_multicast_edit),
    EDIT("/oc-if:interfaces/oc-if:interface/oc-if:config/lyn-oc-stormcontrol:storm_control_config"
         "/lyn-oc-stormcontrol:unknown-unicast",
         u_lyn_oc_stormcontrol_unknown_unicast_edit),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_stormcontrol, "lyn-openconfig-stormcontrol", "2021-10-28", kRows);
