#include "system/u_lyn-openconfig-aaa-aug.h"

#include "frame/unit.h"

namespace {

using namespace tk;

// clang-format off
constexpr frame::Row kRows[] = {
    EDIT("/oc-sys:system/oc-sys:aaa/oc-sys:authentication/lyn-openconfig-aaa-aug:dot1x",
         u_lyn_openconfig_aaa_aug_system_aaa_authentication_dot1x_edit, emptiedIsDelete),
    EDIT("/oc-sys:system/oc-sys:aaa/oc-sys:authentication/lyn-openconfig-aaa-aug:login",
         u_lyn_openconfig_aaa_aug_system_aaa_authentication_login_edit, mergedCurrent | emptiedIsDelete),
    EDIT("/oc-sys:system/oc-sys:aaa/oc-sys:authorization/lyn-openconfig-aaa-aug:coa",
         u_lyn_openconfig_aaa_aug_system_aaa_authorization_coa_edit),
    EDIT("/oc-sys:system/oc-sys:aaa/oc-sys:authorization/lyn-openconfig-aaa-aug:coa/lyn-openconfig-aaa-aug:ignore",
         u_lyn_openconfig_aaa_aug_system_aaa_authorization_coa_ignore_edit, emptiedIsDelete),
    EDIT("/oc-sys:system/oc-sys:aaa/oc-sys:authorization/lyn-openconfig-aaa-aug:commands",
         u_lyn_openconfig_aaa_aug_system_aaa_authorization_commands_edit, mergedCurrent | emptiedIsDelete),
    EDIT("/oc-sys:system/oc-sys:aaa/oc-sys:authorization/lyn-openconfig-aaa-aug:exec",
         u_lyn_openconfig_aaa_aug_system_aaa_authorization_exec_edit, mergedCurrent | emptiedIsDelete),
    EDIT("/oc-sys:system/oc-sys:aaa/oc-sys:accounting/lyn-openconfig-aaa-aug:commands",
         u_lyn_openconfig_aaa_aug_system_aaa_accounting_commands_edit, mergedCurrent | emptiedIsDelete),
    EDIT("/oc-sys:system/oc-sys:aaa/oc-sys:accounting/lyn-openconfig-aaa-aug:exec",
         u_lyn_openconfig_aaa_aug_system_aaa_accounting_exec_edit, mergedCurrent | emptiedIsDelete),
};
// clang-format on

} // namespace

DEFINE_UNIT(lyn_openconfig_aaa_aug, "lyn-openconfig-aaa-aug", "2019-09-04", kRows);
