#include "frame/unit.h"

USER_UNIT(lyn_openconfig_if_ethernet_aug);
