#include "backend/proto/lag.pb-c.h"
#include "switchsim/family.h"

#include <algorithm>

namespace switchsim {
namespace {

constexpr std::int32_t kAdd = 1;
constexpr std::int32_t kRemove = 3;
constexpr std::uint32_t kHighestId = 256;
constexpr std::uint32_t kIfindexBase = 0x0400'0000;

class LagFamily : public Family {
public:
    explicit LagFamily(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "lag"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<LagConfigReq, CommonResp>(
            "ui_lag_config_apply", lag_config_req__descriptor, common_resp__descriptor,
            [this](const auto &request, auto &, auto &answering) { apply(request, answering); });
    }

    Json show() const override
    {
        Json all = Json::object();
        for (const auto &[id, lag] : device_.lags.all) {
            Json &shown = all[lag.name] = {{"id", id},
                                           {"name", lag.lagName},
                                           {"mode", lag.isDynamic ? "dynamic" : "static"},
                                           {"enabled", lag.isEnabled},
                                           {"members", lag.members}};
            if (lag.description)
                shown["description"] = *lag.description;
        }
        return all;
    }

private:
    void apply(const LagConfigReq &request, Answering &answering)
    {
        if (request.lag_id < 1 || request.lag_id > kHighestId)
            return answering.refuse("Error: the number of a lag must be in the range 1..256\n");
        if (request.rename_op == kAdd)
            return rename(request, answering);
        if (request.operation == kAdd)
            create(request, answering);
        else if (request.operation == kRemove)
            remove(request.lag_id);
        if (request.ports_op != 0)
            member(request, answering);
    }

    static std::string orEmpty(const char *text) { return text == nullptr ? "" : text; }
    static std::string unknownLag(std::uint32_t id)
    {
        return "Error: lag " + std::to_string(id) + " does not exist\n";
    }

    bool isNameTaken(const std::string &name, std::uint32_t id) const
    {
        return std::any_of(device_.lags.all.begin(), device_.lags.all.end(),
                           [&](const auto &lag) { return lag.first != id && lag.second.lagName == name; });
    }

    void create(const LagConfigReq &request, Answering &answering)
    {
        const std::string name = orEmpty(request.name);
        if (name.empty())
            return answering.refuse("Error: a lag needs a name\n");
        if (isNameTaken(name, request.lag_id))
            return answering.refuse("Error: another lag has the name " + name + "\n");
        Lag &lag = device_.lags.all[request.lag_id];
        lag.name = "lag " + std::to_string(request.lag_id);
        lag.ifindex = kIfindexBase + request.lag_id;
        lag.lagName = name;
        lag.isDynamic = request.lag_mode != 0;
    }

    void remove(std::uint32_t id)
    {
        const auto found = device_.lags.all.find(id);
        if (found == device_.lags.all.end())
            return;
        device_.vlans.forget(found->second.name);
        device_.lags.all.erase(found);
    }

    void rename(const LagConfigReq &request, Answering &answering)
    {
        const auto found = device_.lags.all.find(request.lag_id);
        const std::string name = orEmpty(request.new_name);
        if (found == device_.lags.all.end())
            answering.refuse(unknownLag(request.lag_id));
        else if (name.empty() || isNameTaken(name, request.lag_id))
            answering.refuse("Error: the name is empty or in use\n");
        else
            found->second.lagName = name;
    }

    // Taking out what is no member, or from a LAG that is gone, is done already.
    void member(const LagConfigReq &request, Answering &answering)
    {
        const std::string port = orEmpty(request.ports);
        const auto found = device_.lags.all.find(request.lag_id);
        if (request.ports_op == kRemove) {
            if (found != device_.lags.all.end())
                found->second.members.erase(port);
            return;
        }
        const Lag *other = device_.lags.withMember(port);
        if (found == device_.lags.all.end())
            answering.refuse(unknownLag(request.lag_id));
        else if (device_.ports.find(port) == nullptr)
            answering.refuse(unknownPort(port));
        else if (other != nullptr && other != &found->second)
            answering.refuse("Error: port " + port + " is a member of " + other->name + "\n");
        else
            found->second.members.insert(port);
    }

    Device &device_;
};

} // namespace

std::unique_ptr<Family> makeLags(Device &device)
{
    return std::make_unique<LagFamily>(device);
}

} // namespace switchsim
