#include "flash/u_lyn-openconfig-flash.h"

#include "frame/unit.h"

#define FLASH "/lyn-openconfig-flash:flash"

namespace {

constexpr frame::Row kRows[] = {
    EDIT(FLASH, u_lyn_openconfig_flash_flash_edit),
    GET(FLASH "/lyn-openconfig-flash:running", u_lyn_openconfig_flash_running_get),
    GET(FLASH "/lyn-openconfig-flash:primary", u_lyn_openconfig_flash_primary_get),
    GET(FLASH "/lyn-openconfig-flash:secondary", u_lyn_openconfig_flash_secondary_get),
    GET(FLASH "/lyn-openconfig-flash:freespace", u_lyn_openconfig_flash_freespace_get),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_flash, "lyn-openconfig-flash", "2022-01-08", kRows, "flash");
