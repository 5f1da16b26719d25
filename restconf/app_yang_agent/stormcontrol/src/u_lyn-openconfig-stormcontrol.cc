#include "stormcontrol/src/u_lyn-openconfig-stormcontrol.h"

#include "frame/rules.h"
#include "frame/security.h"
#include "frame/stub.h"

using namespace frame;

USER_UNIT(lyn_openconfig_stormcontrol);

STUB_EDIT(u_lyn_oc_stormcontrol_storm_control_config_edit, const char *);

namespace {

constexpr const char *kModule = "lyn-openconfig-stormcontrol";
constexpr int kAdd = 1, kRemove = 3; // operations of a message
enum TrafficClass { broadcast = 0, multicast = 1, unknownUnicast = 2 };

int sendLimit(TrafficClass trafficClass, const char *port, std::uint32_t limit, int kbps, int add)
{
    BumRateLimitMsg message = BUM_RATE_LIMIT_MSG__INIT;
    message.msg_type = SEC_SUB_TYPE_BUM_RATE_LIMIT;
    message.op = add ? kAdd : kRemove;
    message.port_name = const_cast<char *>(port); // records have no const texts
    message.has_limit = 1;
    message.limit = limit;
    message.kbps = kbps ? 1 : 0;
    message.traffic_class = trafficClass;
    message.text = const_cast<char *>(protobuf_c_empty_string);
    SecurityAnswer answer;
    const int result =
        sendSecurityMessage(message.base, SEC_SUB_TYPE_BUM_RATE_LIMIT, SEC_MSG_BUM_RATE_LIMIT, answer);
    // A refusal is only logged: the edit does not depend on it.
    restconf_bum_rate_limit_response_processor(reinterpret_cast<BumRateLimitResp *>(answer.release()));
    return result ? kInternal : kOk;
}

// What a container holds; an absent leaf or container counts as 0.
struct Limit {
    bool isGiven;
    std::uint32_t limit;
    int kbps;

    explicit Limit(const Value *container)
    {
        const Value *given = val_find_child(container, kModule, "limit");
        const Value *kilobits = val_find_child(container, kModule, "kbps");
        isGiven = given != nullptr;
        limit = given ? static_cast<std::uint32_t>(val_get_uint64(given)) : 0;
        kbps = kilobits && val_get_boolean(kilobits) ? 1 : 0;
    }
};

using Send = int (*)(const char *port, std::uint32_t limit, int kbps, int add);

struct Change {
    const char *port;
    Send send;
    Limit now, before;
    bool isKbpsEdited;

    Status add(std::uint32_t limit, int kbps) const
    {
        return static_cast<Status>(send(port, limit, kbps, 1));
    }
    Status remove() const { return static_cast<Status>(send(port, before.limit, before.kbps, 0)); }
};

// There is no text to a failure, but the record is this unit's own.
Status recorded(const EditCall &call, Status status)
{
    return status ? recordText(call, status, "") : kOk;
}

Status addNew(const EditCall &call, const Change &change)
{
    if (!change.now.isGiven && change.before.limit == 0)
        return kOk;
    return recorded(call, change.add(change.now.limit, change.now.kbps));
}

Status addMerged(const EditCall &call, const Change &change)
{
    const bool isIdle = !change.now.isGiven && change.before.limit == 0;
    if (!isIdle && !change.isKbpsEdited && change.now.kbps != change.before.kbps)
        return recorded(call, kInternal);
    return addNew(call, change);
}

Status addReplaced(const EditCall &call, const Change &change)
{
    if (change.now.limit == 0 && change.before.limit == 0)
        return kOk;
    return addNew(call, change);
}

Status removeOld(const EditCall &call, const Change &change)
{
    const Limit &old = change.before;
    if (old.limit == 0 && (!old.isGiven || old.kbps == 0))
        return kOk;
    return recorded(call, change.remove());
}

Status putBack(const EditCall &, const Change &change)
{
    return change.add(change.before.limit, change.before.kbps);
}

// A limit of zero takes a created one back.
Status takeBack(const EditCall &, const Change &change)
{
    return change.add(0, change.before.kbps);
}

constexpr Rule<const Change &> kLimitEdit[] = {
    // when, on, act
    {inApply, onMerge, addMerged},
    {inApply, onReplace, addReplaced},
    {inApply, onCreate, addNew},
    {inApply, onDelete, removeOld},
    {inRollback, onMerge | onReplace | onDelete, putBack},
    {inRollback, onCreate, takeBack},
};
static_assert(noneHidden(kLimitEdit));

Status editLimit(const EditCall &call, const char *port, Send send)
{
    Change change{port, send, Limit(call.newval), Limit(call.curval), false};
    if (onWrite.has(call.op))
        walkChildEdits(call, [&](const EditedLeaf &leaf) {
            change.isKbpsEdited = change.isKbpsEdited || leaf.is("kbps");
            return kOk;
        });
    return run(kLimitEdit, call, change);
}

} // namespace

extern "C" int restconf_set_brd_limit_config(const char *port, std::uint32_t limit, int kbps, int add)
{
    return sendLimit(broadcast, port, limit, kbps, add);
}

extern "C" int restconf_set_mcast_limit_config(const char *port, std::uint32_t limit, int kbps, int add)
{
    return sendLimit(multicast, port, limit, kbps, add);
}

extern "C" int restconf_set_unknown_unicast_limit_config(const char *port, std::uint32_t limit, int kbps,
                                                         int add)
{
    return sendLimit(unknownUnicast, port, limit, kbps, add);
}

extern "C" int restconf_bum_rate_limit_response_processor(BumRateLimitResp *answer)
{
    const Owned<BumRateLimitResp, bum_rate_limit_resp__free_unpacked> owner(answer);
    if (!answer || !answer->reply)
        return 2;
    const char *text = answer->reply->reply_buf;
    if (text && *text && logsDebug2())
        log_debug2("%s", text);
    return answer->reply->app_err;
}

extern "C" Status u_lyn_oc_stormcontrol_broadcast_edit(EDIT_ARGS, const char *name)
{
    return editLimit(EDIT_CALL, name, restconf_set_brd_limit_config);
}

extern "C" Status u_lyn_oc_stormcontrol_multicast_edit(EDIT_ARGS, const char *name)
{
    return editLimit(EDIT_CALL, name, restconf_set_mcast_limit_config);
}

extern "C" Status u_lyn_oc_stormcontrol_unknown_unicast_edit(EDIT_ARGS, const char *name)
{
    return editLimit(EDIT_CALL, name, restconf_set_unknown_unicast_limit_config);
}
