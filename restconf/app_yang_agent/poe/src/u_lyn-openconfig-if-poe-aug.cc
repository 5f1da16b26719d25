#include "poe/src/u_lyn-openconfig-if-poe-aug.h"

#include "backend/poe.h"
#include "frame/answer.h"
#include "frame/leaves.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/stub.h"

using namespace frame;

USER_UNIT(lyn_openconfig_if_poe_aug);

STUB_EDIT(u_lyn_openconfig_if_poe_aug_interfaces_interface_ethernet_poe_edit, const char *);

namespace {

constexpr const char *kModule = "lyn-openconfig-if-poe-aug";
constexpr int kSet = 1, kUpdate = 2, kRemove = 3, kRead = 5; // opcodes
constexpr int kOperSet = 1, kOperDelete = 3;
constexpr int kPortState = 12; // what a read returns
constexpr std::uint64_t kFirstPriority = 1, kLastPriority = 3;

using PoeAnswer = Owned<PoeInfo, ui_fe_poe_config_post_oper>;

// A request and the areas that it is built in.
struct PoeRequest {
    PoeConfig record;
    PoeOper oper;
    PoeIlpConfig ilp;
    PoePortConfig portConfig;
    PoeSelection selection;
    CommonResp reply;

    explicit PoeRequest(const char *port)
    {
        ui_poe_config_init(&record, &oper, &ilp, &portConfig, &selection, &reply);
        record.port = const_cast<char *>(port); // records have no const texts
    }
    PoeRequest(const PoeRequest &) = delete;
    PoeRequest &operator=(const PoeRequest &) = delete;

    PoeAnswer send(int opcode) { return PoeAnswer(ui_fe_poe_config_cmd_send(&record, opcode)); }
};

// A text that tells the client why; the log may have it in other words.
Status refuse(const EditCall &call, const char *text, const char *logged)
{
    if (logsErrors())
        log_error("%s", logged);
    return recordText(call, kInternal, text);
}

// What an edit has said so far; 0 for what it has not.
struct Wanted {
    int enabled = 0, priority = 0, powerClass = 0, limit = 0;
    bool hasPriority = false, hasClass = false, hasLimit = false;
};

// One edit of a port's `config`, leaf by leaf.
class PoeEdit {
public:
    PoeEdit(const EditCall &call, const char *port)
        : call_(call)
        , port_(port)
        , request_(port)
        , opcode_(call.op == replace ? kUpdate : kSet)
    {
        ui_fe_poe_set_oper_type(&request_.record, call.op == del ? kOperDelete : kOperSet);
    }

    Status remove();
    Status applyChildEdits();
    Status applyWhole();

private:
    Status take(const char *leaf, const Value *value);
    Status takeEnabled(bool enabled);
    Status takePriority(std::uint64_t priority);
    Status checkLimits() const;
    PoeAnswer send();

    const EditCall &call_;
    const char *port_;
    PoeRequest request_;
    int opcode_;
    Wanted wanted_;
};

// A port that is off is removed, not set.
Status PoeEdit::takeEnabled(bool enabled)
{
    wanted_.enabled = enabled;
    if (!enabled)
        opcode_ = kRemove;
    if (poe_set_port_config(enabled, port_) == 0)
        return kOk;
    if (logsErrors())
        log_error("POE: Setting poe state to error Merge operation %d\n", wanted_.enabled);
    return kInternal;
}

Status PoeEdit::takePriority(std::uint64_t priority)
{
    constexpr const char *text = "PoE Error: Please specify the priority in the range 1..3.\n";
    if (priority < kFirstPriority || priority > kLastPriority)
        return refuse(call_, text, text);
    wanted_.priority = static_cast<int>(priority);
    wanted_.hasPriority = true;
    return kOk;
}

Status PoeEdit::take(const char *leaf, const Value *value)
{
    if (xml_strcmp(leaf, "enabled") == 0)
        return takeEnabled(val_get_boolean(value));
    if (xml_strcmp(leaf, "priority") == 0)
        return takePriority(val_get_uint64(value));
    if (xml_strcmp(leaf, "power-by-class") == 0) {
        wanted_.powerClass = static_cast<int>(val_get_uint64(value));
        wanted_.hasClass = true;
    } else if (xml_strcmp(leaf, "power-limit") == 0) {
        wanted_.limit = static_cast<int>(val_get_uint64(value));
        wanted_.hasLimit = true;
    }
    return kOk;
}

Status PoeEdit::checkLimits() const
{
    if (!wanted_.hasClass || !wanted_.hasLimit)
        return kOk;
    if (wanted_.hasPriority)
        return refuse(call_, "Powerlimit, Priority  and Power-class all cannot be set together\n",
                      "Powerlimit, Priority and Power-class all cannot be set together\n");
    constexpr const char *text = "Powerlimit and Power-class cannot be set together\n";
    return refuse(call_, text, text);
}

PoeAnswer PoeEdit::send()
{
    ui_fe_poe_set_ilp_config(&request_.record, wanted_.powerClass, wanted_.limit, wanted_.priority, 0);
    ui_fe_poe_config_set_port_config_type(&request_.record, 0, 0, wanted_.enabled);
    return request_.send(opcode_);
}

void logRefusal()
{
    if (logsDebug())
        log_debug("POE: poe config UI__ERROR__CODE__NOT_OK");
}

// The edited leaves alone. What the device says to them is only logged.
Status PoeEdit::applyChildEdits()
{
    const Status status = walkChildEdits(call_, [this](const EditedLeaf &leaf) -> Status {
        if (!leaf.newval)
            return kOk;
        const Status taken = take(leaf.name, leaf.newval);
        return taken ? taken : checkLimits();
    });
    if (status)
        return status;
    const PoeAnswer answer = send();
    if (!answer)
        return kInternal;
    if (isRefused(answer->reply))
        logRefusal();
    return kOk;
}

// All that the node holds after the edit.
Status PoeEdit::applyWhole()
{
    wanted_ = {};
    for (const char *leaf : {"enabled", "priority", "power-limit", "power-by-class"})
        if (const Value *value = val_find_child(call_.newval, kModule, leaf))
            if (const Status status = take(leaf, value))
                return status;
    if (const Status status = checkLimits())
        return status;
    const PoeAnswer answer = send();
    if (!answer)
        return kInternal;
    if (!isRefused(answer->reply))
        return kOk;
    const char *text = answer->reply->reply_buf ? answer->reply->reply_buf : "";
    if (logsErrors())
        log_error("%s\n", text);
    return recordText(call_, kInternal, text);
}

Status PoeEdit::remove()
{
    opcode_ = kRemove;
    const PoeAnswer answer = send();
    if (!answer)
        return kInternal;
    if (isRefused(answer->reply))
        logRefusal();
    return kOk;
}

constexpr Rule<PoeEdit &> kConfigEdit[] = {
    // when, on, act
    {inApply, onMerge,
     [](const EditCall &, PoeEdit &edit) {
         const Status status = edit.applyChildEdits();
         return status ? status : edit.applyWhole();
     }},
    // The walk of a merge does not look at the phase.
    {anyPhase, onMerge, [](const EditCall &, PoeEdit &edit) { return edit.applyChildEdits(); }},
    {inApply, onReplace | onCreate, [](const EditCall &, PoeEdit &edit) { return edit.applyWhole(); }},
    {inApply, onDelete, [](const EditCall &, PoeEdit &edit) { return edit.remove(); }},
};
static_assert(noneHidden(kConfigEdit));

std::uint32_t usedOf(const PoeInfo &answer)
{
    return answer.port_info ? answer.port_info->power_used : 0;
}

std::uint32_t allocatedOf(const PoeInfo &answer)
{
    return answer.port_info ? answer.port_info->power_allocated : 0;
}

constexpr Leaf<PoeInfo> kState[] = {
    {"enabled",
     [](LeafMaker &leaf, const PoeInfo &answer) {
         return leaf.boolean(answer.port_info && answer.port_info->enabled != 0);
     }},
    {"priority",
     [](LeafMaker &leaf, const PoeInfo &answer) {
         return leaf.number(static_cast<std::uint32_t>(answer.priority));
     }},
    {"power-class",
     [](LeafMaker &leaf, const PoeInfo &answer) {
         return leaf.number(static_cast<std::uint32_t>(answer.power_class));
     }},
    {"power-used", [](LeafMaker &leaf, const PoeInfo &answer) { return leaf.wide(usedOf(answer)); }},
    {"power-allocated",
     [](LeafMaker &leaf, const PoeInfo &answer) { return leaf.wide(allocatedOf(answer)); }},
};

} // namespace

extern "C" int poe_set_port_config(int enabled, const char *port)
{
    PoeRequest request(port);
    ui_fe_poe_config_set_port_config_type(&request.record, 0, 0, enabled);
    const PoeAnswer answer = request.send(kUpdate);
    return readLeniently(answer.get(), "POE:poe_set_port_config p_poe_config_res  NULL",
                         "POE:poe_set_port_config UI__ERROR__CODE__NOT_OK");
}

extern "C" Status u_lyn_openconfig_if_poe_aug_interfaces_interface_ethernet_poe_config_edit(EDIT_ARGS,
                                                                                            const char *port)
{
    const EditCall call = EDIT_CALL;
    PoeEdit edit(call, port);
    return run(kConfigEdit, call, edit);
}

extern "C" Status u_lyn_openconfig_if_poe_aug_interfaces_interface_ethernet_poe_state_get(GetBlock *get2cb,
                                                                                          const char *port)
{
    if (const Status status = beginContainer(get2cb))
        return status;
    PoeRequest request(port);
    ui_fe_poe_config_set_port_config_by_ifindex(&request.record, 0, 0, kPortState, 0);
    const PoeAnswer answer = request.send(kRead);
    if (!answer || isRefused(answer->reply))
        return kInternal;
    const Status status = returnLeaves(get2cb, kModule, *answer, kState);
    if (status && logsErrors())
        log_error("agt_make_leaf2 failed with reason : %d\n", status);
    return status;
}
