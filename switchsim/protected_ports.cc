#include "backend/proto/port_features.pb-c.h"
#include "switchsim/family.h"

#include <set>

namespace switchsim {
namespace {

constexpr std::int32_t kProtect = 1;
constexpr std::int32_t kUnprotect = 3;

class ProtectedPorts : public Family {
public:
    explicit ProtectedPorts(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "protected-port"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<PportConfig, CommonResp>(
            "protected_port_config_apply", pport_config__descriptor, common_resp__descriptor,
            [this](const auto &request, auto &, auto &answering) { apply(request, answering); });
    }

    Json show() const override { return ports_; }

private:
    void apply(const PportConfig &request, Answering &answering)
    {
        const std::string name = request.port_name == nullptr ? "" : request.port_name;
        if (device_.ports.find(name) == nullptr)
            answering.refuse(unknownPort(name));
        else if (request.opcode == kProtect)
            ports_.insert(name);
        else if (request.opcode == kUnprotect)
            ports_.erase(name);
        else
            answering.refuse("Error: unknown protected port operation\n");
    }

    Device &device_;
    std::set<std::string> ports_;
};

} // namespace

std::unique_ptr<Family> makeProtectedPorts(Device &device)
{
    return std::make_unique<ProtectedPorts>(device);
}

} // namespace switchsim
