#include "backend/proto/port_features.pb-c.h"
#include "switchsim/family.h"

#include <algorithm>
#include <string>

namespace switchsim {
namespace {

constexpr std::int32_t kCreate = 1;
constexpr std::int32_t kDelete = 3;
constexpr std::size_t kLongestName = 32;

bool isProfileName(std::string_view name)
{
    const auto isWordCharacter = [](unsigned char c) { return c > ' ' && c < 0x7f; };
    return !name.empty() && name.size() <= kLongestName &&
        std::all_of(name.begin(), name.end(), isWordCharacter);
}

class ForwardingProfile : public Family {
public:
    explicit ForwardingProfile(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "forwarding-profile"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<FwdConfigInfo, CommonResp>(
            "ui_forwarding_profile_config_apply", fwd_config_info__descriptor, common_resp__descriptor,
            [this](const auto &request, auto &, auto &answering) { apply(request, answering); });
    }

    Json show() const override { return {{"current", current_}}; }

private:
    void apply(const FwdConfigInfo &request, Answering &answering)
    {
        const std::string name = request.profile_name == nullptr ? "" : request.profile_name;
        if (const auto type = device_.values.get("platform-type"); type != 4 && type != 5)
            answering.refuse("Error: this hardware has no forwarding profiles\n");
        else if (request.opcode == kCreate && !isProfileName(name))
            answering.refuse("Error: invalid forwarding profile name\n");
        else if (request.opcode == kCreate)
            current_ = name;
        else if (request.opcode != kDelete)
            answering.refuse("Error: unknown forwarding profile operation\n");
        else if (current_ == name) // another one is gone already
            current_ = kDefault;
    }

    static constexpr const char *kDefault = "default";
    Device &device_;
    std::string current_ = kDefault;
};

} // namespace

std::unique_ptr<Family> makeForwardingProfile(Device &device)
{
    return std::make_unique<ForwardingProfile>(device);
}

} // namespace switchsim
