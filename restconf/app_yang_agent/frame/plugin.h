// Changes in the tables of the daemons' plug-ins.
#pragma once

#include "backend/plugin.h"
#include "frame/call.h"

namespace frame {

// Sends one change and waits: PLUGIN_OP_SET or PLUGIN_OP_DELETE with a key and the value text that goes with
// it, to the plug-in of that tag ("ZQ_SYSLOG"). Any answer is a success. kInternal, after the location lines,
// when there is none.
Status changePlugin(const EditCall &call, const char *plugin, const char *word, const char *key,
                    const char *value, int line = __builtin_LINE());

} // namespace frame
