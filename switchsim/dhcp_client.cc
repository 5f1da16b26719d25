#include "backend/proto/dhcp_client.pb-c.h"
#include "switchsim/family.h"

namespace switchsim {
namespace {

constexpr std::int32_t kPortSwitch = 5; // of a record's kind
constexpr std::int32_t kAdd = 1;

class DhcpClient : public Family {
public:
    explicit DhcpClient(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "dhcp-client"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<DhclientSetIntfNoEnableRequest, DhclientResponse>(
            "ui_fe_dhclientv4_set_intf_no_enable", dhclient_set_intf_no_enable_request__descriptor,
            dhclient_response__descriptor, [this](const auto &request, auto &, auto &answering) {
                forbid(nameIn(request.interface), request.no_enable != 0, answering);
            });
        calls
            .on<DhclientPortId, DhclientPortId>(
                "ui_fe_dhclientv4_send_be_request", dhclient_port_id__descriptor,
                dhclient_port_id__descriptor,
                [this](const auto &request, auto &, auto &answering) { stop(request, answering); })
            .withArgument("flag");
    }

    // `disabled` is the setting, `stopped` what the client's own process was told.
    Json show() const override { return {{"disabled", forbidden_}, {"stopped", stopped_}}; }

private:
    // A port's name may have blanks behind it.
    static std::string nameIn(const char *text)
    {
        const std::string name = text == nullptr ? "" : text;
        return name.substr(0, name.find_last_not_of(' ') + 1);
    }

    void forbid(const std::string &port, bool isForbidden, Answering &answering)
    {
        if (device_.ports.find(port) == nullptr)
            return answering.refuse(unknownPort(port));
        if (isForbidden == (forbidden_.count(port) != 0))
            return answering.refuse(std::string("DHCP Client already ") +
                                    (isForbidden ? "disabled" : "enabled") + " on interface " + port);
        if (isForbidden)
            forbidden_.insert(port);
        else
            forbidden_.erase(port);
    }

    void stop(const DhclientPortId &request, Answering &answering)
    {
        const std::string port = nameIn(request.port);
        if (request.kind != kPortSwitch)
            return answering.refuse("Error: unknown DHCP client request\n");
        if (request.operation == kAdd)
            stopped_.insert(port);
        else
            stopped_.erase(port);
    }

    Device &device_;
    std::set<std::string> forbidden_, stopped_;
};

} // namespace

std::unique_ptr<Family> makeDhcpClient(Device &device)
{
    return std::make_unique<DhcpClient>(device);
}

} // namespace switchsim
