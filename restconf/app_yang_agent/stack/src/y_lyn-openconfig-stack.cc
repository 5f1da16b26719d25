#include "frame/unit.h"
#include "stack/src/u_lyn-openconfig-stack.h"

#define CONFIG "/lyn-oc-stack:stack/lyn-oc-stack:config"
#define CONFIG_UNIT CONFIG "/lyn-oc-stack:stack-units/lyn-oc-stack:stack-unit"
#define UNIT_CONFIG CONFIG_UNIT "/lyn-oc-stack:config"
#define MODULES UNIT_CONFIG "/lyn-oc-stack:unit-modules"
#define STATE "/lyn-oc-stack:stack/lyn-oc-stack:state"
#define STATE_UNIT STATE "/lyn-oc-stack:stack-units/lyn-oc-stack:stack-unit"
#define UNIT_STATE STATE_UNIT "/lyn-oc-stack:state"
#define PORTS UNIT_STATE "/lyn-oc-stack:stack-ports/lyn-oc-stack:ports"

namespace {

constexpr frame::Row kRows[] = {
    EDIT("/lyn-oc-stack:stack", u_lyn_oc_stack_stack_edit),
    EDIT(CONFIG, u_lyn_oc_stack_config_edit, tk::swappedInRollback),
    EDIT(CONFIG "/lyn-oc-stack:stack-units", u_lyn_oc_stack_stack_units_edit),
    EDIT(CONFIG_UNIT, u_lyn_oc_stack_stack_unit_edit),
    EDIT(UNIT_CONFIG, u_lyn_oc_stack_config_1_edit),
    EDIT(UNIT_CONFIG "/lyn-oc-stack:trunks", u_lyn_oc_stack_trunks_edit),
    EDIT(UNIT_CONFIG "/lyn-oc-stack:stack-ports", u_lyn_oc_stack_stack_ports_edit),
    EDIT(MODULES, u_lyn_oc_stack_unit_modules_edit),
    EDIT(MODULES "/lyn-oc-stack:unit-module", u_lyn_oc_stack_unit_module_edit),
    EDIT(MODULES "/lyn-oc-stack:unit-module/lyn-oc-stack:config", u_lyn_oc_stack_config_2_edit),
    GET(STATE, u_lyn_oc_stack_state_get),
    GET(STATE "/lyn-oc-stack:stack-units", u_lyn_oc_stack_stack_units_1_get),
    GET(STATE_UNIT, u_lyn_oc_stack_stack_unit_1_get),
    GET(UNIT_STATE, u_lyn_oc_stack_state_1_get),
    GET(UNIT_STATE "/lyn-oc-stack:trunks", u_lyn_oc_stack_trunks_1_get),
    GET(UNIT_STATE "/lyn-oc-stack:stack-ports", u_lyn_oc_stack_stack_ports_1_get),
    GET(PORTS, u_lyn_oc_stack_ports_get),
    GET(PORTS "/lyn-oc-stack:port", u_lyn_oc_stack_port_1_get),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_stack, "lyn-openconfig-stack", "2021-11-04", kRows, "stack");
