#include "backend/proto/security.pb-c.h"
#include "backend/security.h"
#include "switchsim/family.h"

#include <array>
#include <map>
#include <set>

namespace switchsim {
namespace {

constexpr std::uint32_t kAdd = 1;
constexpr std::uint32_t kRemove = 3;
constexpr std::int32_t kRefused = 2; // app_err of the security daemon
constexpr std::array<const char *, 4> kTypes = {nullptr, "ipv4", "ipv6", "l2"};
constexpr std::array<const char *, 3> kDirections = {nullptr, "ingress", "egress"};

std::string orEmpty(const char *text)
{
    return text == nullptr ? "" : text;
}

struct AccessList {
    std::string kind; // of an IPv4 list
    std::map<std::uint32_t, Json> rules;
    std::set<std::pair<std::string, std::uint32_t>> bound; // interface or VLAN, and direction
};

class AccessLists : public Family {
public:
    explicit AccessLists(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "access-lists"; }

    void registerCalls(CallTable &calls) override
    {
        on<AclDefinitionRequest>(
            calls, SEC_MSG_ACL_DEFINITION, acl_definition_request__descriptor,
            [this](const auto &request, auto &answering) { define(request, answering); });
        on<Ipv4AclFilter>(calls, SEC_MSG_ACL_IPV4_FILTER, ipv4_acl_filter__descriptor,
                          [this](const auto &request, auto &answering) { filter(request, 1, answering); });
        on<Ipv6AclFilter>(calls, SEC_MSG_ACL_IPV6_FILTER, ipv6_acl_filter__descriptor,
                          [this](const auto &request, auto &answering) { filter(request, 2, answering); });
        on<MacAclFilter>(calls, SEC_MSG_ACL_MAC_FILTER, mac_acl_filter__descriptor,
                         [this](const auto &request, auto &answering) { filter(request, 3, answering); });
        on<AclInterfBinding>(calls, SEC_MSG_ACL_BINDING, acl_interf_binding__descriptor,
                             [this](const auto &request, auto &answering) { bind(request, answering); });
    }

    Json show() const override
    {
        Json all = Json::object();
        for (const auto &[key, list] : lists_) {
            Json &shown = all[kTypes[key.first]][key.second] = Json::object();
            if (!list.kind.empty())
                shown["kind"] = list.kind;
            shown["rules"] = Json::object();
            for (const auto &[sequence, rule] : list.rules)
                shown["rules"][std::to_string(sequence)] = rule;
            shown["bound"] = Json::array();
            for (const auto &[where, direction] : list.bound)
                shown["bound"].push_back({{"to", where}, {"direction", kDirections[direction]}});
        }
        return all;
    }

private:
    template <class Request, class Handle>
    static void on(CallTable &calls, std::uint32_t code, const ProtobufCMessageDescriptor &descriptor,
                   Handle handle)
    {
        calls.on<Request, CommonResp>(
            "sec_protobuf_fe_config_handler", descriptor, common_resp__descriptor,
            [handle](const auto &request, auto &, auto &answering) { handle(request, answering); }, code);
    }

    static void refuse(Answering &answering, const std::string &text) { answering.refuse(text, 1, kRefused); }
    static void refuseUnknown(Answering &answering, const std::string &name)
    {
        refuse(answering, "Error: access list " + name + " does not exist\n");
    }

    AccessList *find(std::uint32_t type, const std::string &name)
    {
        const auto found = lists_.find({type, name});
        return found == lists_.end() ? nullptr : &found->second;
    }

    void define(const AclDefinitionRequest &request, Answering &answering)
    {
        const std::string name = orEmpty(request.acl_name);
        AccessList *list = find(request.acl_type, name);
        if (request.acl_type == 0 || request.acl_type >= kTypes.size() || name.empty())
            refuse(answering, "Error: no such kind of access list\n");
        else if (request.operation == kRemove && list != nullptr && !list->bound.empty())
            refuse(answering, "Error: access list " + name + " is in use\n");
        else if (request.operation == kRemove)
            lists_.erase({request.acl_type, name});
        else if (request.operation != kAdd)
            refuse(answering, "Error: unknown access list operation\n");
        else if (list == nullptr)
            lists_[{request.acl_type, name}].kind = request.standard != 0 ? "standard"
                : request.extended != 0                                   ? "extended"
                                                                          : "";
    }

    std::size_t countRules() const
    {
        std::size_t count = 0;
        for (const auto &[key, list] : lists_)
            count += list.rules.size();
        return count;
    }

    static Json ruleOf(const ProtobufCMessage &message, bool isPermitted)
    {
        Json rule = {{"action", isPermitted ? "permit" : "deny"}};
        rule.update(asJson(message));
        for (const char *told : {"operation", "sequence", "acl_name", "permit", "deny"})
            rule.erase(told);
        return rule;
    }

    // A rule that is there already gives way to the one of the same number.
    template <class Filter>
    void filter(const Filter &request, std::uint32_t type, Answering &answering)
    {
        const std::string name = orEmpty(request.acl_name);
        AccessList *list = find(type, name);
        if (request.operation == kRemove) {
            if (list != nullptr)
                list->rules.erase(request.sequence);
        } else if (request.operation != kAdd) {
            refuse(answering, "Error: unknown access list operation\n");
        } else if (list == nullptr) {
            refuseUnknown(answering, name);
        } else if (list->rules.count(request.sequence) == 0 &&
                   countRules() >= static_cast<std::size_t>(device_.values.get("acl-rules"))) {
            refuse(answering, "Error: the table of access list rules is full\n");
        } else {
            list->rules[request.sequence] = ruleOf(request.base, request.permit != 0);
        }
    }

    void bind(const AclInterfBinding &request, Answering &answering)
    {
        const std::string name = orEmpty(request.acl_name), interface = orEmpty(request.interfaces),
                          where = interface.empty() ? "vlan " + std::to_string(request.vlan) : interface;
        AccessList *list = find(request.acl_type, name);
        const std::pair place(where, request.direction);
        if (request.direction == 0 || request.direction >= kDirections.size())
            return refuse(answering, "Error: unknown direction\n");
        if (request.operation == kRemove) {
            if (list == nullptr || list->bound.erase(place) == 0)
                refuse(answering, "This ACL is not applied currently\n");
        } else if (request.operation != kAdd) {
            refuse(answering, "Error: unknown access list operation\n");
        } else if (list == nullptr) {
            refuseUnknown(answering, name);
        } else if (interface.empty() && !device_.vlans.has(request.vlan)) {
            refuse(answering, unknownVlan(request.vlan));
        } else if (!interface.empty() && device_.findInterface(interface) == nullptr) {
            refuse(answering, unknownInterface(interface));
        } else {
            list->bound.insert(place);
        }
    }

    Device &device_;
    std::map<std::pair<std::uint32_t, std::string>, AccessList> lists_; // by type and name
};

} // namespace

std::unique_ptr<Family> makeAccessLists(Device &device)
{
    return std::make_unique<AccessLists>(device);
}

} // namespace switchsim
