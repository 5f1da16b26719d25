// Access lists on interfaces.
#pragma once

#include "acl/src/acl_request.h"

extern "C" {

// Puts a list on an interface (create) or takes it off (delete); any other operation sends nothing. The key
// of the interface is a port, a LAG or "vlan 10". kNotSupported for a MAC list on egress, which is not sent.
Status restconf_process_acl_bind_unbind(tk::EditOp op, const char *interface, const char *name,
                                        const char *type, int isIngress);
// Sends it. kInternal when it cannot be delivered or is refused; but a list that is not bound is as good as
// unbound.
Status restconf_apply_bind_unbind_request(int isIngress, AclInterfBinding *binding);

// Put on, or take off, all lists of one direction that the value of an `interface` names, in their order,
// until one fails.
Status acl_configure_bindings_on_interf(const char *interface, const tk::Value *value, int isIngress);
Status acl_remove_bindings_from_interf(const char *interface, const tk::Value *value, int isIngress);

// The key of an `interface`, or null. 0.
Status acl_get_interface(const tk::Value *value, const char **interface);
// Takes all lists off each `interface` of `interfaces`, until one fails.
Status restconf_remove_all_acl_bindings_from_all_interfaces(const tk::Value *interfaces);

} // extern "C"
