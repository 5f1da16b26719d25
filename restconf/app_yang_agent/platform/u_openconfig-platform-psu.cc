#include "frame/unit.h"

USER_UNIT(openconfig_platform_psu);
