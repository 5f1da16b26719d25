// The request that VLANs, their names and their members travel in, for every feature that speaks of VLANs.
//
//   vlan::Request request;                // all records and buffers in place
//   vlan::Mask mask;
//   mask.set(10);
//   vlan_adapter_restconf_to_proto(mask.data(), vlan::byMask, 0, "ethernet 1/1/1", vlan::untagged, 0,
//   nullptr, 0,
//                                  &request.record);
//   CommonResp *answer = nullptr;
//   return ui_restconf_vlan_config_apply_send_cleanup(&request.record, &answer, scb, msg);
#pragma once

#include "backend/vlan.h"
#include "frame/call.h"

#include <array>
#include <cstdint>

namespace vlan {

// Operation words of the request.
inline constexpr int kAdd = 1, kRemove = 3;

// Which VLANs the adapter writes: those of the mask, all, or the one that the caller has put into the type.
enum Selector : int { byMask = 0, allVlans = 1, bySingle = 2 };
// Which list of ports an interface goes into.
enum PortKind : int { eitherKind = 0, untagged = 1, tagged = 2 };

// A set of VLANs, as the requests have it.
class Mask {
public:
    static constexpr std::uint32_t kHighest = 4095;

    // Numbers above the highest are left out.
    void set(std::uint32_t vlan);
    bool any() const;
    const void *data() const { return words_.data(); }

private:
    std::array<std::uint32_t, VLAN_MASK_BYTES / sizeof(std::uint32_t)> words_{};
};

// The records of one request, cleared and wired to each other and to buffers. There is no name until
// withName(). Not to be copied: the records point into it.
struct Request {
    VlanConfigReq record;
    VlanType type;
    MultiVlan multi;

    Request();
    Request(const Request &) = delete;
    Request &operator=(const Request &) = delete;

    // Links the buffer for a name.
    void withName() { record.name = name_; }
    // Selects one VLAN directly.
    void select(std::uint32_t vlan);

private:
    std::uint8_t mask_[VLAN_MASK_BYTES] = {};
    char tagged_[VLAN_PORTS_BYTES] = {}, untagged_[VLAN_PORTS_BYTES] = {}, either_[VLAN_PORTS_BYTES] = {};
    char name_[VLAN_NAME_BYTES] = {};
};

// Copies a list of interfaces into a buffer of VLAN_PORTS_BYTES, cut to fit.
void copyPorts(char *buffer, const char *text);

} // namespace vlan

extern "C" {

// Makes a type record speak of one VLAN.
void vlan_init_type_proto(VlanType *type, std::uint32_t vlan);

// Fills a request in place. The mask has 512 bytes and may be null, an interface and a name too; `selector`
// and `portKind` are vlan::Selector and vlan::PortKind; the flags ask for a removal. Without interface and
// name the VLANs themselves are added or removed, with a name they are added or removed under that name. The
// VLAN named "DEFAULT-VLAN" is never sent by name. Texts that are too long for the request's buffers are cut;
// without a buffer they are left out.
void vlan_adapter_restconf_to_proto(const void *mask, int selector, int vlanDelete, const char *interfaceText,
                                    int portKind, int portDelete, const char *name, int nameDelete,
                                    VlanConfigReq *request);

// Sends a request, reads the answer and frees it; the slot is null afterwards. kInternal when it was not
// delivered or turned down, with the device's own text recorded if it has one.
Status ui_restconf_vlan_config_apply_send_cleanup(VlanConfigReq *request, CommonResp **answer,
                                                  tk::Session *scb, tk::Request *msg);

} // extern "C"
