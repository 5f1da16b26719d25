#include "interface/u_openconfig-if-ip.h"

#include "backend/ip_interface.h"
#include "backend/net_text.h"
#include "frame/answer.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/unit.h"

#include <cstring>

using namespace frame;

USER_UNIT(openconfig_if_ip);

namespace {

constexpr const char *kModule = "openconfig-if-ip";
constexpr int kAdd = 1, kRemove = 3;

using Answer = Owned<CommonResp, common_resp__free_unpacked>;

// The requests of the two families. A new one says nothing.
struct V4 {
    static constexpr const char *kInvalid = "ipv4 address is not valid";
    Ip__Interface__Config record = IP__INTERFACE__CONFIG__INIT;

    bool setAddress(const char *key)
    {
        record.has_address = ip_string_to_address(key, &record.address) != 0;
        return record.has_address != 0;
    }
    void setLength(std::uint32_t length)
    {
        record.has_mask = 1;
        record.mask = prefix2mask(length);
    }
    int send(CommonResp **answer) { return ui_ip_interface_config(&record, answer); }
};

struct V6 {
    static constexpr const char *kInvalid = "ipv6 address is not valid";
    Ipv6__Interface__Config record = IPV6__INTERFACE__CONFIG__INIT;
    std::uint8_t bytes[16] = {};

    V6() = default;
    V6(const V6 &) = delete;
    V6 &operator=(const V6 &) = delete;
    bool setAddress(const char *key)
    {
        if (!ip6_string_to_address(key, bytes))
            return false;
        record.has_address = 1;
        record.address = {sizeof bytes, bytes};
        record.address_len = sizeof bytes;
        return true;
    }
    void setLength(std::uint32_t length)
    {
        record.has_prefix_len = 1;
        record.prefix_len = length;
    }
    int send(CommonResp **answer) { return ui_ipv6_interface_config(&record, answer); }
};

// Whether the client gets the device's own words.
enum class Words { kept, told };
// What becomes of a key that is no address.
enum class BadKey { told, fails, sentWithoutIt, sentEmpty };

Status fail(const EditCall &call, int line = __builtin_LINE())
{
    locationLines(call, line);
    return kInternal;
}

template <class Family>
Status send(const EditCall &call, Family &request, Words words)
{
    Answer answer;
    if (request.send(answer.slot()) == 0)
        return kOk;
    locationLines(call);
    if (words == Words::kept || !answer)
        return kInternal;
    return recordText(call, kDeviceText, answer->reply_buf ? answer->reply_buf : "");
}

template <class Family, Words words>
Status sendEmpty(const EditCall &call)
{
    Family request;
    return send(call, request, words);
}

const Value *find(const Value *parent, const char *name)
{
    return parent ? val_find_child(parent, kModule, name) : nullptr;
}

struct Address {
    const char *interface;
    const char *key;
    const Value *config; // with its length; may be null
};

template <class Family>
Status change(const EditCall &call, const Address &address, int operation, BadKey badKey, Words words)
{
    Family request;
    const bool isGood = request.setAddress(address.key);
    if (!isGood && badKey == BadKey::told)
        return recordText(call, kInvalidValue, Family::kInvalid);
    const Value *length = find(address.config, "prefix-length");
    if (!length || (!isGood && badKey == BadKey::fails))
        return fail(call);
    if (!isGood && badKey == BadKey::sentEmpty)
        return send(call, request, words);
    request.record.address_op = operation;
    request.record.name = const_cast<char *>(address.interface); // borrowed; nothing writes to it
    request.setLength(static_cast<std::uint32_t>(val_get_uint64(length)));
    return send(call, request, words);
}

// Below a subinterface: the list entry adds and removes, its config changes the length.

using SubinterfaceRule = Rule<const char *, const char *, const char *>;

template <class Family, Words words>
Status addEntry(const EditCall &call, const char *interface, const char *, const char *key)
{
    if (!call.newval)
        return fail(call);
    return change<Family>(call, {interface, key, find(call.newval, "config")}, kAdd, BadKey::told, words);
}

template <class Family, BadKey badKey, Words words>
Status removeEntry(const EditCall &call, const char *interface, const char *, const char *key)
{
    if (!call.curval)
        return fail(call);
    return change<Family>(call, {interface, key, find(call.curval, "config")}, kRemove, badKey, words);
}

Status refuse(const EditCall &, const char *, const char *, const char *)
{
    return kNotSupported;
}

Status takeBackAdded(const EditCall &call, const char *interface, const char *, const char *key)
{
    return change<V4>(call, {interface, key, find(call.newval, "config")}, kRemove, BadKey::fails,
                      Words::kept);
}

Status takeBackRemoved(const EditCall &call, const char *interface, const char *, const char *key)
{
    return change<V4>(call, {interface, key, find(call.curval, "config")}, kAdd, BadKey::fails, Words::kept);
}

Status takeBackNothing(const EditCall &call, const char *, const char *, const char *)
{
    return sendEmpty<V4, Words::kept>(call);
}

constexpr SubinterfaceRule kSubinterfaceV4[] = {
    // when      on                            act
    {inApply, onMerge | onReplace | onLoad, refuse},
    {inApply, onCreate, addEntry<V4, Words::kept>},
    {inApply, onDelete, removeEntry<V4, BadKey::told, Words::kept>},
    {inRollback, onCreate, takeBackAdded},
    {inRollback, onDelete, takeBackRemoved},
    {inRollback, onMerge | onReplace | onLoad, takeBackNothing},
};
static_assert(noneHidden(kSubinterfaceV4));

constexpr SubinterfaceRule kSubinterfaceV6[] = {
    {inApply, onCreate, addEntry<V6, Words::told>},
    {inApply, onDelete, removeEntry<V6, BadKey::sentEmpty, Words::told>},
};
static_assert(noneHidden(kSubinterfaceV6));

// A changed length goes out as an addition with nothing removed.
template <class Family>
Status changeLength(const EditCall &call, const char *interface, const char *, const char *key)
{
    const Value *length = nullptr;
    walkChildEdits(call, [&length](const EditedLeaf &leaf) {
        if (leaf.is("prefix-length") && (leaf.op == merge || leaf.op == create) && leaf.newval)
            length = leaf.newval;
        return kOk;
    });
    if (!length)
        return kOk;
    Family request;
    if (!request.setAddress(key))
        return recordText(call, kInvalidValue, Family::kInvalid);
    request.record.address_op = kAdd;
    request.record.name = const_cast<char *>(interface);
    request.setLength(static_cast<std::uint32_t>(val_get_uint64(length)));
    Answer answer;
    const Status status = request.send(answer.slot()) ? kInternal : kOk;
    if (!answer || answer->ui_err != 1)
        return status;
    locationLines(call);
    return recordText(call, kDeviceText, answer->reply_buf ? answer->reply_buf : "");
}

constexpr SubinterfaceRule kLengthV4[] = {
    {inApply, onMerge, changeLength<V4>},
};
constexpr SubinterfaceRule kLengthV6[] = {
    {inApply, onMerge, changeLength<V6>},
};

// Addresses can be made one by one on any interface, but only a loopback's go as a whole.
Status refuseButLoopback(const EditCall &, const char *interface, const char *)
{
    return interface && !std::strstr(interface, "loopback") ? kNotSupported : kOk;
}

constexpr Rule<const char *, const char *> kAllV4[] = {
    {inApply, onMerge | onReplace | onDelete | onLoad, refuseButLoopback},
};

// Below a routed VLAN: the config of the entry does all.

using RoutedRule = Rule<const char *, const char *>;

template <class Family>
Status addRouted(const EditCall &call, const char *interface, const char *key)
{
    return change<Family>(call, {interface, key, call.newval}, kAdd, BadKey::told, Words::told);
}

template <class Family, BadKey badKey>
Status removeRouted(const EditCall &call, const char *interface, const char *key)
{
    return change<Family>(call, {interface, key, call.curval}, kRemove, badKey, Words::told);
}

template <class Family>
Status sendEmptyRouted(const EditCall &call, const char *, const char *)
{
    return sendEmpty<Family, Words::told>(call);
}

Status refuseRouted(const EditCall &, const char *, const char *)
{
    return kNotSupported;
}

Status takeBackAddedRouted(const EditCall &call, const char *interface, const char *key)
{
    return change<V4>(call, {interface, key, call.newval}, kRemove, BadKey::fails, Words::told);
}

Status takeBackRemovedRouted(const EditCall &call, const char *interface, const char *key)
{
    return change<V4>(call, {interface, key, call.curval}, kAdd, BadKey::fails, Words::told);
}

constexpr RoutedRule kRoutedV4[] = {
    {inApply, onMerge | onReplace | onLoad, refuseRouted},
    {inApply, onCreate, addRouted<V4>},
    {inApply, onDelete, removeRouted<V4, BadKey::sentWithoutIt>},
    {inRollback, onCreate, takeBackAddedRouted},
    {inRollback, onDelete, takeBackRemovedRouted},
    {inRollback, onMerge | onReplace | onLoad, sendEmptyRouted<V4>},
};
static_assert(noneHidden(kRoutedV4));

constexpr RoutedRule kRoutedV6[] = {
    {inApply, onMerge | onReplace | onLoad, sendEmptyRouted<V6>},
    {inApply, onCreate, addRouted<V6>},
    {inApply, onDelete, removeRouted<V6, BadKey::sentEmpty>},
};
static_assert(noneHidden(kRoutedV6));

} // namespace

extern "C" {

Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_edit(
    EDIT_ARGS, const char *name, const char *index)
{
    return run(kAllV4, EDIT_CALL, name, index);
}

Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address)
{
    return run(kSubinterfaceV4, EDIT_CALL, name, index, address);
}

Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_config_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address)
{
    return run(kLengthV4, EDIT_CALL, name, index, address);
}

Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address)
{
    return run(kSubinterfaceV6, EDIT_CALL, name, index, address);
}

Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_config_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address)
{
    return run(kLengthV6, EDIT_CALL, name, index, address);
}

Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_config_edit(
    EDIT_ARGS, const char *name, const char *address)
{
    return run(kRoutedV4, EDIT_CALL, name, address);
}

Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_config_edit(
    EDIT_ARGS, const char *name, const char *address)
{
    return run(kRoutedV6, EDIT_CALL, name, address);
}

} // extern "C"
