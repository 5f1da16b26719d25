#include "backend/proto/interface.pb-c.h"
#include "switchsim/family.h"

namespace switchsim
{
namespace
{

constexpr std::int32_t kSet = 2;
constexpr std::int32_t kRemove = 3;
constexpr std::int32_t kGet = 5;

class Interfaces : public Family
{
public:
    explicit Interfaces(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "interfaces"; }

    void registerCalls(CallTable &calls) override
    {
        calls
            .on<InterfaceConfigParam, InterfaceConfigParam>(
                "ui_fe_interface_config_msg", interface_config_param__descriptor,
                interface_config_param__descriptor,
                [this](const auto &request, auto &answer, auto &answering) {
                    config(request, answer, answering);
                })
            .withArgument("operation");
    }

    Json show() const override
    {
        Json all = Json::object();
        for (const Port &port : device_.ports.all()) {
            Json &shown = all[port.name] = {{"ifindex", port.ifindex}, {"enabled", port.isEnabled}};
            if (port.description)
                shown["description"] = *port.description;
        }
        return all;
    }

private:
    void config(const InterfaceConfigParam &request, InterfaceConfigParam &answer, Answering &answering)
    {
        const std::string_view name = request.name == nullptr ? "" : request.name;
        Port *port = device_.ports.find(name);
        if (port == nullptr)
            return answering.refuse(unknownPort(name));
        if (answering.argument() == kSet)
            change(*port, request);
        else if (answering.argument() != kGet)
            return answering.refuse("Error: unknown interface operation\n");
        describe(*port, answer, answering);
    }

    static void change(Port &port, const InterfaceConfigParam &request)
    {
        if (request.description_op == kSet && request.description != nullptr)
            port.description = request.description;
        else if (request.description_op == kRemove)
            port.description.reset();
        if (request.enabled_op == kSet)
            port.isEnabled = request.enabled != 0;
        else if (request.enabled_op == kRemove)
            port.isEnabled = true;
    }

    // A port has a link as soon as it is enabled; no traffic is simulated.
    static void describe(const Port &port, InterfaceConfigParam &answer, Answering &answering)
    {
        answer.name = answering.keep(port.name);
        answer.ifindex = port.ifindex;
        answer.description = port.description ? answering.keep(*port.description) : nullptr;
        answer.has_enabled = answer.has_oper_state = 1;
        answer.enabled = answer.oper_state = port.isEnabled ? 1 : 0;
        answer.counters = answering.make(interface_counters__init);
    }

    Device &device_;
};

} // namespace

std::unique_ptr<Family> makeInterfaces(Device &device)
{
    return std::make_unique<Interfaces>(device);
}

} // namespace switchsim
