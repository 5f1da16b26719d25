#include "frame/unit.h"

// No path of its own: its leaves stand in containers that openconfig-if-aggregate serves.
DEFINE_UNIT(openconfig_if_aggregate_aug, "openconfig-if-aggregate-aug", "2021-11-24", {});
