#include "backend/ip_route.h"
#include "switchsim/family.h"

#include <algorithm>
#include <array>

namespace switchsim {
namespace {

constexpr std::uint32_t kPageSize = 100;
constexpr std::uint32_t kFirstNetwork = 0x0a000000; // 10.0.0.0/24, 10.0.1.0/24 and so on
constexpr std::uint32_t kNetworkSize = 256;
constexpr std::uint32_t kPrefixLength = 24;
constexpr std::uint32_t kFirstGateway = 0xc0000201; // 192.0.2.1
constexpr std::uint32_t kDay = 86'400;
constexpr std::uint32_t kOldest = 200; // days

// What a route is by the remainder of its number: every fourth is like it, but older.
struct Model {
    std::uint32_t type, subType;
    std::int32_t distance;
    std::uint32_t metric;
    std::uint32_t uptime; // seconds
    std::uint32_t paths;
};
constexpr std::array<Model, 4> kModels = {{
    {1, 0, 0, 0, 75, 1},              // connected
    {2, 0, 1, 1, 2 * 3600 + 180, 1},  // static
    {4, 1, 110, 20, 3 * kDay, 2},     // OSPF, over two neighbours
    {6, 0, 20, 5, 99 * kDay + 60, 2}, // BGP, over two neighbours
}};

// A table of so many routes, computed as it is asked for.
class Routes : public Family {
public:
    explicit Routes(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "routes"; }

    void registerCalls(CallTable &calls) override
    {
        calls
            .on<IpRouteGetReq, IpRouteGetResp>("ui_get_ip_route", ip_route_get_req__descriptor,
                                               ip_route_get_resp__descriptor,
                                               [this](const auto &request, auto &answer, auto &answering) {
                                                   page(request, answer, answering);
                                               })
            .withArgument("flag");
    }

    Json show() const override { return {{"total", total()}, {"page-size", kPageSize}}; }

private:
    std::uint32_t total() const { return static_cast<std::uint32_t>(device_.values.get("routes")); }

    // The number of the first route behind an address.
    static std::uint32_t behind(std::uint32_t address)
    {
        return address < kFirstNetwork ? 0 : (address - kFirstNetwork) / kNetworkSize + 1;
    }

    void page(const IpRouteGetReq &request, IpRouteGetResp &answer, Answering &answering) const
    {
        if (request.request_kind != IP_ROUTE_REQUEST_KIND)
            return answering.refuse("Error: unknown kind of route request\n");
        const std::uint32_t first =
            request.first_page != 0 ? 0 : std::min(behind(request.next_address), total());
        const std::uint32_t count = std::min(total() - first, kPageSize);
        std::vector<IpRouteEntry *> entries;
        for (std::uint32_t i = first; i < first + count; i++)
            entries.push_back(route(i, answering));
        answer.has_total_routes = 1;
        answer.total_routes = total();
        answer.n_entries = entries.size();
        answer.entries = answering.makeList(entries);
        answer.has_more = 1;
        answer.more = first + count < total() ? IP_ROUTE_MORE : 0;
    }

    static IpRouteEntry *route(std::uint32_t number, Answering &answering)
    {
        const Model &model = kModels[number % kModels.size()];
        std::vector<IpRoutePath *> paths;
        for (std::uint32_t i = 0; i < model.paths; i++)
            paths.push_back(path(model, number, i, answering));
        auto *entry = answering.make(ip_route_entry__init);
        entry->address = kFirstNetwork + number * kNetworkSize;
        entry->prefix_length = kPrefixLength;
        entry->n_paths = paths.size();
        entry->paths = answering.makeList(paths);
        return entry;
    }

    static IpRoutePath *path(const Model &model, std::uint32_t number, std::uint32_t neighbour,
                             Answering &answering)
    {
        auto *path = answering.make(ip_route_path__init);
        path->has_gateway = path->has_metric = path->has_distance = 1;
        path->has_type = path->has_sub_type = path->has_uptime = 1;
        const bool isDirect = model.distance == 0;
        path->gateway = isDirect ? 0 : kFirstGateway + neighbour;
        path->port = answering.keep((isDirect ? "ve " : "e 1/1/") + std::to_string(neighbour + 1));
        path->metric = model.metric;
        path->distance = model.distance;
        path->type = model.type;
        path->sub_type = model.subType;
        path->uptime = model.uptime + number / static_cast<std::uint32_t>(kModels.size()) % kOldest * kDay;
        return path;
    }

    Device &device_;
};

} // namespace

std::unique_ptr<Family> makeRoutes(Device &device)
{
    return std::make_unique<Routes>(device);
}

} // namespace switchsim
