#include "backend/proto/qos.pb-c.h"
#include "switchsim/family.h"

#include <map>

namespace switchsim {
namespace {

constexpr std::int32_t kSetJumbo = 1;
constexpr std::int32_t kReadJumbo = 10;
constexpr std::int32_t kEnableMode = 1;
constexpr std::int32_t kDisableMode = 3;
constexpr std::int32_t kReadMode = 5;
constexpr std::int32_t kTrustDscp = 2;

class Jumbo : public Family {
public:
    std::string_view word() const override { return "jumbo"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<QosJumboRequest, QosJumboAnswer>("ui_fe_qos_jumbo", qos_jumbo_request__descriptor,
                                                  qos_jumbo_answer__descriptor,
                                                  [this](const auto &request, auto &answer, auto &answering) {
                                                      jumbo(request, answer, answering);
                                                  });
    }

    Json show() const override { return {{"enabled", isEnabled_}}; }

private:
    void jumbo(const QosJumboRequest &request, QosJumboAnswer &answer, Answering &answering)
    {
        if (request.opcode == kSetJumbo)
            isEnabled_ = request.value != 0;
        else if (request.opcode != kReadJumbo)
            return answering.refuse("Error: unknown jumbo operation\n");
        answer.has_jumbo_enabled = 1;
        answer.jumbo_enabled = isEnabled_ ? 1 : 0;
    }

    bool isEnabled_ = false;
};

class TrustDscp : public Family {
public:
    explicit TrustDscp(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "trust-dscp"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<QosPortRequest, QosPortAnswer>(
            "ui_fe_qos_port_oper", qos_port_request__descriptor, qos_port_answer__descriptor,
            [this](const auto &request, auto &answer, auto &answering) { port(request, answer, answering); });
    }

    Json show() const override
    {
        Json trusted = Json::array();
        for (const auto &[name, mode] : modes_) {
            if (mode == kTrustDscp)
                trusted.push_back(name);
        }
        return trusted;
    }

private:
    void port(const QosPortRequest &request, QosPortAnswer &answer, Answering &answering)
    {
        const std::string name = nameOf(request);
        if (device_.ports.find(name) == nullptr)
            return answering.refuse(unknownPort(name));
        if (request.opcode == kEnableMode)
            modes_[name] = request.qos_mode;
        else if (request.opcode == kDisableMode)
            modes_.erase(name);
        else if (request.opcode != kReadMode)
            return answering.refuse("Error: unknown QoS operation\n");
        const auto mode = modes_.find(name);
        answer.has_qos_mode = 1;
        answer.qos_mode = mode == modes_.end() ? 0 : mode->second;
    }

    static std::string nameOf(const QosPortRequest &request)
    {
        if (request.port == nullptr || request.port->has_name == 0)
            return {};
        const auto &name = request.port->name;
        return {reinterpret_cast<const char *>(name.data), name.len};
    }

    Device &device_;
    std::map<std::string, std::int32_t> modes_; // by port; absent: 0
};

} // namespace

std::unique_ptr<Family> makeJumbo(Device &)
{
    return std::make_unique<Jumbo>();
}

std::unique_ptr<Family> makeTrustDscp(Device &device)
{
    return std::make_unique<TrustDscp>(device);
}

} // namespace switchsim
