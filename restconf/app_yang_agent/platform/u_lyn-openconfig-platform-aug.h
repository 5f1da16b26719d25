// RPCs on the whole switch: restart it or choose the partition that it starts from, and save its
// configuration.
#pragma once

#include "frame/operation.h"

extern "C" {

// kFailed without input.
Status u_lyn_openconfig_platform_aug_boot_sys_flash_validate(RPC_ARGS);
// With a case of `flash-type` chooses that partition, without one restarts. Unless `force-reboot` is true,
// kInternal with a text while the running configuration is not saved; the same with the switch's words when
// it refuses.
Status u_lyn_openconfig_platform_aug_boot_sys_flash_invoke(RPC_ARGS);

Status u_lyn_openconfig_platform_aug_save_config_validate(RPC_ARGS);
// Always answers `result` "success".
Status u_lyn_openconfig_platform_aug_save_config_invoke(RPC_ARGS);

} // extern "C"
