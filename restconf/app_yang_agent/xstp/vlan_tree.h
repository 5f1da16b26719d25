// What rapid and classic spanning trees of VLANs have in common: the request and how its answer is read.
#pragma once

#include "backend/spanning_tree.h"
#include "frame/answer.h"
#include "frame/owned.h"
#include "vlan/vlan_request.h"

#include <cstdint>
#include <cstdlib>

namespace xstp {

using Answer = frame::Owned<CommonResp, common_resp__free_unpacked>;

inline constexpr std::int32_t kSet = 2, kRemove = 3; // operation words

// A refusal counts by its ui_err alone, and only the 1: kDeviceText. kInternal when the call failed.
inline Status readAnswer(const frame::EditCall &call, int result, const Answer &answer,
                         int line = __builtin_LINE())
{
    const bool isRead = answer && (result != 0 || answer->ui_err == 1);
    return frame::readStrictly(call, result, isRead ? answer.get() : nullptr, line);
}

// One of the two kinds of tree.
template <class Record>
struct Kind {
    const char *module, *priority; // leaf of the priority
    void (*init)(Record *);
    int (*apply)(Record *, CommonResp **);
    std::int32_t enabled; // the word for a tree that is on

    // Turns the tree of a VLAN on, whether it is on already or not.
    Status sendConfig(const frame::EditCall &call) const
    {
        frame::walkChildEdits(call);
        const tk::Value *vlan = findUsable(call.newval, "vlan-id");
        if (!vlan)
            return kOk;
        Record request;
        VlanType type;
        fill(request, type, static_cast<std::uint32_t>(val_get_uint64(vlan)), enabled);
        if (const tk::Value *given = findUsable(call.newval, priority)) {
            request.priority_op = kSet;
            request.has_priority = 1;
            request.priority = static_cast<std::uint32_t>(val_get_uint64(given));
        }
        Answer answer;
        const int result = apply(&request, answer.slot());
        return readAnswer(call, result, answer);
    }

    // Turns it off. A switch that took the request is not asked what came of it.
    Status sendRemoval(const frame::EditCall &call, const char *vlanId) const
    {
        Record request;
        VlanType type;
        fill(request, type, static_cast<std::uint32_t>(std::strtol(vlanId, nullptr, 10)), 0);
        Answer answer;
        const int result = apply(&request, answer.slot());
        return result ? readAnswer(call, result, answer) : kOk;
    }

private:
    const tk::Value *findUsable(const tk::Value *config, const char *leaf) const
    {
        const tk::Value *value = config ? val_find_child(config, module, leaf) : nullptr;
        return value && val_get_status(value) == kOk ? value : nullptr;
    }

    void fill(Record &request, VlanType &type, std::uint32_t vlan, std::int32_t enable) const
    {
        init(&request);
        vlan_init_type_proto(&type, vlan);
        request.vlan_id = vlan;
        request.enable_op = kSet;
        request.enable = enable;
        request.vlan_type = &type;
    }
};

} // namespace xstp
