#include "platform/u_lyn-openconfig-platform-aug.h"

#include "frame/unit.h"

namespace {

constexpr frame::Row kRows[] = {
    RPC("boot-sys-flash", u_lyn_openconfig_platform_aug_boot_sys_flash_validate,
        u_lyn_openconfig_platform_aug_boot_sys_flash_invoke),
    RPC("save-config", u_lyn_openconfig_platform_aug_save_config_validate,
        u_lyn_openconfig_platform_aug_save_config_invoke),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_platform_aug, "lyn-openconfig-platform-aug", "2021-11-04", kRows);
