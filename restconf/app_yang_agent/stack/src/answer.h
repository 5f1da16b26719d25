// Requests of the stack's settings and what is made of their answers.
#pragma once

#include "backend/stack.h"
#include "frame/owned.h"
#include "stack/src/u_lyn-openconfig-stack.h"

#include <array>

namespace stack {

using ConfigAnswer = frame::Owned<Stack__GlobalConfig, stack__global_config__free_unpacked>;
using UnitsAnswer = frame::Owned<Stack__ShowCmd, stack__show_cmd__free_unpacked>;
using ErrorText = std::array<char, STACK_ERROR_SIZE>;

// A request for global settings and the area that it is built around.
struct GlobalRequest {
    Stack__GlobalConfig record;
    Stack__GlobalSettings settings;

    GlobalRequest() { ui_stack_global_config_init(&record, &settings); }
    GlobalRequest(const GlobalRequest &) = delete;
    GlobalRequest &operator=(const GlobalRequest &) = delete;

    ConfigAnswer send(std::int32_t oper)
    {
        record.global_config_op = STACK_GLOBAL_CONFIGURE;
        return ConfigAnswer(ui_fe_stack_glb_config_cmd(&record, oper));
    }
};

struct UnitRequest {
    Stack__UnitConfig record;
    Stack__UnitSettings settings;

    UnitRequest() { ui_stack_unit_config_init(&record, &settings); }
    UnitRequest(const UnitRequest &) = delete;
    UnitRequest &operator=(const UnitRequest &) = delete;
};

// The units of the stack. An entry may be an empty slot.
inline UnitsAnswer askForUnits()
{
    Stack__ShowCmd request;
    ui_stack_show_cmd_init(&request);
    ui_stack_show_stack_set(&request, STACK_SHOW_STACK);
    request.show_op = STACK_SHOW_UNITS;
    return UnitsAnswer(ui_fe_stack_show_cmd(&request, STACK_SHOW_STACK, STACK_SHOW_UNITS));
}

// The entry of that unit; null for none.
inline const Stack__UnitEntry *findUnit(const Stack__ShowCmd &answer, std::int64_t id)
{
    for (std::size_t i = 0; i < answer.n_units; ++i)
        if (answer.units[i] && answer.units[i]->stack_id == id)
            return answer.units[i];
    return nullptr;
}

// Records the text of a walk that ended with a status, behind the switch's words if there are any.
Status refuse(const frame::EditCall &call, Status status, const ErrorText &error);

// What the answer to a request means for the edit: kOk, or kInternal with the switch's words recorded behind
// those in `error`.
Status readAnswer(const frame::EditCall &call, const ConfigAnswer &answer, ErrorText &error);

// The unit's number out of its key. kMissingKey without one, kInternal for one that is not positive.
inline constexpr Status kMissingKey = 1006;
Status readUnitId(const char *key, int &id);

} // namespace stack
