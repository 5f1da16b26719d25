#include "backend/proto/vlan.pb-c.h"
#include "backend/vlan_mask.h"
#include "switchsim/family.h"

#include <cstring>

namespace switchsim {
namespace {

constexpr std::int32_t kAdd = 1;
constexpr std::int32_t kRemove = 3;
constexpr std::int32_t kSingle = 1;
constexpr const char *kDefaultName = "DEFAULT-VLAN";

std::string orEmpty(const char *text)
{
    return text == nullptr ? "" : text;
}

// A port's name may have blanks behind it.
std::string interfaceIn(const char *text)
{
    const std::string name = orEmpty(text);
    return name.substr(0, name.find_last_not_of(' ') + 1);
}

std::vector<std::uint32_t> vlansOf(const VlanType *type)
{
    if (type == nullptr)
        return {};
    if (type->kind == kSingle)
        return {type->id};
    std::vector<std::uint32_t> ids;
    const MultiVlan *many = type->multi_vlan;
    if (many == nullptr || many->vlan_mask.len != VLAN_MASK_BYTES)
        return ids;
    for (std::uint32_t id = 0; id < VLAN_MASK_BYTES * 8; ++id) {
        std::uint32_t word = 0;
        std::memcpy(&word, many->vlan_mask.data + id / 32 * sizeof word, sizeof word);
        if ((word >> id % 32 & 1U) != 0)
            ids.push_back(id);
    }
    return ids;
}

class VlanFamily : public Family {
public:
    explicit VlanFamily(Device &device)
        : device_(device)
    {
        Vlan &first = device_.vlans.all[Vlans::kDefault];
        first.name = kDefaultName;
        for (const Port &port : device_.ports.all())
            first.untagged.insert(port.name);
    }

    std::string_view word() const override { return "vlan"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<VlanConfigReq, CommonResp>(
            "ui_vlan_config_apply", vlan_config_req__descriptor, common_resp__descriptor,
            [this](const auto &request, auto &, auto &answering) { apply(request, answering); });
    }

    Json show() const override
    {
        Json all = Json::object();
        for (const auto &[id, vlan] : device_.vlans.all) {
            Json &shown = all[std::to_string(id)] = Json::object();
            if (vlan.name)
                shown["name"] = *vlan.name;
            shown["tagged"] = vlan.tagged;
            shown["untagged"] = vlan.untagged;
            if (vlan.isManagement)
                shown["management"] = true;
        }
        if (!device_.vlans.voice.empty())
            all["voice"] = device_.vlans.voice;
        return all;
    }

private:
    void apply(const VlanConfigReq &request, Answering &answering)
    {
        const auto ids = vlansOf(request.vlan_type);
        if (request.operation == kAdd)
            create(request, ids, answering);
        else if (request.operation == kRemove)
            remove(ids);
        else if (request.management_vlan_op != 0)
            manage(request.management_vlan_op == kAdd, ids, answering);
        else if (request.voice_vlan_op != 0)
            setVoice(request, ids, answering);
        else
            changeMembers(request, ids, answering);
    }

    void create(const VlanConfigReq &request, const std::vector<std::uint32_t> &ids, Answering &answering)
    {
        for (const auto id : ids)
            if (id < 1 || id > Vlans::kHighest)
                return answering.refuse("Error: the number of a VLAN must be in the range 1..4094\n");
        if (request.name_op != 0 && ids.size() != 1)
            return answering.refuse("Error: a name is for one VLAN\n");
        for (const auto id : ids) {
            Vlan &vlan = device_.vlans.all[id];
            if (request.default_vlan != 0)
                vlan.name = kDefaultName;
            else if (request.name_op == kAdd && request.name != nullptr && *request.name != '\0')
                vlan.name = request.name;
            else if (request.name_op != 0)
                vlan.name.reset();
        }
    }

    // The default VLAN cannot go: it gets back its name.
    void remove(const std::vector<std::uint32_t> &ids)
    {
        for (const auto id : ids) {
            const auto found = device_.vlans.all.find(id);
            if (found == device_.vlans.all.end())
                continue;
            if (id == Vlans::kDefault) {
                found->second.name = kDefaultName;
                continue;
            }
            device_.vlans.all[Vlans::kDefault].untagged.merge(found->second.untagged);
            device_.vlans.all.erase(found);
            std::erase_if(device_.vlans.voice, [id = id](const auto &port) { return port.second == id; });
        }
    }

    // True if all are there; else the request is refused.
    bool haveAll(const std::vector<std::uint32_t> &ids, Answering &answering) const
    {
        for (const auto id : ids)
            if (!device_.vlans.has(id)) {
                answering.refuse(unknownVlan(id));
                return false;
            }
        return true;
    }

    void manage(bool isManagement, const std::vector<std::uint32_t> &ids, Answering &answering)
    {
        if (!isManagement || haveAll(ids, answering))
            for (const auto id : ids)
                if (device_.vlans.has(id))
                    device_.vlans.all[id].isManagement = isManagement;
    }

    void setVoice(const VlanConfigReq &request, const std::vector<std::uint32_t> &ids, Answering &answering)
    {
        const std::string port = interfaceIn(request.interface_ports);
        if (request.voice_vlan_op == kRemove) {
            device_.vlans.voice.erase(port);
            return;
        }
        if (device_.ports.find(port) == nullptr)
            return answering.refuse(unknownPort(port));
        if (haveAll(ids, answering) && !ids.empty())
            device_.vlans.voice[port] = ids.front();
    }

    struct Membership {
        std::int32_t operation;
        const char *ports;
        bool tagged, untagged;
    };

    void changeMembers(const VlanConfigReq &request, const std::vector<std::uint32_t> &ids,
                       Answering &answering)
    {
        const Membership lists[] = {
            {request.tagged_op, request.tagged_ports, true, false},
            {request.untagged_op, request.untagged_ports, false, true},
            {request.interface_ports_op, request.interface_ports, true, true},
        };
        for (const Membership &list : lists) {
            const std::string name = interfaceIn(list.ports);
            if (list.operation == 0)
                continue;
            if (list.operation == kAdd && device_.findInterface(name) == nullptr)
                return answering.refuse(unknownInterface(name));
            if (list.operation == kAdd && !haveAll(ids, answering))
                return;
            for (const auto id : ids)
                list.operation == kAdd ? join(id, name, list.tagged) : leave(id, name, list);
        }
    }

    // A port is an untagged member of one VLAN.
    void join(std::uint32_t id, const std::string &name, bool tagged)
    {
        if (!tagged)
            for (auto &[other, vlan] : device_.vlans.all)
                vlan.untagged.erase(name);
        Vlan &vlan = device_.vlans.all[id];
        (tagged ? vlan.tagged : vlan.untagged).insert(name);
    }

    // A port that leaves its untagged VLAN is back in the default one; a LAG is in none.
    void leave(std::uint32_t id, const std::string &name, const Membership &list)
    {
        const auto found = device_.vlans.all.find(id);
        if (found == device_.vlans.all.end())
            return;
        if (list.tagged)
            found->second.tagged.erase(name);
        if (list.untagged && found->second.untagged.erase(name) != 0 && device_.ports.find(name) != nullptr)
            device_.vlans.all[Vlans::kDefault].untagged.insert(name);
    }

    Device &device_;
};

} // namespace

std::unique_ptr<Family> makeVlans(Device &device)
{
    return std::make_unique<VlanFamily>(device);
}

} // namespace switchsim
