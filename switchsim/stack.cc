#include "backend/stack.h"
#include "switchsim/family.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>

namespace switchsim {
namespace {

constexpr std::int32_t kGetAllOp = 1;
constexpr std::int32_t kRearModulePlatform = 3;
constexpr std::size_t kLongestName = 63;
constexpr std::uint32_t kHighestPriority = 255;

using Mac = std::array<std::uint8_t, STACK_MAC_SIZE>;

std::string textOf(const Mac &mac)
{
    std::array<char, 2 * STACK_MAC_SIZE + 3> text{};
    std::snprintf(text.data(), text.size(), "%02x%02x.%02x%02x.%02x%02x", mac[0], mac[1], mac[2], mac[3],
                  mac[4], mac[5]);
    return text.data();
}

// The global settings as they come from the factory.
struct Settings {
    bool isEnabled = false;
    std::optional<Mac> mac;
    std::int32_t suggestedId = 0; // 0: none
    bool ztpEnabled = false;
    bool ztpForced = false;
    std::string rearModule = "stack-40g";
};

class Stack : public Family {
public:
    explicit Stack(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "stack"; }

    void registerCalls(CallTable &calls) override
    {
        calls
            .on<Stack__GlobalConfig, Stack__GlobalConfig>(
                "ui_fe_stack_glb_config_cmd", stack__global_config__descriptor,
                stack__global_config__descriptor,
                [this](const auto &request, auto &, auto &answering) { configure(request, answering); })
            .withArgument("oper");
        calls
            .on<Stack__UnitConfig, Stack__GlobalConfig>(
                "ui_fe_stack_unit_config_cmd", stack__unit_config__descriptor,
                stack__global_config__descriptor,
                [this](const auto &request, auto &, auto &answering) { configureUnit(request, answering); })
            .withArgument("oper");
        calls.on<Stack__ShowCmd, Stack__ShowCmd>("ui_fe_stack_show_cmd", stack__show_cmd__descriptor,
                                                 stack__show_cmd__descriptor,
                                                 [this](const auto &request, auto &answer, auto &answering) {
                                                     showUnits(request, answer, answering);
                                                 });
        calls.on<Stack__GetAllReq, Stack__GetAllResp>(
            "ui_stack_fe_get_all_apply", stack__get_all_req__descriptor, stack__get_all_resp__descriptor,
            [this](const auto &request, auto &answer, auto &answering) {
                getAll(request, answer, answering);
            });
    }

    Json show() const override
    {
        Json units = Json::array();
        for (const StackUnit *unit : device_.presentUnits())
            units.push_back({{"id", unit->id}, {"priority", unit->priority}, {"name", unit->name}});
        return {{"enabled", settings_.isEnabled},
                {"mac", settings_.mac ? Json(textOf(*settings_.mac)) : Json()},
                {"suggested-id", settings_.suggestedId},
                {"ztp-enabled", settings_.ztpEnabled},
                {"ztp-forced", settings_.ztpForced},
                {"rear-module", settings_.rearModule},
                {"units", units}};
    }

    std::vector<std::string> configLines() const override
    {
        std::vector<std::string> lines;
        const auto add = [&lines](bool isSet, std::string line) {
            if (isSet)
                lines.push_back(std::move(line));
        };
        const Settings factory;
        add(settings_.isEnabled, "stack enable");
        add(settings_.ztpEnabled, "stack zero-touch-enable");
        add(settings_.ztpForced, "stack zero-touch-force");
        add(settings_.suggestedId != 0, "stack suggested-id " + std::to_string(settings_.suggestedId));
        add(settings_.rearModule != factory.rearModule, "rear-module " + settings_.rearModule);
        if (settings_.mac)
            lines.push_back("stack mac " + textOf(*settings_.mac));
        for (const StackUnit *unit : device_.presentUnits()) {
            const std::string head = "stack unit " + std::to_string(unit->id);
            add(unit->priority != StackUnit::kPriority, head + " priority " + std::to_string(unit->priority));
            lines.push_back(head + " name " + unit->name);
        }
        return lines;
    }

private:
    void configure(const Stack__GlobalConfig &request, Answering &answering)
    {
        if (request.global_config_op != STACK_GLOBAL_CONFIGURE || request.settings == nullptr)
            return answering.refuse("Error: unknown stack operation\n");
        const Stack__GlobalSettings &asked = *request.settings;
        Settings wanted = settings_;
        takeSwitch(asked.stack_enable_op, wanted.isEnabled);
        takeSwitch(asked.ztp_enable_op, wanted.ztpEnabled);
        takeSwitch(asked.ztp_force_op, wanted.ztpForced);
        if (asked.suggest_id_op == STACK_SET)
            wanted.suggestedId = asked.suggest_id;
        if (wanted.suggestedId < 0 || wanted.suggestedId > StackUnits::kMost)
            return answering.refuse("Error: the suggested id must be in the range 1..12\n");
        if (asked.mac_addr_op == STACK_REMOVE)
            wanted.mac.reset();
        if (asked.mac_addr_op == STACK_SET && !takeMac(asked.mac_addr, wanted.mac))
            return answering.refuse("Error: bad stack MAC address\n");
        if (takeRearModule(asked, wanted) && device_.values.get("platform-type") != kRearModulePlatform)
            return answering.refuse("Error: this hardware has no rear module\n");
        settings_ = wanted;
    }

    static void takeSwitch(std::int32_t op, bool &value)
    {
        if (op == STACK_SET || op == STACK_REMOVE)
            value = op == STACK_SET;
    }

    static bool takeMac(const ProtobufCBinaryData &bytes, std::optional<Mac> &mac)
    {
        if (bytes.len != STACK_MAC_SIZE)
            return false;
        mac.emplace();
        std::copy_n(bytes.data, STACK_MAC_SIZE, mac->begin());
        return true;
    }

    // True if one of the three uses was named; a removed one gives way to the factory's.
    static bool takeRearModule(const Stack__GlobalSettings &asked, Settings &wanted)
    {
        const std::pair<std::int32_t, const char *> uses[] = {
            {asked.rear_module_stack_40g_op, "stack-40g"},
            {asked.rear_module_uplink_100g_op, "uplink-100g"},
            {asked.rear_module_uplink_40g_op, "uplink-40g"},
        };
        bool isNamed = false;
        for (const auto &[op, name] : uses) {
            if (op == STACK_SET)
                wanted.rearModule = name;
            else if (op == STACK_REMOVE && wanted.rearModule == name)
                wanted.rearModule = Settings().rearModule;
            isNamed = isNamed || op != 0;
        }
        return isNamed;
    }

    void configureUnit(const Stack__UnitConfig &request, Answering &answering)
    {
        const Stack__UnitSettings *asked = request.settings;
        StackUnit *unit = asked == nullptr ? nullptr : device_.findUnit(asked->unit);
        if (unit == nullptr)
            return answering.refuse("Error: there is no such stack unit\n");
        const std::string name = asked->stack_name == nullptr ? "" : asked->stack_name;
        if (asked->priority > kHighestPriority || name.size() > kLongestName)
            return answering.refuse("Error: bad priority or name of a stack unit\n");
        if (asked->stack_name_op == STACK_SET && isTaken(name, *unit))
            return answering.refuse("Error: another stack unit is called " + name + "\n");
        if (asked->priority_op == STACK_SET)
            unit->priority = static_cast<std::int32_t>(asked->priority);
        if (asked->stack_name_op == STACK_SET)
            unit->name = name;
    }

    bool isTaken(const std::string &name, const StackUnit &by) const
    {
        const auto units = device_.presentUnits();
        return std::any_of(units.begin(), units.end(),
                           [&](const StackUnit *other) { return other != &by && other->name == name; });
    }

    // Slot 0 is empty, so that a unit stands at its own number.
    void showUnits(const Stack__ShowCmd &request, Stack__ShowCmd &answer, Answering &answering) const
    {
        if (request.show_stack != STACK_SHOW_STACK || request.show_op != STACK_SHOW_UNITS)
            return answering.refuse("Error: unknown stack query\n");
        std::vector<Stack__UnitEntry *> slots = {answering.make(stack__unit_entry__init)};
        for (const StackUnit *unit : device_.presentUnits())
            slots.push_back(describe(*unit, answering));
        answer.n_units = slots.size();
        answer.units = answering.makeList(slots);
    }

    static Stack__UnitEntry *describe(const StackUnit &unit, Answering &answering)
    {
        Stack__UnitEntry *entry = answering.make(stack__unit_entry__init);
        const bool isActive = unit.id == 1;
        entry->stack_id = unit.id;
        entry->dynamic_static = answering.keep(isActive ? "S" : "D");
        entry->unit_type = answering.keep("LYN3200-24");
        entry->role = answering.keep(isActive ? "active" : unit.id == 2 ? "standby" : "member");
        entry->mac_address = answering.keep(unit.mac());
        entry->has_priority = 1;
        entry->priority = unit.priority;
        entry->state = answering.keep(isActive ? "local" : "remote");
        entry->comment = answering.keep("Ready");
        entry->unit_name = answering.keep(unit.name);
        return entry;
    }

    void getAll(const Stack__GetAllReq &request, Stack__GetAllResp &answer, Answering &answering) const
    {
        if (request.get_all_op != kGetAllOp)
            return answering.refuse("Error: unknown stack query\n", 1, 1);
        Stack__GlobalRecord &global = *(answer.global = answering.make(stack__global_record__init));
        global.has_ztp_enabled = global.has_ztp_force = global.has_stack_enabled = global.has_suggested_id =
            1;
        global.ztp_enabled = settings_.ztpEnabled;
        global.ztp_force = settings_.ztpForced;
        global.stack_enabled = settings_.isEnabled;
        global.suggested_id = settings_.suggestedId;
        global.has_mac_len = global.has_mac_bytes = settings_.mac.has_value();
        if (settings_.mac) {
            global.mac_len = STACK_MAC_SIZE;
            const std::string bytes(settings_.mac->begin(), settings_.mac->end());
            global.mac_bytes = {STACK_MAC_SIZE, reinterpret_cast<std::uint8_t *>(answering.keep(bytes))};
        }
        global.rear_module = answering.keep("rear-module " + settings_.rearModule);
    }

    Device &device_;
    Settings settings_;
};

} // namespace

std::unique_ptr<Family> makeStack(Device &device)
{
    return std::make_unique<Stack>(device);
}

} // namespace switchsim
