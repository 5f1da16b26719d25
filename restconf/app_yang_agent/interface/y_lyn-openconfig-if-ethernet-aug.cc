#include "frame/unit.h"

// No path of its own: its leaves stand in containers that openconfig-if-ethernet serves.
DEFINE_UNIT(lyn_openconfig_if_ethernet_aug, "lyn-openconfig-if-ethernet-aug", "2019-11-12", {});
