// The module units of the bundle, in load order.
#pragma once

#include "toolkit/status.h"

#include <span>

namespace bundle {

// How a failed init is told in the log.
enum class FailureText { plain, plainAsError, named };

struct UnitRow {
    const char *module;
    const char *revision;                       // null: whichever is found
    Status (*init)(const char *, const char *); // null: the unit is not built yet
    Status (*init2)();
    void (*cleanup)();
    int line;                      // where the row stands, for the log
    bool onlyWithProfiles = false; // only on platforms that have forwarding profiles
    FailureText text = FailureText::plain;
    const char *word = nullptr; // with FailureText::named
};

// All rows; the order is that of init.
std::span<const UnitRow> loadTable();
// The rows in the orders that init2 and cleanup have of their own.
std::span<const char *const> init2Order();
std::span<const char *const> cleanupOrder();
// The row of a module; null if there is none.
const UnitRow *findUnit(const char *module);

// Forwarding profiles exist on hardware of the types 4 and 5 only. Asks the device.
bool hasForwardingProfiles();

} // namespace bundle
