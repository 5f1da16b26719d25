// From edited nodes to requests about multicast snooping.
#pragma once

#include "backend/mcast_snoop.h"
#include "frame/call.h"

extern "C" {

// The words of the querier's mode.
extern const char string_mode_active[];
extern const char string_mode_passive[];

// The device's number of a mode; 0 for any other word.
int get_mode(const char *text);

// Puts what a node says into the record, set or, for a deletion, removed, and sends it. With is_child the
// node is a leaf, else the config container. A node that says nothing sends nothing. kInternal when the
// device fails or turns it down, and for a deletion of nothing.
Status msnoop_rconf_parse_global_params(int is_child, tk::EditOp editop, tk::Value *curval, tk::Value *newval,
                                        McastSnoopGlobalConfig *record);
Status msnoop_rconf_parse_vlan_params(int is_child, tk::EditOp editop, tk::Value *curval, tk::Value *newval,
                                      McastSnoopVlanConfig *record);

} // extern "C"
