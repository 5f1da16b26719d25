// Names of interfaces: "ethernet 1/1/7", "lag 5", "ve 20", "loopback 1". The device judges them; what is read
// or checked here is only what a request needs.
#pragma once

#include "frame/call.h"

#include <optional>

namespace interfaces {

// The number behind the first word of a name, which may be any word; blanks around are skipped. Text behind
// the digits, or instead of them, is read as far as it goes. Nothing if there is no second word.
std::optional<long> numberInName(const char *name);

// What a list whose key is the name of an interface says about a bad key.
struct NameTexts {
    const char *several;
    const char *ethernet;
    const char *lag;
    const char *vlan; // null: the list takes no VLAN, and a name with "vlan" is not looked at
    const char *end = "Space should not present at the end of name key";
    const char *start = "No Space in starting of key";
};
extern const NameTexts kBindingTexts;  // interfaces that access lists are bound to
extern const NameTexts kEgressTexts;   // the same, of the list for egress
extern const NameTexts kVlanListTexts; // lists of interfaces in a VLAN

// Checks such a key. Each refusal is recorded with kInternal, which is then the result. A name of no known
// kind passes.
Status checkName(const frame::EditCall &call, const char *name, const NameTexts &texts);

} // namespace interfaces
