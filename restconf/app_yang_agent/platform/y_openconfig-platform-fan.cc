// The public model of a fan's values. No bundle loads it: the switch shows the states of its fans in a model
// of its own.
#include "frame/unit.h"

DEFINE_UNIT(openconfig_platform_fan, "openconfig-platform-fan", "2018-11-21", std::span<const frame::Row>());
