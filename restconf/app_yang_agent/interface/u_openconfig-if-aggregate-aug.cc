#include "frame/unit.h"

USER_UNIT(openconfig_if_aggregate_aug);
