#include "backend/platform.h"
#include "backend/proto/platform.pb-c.h"
#include "switchsim/family.h"

#include <algorithm>
#include <cstring>
#include <map>

namespace switchsim {
namespace {

constexpr std::size_t kEventsKept = 100;

// The platform's values, shared memory, event log and configuration lock.
class Platform : public Family {
public:
    explicit Platform(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "platform"; }

    void registerCalls(CallTable &calls) override
    {
        static constexpr std::pair<const char *, const char *> getters[] = {
            {"get_platform_type", "platform-type"},
            {"ui_fips_get_admin_state", "fips-admin-state"},
            {"ui_fips_cc_get_admin_state", "fips-cc-admin-state"},
            {"ui_fips_cc_get_status", "fips-cc-status"},
            {"ui_fips_cc_get_allow_aaa_server_any", "fips-cc-allow-aaa-server-any"},
            {"is_dhcp_client_enabled", "dhcp-client-enabled"},
            {"is_dhcps_enabled", "dhcp-server-enabled"},
        };
        for (const auto &[call, value] : getters)
            calls.onValue(call, [this, name = value] { return device_.values.get(name); });
        calls.onValue("syslog_lib_init", [this] { return syslogStarted_ = true, 0; });
        calls
            .on<EventRequest, ValueAnswer>(
                "cu_logging_write", event_request__descriptor, value_answer__descriptor,
                [this](const auto &request, auto &answer, auto &) { answer.value = takeEvent(request); })
            .quiet();
        calls
            .on<ShmOpenRequest, ValueAnswer>(
                "shm_object_open", shm_open_request__descriptor, value_answer__descriptor,
                [this](const auto &request, auto &answer, auto &) { answer.value = openObject(request); })
            .quiet();
        calls
            .on<ShmGetRequest, ShmGetAnswer>("shm_object_get", shm_get_request__descriptor,
                                             shm_get_answer__descriptor,
                                             [this](const auto &request, auto &answer, auto &answering) {
                                                 getField(request, answer, answering);
                                             })
            .quiet();
        calls.on<ValueRequest, ValueAnswer>("clam_service_release_config_lock", value_request__descriptor,
                                            value_answer__descriptor,
                                            [this](const auto &, auto &, auto &) { lockReleases_++; });
    }

    Json show() const override
    {
        Json shared = Json::object();
        for (const auto &[name, fields] : objects()) {
            for (const auto &[field, content] : fields)
                shared[name][field] =
                    content.size() == 1 ? Json(static_cast<unsigned>(content[0])) : Json(content.c_str());
        }
        return {{"type", device_.values.get("platform-type")},
                {"syslog", syslogStarted_},
                {"events", events_},
                {"config-lock-releases", lockReleases_},
                {"shared-memory", shared}};
    }

private:
    std::int32_t takeEvent(const EventRequest &request)
    {
        cu_logging_record record{};
        if (request.record.len != sizeof(record))
            return 1;
        std::memcpy(&record, request.record.data, sizeof(record));
        events_.push_back({{"module", record.module}, {"kind", record.kind}, {"event", record.event}});
        if (events_.size() > kEventsKept)
            events_.erase(0);
        return 0;
    }

    // Handles count the objects from 1, in the order of their names.
    std::int32_t openObject(const ShmOpenRequest &request) const
    {
        const Objects all = objects();
        const auto found = all.find(request.name == nullptr ? "" : request.name);
        return found == all.end() ? 0 : static_cast<std::int32_t>(std::distance(all.begin(), found)) + 1;
    }

    void getField(const ShmGetRequest &request, ShmGetAnswer &answer, Answering &answering) const
    {
        const Objects all = objects();
        if (request.handle < 1 || static_cast<std::size_t>(request.handle) > all.size() ||
            request.field == nullptr)
            return;
        const auto &fields = std::next(all.begin(), request.handle - 1)->second;
        const auto found = fields.find(request.field);
        if (found == fields.end())
            return;
        answer.has_data = 1;
        answer.data.len = std::min<std::size_t>(request.length, found->second.size());
        answer.data.data = reinterpret_cast<std::uint8_t *>(answering.keep(found->second));
    }

    // A field has a fixed width, filled up with zeros.
    static std::string fixedWidth(std::string text, std::size_t width)
    {
        text.resize(width);
        return text;
    }

    using Fields = std::map<std::string, std::string, std::less<>>;
    using Objects = std::map<std::string, Fields, std::less<>>;

    Objects objects() const
    {
        const HostName &host = device_.hostName;
        const std::string source(1, static_cast<char>(host.source));
        return {
            {"system_host_name", {{"hostname", fixedWidth(host.name, 255)}, {"hostname_source", source}}}};
    }

    Device &device_;
    bool syslogStarted_ = false;
    std::uint32_t lockReleases_ = 0;
    Json events_ = Json::array(); // the newest ones
};

} // namespace

std::unique_ptr<Family> makePlatform(Device &device)
{
    return std::make_unique<Platform>(device);
}

} // namespace switchsim
