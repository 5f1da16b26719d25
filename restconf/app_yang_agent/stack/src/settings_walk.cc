// Which settings of the stack an edit really changes, and which it may not.
#include "backend/platform.h"
#include "stack/src/answer.h"
#include "stack/src/mac_text.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

using namespace frame;

std::uint8_t allow_char_in_name[256];
char unit_name[64];
std::uint8_t mac_addr_stacking[STACK_MAC_SIZE];

namespace {

constexpr Status kBadUnit = 225, kNoRearModule = 227, kBadName = 228, kBadPriority = 288;
constexpr int kApplyMode = 1;
constexpr int kRearModulePlatform = 3;
constexpr std::uint64_t kHighestPriority = 255;

struct Switch {
    const char *leaf;
    void (*set)(Stack__GlobalConfig *request, std::int32_t oper, std::int32_t value);
};

constexpr Switch kSwitches[] = {
    {"enabled", ui_stack_global_config_stack_enable_set},
    {"zero-touch-enable", ui_stack_global_config_ztp_enable_set},
    {"ztp-force", ui_stack_global_config_ztp_force_set},
};

struct RearModule {
    int value;
    void (*set)(Stack__GlobalConfig *request, std::int32_t oper);
    const char *name;
};

constexpr RearModule kRearModules[] = {
    {1, ui_stack_global_config_marlo_rear_module_stack_40G_set, "stack_40G"},
    {2, ui_stack_global_config_marlo_rear_module_uplink_100G_set, "uplink_100G"},
    {3, ui_stack_global_config_marlo_rear_module_uplink_40G_set, "uplink_40G"},
};

class GlobalWalk {
public:
    GlobalWalk(int mode, Stack__GlobalConfig *request, char *error, std::size_t size, int *changes)
        : mode_(mode)
        , request_(request)
        , error_(error)
        , size_(size)
        , changes_(changes)
    {
    }

    Status take(const EditedLeaf &leaf)
    {
        for (const Switch &setting : kSwitches)
            if (leaf.is(setting.leaf))
                return takeSwitch(setting, leaf);
        return leaf.is("mac-address") ? takeMac(leaf.newval)
            : leaf.is("suggested-id") ? takeSuggestedId(leaf)
            : leaf.is("rear-module")  ? takeRearModule(leaf)
                                      : kOk;
    }

private:
    // One that is gone is off.
    Status takeSwitch(const Switch &setting, const EditedLeaf &leaf)
    {
        const bool now = leaf.newval && val_get_boolean(leaf.newval);
        const bool before = leaf.curval && val_get_boolean(leaf.curval);
        if (leaf.curval && now == before)
            return kOk;
        ++*changes_;
        setting.set(request_, now ? STACK_SET : STACK_REMOVE, now);
        return kOk;
    }

    // One that is gone is removed, as is the one of all zeroes.
    Status takeMac(const Value *address)
    {
        std::fill(std::begin(mac_addr_stacking), std::end(mac_addr_stacking), std::uint8_t{0});
        if (address)
            if (const Status status =
                    stack::readMac(val_get_string(address), mac_addr_stacking, error_, size_))
                return status;
        const bool isZero = std::all_of(std::begin(mac_addr_stacking), std::end(mac_addr_stacking),
                                        [](std::uint8_t byte) { return byte == 0; });
        ++*changes_;
        ui_stack_global_config_mac_addr_set(request_, isZero ? STACK_REMOVE : STACK_SET, mac_addr_stacking);
        return kOk;
    }

    // 0 is none.
    Status takeSuggestedId(const EditedLeaf &leaf)
    {
        const std::uint64_t now = leaf.newval ? val_get_uint64(leaf.newval) : 0;
        if (leaf.curval && now == val_get_uint64(leaf.curval))
            return kOk;
        ++*changes_;
        ui_stack_global_config_suggest_id_set(request_, STACK_SET, static_cast<std::int32_t>(now));
        return kOk;
    }

    Status takeRearModule(const EditedLeaf &leaf) const
    {
        if (get_platform_type() != kRearModulePlatform) {
            std::snprintf(error_, size_, "Error - rear-module can only be set on a LYN4400");
            return kNoRearModule;
        }
        if (mode_ != kApplyMode)
            return kOk;
        const std::int64_t value = val_get_int64(leaf.newval ? leaf.newval : leaf.curval);
        const bool isSame = leaf.newval && leaf.curval && value == val_get_int64(leaf.curval);
        if (isSame || (!leaf.curval && value == 0))
            return kOk;
        return stack_rear_module_set(leaf.op, static_cast<int>(value), error_, size_);
    }

    int mode_;
    Stack__GlobalConfig *request_;
    char *error_;
    std::size_t size_;
    int *changes_;
};

void allowNameCharacters()
{
    constexpr const char *marks = "-_@$/:.#&";
    std::fill(std::begin(allow_char_in_name), std::end(allow_char_in_name), std::uint8_t{0});
    for (const auto &[first, last] : {std::pair{'0', '9'}, std::pair{'A', 'Z'}, std::pair{'a', 'z'}})
        std::fill(allow_char_in_name + first, allow_char_in_name + last + 1, std::uint8_t{1});
    for (const char *mark = marks; *mark; ++mark)
        allow_char_in_name[static_cast<unsigned char>(*mark)] = 1;
}

class UnitWalk {
public:
    UnitWalk(int unit, const Value *curval, Stack__UnitConfig *request, char *error, int *changes)
        : unit_(unit)
        , curval_(curval)
        , request_(request)
        , error_(error)
        , changes_(changes)
    {
    }

    // True to go on.
    bool take(const Value *leaf)
    {
        const char *name = val_get_name(leaf);
        if (xml_strcmp(name, "unit-id") == 0)
            return checkUnit(val_get_uint64(leaf)), true;
        if (xml_strcmp(name, "priority") == 0)
            return takePriority(val_get_uint64(leaf));
        return xml_strcmp(name, "unit-name") == 0 ? takeName(val_get_string(leaf)) : true;
    }
    Status status() const { return status_; }

private:
    void checkUnit(std::uint64_t id)
    {
        const auto units = stack::askForUnits();
        if (units && stack::findUnit(*units, static_cast<std::int64_t>(id)))
            return;
        status_ = kBadUnit;
        std::snprintf(error_, STACK_ERROR_SIZE, "stack-id %d is invalid", static_cast<int>(id));
    }

    bool takePriority(std::uint64_t priority)
    {
        if (priority > kHighestPriority) {
            std::snprintf(error_, STACK_ERROR_SIZE, "Priority:%d out of range:%d - %d",
                          static_cast<int>(priority), 0, static_cast<int>(kHighestPriority));
            return stop(kBadPriority);
        }
        const Value *before = current("priority");
        if (before && val_get_uint64(before) == priority)
            return true;
        ++*changes_;
        ui_stack_unit_priority_set(request_, STACK_SET, unit_, static_cast<std::uint32_t>(priority));
        return true;
    }

    bool takeName(const char *name)
    {
        allowNameCharacters();
        if (!*name) {
            std::snprintf(error_, STACK_ERROR_SIZE, "Error! unit-name must start with an alphabet");
            return stop(kBadName);
        }
        for (const char *c = name; *c; ++c)
            if (!allow_char_in_name[static_cast<unsigned char>(*c)]) {
                std::snprintf(error_, STACK_ERROR_SIZE, "\"%c\" is not allowed in name \"%s\" \n", *c, name);
                return stop(kBadName);
            }
        const Value *before = current("unit-name");
        if (before && xml_strcmp(val_get_string(before), name) == 0)
            return true;
        ++*changes_;
        std::snprintf(unit_name, sizeof unit_name, "%s", name);
        ui_stack_unit_stack_name_set(request_, *unit_name ? STACK_SET : STACK_REMOVE, unit_, unit_name);
        return true;
    }

    const Value *current(const char *leaf) const
    {
        return curval_ ? val_find_child(curval_, nullptr, leaf) : nullptr;
    }
    bool stop(Status status)
    {
        status_ = status;
        return false;
    }

    int unit_;
    const Value *curval_;
    Stack__UnitConfig *request_;
    char *error_;
    int *changes_;
    Status status_ = kOk;
};

} // namespace

extern "C" Status stack_edit_validate_config_editop(Request *msg, int mode, Value *newval, Value *curval,
                                                    Stack__GlobalConfig *request, char *error_buf,
                                                    std::size_t error_buf_size, int *op_count)
{
    GlobalWalk walk(mode, request, error_buf, error_buf_size, op_count);
    // Only the transaction and the two values are looked at.
    const EditCall call{nullptr, msg, validate, merge, newval, curval};
    return walkChildEdits(call, [&walk](const EditedLeaf &leaf) { return walk.take(leaf); });
}

extern "C" Status stack_edit_validate_config_1_editop(int unit_id, Request *, Value *newval, Value *curval,
                                                      Stack__UnitConfig *request, char *error_buf,
                                                      int *op_count)
{
    UnitWalk walk(unit_id, curval, request, error_buf, op_count);
    for (const Value *leaf = val_get_first_child(newval); leaf; leaf = val_get_next_child(leaf))
        if (!walk.take(leaf))
            break;
    return walk.status();
}

extern "C" Status stack_rear_module_set(EditOp editop, int value, char *error_buf, std::size_t error_buf_size)
{
    const auto module = std::find_if(std::begin(kRearModules), std::end(kRearModules),
                                     [value](const RearModule &of) { return of.value == value; });
    if (module == std::end(kRearModules))
        return kOk;
    const std::int32_t oper = editop == del ? STACK_REMOVE : STACK_SET;
    stack::GlobalRequest request;
    module->set(&request.record, oper);
    const stack::ConfigAnswer answer = request.send(oper);
    const CommonResp *reply = answer ? answer->reply : nullptr;
    if (answer && (!reply || reply->ui_err == 0))
        return kOk;
    std::snprintf(error_buf, error_buf_size, "Setting %s failed. Error=%d,%s", module->name,
                  reply ? reply->ui_err : 0, reply && reply->reply_buf ? reply->reply_buf : "");
    return kFailed;
}
