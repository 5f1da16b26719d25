#include "jumbo/u_lyn-openconfig-jumbo.h"

#include "frame/unit.h"

namespace {

constexpr frame::Row kRows[] = {
    EDIT("/lyn-openconfig-jumbo:jumbo", u_lyn_openconfig_jumbo_jumbo_edit),
    EDIT("/lyn-openconfig-jumbo:jumbo/lyn-openconfig-jumbo:config", u_lyn_openconfig_jumbo_config_edit),
    GET("/lyn-openconfig-jumbo:jumbo/lyn-openconfig-jumbo:operation-state",
        u_lyn_openconfig_jumbo_operation_state_get),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_jumbo, "lyn-openconfig-jumbo", "2021-11-05", kRows, "jumbo");
