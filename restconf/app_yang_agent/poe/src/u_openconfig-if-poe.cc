#include "frame/unit.h"

USER_UNIT(openconfig_if_poe);
