#include "backend/chassis.h"
#include "switchsim/family.h"

#include <cmath>

namespace switchsim {
namespace {

constexpr std::int32_t kUpdate = 2;
constexpr std::int32_t kReload = 1;
constexpr float kHighestWarning = 62;

// What the units measure and how the switch starts.
class Chassis : public Family {
public:
    explicit Chassis(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "chassis"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<Query, Query>("ui_fe_send_restconf_chassis_config",
                               chassis__restconf_chassis_config__descriptor,
                               chassis__restconf_chassis_config__descriptor,
                               [this](const auto &request, auto &answer, auto &answering) {
                                   query(request, answer, answering);
                               });
        calls.on<Chassis__ThermalInfo, Chassis__ThermalInfo>(
            "ui_fe_chassis_info", chassis__thermal_info__descriptor, chassis__thermal_info__descriptor,
            [this](const auto &request, auto &, auto &answering) { setWarning(request, answering); });
        calls.on<Chassis__Bootconfig, Chassis__Bootconfig>(
            "ui_fe_platform_boot_config", chassis__bootconfig__descriptor, chassis__bootconfig__descriptor,
            [this](const auto &request, auto &, auto &answering) { chooseSource(request, answering); });
        calls.on<Chassis__ReloadCmd, Chassis__ReloadCmd>(
            "ui_fe_reload_cmd_msg", chassis__reload_cmd__descriptor, chassis__reload_cmd__descriptor,
            [this](const auto &request, auto &answer, auto &answering) {
                reload(request, answer, answering);
            });
    }

    Json show() const override
    {
        Json units = Json::array();
        for (const StackUnit *unit : device_.presentUnits())
            units.push_back({{"id", unit->id},
                             {"half-degrees", unit->halfDegrees},
                             {"warning-temperature", unit->warning}});
        return {{"model", kModel},
                {"units", units},
                {"boot-source", nameOf(device_.boot.source)},
                {"running-partition", nameOf(device_.boot.running)},
                {"reloads", reloads_}};
    }

    std::vector<std::string> configLines() const override
    {
        std::vector<std::string> lines;
        for (const StackUnit *unit : device_.presentUnits())
            if (unit->warning != StackUnit::kWarning)
                lines.push_back("temperature warning " + std::to_string(unit->warning) + " unit " +
                                std::to_string(unit->id));
        return lines;
    }

private:
    using Query = Chassis__RestconfChassisConfig;
    static constexpr const char *kModel = "LYN3200-24";

    static const char *nameOf(std::int32_t source)
    {
        return source == BOOT_SOURCE_SECONDARY ? "secondary" : "primary";
    }

    // A number for each unit under its own index; 0 belongs to nobody.
    template <class Of>
    void fill(std::size_t &count, std::uint32_t *&numbers, Answering &answering, Of of) const
    {
        auto *kept = answering.keepNumbers(std::vector<std::uint32_t>(CHASSIS_MOST_UNITS + 1));
        for (const StackUnit *unit : device_.presentUnits())
            (*kept)[static_cast<std::size_t>(unit->id)] = of(*unit);
        count = kept->size();
        numbers = kept->data();
    }

    template <class Of>
    void fill(std::size_t &count, char **&texts, Answering &answering, Of of) const
    {
        std::vector<char *> list(CHASSIS_MOST_UNITS + 1, answering.keep(""));
        for (const StackUnit *unit : device_.presentUnits())
            if (const char *text = of(*unit))
                list[static_cast<std::size_t>(unit->id)] = answering.keep(text);
        count = list.size();
        texts = answering.makeList(list);
    }

    void query(const Query &request, Query &answer, Answering &answering) const
    {
        if (request.chassis_op != CHASSIS_READ)
            return answering.refuse("Error: unknown chassis operation\n");
        switch (request.chassis_query) {
        case CHASSIS_QUERY_FANS:
            fillIds(answer, answering);
            return fillFans(answer, answering);
        case CHASSIS_QUERY_POWER_SUPPLIES:
            fillIds(answer, answering);
            return fillPowerSupplies(answer, answering);
        case CHASSIS_QUERY_TEMPERATURES:
            fillIds(answer, answering);
            return fillTemperatures(answer, answering);
        case CHASSIS_QUERY_MODEL:
            answer.switch_model = answering.keep(kModel);
            return;
        }
        answering.refuse("Error: unknown chassis query\n");
    }

    void fillIds(Query &answer, Answering &answering) const
    {
        fill(answer.n_stack_id, answer.stack_id, answering,
             [](const StackUnit &unit) { return static_cast<std::uint32_t>(unit.id); });
    }

    void fillTemperatures(Query &answer, Answering &answering) const
    {
        fill(answer.n_actual_temperature, answer.actual_temperature, answering,
             [](const StackUnit &unit) { return unit.halfDegrees; });
        fill(answer.n_warning_temperature, answer.warning_temperature, answering,
             [](const StackUnit &unit) { return 2 * unit.warning; });
        fill(answer.n_shutdown_temperature, answer.shutdown_temperature, answering,
             [](const StackUnit &) { return 2 * StackUnits::kShutdown; });
    }

    void fillPowerSupplies(Query &answer, Answering &answering) const
    {
        fill(answer.n_power_supply_1_status, answer.power_supply_1_status, answering,
             [](const StackUnit &unit) { return unit.powerSupplies[0]; });
        fill(answer.n_power_supply_2_status, answer.power_supply_2_status, answering,
             [](const StackUnit &unit) { return unit.powerSupplies[1]; });
    }

    void fillFans(Query &answer, Answering &answering) const
    {
        struct Field {
            std::size_t Query::*count;
            char **Query::*texts;
        };
        static constexpr Field fields[] = {
            {&Query::n_fan_1_status, &Query::fan_1_status}, {&Query::n_fan_2_status, &Query::fan_2_status},
            {&Query::n_fan_3_status, &Query::fan_3_status}, {&Query::n_fan_4_status, &Query::fan_4_status},
            {&Query::n_fan_5_status, &Query::fan_5_status}, {&Query::n_fan_6_status, &Query::fan_6_status},
        };
        for (std::size_t fan = 0; fan < std::size(fields); fan++)
            fill(answer.*fields[fan].count, answer.*fields[fan].texts, answering,
                 [fan](const StackUnit &unit) { return unit.fans[fan]; });
    }

    void setWarning(const Chassis__ThermalInfo &request, Answering &answering)
    {
        StackUnit *unit = device_.findUnit(static_cast<std::int32_t>(request.thermal_stack_id));
        const float level = request.thermal_warning_level;
        if (unit == nullptr)
            answering.refuse("Error: there is no such stack unit\n");
        else if (request.thermal_op != kUpdate)
            answering.refuse("Error: unknown temperature operation\n");
        else if (!(level >= 0 && level <= kHighestWarning))
            answering.refuse("Error: the warning temperature must be in the range 0..62\n");
        else
            unit->warning = static_cast<std::uint32_t>(std::lround(level));
    }

    void chooseSource(const Chassis__Bootconfig &request, Answering &answering)
    {
        if (request.boot_source == BOOT_SOURCE_PRIMARY || request.boot_source == BOOT_SOURCE_SECONDARY)
            device_.boot.source = request.boot_source;
        else
            answering.refuse("Error: unknown boot source\n");
    }

    void reload(const Chassis__ReloadCmd &request, Chassis__ReloadCmd &answer, Answering &answering)
    {
        answer.has_reload_accepted = 1;
        if (request.reload_op != kReload)
            return answering.refuse("Error: unknown reload operation\n");
        if (device_.values.get("download-busy") != 0)
            return answering.refuse("Error: an image is being downloaded, no reload now\n", 0);
        answer.reload_accepted = 1;
        answer.reply->reply_buf = answering.keep("Reload accepted\n");
        device_.boot.running = device_.boot.source;
        reloads_++;
    }

    Device &device_;
    std::uint32_t reloads_ = 0;
};

} // namespace

std::unique_ptr<Family> makeChassis(Device &device)
{
    return std::make_unique<Chassis>(device);
}

} // namespace switchsim
