#include "protectedport/u_lyn-openconfig-protectedport.h"

#include "frame/unit.h"

namespace {

constexpr frame::Row kRows[] = {
    EDIT("/lyn-oc-protectedport:protectedport", u_lyn_oc_protectedport_protectedport_edit),
    EDIT("/lyn-oc-protectedport:protectedport/lyn-oc-protectedport:interfaces",
         u_lyn_oc_protectedport_interfaces_edit),
    EDIT("/lyn-oc-protectedport:protectedport/lyn-oc-protectedport:interfaces/lyn-oc-protectedport:interface",
         u_lyn_oc_protectedport_interface_edit),
    EDIT("/lyn-oc-protectedport:protectedport/lyn-oc-protectedport:interfaces/lyn-oc-protectedport:interface"
         "/lyn-oc-protectedport:config",
         u_lyn_oc_protectedport_config_edit, tk::emptiedIsDelete),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_protectedport, "lyn-openconfig-protectedport", "2020-11-26", kRows,
            "protectedport");
