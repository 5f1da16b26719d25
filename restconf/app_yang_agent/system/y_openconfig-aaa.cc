// The module is only loaded: its tree stands below the system container and is served there.
#include "frame/unit.h"

USER_UNIT(openconfig_aaa);
DEFINE_UNIT(openconfig_aaa, "openconfig-aaa", "2018-11-21", std::span<const frame::Row>());
