#include "backend/proto/security.pb-c.h"
#include "backend/security.h"
#include "switchsim/family.h"

#include <array>
#include <map>

namespace switchsim {
namespace {

constexpr std::int32_t kAdd = 1;
constexpr std::int32_t kRemove = 3;
constexpr std::int32_t kRefused = 2; // app_err of the security daemon
constexpr std::array<const char *, 3> kClasses = {"broadcast", "multicast", "unknown-unicast"};

struct Limit {
    std::uint32_t limit;
    bool isKbps;
};

class StormControl : public Family {
public:
    explicit StormControl(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "storm-control"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<BumRateLimitMsg, BumRateLimitResp>(
            "sec_protobuf_fe_config_handler", bum_rate_limit_msg__descriptor, bum_rate_limit_resp__descriptor,
            [this](const auto &request, auto &, auto &answering) { setLimit(request, answering); },
            SEC_MSG_BUM_RATE_LIMIT);
    }

    Json show() const override
    {
        Json all = Json::object();
        for (const auto &[key, limit] : limits_)
            all[key.first][kClasses[key.second]] = {{"limit", limit.limit}, {"kbps", limit.isKbps}};
        return all;
    }

private:
    void setLimit(const BumRateLimitMsg &request, Answering &answering)
    {
        const std::string name = request.port_name == nullptr ? "" : request.port_name;
        if (device_.ports.find(name) == nullptr)
            return answering.refuse(unknownPort(name), 1, kRefused);
        const auto trafficClass = static_cast<std::size_t>(request.traffic_class);
        if (trafficClass >= kClasses.size())
            return answering.refuse("Error: unknown traffic class\n", 1, kRefused);
        const std::pair key(name, trafficClass);
        // A limit of zero is no limit.
        if (request.op == kRemove || (request.op == kAdd && request.limit == 0))
            limits_.erase(key);
        else if (request.op == kAdd)
            limits_[key] = {request.limit, request.kbps != 0};
        else
            answering.refuse("Error: unknown rate limit operation\n", 1, kRefused);
    }

    Device &device_;
    std::map<std::pair<std::string, std::size_t>, Limit> limits_; // by port and class
};

} // namespace

std::unique_ptr<Family> makeStormControl(Device &device)
{
    return std::make_unique<StormControl>(device);
}

} // namespace switchsim
