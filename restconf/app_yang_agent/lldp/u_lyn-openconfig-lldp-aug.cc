#include "lldp/u_lyn-openconfig-lldp-aug.h"

#include "backend/lldp.h"
#include "frame/answer.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/stub.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>

using namespace frame;

USER_UNIT(lyn_openconfig_lldp_aug);

STUB_EDIT(u_lyn_openconfig_lldp_aug_med_edit);
STUB_EDIT(u_lyn_openconfig_lldp_aug_network_policy_edit);

namespace {

constexpr const char *kModule = "lyn-openconfig-lldp-aug";
constexpr std::int32_t kSet = 2, kSendFlag = 2;
enum Direction : std::int32_t { goes = 0, comes = 1 }; // of ports

// The lists, with the device's numbers for them.
enum TagMode : std::int32_t { untagged = 0, priorityTagged = 1, tagged = 3 };

// In the order of the device's numbers, which begin with 1.
constexpr const char *kApplications[] = {
    "voice",           "voice-signaling",    "guest-voice",     "guest-voice-signaling",
    "softphone-voice", "video-conferencing", "streaming-video", "video-signaling",
};

// An entry of one of the lists.
struct Policy {
    TagMode tagMode;
    const char *words; // of the list, for the log
    const char *application;
    std::optional<std::uint32_t> vlan, priority;
    std::uint32_t dscp;
};

// Names with a blank between them, as far as the field of a request reaches.
class PortList {
public:
    void add(const char *port)
    {
        if (length_ >= sizeof text_ - 1)
            return;
        const int wanted =
            std::snprintf(text_ + length_, sizeof text_ - length_, "%s%s", length_ == 0 ? "" : " ", port);
        length_ = std::min(length_ + static_cast<std::size_t>(wanted), sizeof text_ - 1);
    }
    const char *text() const { return text_; }

private:
    char text_[LLDP_PORTS_BYTES] = {};
    std::size_t length_ = 0;
};

PortList portsOf(const Value *entry)
{
    PortList ports;
    for (const Value *port = val_find_child(entry, kModule, "ports"); port;
         port = val_find_next_child(entry, kModule, "ports", port))
        ports.add(val_get_string(port));
    return ports;
}

Status readAnswer(const EditCall &call, const Policy &policy, const Lldpcfg__LldpMed *answer,
                  Direction direction)
{
    if (answer && !isRefused(answer->reply)) {
        const char *words = answer->reply ? answer->reply->reply_buf : nullptr;
        if (direction == comes && words && logsErrors())
            log_error("[%s]: data->reply->reply_buf: [%s]", call.function, words);
        return kOk;
    }
    if (answer && answer->reply->reply_buf && logsErrors())
        log_error("[%s]: lldp aug %s edit config Error: %s", call.function, policy.words,
                  answer->reply->reply_buf);
    locationLines(call);
    return kInternal;
}

Status send(const EditCall &call, const Policy &policy, const PortList &ports, Direction direction)
{
    Lldpcfg__LldpMed request;
    CommonResp response;
    lldp_fe_conf_med_init(&request, &response);
    request.operation = request.ports_op = kSet;
    request.ports = const_cast<char *>(ports.text()); // borrowed; nothing writes to it
    // An application that the device has no number for goes out as none.
    process_lldp_application_type(policy.application, &request.application_type);
    request.tag_mode = request.tag_mode_2 = policy.tagMode;
    request.has_vlan = policy.vlan.has_value();
    request.vlan = policy.vlan.value_or(0);
    request.has_priority = policy.priority.has_value();
    request.priority = policy.priority.value_or(0);
    request.dscp = policy.dscp;
    request.add = direction;
    const Owned<Lldpcfg__LldpMed, lldpcfg__lldp_med__free_unpacked> answer(
        ui_lldp_fe_med_config_apply(&request, kSendFlag));
    return readAnswer(call, policy, answer.get(), direction);
}

// What goes, goes alone: an edit that removes ports adds none, and is none that fails.
Status mergePorts(const EditCall &call, const Policy &policy)
{
    bool isRemoval = false;
    walkChildEdits(call, [&](const EditedLeaf &leaf) {
        if (!leaf.is("ports") || leaf.op != del)
            return kOk;
        isRemoval = true;
        PortList port;
        port.add(val_get_string(leaf.curval ? leaf.curval : leaf.newval));
        send(call, policy, port, goes);
        return kOk;
    });
    if (!isRemoval)
        return send(call, policy, portsOf(call.curval), comes);
    if (logsErrors())
        log_error("[%s]: Ignore processing further if the child_editop is delete in merge phase",
                  call.function);
    return kOk;
}

Status removeOld(const EditCall &call, const Policy &policy)
{
    return send(call, policy, portsOf(call.curval), goes);
}

Status addNew(const EditCall &call, const Policy &policy)
{
    return send(call, policy, portsOf(call.newval), comes);
}

constexpr Rule<const Policy &> kEdit[] = {
    // when, on, act
    {inApply, onMerge, mergePorts},
    {inApply, onReplace | onDelete, removeOld},
    {inCommit, onReplace | onCreate, addNew},
};
static_assert(noneHidden(kEdit));

} // namespace

extern "C" {

Status process_lldp_application_type(const char *text, std::int32_t *code)
{
    for (std::size_t i = 0; i < std::size(kApplications); ++i)
        if (xml_strcmp(text, kApplications[i]) == 0) {
            *code = static_cast<std::int32_t>(i + 1);
            return kOk;
        }
    if (logsErrors())
        log_error("[%s]:[%d] Error: application_type: %s app_type: %u", __func__, __LINE__, text,
                  static_cast<unsigned>(*code));
    return kInternal;
}

Status u_lyn_openconfig_lldp_aug_tagged_edit(EDIT_ARGS, const char *application, const char *,
                                             std::uint16_t vlan, std::uint8_t priority, std::uint8_t dscp)
{
    return run(kEdit, EDIT_CALL, Policy{tagged, "tagged", application, vlan, priority, dscp});
}

Status u_lyn_openconfig_lldp_aug_priority_tagged_edit(EDIT_ARGS, const char *application, const char *,
                                                      std::uint8_t priority, std::uint8_t dscp)
{
    return run(kEdit, EDIT_CALL,
               Policy{priorityTagged, "priority tagged", application, std::nullopt, priority, dscp});
}

Status u_lyn_openconfig_lldp_aug_untagged_edit(EDIT_ARGS, const char *application, const char *,
                                               std::uint8_t dscp)
{
    return run(kEdit, EDIT_CALL, Policy{untagged, "untagged", application, std::nullopt, std::nullopt, dscp});
}

} // extern "C"
