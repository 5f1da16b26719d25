#include "interface/u_openconfig-if-aggregate.h"

#include "frame/rules.h"
#include "frame/stub.h"
#include "interface/lag_request.h"

using namespace frame;

USER_UNIT(openconfig_if_aggregate);

STUB_EDIT(u_openconfig_if_aggregate_interfaces_interface_aggregation_edit, const char *);
STUB_GET(u_openconfig_if_aggregate_interfaces_interface_aggregation_state_get, const char *);

namespace {

constexpr const char *kModule = "openconfig-if-aggregate", *kNameModule = "openconfig-if-aggregate-aug";
constexpr int kRename = 1;

const Value *typeIn(const Value *config)
{
    return config ? val_find_child(config, kModule, "lag-type") : nullptr;
}

// A name that is unusable counts as none.
const Value *nameIn(const Value *config)
{
    const Value *name = config ? val_find_child(config, kNameModule, "lag-name") : nullptr;
    return name && val_get_status(name) == kOk ? name : nullptr;
}

Status notALag(const EditCall &call, int line = __builtin_LINE())
{
    locationLines(call, line);
    return kInternal;
}

// Makes the LAG of that type, or deletes it. `name` may be null for the one that it has by itself.
Status sendLag(const EditCall &call, const char *interface, const Value *type, const Value *name,
               bool isDelete)
{
    if (val_get_status(type))
        return kOk;
    const long id = lag_get_id_from_name(interface);
    if (!id)
        return notALag(call);
    char text[LAG_NAME_BYTES];
    if (name)
        lag::copyName(text, val_get_string(name));
    else
        lag_autogenerate_name_from_id(id, text);
    const char *word = val_get_string(type);
    lag::Request request;
    lag_adapter_restconf_to_proto(id, text, xml_strcmp(word, "LACP") == 0, xml_strcmp(word, "STATIC") == 0,
                                  isDelete, nullptr, 0, &request.record);
    return lag::send(call, request);
}

Status rename(const EditCall &call, const char *interface, const Value *name)
{
    const long id = lag_get_id_from_name(interface);
    if (!id)
        return notALag(call);
    lag::Request request;
    request.record.lag_id = static_cast<std::uint32_t>(id);
    request.record.rename_op = kRename;
    lag::copyName(request.record.new_name, val_get_string(name));
    return lag::send(call, request);
}

// A name that nothing was asked of is no rename.
Status renameIfAsked(const EditCall &call, const char *interface, EditOps asked)
{
    const Value *name = nameIn(call.newval);
    return name && asked.has(val_get_editop(name)) ? rename(call, interface, name) : kOk;
}

Status mergeLag(const EditCall &call, const char *interface)
{
    const Value *type = nullptr;
    bool isDelete = false;
    walkChildEdits(call, [&](const EditedLeaf &leaf) {
        if (!leaf.is("lag-type"))
            return kOk;
        if ((leaf.op == merge || leaf.op == create) && leaf.newval) {
            type = leaf.newval;
        } else if (leaf.op == del && leaf.curval) {
            type = leaf.curval;
            isDelete = true;
        }
        return kOk;
    });
    if (type)
        return sendLag(call, interface, type, nameIn(call.newval), isDelete);
    return renameIfAsked(call, interface, onMerge | onReplace);
}

Status putLag(const EditCall &call, const char *interface)
{
    if (const Value *type = typeIn(call.newval))
        return sendLag(call, interface, type, nameIn(call.newval), false);
    return renameIfAsked(call, interface, onReplace | onCreate);
}

Status deleteLag(const EditCall &call, const char *interface)
{
    const Value *type = typeIn(call.curval);
    return type ? sendLag(call, interface, type, nameIn(call.curval), true) : kOk;
}

// The edit's own values tell what it made; nothing brings back what it deleted.
Status takeBack(const EditCall &call, const char *interface)
{
    const Value *type = typeIn(call.newval), *name = nameIn(call.newval);
    if (type && val_get_status(type) == kOk)
        return sendLag(call, interface, type, name, true);
    return name ? rename(call, interface, name) : kOk;
}

constexpr Rule<const char *> kConfigEdit[] = {
    // when      on                     act
    {inApply, onMerge, mergeLag},
    {inApply, onReplace | onCreate, putLag},
    {inApply, onDelete, deleteLag},
    {inRollback, anyOp, takeBack},
};
static_assert(noneHidden(kConfigEdit));

} // namespace

extern "C" Status u_openconfig_if_aggregate_interfaces_interface_aggregation_config_edit(EDIT_ARGS,
                                                                                         const char *name)
{
    return run(kConfigEdit, EDIT_CALL, name);
}
