#include "acl/src/u_openconfig-acl.h"

#include "acl/src/acl_request.h"
#include "acl/src/limited_edit.h"

using namespace acl;

USER_UNIT(openconfig_acl);

#define SET_KEYS const char *, const char *
#define ENTRY_KEYS const char *, const char *, std::uint32_t

// A change inside of an entry cannot be told to the device: only whole entries come and go.
LIMITED_EDIT(u_openconfig_acl_acl_edit, onMerge | onDelete);
LIMITED_EDIT(u_openconfig_acl_acl_config_edit, onMerge | onDelete);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_edit, onMerge | onDelete);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_edit, onMerge, SET_KEYS);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_config_edit, onMerge, ENTRY_KEYS);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_l2_edit, onMerge | onReplace,
             ENTRY_KEYS);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_l2_config_edit, onMerge | onReplace,
             ENTRY_KEYS);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv4_edit, onMerge | onReplace,
             ENTRY_KEYS);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv4_config_edit,
             onMerge | onReplace, ENTRY_KEYS);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv6_edit, onMerge | onReplace,
             ENTRY_KEYS);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv6_config_edit,
             onMerge | onReplace, ENTRY_KEYS);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_transport_edit, onMerge | onReplace,
             ENTRY_KEYS);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_input_interface_edit, onMerge,
             ENTRY_KEYS);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_input_interface_config_edit,
             onMerge | onReplace, ENTRY_KEYS);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_input_interface_interface_ref_edit,
             onMerge | onReplace, ENTRY_KEYS);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_actions_edit, onMerge | onReplace,
             ENTRY_KEYS);
LIMITED_EDIT(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_actions_config_edit,
             onMerge | onReplace, ENTRY_KEYS);

namespace {

Status refuseIt(const EditCall &call, const char *, const char *)
{
    return refuse(call);
}

// Lists

Status removeList(const EditCall &call, const char *name, const char *type)
{
    const Value *set = call.newval ? call.newval : call.curval;
    return restconf_acl_process_create_delete_request(name, type, del, isStandard(set));
}

Status restoreList(const EditCall &call, const char *name, const char *type)
{
    if (!call.curval || (call.op == replace && call.newval))
        return kOk;
    const Kind *kind = findKind(type);
    return kind ? kind->wholeList(name, type, call.curval, create) : INTERNAL_ERROR();
}

constexpr Rule<const char *, const char *> kSetEdit[] = {
    // when, on, act
    {inApply, onMerge, refuseIt},
    {inApply, onDelete, removeList},
    {inRollback, onReplace | onDelete, restoreList},
};
static_assert(noneHidden(kSetEdit));

Status define(const EditCall &call, const char *name, const char *type)
{
    return restconf_acl_process_create_delete_request(name, type, create, isStandard(call.newval));
}

// The keys stand where `config` does not repeat them.
Status takeBack(const EditCall &call, const char *name, const char *type)
{
    restconf_acl_parse_acl_params(call.newval, &name, &type);
    return restconf_acl_process_create_delete_request(name, type, del, isStandard(call.newval));
}

// What is gone has no new value; then the list's own rollback makes it again.
Status defineAgain(const EditCall &call, const char *name, const char *type)
{
    restconf_acl_parse_acl_params(call.newval, &name, &type);
    return call.newval ? define(call, name, type) : kOk;
}

constexpr Rule<const char *, const char *> kSetConfigEdit[] = {
    {inApply, onMerge, refuseIt},
    {inApply, onCreate, define},
    {inRollback, onReplace | onCreate, takeBack},
    {inRollback, onDelete, defineAgain},
};
static_assert(noneHidden(kSetConfigEdit));

// Filters

// Either may be null.
Status swapFilters(const char *name, const char *type, const Value *old, const Value *wanted)
{
    const Kind *kind = findKind(type);
    if (!kind)
        return INTERNAL_ERROR();
    if (const Status status = old ? kind->filter(del, name, old) : kOk)
        return status;
    return wanted ? kind->filter(create, name, wanted) : kOk;
}

Status changeFilter(const EditCall &call, const char *name, const char *type)
{
    return swapFilters(name, type, call.curval, call.newval);
}

Status changeBack(const EditCall &call, const char *name, const char *type)
{
    return swapFilters(name, type, call.newval, call.curval);
}

constexpr Rule<const char *, const char *> kEntryEdit[] = {
    {inApply | inRollback, onMerge, refuseIt},
    {inApply, onReplace | onCreate | onDelete, changeFilter},
    {inRollback, onReplace | onCreate | onDelete, changeBack},
};
static_assert(noneHidden(kEntryEdit));

// Ports cannot be given to an entry that has some, nor an interface to match.

Status refuseSecond(const EditCall &call)
{
    return call.curval ? refuse(call) : kOk;
}

constexpr Rule<> kTransportConfigEdit[] = {
    {inApply, onMerge | onReplace, refuse},
    {inApply, onCreate, refuseSecond},
};
static_assert(noneHidden(kTransportConfigEdit));

Status refuseInterface(const EditCall &call)
{
    return child(call.newval, "interface") ? refuse(call) : kOk;
}

constexpr Rule<> kInterfaceRefConfigEdit[] = {
    {inApply, onMerge | onReplace, refuse},
    {inApply, onCreate, refuseInterface},
};
static_assert(noneHidden(kInterfaceRefConfigEdit));

} // namespace

extern "C" {

Status u_openconfig_acl_acl_acl_sets_acl_set_edit(EDIT_ARGS, const char *name, const char *type)
{
    return run(kSetEdit, EDIT_CALL, name, type);
}

Status u_openconfig_acl_acl_acl_sets_acl_set_config_edit(EDIT_ARGS, const char *name, const char *type)
{
    return run(kSetConfigEdit, EDIT_CALL, name, type);
}

Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_edit(EDIT_ARGS, const char *name,
                                                                        const char *type, std::uint32_t)
{
    return run(kEntryEdit, EDIT_CALL, name, type);
}

Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_transport_config_edit(EDIT_ARGS,
                                                                                         ENTRY_KEYS)
{
    return run(kTransportConfigEdit, EDIT_CALL);
}

Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_input_interface_interface_ref_config_edit(
    EDIT_ARGS, ENTRY_KEYS)
{
    return run(kInterfaceRefConfigEdit, EDIT_CALL);
}

} // extern "C"
