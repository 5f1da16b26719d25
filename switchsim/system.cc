#include "backend/system.h"
#include "backend/proto/system.pb-c.h"
#include "switchsim/family.h"

#include <arpa/inet.h>

#include <algorithm>
#include <map>

namespace switchsim {
namespace {

// Operations of host name and NTP requests.
constexpr std::int32_t kSet = 1;
constexpr std::int32_t kRemove = 3;
// What is wrong with a name server, in app_err.
constexpr std::int32_t kIsMissing = 2;
constexpr std::int32_t kIsThere = 3;
// Kinds of an NTP request, and of the address in it.
constexpr std::int32_t kGlobalSwitch = 1;
constexpr std::int32_t kSettings = 2;
constexpr std::int32_t kHostName = 512;

constexpr std::size_t kMostNameServers = 4;
constexpr std::size_t kMostAssociations = 16;

std::string textOf(const char *text)
{
    return text == nullptr ? "" : text;
}

bool isAddress(const std::string &text)
{
    unsigned char bytes[16];
    return inet_pton(AF_INET, text.c_str(), bytes) == 1 || inet_pton(AF_INET6, text.c_str(), bytes) == 1;
}

class NameServers {
public:
    void config(const DnsServerAddrConfig &request, Answering &answering)
    {
        switch (request.opcode) {
        case DNS_SERVER_ADD:
            return add(addressesOf(request), answering);
        case DNS_SERVER_DELETE:
            return remove(addressesOf(request), answering);
        case DNS_SERVER_REPLACE:
            return replace(addressesOf(request), answering);
        case DNS_SERVER_CLEAR:
            return servers_.clear();
        }
        answering.refuse("Error: unknown operation on the name servers\n");
    }

    Json show() const { return servers_; }

private:
    using Addresses = std::vector<std::string>;

    static Addresses addressesOf(const DnsServerAddrConfig &request)
    {
        Addresses addresses;
        for (std::size_t i = 0; i < request.n_servers; i++)
            addresses.push_back(textOf(request.servers[i]->address));
        return addresses;
    }

    static bool areGood(const Addresses &addresses, Answering &answering)
    {
        const auto bad = std::find_if_not(addresses.begin(), addresses.end(), isAddress);
        if (bad != addresses.end())
            answering.refuse("Error: " + *bad + " is no address of a name server\n");
        return bad == addresses.end();
    }

    void add(const Addresses &addresses, Answering &answering)
    {
        if (!areGood(addresses, answering))
            return;
        for (const std::string &address : addresses) {
            if (std::find(servers_.begin(), servers_.end(), address) != servers_.end())
                answering.refuse("Error: name server " + address + " is configured already\n", 1, kIsThere);
            else if (servers_.size() >= kMostNameServers)
                answering.refuse("Error: there is room for four name servers\n");
            else
                servers_.push_back(address);
        }
    }

    void remove(const Addresses &addresses, Answering &answering)
    {
        for (const std::string &address : addresses) {
            if (std::erase(servers_, address) == 0)
                answering.refuse("Error: name server " + address + " is not configured\n", 1, kIsMissing);
        }
    }

    void replace(const Addresses &addresses, Answering &answering)
    {
        if (addresses.size() > kMostNameServers)
            return answering.refuse("Error: there is room for four name servers\n");
        if (areGood(addresses, answering))
            servers_ = addresses;
    }

    Addresses servers_; // in the order in which they are asked
};

class Ntp {
public:
    void config(const NtpGlobalConfig &request, Answering &answering)
    {
        if (request.config_kind == kGlobalSwitch)
            isGlobal_ = request.global_enable != 0;
        else if (request.config_kind == kSettings)
            settings(request, answering);
        else
            answering.refuse("Error: unknown kind of NTP request\n");
    }

    Json show() const
    {
        Json associations = Json::object();
        for (const auto &[peer, type] : associations_)
            associations[peer] = type;
        return {{"enabled", isEnabled_}, {"global", isGlobal_}, {"associations", associations}};
    }

private:
    void settings(const NtpGlobalConfig &request, Answering &answering)
    {
        if (request.has_enable != 0)
            isEnabled_ = request.enable != 0;
        if (request.has_server == 0)
            return;
        const std::string peer = textOf(request.addr_type == kHostName ? request.host_name : request.address);
        if (request.server_op == kRemove)
            associations_.erase(peer);
        else if (request.addr_type != kHostName && !isAddress(peer))
            answering.refuse("Error: " + peer + " is no address of an NTP server\n");
        else if (associations_.count(peer) != 0)
            answering.refuse("Error: The server/peer association entry is already present\n");
        else if (associations_.size() >= kMostAssociations)
            answering.refuse("Error: there is no room for another NTP server\n");
        else
            associations_[peer] = request.addr_type;
    }

    bool isEnabled_ = false;
    bool isGlobal_ = false;
    std::map<std::string, std::int32_t> associations_; // kind of the address by server
};

class System : public Family {
public:
    explicit System(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "system"; }

    void registerCalls(CallTable &calls) override
    {
        calls
            .on<SystemInfo, SystemInfo>(
                "ui_fe_hostname_set", system_info__descriptor, system_info__descriptor,
                [this](const auto &request, auto &, auto &answering) { hostName(request, answering); })
            .withArgument("flag");
        calls
            .on<DnsServerAddrConfig, DnsServerAddrAnswer>(
                "ui_dns_server_addr_common_send", dns_server_addr_config__descriptor,
                dns_server_addr_answer__descriptor,
                [this](const auto &request, auto &, auto &answering) { names_.config(request, answering); })
            .withArgument("flag");
        calls
            .on<NtpGlobalConfig, NtpGlobalConfig>(
                "ui_fe_ntp_global_config", ntp_global_config__descriptor, ntp_global_config__descriptor,
                [this](const auto &request, auto &, auto &answering) { ntp_.config(request, answering); })
            .withArgument("flag");
    }

    std::vector<std::string> configLines() const override { return {"hostname " + device_.hostName.name}; }

    Json show() const override
    {
        return {{"hostname", {{"name", device_.hostName.name}, {"source", device_.hostName.source}}},
                {"name-servers", names_.show()},
                {"ntp", ntp_.show()}};
    }

private:
    void hostName(const SystemInfo &request, Answering &answering)
    {
        const std::string name = textOf(request.hostname);
        if (request.op == kRemove)
            device_.hostName = {};
        else if (request.op != kSet || name.size() >= SYSTEM_HOSTNAME_SIZE)
            answering.refuse("Error: this cannot be done with the host name\n");
        else
            device_.hostName = {name, request.hostname_source};
    }

    Device &device_;
    NameServers names_;
    Ntp ntp_;
};

} // namespace

std::unique_ptr<Family> makeSystem(Device &device)
{
    return std::make_unique<System>(device);
}

} // namespace switchsim
