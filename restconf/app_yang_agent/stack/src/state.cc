// What the stack and its units report.
#include "backend/platform.h"
#include "frame/answer.h"
#include "frame/leaves.h"
#include "frame/stub.h"
#include "stack/src/answer.h"

#include <cstring>

using namespace frame;

STUB_GET(u_lyn_oc_stack_stack_units_1_get);
STUB_GET(u_lyn_oc_stack_trunks_1_get, const char *);
STUB_GET(u_lyn_oc_stack_stack_ports_1_get, const char *);
STUB_GET(u_lyn_oc_stack_ports_get, const char *);
STUB_GET_LIST(u_lyn_oc_stack_port_1_get, const char *, frame::OwnKey<const char *>);

namespace {

constexpr const char *kModule = "lyn-openconfig-stack";
constexpr int kRearModulePlatform = 3;
constexpr std::int32_t kLowestId = 1, kHighestId = 12;

// The global settings as they are shown.
struct GlobalState {
    const Stack__GlobalRecord &global;
    std::array<char, 15> mac{};
    const char *rearModule;
};

const char *shownRearModule(const Stack__GlobalRecord &global)
{
    if (get_platform_type() != kRearModulePlatform)
        return "other";
    const char *text = global.rear_module ? global.rear_module : "";
    const char *word = std::strstr(text, "stack");
    return word ? word : text;
}

GlobalState describe(const Stack__GlobalRecord &global)
{
    GlobalState state{global, {}, shownRearModule(global)};
    stack_yang_build_mac_string(global.mac_bytes.data, global.has_mac_bytes,
                                std::min<std::size_t>(global.mac_len, global.mac_bytes.len),
                                state.mac.data());
    return state;
}

constexpr Leaf<GlobalState> kGlobalState[] = {
    {"enabled",
     [](LeafMaker &leaf, const GlobalState &state) { return leaf.boolean(state.global.stack_enabled == 1); }},
    {"mac-address",
     [](LeafMaker &leaf, const GlobalState &state) {
         return leaf.text(state.mac[0] ? state.mac.data() : "---");
     }},
    {"suggested-id",
     [](LeafMaker &leaf, const GlobalState &state) -> Value * {
         const std::int32_t id = state.global.suggested_id;
         return id >= kLowestId && id <= kHighestId ? leaf.number(static_cast<std::uint32_t>(id)) : nullptr;
     }},
    {"zero-touch-enable",
     [](LeafMaker &leaf, const GlobalState &state) { return leaf.boolean(state.global.ztp_enabled != 0); }},
    {"ztp-force",
     [](LeafMaker &leaf, const GlobalState &state) { return leaf.boolean(state.global.ztp_force != 0); }},
    {"rear-module", [](LeafMaker &leaf, const GlobalState &state) { return leaf.text(state.rearModule); }},
};

Value *textLeaf(LeafMaker &leaf, const char *text)
{
    return leaf.text(text ? text : "");
}

using Entry = Stack__UnitEntry;
constexpr Leaf<Entry> kUnitState[] = {
    {"unit-id",
     [](LeafMaker &leaf, const Entry &unit) {
         return leaf.number(static_cast<std::uint32_t>(unit.stack_id));
     }},
    {"dynamic-static",
     [](LeafMaker &leaf, const Entry &unit) { return textLeaf(leaf, unit.dynamic_static); }},
    {"unit-type", [](LeafMaker &leaf, const Entry &unit) { return textLeaf(leaf, unit.unit_type); }},
    {"role", [](LeafMaker &leaf, const Entry &unit) { return textLeaf(leaf, unit.role); }},
    {"mac-address", [](LeafMaker &leaf, const Entry &unit) { return textLeaf(leaf, unit.mac_address); }},
    {"priority", [](LeafMaker &leaf, const Entry &unit) { return leaf.integer(unit.priority); }},
    {"state", [](LeafMaker &leaf, const Entry &unit) { return textLeaf(leaf, unit.state); }},
    {"comment", [](LeafMaker &leaf, const Entry &unit) { return textLeaf(leaf, unit.comment); }},
    {"unit-name", [](LeafMaker &leaf, const Entry &unit) { return textLeaf(leaf, unit.unit_name); }},
};

// The entry that a walk over the list asks for: the one with the key, the first one behind it, or the first
// of all. The answer's size for none.
std::size_t findEntry(const Stack__ShowCmd &answer, GetMode mode, const OwnKey<std::uint32_t> &key)
{
    std::size_t i = 0;
    for (; i < answer.n_units; ++i) {
        const Entry *unit = answer.units[i];
        if (!unit || unit->stack_id == 0)
            continue;
        const auto id = static_cast<std::uint32_t>(unit->stack_id);
        if (!key.present || (mode == getNext ? id > key.value : id == key.value))
            break;
    }
    return i;
}

Status returnEntry(GetBlock *get2cb, const Stack__ShowCmd &answer, std::size_t entry)
{
    Status status = kOk;
    Value *id = agt_make_uint_leaf2(getcb_get_obj(get2cb), kModule, "unit-id",
                                    static_cast<std::uint32_t>(answer.units[entry]->stack_id), &status);
    if (!id)
        return status;
    getcb_set_more_data(get2cb, entry + 1 < answer.n_units);
    return getcb_add_return_key(get2cb, id);
}

} // namespace

extern "C" Status u_lyn_oc_stack_state_get(GetBlock *get2cb)
{
    constexpr std::int32_t everything = 3, getAllOp = 1;
    if (const Status status = beginContainer(get2cb))
        return status;
    Stack__GetAllReq request;
    stack__get_all_req__init(&request);
    request.get_all_op = getAllOp;
    Owned<Stack__GetAllResp, stack_fe_handle_get_all_response> answer;
    ui_stack_fe_get_all_apply(everything, &request, answer.slot());
    if (!answer || !answer->reply || answer->reply->app_err || !answer->global)
        return kNoInstance;
    return returnLeaves(get2cb, kModule, describe(*answer->global), kGlobalState);
}

extern "C" Status u_lyn_oc_stack_stack_unit_1_get(GetBlock *get2cb, OwnKey<std::uint32_t> unitId)
{
    const GetMode mode = getcb_get_mode(get2cb);
    if (mode != getValue && mode != getNext)
        return INTERNAL_ERROR();
    getcb_set_more_data(get2cb, false);
    const stack::UnitsAnswer answer = stack::askForUnits();
    if (!answer || isRefused(answer->reply))
        return kNoInstance;
    const std::size_t entry = findEntry(*answer, mode, unitId);
    return entry < answer->n_units ? returnEntry(get2cb, *answer, entry) : kNoInstance;
}

extern "C" Status u_lyn_oc_stack_state_1_get(GetBlock *get2cb, const char *unitId)
{
    int id = 0;
    if (const Status status = stack::readUnitId(unitId, id))
        return status;
    if (const Status status = beginContainer(get2cb))
        return status;
    const stack::UnitsAnswer answer = stack::askForUnits();
    const Entry *unit =
        answer && answer->n_units > static_cast<std::size_t>(id) ? stack::findUnit(*answer, id) : nullptr;
    return unit ? returnLeaves(get2cb, kModule, *unit, kUnitState) : kNoInstance;
}
