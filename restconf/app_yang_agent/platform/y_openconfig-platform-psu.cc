// The public model of a power supply's values. No bundle loads it: the switch shows the states of its power
// supplies in a model of its own.
#include "frame/unit.h"

DEFINE_UNIT(openconfig_platform_psu, "openconfig-platform-psu", "2018-11-21", std::span<const frame::Row>());
