#include "forwarding_profile/u_lyn-openconfig-forwarding-profile.h"

#include "frame/unit.h"
#include "load_table.h"

namespace {

constexpr frame::Row kRows[] = {
    EDIT("/lyn-openconfig-forwarding-profile:forwarding-profile",
         u_lyn_openconfig_forwarding_profile_forwarding_profile_edit, tk::emptiedIsDelete),
};

} // namespace

DEFINE_UNIT_WHERE(bundle::hasForwardingProfiles, lyn_openconfig_forwarding_profile,
                  "lyn-openconfig-forwarding-profile", "2022-11-30", kRows, "forwarding-profile");
