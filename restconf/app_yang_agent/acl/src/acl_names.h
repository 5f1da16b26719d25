// What the access lists of the YANG tree are called, and the numbers that stand for it in messages.
#pragma once

#include "frame/call.h"

#include <cstdint>
#include <optional>

namespace acl {

using namespace frame;

inline constexpr const char *kModule = "openconfig-acl";

// Kinds of lists in requests.
inline constexpr std::uint32_t kIpv4 = 1, kIpv6 = 2, kL2 = 3;

// Below a node that may be null.
inline const Value *child(const Value *parent, const char *name)
{
    return val_find_child(parent, kModule, name);
}

// Calls act(entry) for each entry of a list until one returns a status other than 0, which is the result.
template <class Act>
Status forEachEntry(const Value *parent, const char *list, Act act)
{
    for (const Value *entry = child(parent, list); entry;
         entry = val_find_next_child(parent, kModule, list, entry))
        if (const Status status = act(entry))
            return status;
    return kOk;
}

// The number that the device also knows an IPv4 list by: its name, if that is one.
std::optional<std::uint32_t> numberOf(const char *name, std::uint32_t type);

// "[function] [line]" in the log of errors.
void logPlace(const char *function = __builtin_FUNCTION(), int line = __builtin_LINE());

} // namespace acl

extern "C" {

// The code of a kind of list, "ACL_IPV4" and so on, in definitions, filters and bindings, and in queries.
// 0 for any other text.
std::uint32_t get_acl_type(const char *type);
std::uint32_t get_req_acl_type(const char *type);

// IP protocols and Ethertypes by number and by the identity's name. 1 when there is such a row, else 0, and
// the second argument is left alone.
int get_protocol_type(std::uint32_t number, const char **name);
int set_protocol_type(const char *name, std::uint32_t *number);
const char *convert_protocol_num_to_string(std::uint32_t number); // or null
int get_l2_ethertype(std::uint32_t number, const char **name);
int set_l2_ethertype(const char *name, std::uint32_t *number);
// What a filter does, by its `permit`: 0 "DROP", 1 "ACCEPT". As above.
int get_action(std::uint32_t permit, const char **name);

// The two keys of a list entry, both null when one is missing. 0.
Status acl_get_name_and_type(const tk::Value *entry, const char **name, const char **type);

} // extern "C"
