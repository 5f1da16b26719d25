// The public model of Power over Ethernet. No bundle loads it: the switch serves a model of its own in its
// place, and the two would stand side by side under the same name.
#include "frame/unit.h"

DEFINE_UNIT(openconfig_if_poe, "openconfig-if-poe", "2018-11-21", std::span<const frame::Row>());
