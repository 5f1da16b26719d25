// Access lists on interfaces.
#include "acl/src/acl_binding.h"
#include "acl/src/limited_edit.h"
#include "acl/src/u_openconfig-acl.h"
#include "interface/interface_name.h"

using namespace acl;

LIMITED_EDIT(u_openconfig_acl_acl_interfaces_edit, onMerge | onDelete);
LIMITED_EDIT(u_openconfig_acl_acl_interfaces_interface_config_edit, onMerge | onDelete, const char *);
LIMITED_EDIT(u_openconfig_acl_acl_interfaces_interface_interface_ref_edit, onMerge | onDelete, const char *);
LIMITED_EDIT(u_openconfig_acl_acl_interfaces_interface_interface_ref_config_edit,
             onMerge | onReplace | onDelete, const char *);
LIMITED_EDIT(u_openconfig_acl_acl_interfaces_interface_ingress_acl_sets_edit, onMerge | onDelete,
             const char *);
LIMITED_EDIT(u_openconfig_acl_acl_interfaces_interface_egress_acl_sets_edit, onMerge | onDelete,
             const char *);

namespace {

constexpr int kIngress = 1, kEgress = 0;

// All lists of the one direction, then those of the other.
Status onBothSides(Status (*act)(const char *, const Value *, int), const char *interface, const Value *value)
{
    const Status status = act(interface, value, kIngress);
    return status ? status : act(interface, value, kEgress);
}

Status refuseIt(const EditCall &call, const char *)
{
    return refuse(call);
}

Status unbindAll(const EditCall &call, const char *interface)
{
    return call.curval ? onBothSides(acl_remove_bindings_from_interf, interface, call.curval) : kInternal;
}

Status bindAsBefore(const EditCall &call, const char *interface)
{
    if (call.op == replace && call.newval)
        if (const Status status = onBothSides(acl_remove_bindings_from_interf, interface, call.newval))
            return status;
    return call.curval ? onBothSides(acl_configure_bindings_on_interf, interface, call.curval) : kOk;
}

constexpr Rule<const char *> kInterfaceEdit[] = {
    // when, on, act
    {inApply, onMerge, refuseIt},
    {inApply, onDelete, unbindAll},
    {inRollback, onReplace | onDelete, bindAsBefore},
};
static_assert(noneHidden(kInterfaceEdit));

// One list on one side of an interface.
struct Binding {
    const char *interface, *name, *type;
    int isIngress;
    const interfaces::NameTexts &texts;
};

Status refuseBinding(const EditCall &call, const Binding &)
{
    return refuse(call);
}

Status checkKey(const EditCall &call, const Binding &binding)
{
    return interfaces::checkName(call, binding.interface, binding.texts);
}

Status bind(const EditCall &, const Binding &binding)
{
    return restconf_process_acl_bind_unbind(create, binding.interface, binding.name, binding.type,
                                            binding.isIngress);
}

Status unbind(const EditCall &, const Binding &binding)
{
    return restconf_process_acl_bind_unbind(del, binding.interface, binding.name, binding.type,
                                            binding.isIngress);
}

Status bindAgain(const EditCall &call, const Binding &binding)
{
    return call.curval ? bind(call, binding) : kOk;
}

constexpr Rule<const Binding &> kBindingEdit[] = {
    {inValidate, onWrite | onDelete, checkKey},
    {inApply, onMerge, refuseBinding},
    {inApply, onDelete, unbind},
    {inRollback, onDelete, bindAgain},
};
static_assert(noneHidden(kBindingEdit));

// What was bound before stays so.
constexpr Rule<const Binding &> kBindingConfigEdit[] = {
    {inValidate, onWrite | onDelete, checkKey},
    {inApply, onMerge, refuseBinding},
    {inApply, onReplace | onCreate, bind},
    {inRollback, onCreate, unbind},
};
static_assert(noneHidden(kBindingConfigEdit));

} // namespace

extern "C" {

Status u_openconfig_acl_acl_interfaces_interface_edit(EDIT_ARGS, const char *interface)
{
    return run(kInterfaceEdit, EDIT_CALL, interface);
}

Status u_openconfig_acl_acl_interfaces_interface_ingress_acl_sets_ingress_acl_set_edit(EDIT_ARGS,
                                                                                       const char *interface,
                                                                                       const char *name,
                                                                                       const char *type)
{
    return run(kBindingEdit, EDIT_CALL, {interface, name, type, kIngress, interfaces::kBindingTexts});
}

Status u_openconfig_acl_acl_interfaces_interface_ingress_acl_sets_ingress_acl_set_config_edit(
    EDIT_ARGS, const char *interface, const char *name, const char *type)
{
    return run(kBindingConfigEdit, EDIT_CALL, {interface, name, type, kIngress, interfaces::kBindingTexts});
}

Status u_openconfig_acl_acl_interfaces_interface_egress_acl_sets_egress_acl_set_edit(EDIT_ARGS,
                                                                                     const char *interface,
                                                                                     const char *name,
                                                                                     const char *type)
{
    return run(kBindingEdit, EDIT_CALL, {interface, name, type, kEgress, interfaces::kEgressTexts});
}

Status u_openconfig_acl_acl_interfaces_interface_egress_acl_sets_egress_acl_set_config_edit(
    EDIT_ARGS, const char *interface, const char *name, const char *type)
{
    return run(kBindingConfigEdit, EDIT_CALL, {interface, name, type, kEgress, interfaces::kBindingTexts});
}

} // extern "C"
