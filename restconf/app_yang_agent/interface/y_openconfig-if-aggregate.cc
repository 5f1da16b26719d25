#include "interface/u_openconfig-if-aggregate.h"

#include "frame/unit.h"

namespace {

constexpr frame::Row kRows[] = {
    EDIT("/oc-if:interfaces/oc-if:interface/oc-lag:aggregation",
         u_openconfig_if_aggregate_interfaces_interface_aggregation_edit),
    EDIT("/oc-if:interfaces/oc-if:interface/oc-lag:aggregation/oc-lag:config",
         u_openconfig_if_aggregate_interfaces_interface_aggregation_config_edit, tk::toldFirst),
    GET("/oc-if:interfaces/oc-if:interface/oc-lag:aggregation/oc-lag:state",
        u_openconfig_if_aggregate_interfaces_interface_aggregation_state_get),
};

} // namespace

DEFINE_UNIT(openconfig_if_aggregate, "openconfig-if-aggregate", "2018-11-21", kRows);
