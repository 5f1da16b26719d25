#include "backend/support_data.h"
#include "switchsim/family.h"

namespace switchsim {
namespace {

constexpr std::size_t kKept = 20;

// Collects support data, and remembers what went where.
class SupportData : public Family {
public:
    std::string_view word() const override { return "support-data"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<UiSsInfoReq, UiSsInfoReq>(
            "ui_supportsave_collect_req", ui_ss_info_req__descriptor, ui_ss_info_req__descriptor,
            [this](const auto &request, auto &, auto &answering) { collect(request, answering); });
    }

    Json show() const override { return {{"collections", collections_}}; }

private:
    void collect(const UiSsInfoReq &request, Answering &answering)
    {
        if (request.ss_module != SUPPORT_MODULE_ALL && request.ss_module != SUPPORT_MODULE_CORE)
            return answering.refuse("Error: unknown support data module\n");
        const bool isSent = request.ss_server_kind == SUPPORT_SERVER_HTTP && request.ss_server_ip;
        collections_.push_back({{"module", request.ss_module == SUPPORT_MODULE_ALL ? "all" : "core"},
                                {"server", isSent ? request.ss_server_ip : ""}});
        if (collections_.size() > kKept)
            collections_.erase(0);
    }

    Json collections_ = Json::array(); // the newest ones
};

} // namespace

std::unique_ptr<Family> makeSupportData(Device &)
{
    return std::make_unique<SupportData>();
}

} // namespace switchsim
