#include "platform/u_openconfig-platform.h"

#include "backend/chassis.h"
#include "frame/answer.h"
#include "frame/leaves.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/stub.h"

#include <iterator>

using namespace frame;

USER_UNIT(openconfig_platform);

STUB_EDIT(u_openconfig_platform_components_edit);
STUB_EDIT(u_openconfig_platform_components_component_edit, const char *);
STUB_EDIT(u_openconfig_platform_components_component_power_supply_edit, const char *);
STUB_EDIT(u_openconfig_platform_components_component_fan_edit, const char *);
STUB_EDIT(u_openconfig_platform_components_component_fan_config_edit, const char *);

const char chassis_pwrsupply_status[5][20] = {"status undefined", "status ok", "status bad", "status standby",
                                              "status nonexist"};
const char chassis_fan_speed[6][15] = {"speed (0)", "speed (1)", "speed (2)",
                                       "speed (3)", "speed (4)", "speed (auto)"};

namespace {

constexpr const char *kModule = "lyn-openconfig-platform-aug";

using Report = Chassis__RestconfChassisConfig;
using Answer = Owned<Report, chassis__restconf_chassis_config__free_unpacked>;

// The texts of a retrieval that fails.
struct Failures {
    const char *noAnswer;
    const char *refused;
};

Answer query(std::int32_t what, const Failures &failures)
{
    Report request;
    CommonResp reply;
    ui_init_platform_restconf_chassis_config(&request, &reply);
    request.chassis_op = CHASSIS_READ;
    request.chassis_query = what;
    Answer answer(ui_fe_send_restconf_chassis_config(&request));
    if (answer && !isRefused(answer->reply))
        return answer;
    if (logsErrors())
        log_error("%s", answer ? failures.refused : failures.noAnswer);
    return Answer();
}

// A leaf-list with a value for each unit, out of numbers or texts.
struct UnitLeaf {
    const char *name;
    std::size_t Report::*count;
    std::uint32_t *Report::*numbers = nullptr;
    unsigned shift = 0; // of the number, to the right
    char **Report::*texts = nullptr;

    // Null without a status for a unit that has no value.
    Value *make(LeafMaker &leaf, const Report &report, std::size_t unit) const
    {
        if (numbers) {
            const std::uint32_t stored = (report.*numbers)[unit];
            return stored ? leaf.number(stored >> shift) : nullptr;
        }
        const char *text = (report.*texts)[unit];
        return text && *text ? leaf.text(text) : nullptr;
    }
};

constexpr unsigned kHalved = 1; // the switch counts half degrees

constexpr UnitLeaf number(const char *name, std::size_t Report::*count, std::uint32_t *Report::*numbers,
                          unsigned shift = 0)
{
    return {name, count, numbers, shift, nullptr};
}

constexpr UnitLeaf text(const char *name, std::size_t Report::*count, char **Report::*texts)
{
    return {name, count, nullptr, 0, texts};
}

constexpr UnitLeaf kStackId = number("stack_id", &Report::n_stack_id, &Report::stack_id);

constexpr UnitLeaf kTemperatures[] = {
    kStackId,
    number("actual_temperature", &Report::n_actual_temperature, &Report::actual_temperature, kHalved),
    number("warning_temperature", &Report::n_warning_temperature, &Report::warning_temperature, kHalved),
    number("shutdown_temperature", &Report::n_shutdown_temperature, &Report::shutdown_temperature, kHalved),
};

constexpr UnitLeaf kPowerSupplies[] = {
    kStackId,
    text("power-supply-1-status", &Report::n_power_supply_1_status, &Report::power_supply_1_status),
    text("power-supply-2-status", &Report::n_power_supply_2_status, &Report::power_supply_2_status),
};

constexpr UnitLeaf kFans[] = {
    kStackId,
    text("fan-1-status", &Report::n_fan_1_status, &Report::fan_1_status),
    text("fan-2-status", &Report::n_fan_2_status, &Report::fan_2_status),
    text("fan-3-status", &Report::n_fan_3_status, &Report::fan_3_status),
    text("fan-4-status", &Report::n_fan_4_status, &Report::fan_4_status),
    text("fan-5-status", &Report::n_fan_5_status, &Report::fan_5_status),
    text("fan-6-status", &Report::n_fan_6_status, &Report::fan_6_status),
};

constexpr Leaf<Report> kModel[] = {
    {"switch-model",
     [](LeafMaker &leaf, const Report &report) {
         return leaf.text(report.switch_model ? report.switch_model : "");
     }},
};

// One leaf-list: the units from 1 that the answer has.
Status returnUnits(GetBlock *get2cb, Object *object, const Report &report, const UnitLeaf &leaf)
{
    for (std::size_t unit = 1; unit <= CHASSIS_MOST_UNITS && unit < report.*leaf.count; ++unit) {
        LeafMaker maker{object, kModule};
        Value *value = leaf.make(maker, report, unit);
        if (maker.status)
            return maker.status;
        if (value)
            if (const Status status = getcb_add_return_val(get2cb, value))
                return status;
    }
    return kOk;
}

template <std::size_t N>
Status returnUnitLeaves(GetBlock *get2cb, const Report &report, const UnitLeaf (&leaves)[N])
{
    for (Object *child = getcb_first_requested_child(get2cb, getcb_get_obj(get2cb)); child;
         child = getcb_next_requested_child(get2cb, child))
        for (const UnitLeaf &leaf : leaves)
            if (xml_strcmp(obj_get_name(child), leaf.name) == 0)
                if (const Status status = returnUnits(get2cb, child, report, leaf))
                    return status;
    return kOk;
}

Status logLeafFailure(Status status)
{
    if (status && logsErrors())
        log_error("agt_make_leaf2 failed with reason : %d\n", status);
    return status;
}

// A retrieval out of one answer, which is asked for once.
template <std::size_t N>
Status getUnits(GetBlock *get2cb, std::int32_t what, const Failures &failures, const UnitLeaf (&leaves)[N])
{
    if (const Status status = beginContainer(get2cb))
        return status;
    const Answer answer = query(what, failures);
    return answer ? logLeafFailure(returnUnitLeaves(get2cb, *answer, leaves)) : kInternal;
}

Status refuse(const EditCall &call, const char *text)
{
    if (logsErrors())
        log_error("%s", text);
    return recordText(call, kInternal, text);
}

Status sendWarning(std::uint64_t unit, std::uint64_t degrees)
{
    constexpr std::int32_t update = 2, sendFlag = 2;
    Chassis__ThermalInfo request;
    chassis__thermal_info__init(&request);
    request.thermal_stack_id = static_cast<std::uint32_t>(unit);
    request.thermal_op = update;
    request.has_thermal_warning_level = 1;
    request.thermal_warning_level = static_cast<float>(degrees);
    const Owned<Chassis__ThermalInfo, chassis__thermal_info__free_unpacked> answer(
        ui_fe_chassis_info(&request, sendFlag));
    return answer ? kOk : kInternal; // what it says is not looked at
}

Status applyWarning(const EditCall &call)
{
    constexpr std::uint64_t lowestUnit = 1, highestUnit = 12, highestWarning = 62;
    walkChildEdits(call);
    const Value *unit = val_find_child(call.newval, kModule, "stack_id");
    const Value *warning = val_find_child(call.newval, kModule, "warning_temperature");
    if (!unit)
        return warning ? refuse(call, "Provide stack id for which the warning temperature has to set\n")
                       : kOk;
    const std::uint64_t id = val_get_uint64(unit);
    if (id < lowestUnit || id > highestUnit)
        return refuse(call, "The value of stack id should be between 1 and 12\n");
    if (!warning)
        return kOk;
    const std::uint64_t degrees = val_get_uint64(warning);
    if (degrees > highestWarning)
        return refuse(call, "Bad value: warning level on this unit can have value from 0 to 62");
    return sendWarning(id, degrees);
}

constexpr Rule<> kConfigEdit[] = {
    {inApply, onWrite, applyWarning},
};
static_assert(noneHidden(kConfigEdit));

constexpr Rule<> kPowerSupplyConfigEdit[] = {
    {anyPhase, anyOp, [](const EditCall &call) -> Status { return walkChildEdits(call), kOk; }},
};
static_assert(noneHidden(kPowerSupplyConfigEdit));

} // namespace

extern "C" Status u_openconfig_platform_components_component_config_edit(EDIT_ARGS, const char *)
{
    return run(kConfigEdit, EDIT_CALL);
}

extern "C" Status u_openconfig_platform_components_component_power_supply_config_edit(EDIT_ARGS, const char *)
{
    return run(kPowerSupplyConfigEdit, EDIT_CALL);
}

extern "C" Status u_openconfig_platform_components_component_state_get(GetBlock *get2cb, const char *)
{
    if (const Status status = beginContainer(get2cb))
        return status;
    const Answer answer = query(
        CHASSIS_QUERY_MODEL,
        {"u_openconfig_platform_components_component_properties_property_state_get failed get_switch_model\n",
         "u_openconfig_platform_components_component_properties_property_state_get failed with response "
         "buff\n"});
    return answer ? logLeafFailure(returnLeaves(get2cb, kModule, *answer, kModel)) : kInternal;
}

extern "C" Status u_openconfig_platform_components_component_state_temperature_get(GetBlock *get2cb,
                                                                                   const char *)
{
    return getUnits(get2cb, CHASSIS_QUERY_TEMPERATURES,
                    {"u_openconfig_platform_temperature_get failed \n",
                     "u_openconfig_platform_temperature_get failed with response buff\n"},
                    kTemperatures);
}

extern "C" Status u_openconfig_platform_components_component_power_supply_state_get(GetBlock *get2cb,
                                                                                    const char *)
{
    return getUnits(get2cb, CHASSIS_QUERY_POWER_SUPPLIES,
                    {"u_openconfig_platform_components_component_properties_property_state_get failed \n",
                     "u_openconfig_platform_components_component_properties_property_state_get failed with "
                     "response buff\n"},
                    kPowerSupplies);
}

extern "C" Status u_openconfig_platform_components_component_fan_state_get(GetBlock *get2cb, const char *)
{
    return getUnits(get2cb, CHASSIS_QUERY_FANS,
                    {"u_openconfig_platform_state_5_get failed \n",
                     "u_openconfig_platform_state_5_get failed with response buff\n"},
                    kFans);
}

extern "C" const char *get_pwrsupply_status_string(int index)
{
    return index >= 0 && index < static_cast<int>(std::size(chassis_pwrsupply_status))
        ? chassis_pwrsupply_status[index]
        : nullptr;
}

extern "C" const char *get_fan_speed_string(int index)
{
    return index >= 0 && index < static_cast<int>(std::size(chassis_fan_speed)) ? chassis_fan_speed[index]
                                                                                : nullptr;
}
