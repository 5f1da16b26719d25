#include "network_instance/u_lyn-openconfig-iproute.h"

#include "backend/ip_route.h"
#include "frame/owned.h"
#include "frame/stub.h"
#include "network_instance/route_report.h"

#include <limits>

using namespace frame;

USER_UNIT(lyn_openconfig_iproute);

namespace {

constexpr const char *kModule = "lyn-openconfig-iproute";
constexpr std::int32_t kSendFlag = 1;
constexpr std::int32_t kRefused = 1; // an answer's ui_err
constexpr Status kBadInput = 269, kUnservedInput = 263;
constexpr std::size_t kMostEntries = 4'000'000; // more than a switch holds: a daemon that goes in circles

using Page = Owned<IpRouteGetResp, ip_route_get_resp__free_unpacked>;

// Of the report's buffer, between pages.
std::size_t reportSize = 0, reportUsed = 0;

// The report of one invocation.
class RouteTable {
public:
    RouteTable(Session *scb, Request *msg)
        : scb_(scb)
        , msg_(msg)
    {
        ip_route_get_req__init(&request_);
        request_.vrf_name = const_cast<char *>(protobuf_c_empty_string); // records have no const texts
        request_.request_kind = IP_ROUTE_REQUEST_KIND;
        request_.all_routes = 1;
        request_.first_page = 1;
    }
    RouteTable(const RouteTable &) = delete;
    RouteTable &operator=(const RouteTable &) = delete;
    ~RouteTable()
    {
        sys_free_memory(text_);
        reportSize = reportUsed = 0;
    }

    // Collects all pages. The text is what came before a failure.
    Status read();
    const char *text() const { return text_; } // null when there is no page

private:
    Status check(const Page &page);
    Status add(const IpRouteGetResp &page);
    bool leadsOn(const IpRouteGetResp &page) const;
    void goOnBehind(const IpRouteGetResp &page);

    Session *scb_;
    Request *msg_;
    IpRouteGetReq request_;
    std::size_t entries_ = 0; // so far
    char *text_ = nullptr;
    bool isWhole_ = false;
};

Status RouteTable::check(const Page &page)
{
    if (!page) {
        if (logsErrors())
            log_error("\nResponse timedout\n");
        return kInternal;
    }
    const CommonResp *common = page->common;
    if (common && common->ui_err == kRefused && common->reply_buf && *common->reply_buf)
        return refuseRequest(scb_, msg_, kFailed, common->reply_buf);
    return kOk;
}

char *newReport(std::uint32_t routes)
{
    const std::uint64_t size = std::uint64_t{routes} * route::kLineBytes + route::kHeadBytes;
    if (size > std::numeric_limits<std::size_t>::max())
        return nullptr;
    auto *buffer = static_cast<char *>(sys_allocate_memory(static_cast<std::size_t>(size)));
    if (buffer) {
        *buffer = '\0';
        reportSize = static_cast<std::size_t>(size);
        reportUsed = 0;
    }
    return buffer;
}

Status RouteTable::add(const IpRouteGetResp &page)
{
    const int isFirst = request_.first_page;
    if (isFirst && !(text_ = newReport(page.total_routes))) {
        if (logsDebug())
            log_debug("Memory allocation Failed.\n");
        return kInternal;
    }
    const bool isWritten =
        save_resp_to_result_buf(isFirst, entries_, &page, &text_, &reportUsed, &reportSize) != 0;
    isWhole_ = !isWritten || page.more != IP_ROUTE_MORE || !leadsOn(page);
    return kOk;
}

// A page that ends where the one before did would be asked for again and again.
bool RouteTable::leadsOn(const IpRouteGetResp &page) const
{
    if (page.n_entries == 0 || entries_ > kMostEntries)
        return false;
    const IpRouteEntry &last = *page.entries[page.n_entries - 1];
    return request_.first_page || last.address != request_.next_address ||
        last.prefix_length != request_.next_prefix_length;
}

void RouteTable::goOnBehind(const IpRouteGetResp &page)
{
    const IpRouteEntry &last = *page.entries[page.n_entries - 1];
    request_.has_next_address = request_.has_next_prefix_length = 1;
    request_.next_address = last.address;
    request_.next_prefix_length = last.prefix_length;
    request_.first_page = 0;
    entries_ += page.n_entries;
}

Status RouteTable::read()
{
    for (;;) {
        Page page;
        ui_get_ip_route(&request_, page.slot(), kSendFlag);
        if (const Status status = check(page))
            return status;
        if (const Status status = add(*page))
            return status;
        if (isWhole_)
            return kOk;
        goOnBehind(*page);
    }
}

} // namespace

extern "C" Status u_lyn_openconfig_iproute_iproute_validate(RPC_ARGS)
{
    return agt_get_rpc_input(msg) ? kOk : kFailed;
}

extern "C" Status u_lyn_openconfig_iproute_iproute_invoke(RPC_ARGS)
{
    const Value *input = agt_get_rpc_input(msg);
    if (!input)
        return kFailed;
    const Value *asked = val_find_child(input, kModule, "route-table");
    if (!asked)
        return refuseRequest(scb, msg, kBadInput, "Invalid Json for route-table parsed");
    if (!val_find_child(asked, kModule, "all"))
        return refuseRequest(scb, msg, kUnservedInput,
                             "IP route with ALL option is only supported currently");
    const Object *output = outputOf(msg, kModule);
    if (!output)
        return kNotFound;
    RouteTable table(scb, msg);
    const Status status = table.read();
    if (!table.text())
        return status;
    const Status returned = returnResult(msg, output, kModule, table.text());
    if (returned && logsErrors())
        log_error("agt_make_leaf2 failed with reason : %d\n", returned);
    return status;
}
