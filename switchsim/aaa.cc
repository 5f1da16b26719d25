#include "backend/proto/aaa.pb-c.h"
#include "switchsim/family.h"

#include <arpa/inet.h>

#include <map>

namespace switchsim {
namespace {

constexpr std::int32_t kDelete = 3; // operation
constexpr std::size_t kMostRadiusServers = 8;

struct MethodList {
    std::int32_t opcode;
    const char *name;
    char *AaaMethodRecord::*methods;
};
constexpr MethodList kMethodLists[] = {
    {1, "login", &AaaMethodRecord::login_methods},
    {6, "accounting-commands", &AaaMethodRecord::accounting_methods},
    {7, "accounting-exec", &AaaMethodRecord::accounting_methods},
    {9, "authorization-commands", &AaaMethodRecord::authorization_methods},
    {10, "authorization-exec", &AaaMethodRecord::authorization_methods},
};

struct Setting {
    const char *name;
    std::int32_t AaaConfigReq::*field;
};
constexpr Setting kSettings[] = {
    {"dot1x-radius", &AaaConfigReq::dot1x_radius},
    {"dot1x-none", &AaaConfigReq::dot1x_none},
    {"coa", &AaaConfigReq::coa_enable},
    {"coa-ignore-dm-request", &AaaConfigReq::coa_ignore_dm_request},
    {"coa-ignore-modify-acl", &AaaConfigReq::coa_ignore_modify_acl},
    {"coa-ignore-flip-port", &AaaConfigReq::coa_ignore_flip_port},
    {"coa-ignore-disable-port", &AaaConfigReq::coa_ignore_disable_port},
    {"coa-ignore-reauth-host", &AaaConfigReq::coa_ignore_reauth_host},
};

std::string textOf(const char *text)
{
    return text == nullptr ? "" : text;
}

std::string addressOf(const RadiusServer &server)
{
    char text[INET6_ADDRSTRLEN] = "";
    if (server.has_ipv6_address != 0 && server.ipv6_address.len == 16)
        inet_ntop(AF_INET6, server.ipv6_address.data, text, sizeof text);
    else if (server.ipv4_address != 0) {
        const in_addr address{htonl(server.ipv4_address)};
        inet_ntop(AF_INET, &address, text, sizeof text);
    }
    return text;
}

// Method lists, settings and RADIUS servers. Local users and TACACS+ servers are plug-ins.
class Aaa : public Family {
public:
    std::string_view word() const override { return "aaa"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<AaaConfigReq, AaaConfigResp>(
            "ui_aaa_config_apply", aaa_config_req__descriptor, aaa_config_resp__descriptor,
            [this](const auto &request, auto &, auto &) { config(request); });
        calls.on<AaaMethodRecord, AaaMethodResponse>(
            "ui_fe_aaa_set", aaa_method_record__descriptor, aaa_method_response__descriptor,
            [this](const auto &request, auto &, auto &answering) { methods(request, answering); });
        calls.on<RadiusConfigReq, RadiusConfigResp>(
            "ui_radius_config_apply", radius_config_req__descriptor, radius_config_resp__descriptor,
            [this](const auto &request, auto &, auto &answering) { radius(request, answering); });
    }

    Json show() const override
    {
        Json settings = Json::object();
        for (const auto &[name, value] : settings_)
            settings[name] = value;
        return {{"settings", settings}, {"methods", lists_}, {"radius-servers", servers_}};
    }

private:
    void config(const AaaConfigReq &request)
    {
        for (const Setting &setting : kSettings) {
            if (request.*setting.field != 0)
                settings_[setting.name] = request.operation != kDelete;
        }
    }

    void methods(const AaaMethodRecord &request, Answering &answering)
    {
        for (const MethodList &list : kMethodLists) {
            if (list.opcode != request.opcode)
                continue;
            const std::string methods = textOf(request.*list.methods);
            if (request.delete_flag != 0)
                lists_.erase(list.name);
            else if (methods.empty())
                answering.refuse("Error: a method list needs a method\n");
            else
                lists_[list.name] = methods;
            return;
        }
        answering.refuse("Error: unknown method list\n");
    }

    void radius(const RadiusConfigReq &request, Answering &answering)
    {
        for (std::size_t i = 0; i < request.n_servers; i++) {
            const RadiusServer &server = *request.servers[i];
            const std::string address = addressOf(server);
            if (address.empty())
                answering.refuse("Error: a RADIUS server needs an address\n");
            else if (request.operation == kDelete)
                servers_.erase(address);
            else if (servers_.size() >= kMostRadiusServers && !servers_.contains(address))
                answering.refuse("Error: there is no room for another RADIUS server\n");
            else
                servers_[address] = {
                    {"name", textOf(server.server_name)}, {"auth-port", server.auth_port},
                    {"acct-port", server.acct_port},      {"timeout", server.timeout},
                    {"priority", server.priority},        {"has-secret", server.secret_key != nullptr}};
        }
    }

    std::map<std::string, bool> settings_;
    Json lists_ = Json::object();
    Json servers_ = Json::object(); // by address
};

} // namespace

std::unique_ptr<Family> makeAaa(Device &)
{
    return std::make_unique<Aaa>();
}

} // namespace switchsim
